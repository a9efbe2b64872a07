#include "boxsim/scenario/scenario.h"

#include <contentof.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtCore/QRegularExpressionMatch>
#include <QtTest/QTest>

// What is written about scenarios: the list of examples, and the document for those who write their own.

namespace {

const QString kRoot = QStringLiteral(CANBUS_SOURCE_DIR);

/// By path in scenarios/: what each file is for.
QMap<QString, QString> files()
{
    QMap<QString, QString> abouts;
    const QDir folder(kRoot + "/scenarios");
    QDirIterator files(folder.path(), {QStringLiteral("*.json")}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = folder.relativeFilePath(files.next());
        const QJsonObject scenario =
            QJsonDocument::fromJson(contentOf(kRoot + "/scenarios/" + path)).object();
        if (path != QLatin1String("scenario.schema.json"))
            abouts[path] = scenario[QStringLiteral("about")].toString();
    }
    return abouts;
}

/// The same as the README's tables have it.
QMap<QString, QString> listed()
{
    static const QRegularExpression row(QStringLiteral(R"(^\| \[([^\]]+)\]\(([^)]+)\) \| (.+) \|$)"),
                                        QRegularExpression::MultilineOption);
    QMap<QString, QString> abouts;
    auto rows = row.globalMatch(QString::fromUtf8(contentOf(kRoot + "/scenarios/README.md")));
    while (rows.hasNext()) {
        const QRegularExpressionMatch match = rows.next();
        if (match.captured(2).endsWith(match.captured(1)))
            abouts[match.captured(2)] = match.captured(3);
    }
    return abouts;
}

/// The fenced blocks of the document.
QVector<QPair<QString, QByteArray>> blocks()
{
    static const QRegularExpression block(QStringLiteral("^```(\\w+)\\n(.*?)^```$"),
                                          QRegularExpression::MultilineOption
                                              | QRegularExpression::DotMatchesEverythingOption);
    QVector<QPair<QString, QByteArray>> all;
    auto found = block.globalMatch(QString::fromUtf8(contentOf(kRoot + "/docs/scenarios.md")));
    while (found.hasNext()) {
        const QRegularExpressionMatch match = found.next();
        all.append({match.captured(1), match.captured(2).toUtf8()});
    }
    return all;
}

QString errorOf(const QByteArray &json)
{
    boxsim::Scenario scenario;
    QString error;
    boxsim::readScenario(json, QStringLiteral("drive.json"), &scenario, &error);
    return error;
}

} // namespace

class TestBoxsimScenarioFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void areListedWithWhatTheyAreFor();
    void haveOneForEachFault_data();
    void haveOneForEachFault();
    void areReadAsTheDocumentWritesThem_data();
    void areReadAsTheDocumentWritesThem();
    void haveTheMistakesThatTheDocumentShows();
};

void TestBoxsimScenarioFiles::areListedWithWhatTheyAreFor()
{
    QVERIFY(files().size() > 20);
    QCOMPARE(listed(), files());
}

void TestBoxsimScenarioFiles::haveOneForEachFault_data()
{
    QTest::addColumn<QByteArray>("what");

    for (const boxsim::Field &field : boxsim::allFields()) {
        if (field.name.startsWith(QLatin1String("fault.")) && field.name != QLatin1String("fault.splitAt"))
            QTest::newRow(qPrintable(field.name)) << '"' + field.name.toLatin1() + "\": ";
    }
    QTest::newRow("restart") << QByteArray("\"restart\": true");
    QTest::newRow("hangUp") << QByteArray("\"hangUp\": ");
}

void TestBoxsimScenarioFiles::haveOneForEachFault()
{
    QFETCH(QByteArray, what);

    const QStringList paths = files().keys();
    const auto hasIt = [&what](const QString &path) {
        return path.startsWith(QLatin1String("faults/"))
            && contentOf(kRoot + "/scenarios/" + path).contains(what);
    };
    QVERIFY(std::any_of(paths.begin(), paths.end(), hasIt));
}

void TestBoxsimScenarioFiles::areReadAsTheDocumentWritesThem_data()
{
    QTest::addColumn<QByteArray>("json");

    int count = 0;
    for (const auto &block : blocks()) {
        if (block.first != QLatin1String("json"))
            continue;
        const QByteArray text = block.second.trimmed();
        if (text.contains("\"$schema\"")) {
            QTest::newRow("the full example") << text;
            continue;
        }
        // Each begins at a line's beginning.
        const QString steps = QString::fromUtf8(text.mid(1));
        for (const QString &step : steps.split(QStringLiteral("\n{")))
            QTest::addRow("step %d", ++count) << R"({"steps": [{)" + step.toUtf8() + "]}";
    }
    QCOMPARE(count, 12);
}

void TestBoxsimScenarioFiles::areReadAsTheDocumentWritesThem()
{
    QFETCH(QByteArray, json);

    QCOMPARE(errorOf(json), QString());
}

void TestBoxsimScenarioFiles::haveTheMistakesThatTheDocumentShows()
{
    QString shown;
    for (const auto &block : blocks()) {
        if (block.first == QLatin1String("text"))
            shown = QString::fromUtf8(block.second);
    }
    const QByteArray steps = "{\"steps\": [{\"after\": 1}, {\"after\": 1}, {\"after\": 1},";
    const QStringList errors {
        errorOf(steps + QByteArray(11, '\n') + R"({"set": {"climate.mainTemp": "warm"}}]})"),
        errorOf(steps + "{\"after\": 1}," + QByteArray(13, '\n')
                + R"({"wait": {"command": "climate.acBtm"}}]})"),
        errorOf(steps + QByteArray(19, '\n') + "{\"a\":0\"b\": 0}]}"),
    };

    QCOMPARE(errors.join('\n') + '\n', shown);
}

QTEST_GUILESS_MAIN(TestBoxsimScenarioFiles)
#include "tst_boxsim_scenariofiles.moc"
