#include <contentof.h>

#include <QtTest/QTest>

namespace {

QString textOf(const QString &path)
{
    return QString::fromUtf8(contentOf(QStringLiteral(CANBUS_SOURCE_DIR "/") + path));
}

} // namespace

/// What docs/integration.md shows of the examples is what is there: people copy it.
class TestIntegrationDocument : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsTheExamplesAsTheyAre_data();
    void showsTheExamplesAsTheyAre();
};

void TestIntegrationDocument::showsTheExamplesAsTheyAre_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("examples/minimal-host/main.cpp") << "cpp";
    QTest::newRow("examples/minimal-host/CMakeLists.txt") << "cmake";
    QTest::newRow("examples/minimal-qml/main.qml") << "qml";
}

void TestIntegrationDocument::showsTheExamplesAsTheyAre()
{
    QFETCH(const QString, language);
    const QString example = textOf(QTest::currentDataTag());
    QVERIFY(!example.isEmpty());
    const QString document = textOf(QStringLiteral("docs/integration.md"));
    QVERIFY(document.contains(QStringLiteral("\n```%1\n%2```\n").arg(language, example)));
}

QTEST_GUILESS_MAIN(TestIntegrationDocument)
#include "tst_integrationdocument.moc"
