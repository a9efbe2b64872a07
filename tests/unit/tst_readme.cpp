#include <contentof.h>

#include <QtTest/QTest>

namespace {

/// What stands between the first line "```cpp" and the next "```"; empty where there is no such block.
QByteArray firstCppBlock(const QByteArray &document)
{
    const QByteArray opening = "\n```cpp\n";
    const int start = document.indexOf(opening);
    const int end = start < 0 ? -1 : document.indexOf("\n```\n", start + opening.size() - 1);
    if (end < 0)
        return {};
    return document.mid(start + opening.size(), end + 1 - start - opening.size());
}

} // namespace

/// What README.md shows is what is there: people copy it.
class ReadmeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsTheSmallestHostAsItIs();
};

void ReadmeTest::showsTheSmallestHostAsItIs()
{
    const QByteArray host = contentOf(CANBUS_SOURCE_DIR "/examples/minimal-host/main.cpp");
    QVERIFY(host.contains("int main("));
    QCOMPARE(QString::fromUtf8(firstCppBlock(contentOf(CANBUS_SOURCE_DIR "/README.md"))),
             QString::fromUtf8(host));
}

QTEST_GUILESS_MAIN(ReadmeTest)
#include "tst_readme.moc"
