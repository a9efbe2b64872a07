#include "statslines.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QMetaProperty>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using canbus::LinkFigures;
using canbus::monitor::Form;
using canbus::monitor::statsText;

class tst_monitor_statslines : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsFiguresInGroups();
    void listsOnlyTrafficThatWasThere();
    void writesOneLineOfJson();
    void everyFigureHasAPlaceOfItsOwn();
};

namespace {

QVariantMap traffic(int frames, int bytes)
{
    return {{QStringLiteral("frames"), frames}, {QStringLiteral("bytes"), bytes}};
}

LinkFigures someFigures()
{
    LinkFigures figures;
    figures.receivedBytes = 6458;
    figures.bufferHighWater = 55;
    figures.lastAnswerUs = 11204;
    figures.receivedByCategory = {{QStringLiteral("Climate"), traffic(30, 449)},
                                  {QStringLiteral("Gauges"), traffic(0, 0)}};
    return figures;
}

} // namespace

void tst_monitor_statslines::showsFiguresInGroups()
{
    const QStringList lines = statsText(Form::Text, 24093, someFigures()).split('\n');
    QCOMPARE(lines.first(), QStringLiteral("link after 24.093 s"));
    QCOMPARE(lines[1], QStringLiteral("  received"));
    QCOMPARE(lines[2], QStringLiteral("    bytes                           6458"));
    QVERIFY(lines.contains(QStringLiteral("    most waiting                      55 bytes")));
    QVERIFY(lines.contains(QStringLiteral("    last after                     11204 us")));
    QCOMPARE(lines.filter(QRegularExpression("^  [a-z]")),
             (QStringList {"  received", "  buffer", "  sent", "  commands", "  answers", "  link",
                           "  received by category"}));
}

void tst_monitor_statslines::listsOnlyTrafficThatWasThere()
{
    const QString text = statsText(Form::Text, 0, someFigures());
    QVERIFY(text.endsWith("\n  received by category\n"
                          "    Climate                           30 frames        449 bytes"));
}

void tst_monitor_statslines::writesOneLineOfJson()
{
    const QString line = statsText(Form::Json, 24093, someFigures());
    QVERIFY(line.startsWith(R"({"t":24.093,"stats":{"receivedBytes":6458,"receivedFrames":0,)"));
    QVERIFY(!line.contains('\n'));
    const QJsonObject stats = QJsonDocument::fromJson(line.toUtf8()).object()["stats"].toObject();
    QCOMPARE(stats["lastAnswerUs"], QJsonValue(11204));
    QCOMPARE(stats["receivedByCategory"].toObject()["Climate"].toObject()["bytes"], QJsonValue(449));
    QCOMPARE(stats["receivedByCategory"].toObject()["Gauges"].toObject()["frames"], QJsonValue(0));
    QCOMPARE(stats.size(), LinkFigures::staticMetaObject.propertyCount());
}

void tst_monitor_statslines::everyFigureHasAPlaceOfItsOwn()
{
    QVERIFY(!statsText(Form::Text, 0, LinkFigures()).contains("others"));
}

QTEST_GUILESS_MAIN(tst_monitor_statslines)
#include "tst_monitor_statslines.moc"
