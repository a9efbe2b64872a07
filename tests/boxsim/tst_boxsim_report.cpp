#include "boxsim/bench/report.h"

#include "hexbytes.h"

#include <QtTest/QTest>

using boxsim::Event;

namespace {

Event eventOf(Event::Kind kind, qint64 timeMs, int id = boxsim::kNoId, const char *hex = "",
              const QString &reason = {})
{
    Event made;
    made.kind = kind;
    made.timeMs = timeMs;
    made.id = id;
    made.bytes = bytes(hex);
    made.reason = reason;
    return made;
}

Event command()
{
    Event made = eventOf(Event::Kind::Command, 1234, 0x21, "9f 02 21 93 00 12 01 00 a1 9f 03");
    made.command.name = QStringLiteral("climate.acBtn");
    made.command.arguments = {{QStringLiteral("press"), true}, {QStringLiteral("value"), 0}};
    return made;
}

Event repeatedCommandOfClimate()
{
    Event made = command();
    made.repeated = true;
    made.acknowledged = true;
    made.category = 3;
    return made;
}

Event unknownCommand()
{
    Event made = eventOf(Event::Kind::Command, 0, 0);
    made.command.name = QStringLiteral("unknown");
    made.command.arguments = {{QStringLiteral("tp"), QStringLiteral("55")}};
    return made;
}

void row(const char *name, const Event &made, const char *line, const char *json)
{
    QTest::newRow(name) << made << QByteArray(line) << QByteArray(json);
}

} // namespace

Q_DECLARE_METATYPE(boxsim::Event)

class TestBoxsimReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesAnEventAsALineAndAsJson_data();
    void writesAnEventAsALineAndAsJson();
    void writesAnAnswerAsJson();
    void namesEveryEvent();
    void namesEventsAsInJson();
};

void TestBoxsimReport::writesAnEventAsALineAndAsJson_data()
{
    QTest::addColumn<Event>("made");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("json");

    using Kind = Event::Kind;
    row("a command", command(), "   1.234  climate.acBtn press=true value=0  id 21",
        R"({"t":1.234,"event":"command","name":"climate.acBtn","press":true,"value":0,"id":33,)"
        R"("bytes":"9f02219300120100a19f03"})");
    row("a repeated command with an id of the climate category", repeatedCommandOfClimate(),
        "   1.234  climate.acBtn press=true value=0 (repeated)  id 21 of climate, acknowledged",
        R"({"t":1.234,"event":"command","name":"climate.acBtn","press":true,"value":0,"repeated":true,)"
        R"("acknowledged":true,"id":33,"category":"climate","bytes":"9f02219300120100a19f03"})");
    row("a text argument and the id 0", unknownCommand(), "   0.000  unknown tp=55  id 00",
        R"({"t":0.000,"event":"command","name":"unknown","tp":"55","id":0})");
    row("an acknowledgement", eventOf(Kind::Ack, 100, 0x9F, "9f 06 9f 9f 9f 03"), "   0.100  ack  id 9f",
        R"({"t":0.100,"event":"ack","id":159,"bytes":"9f069f9f9f03"})");
    row("a stray acknowledgement", eventOf(Kind::Ack, 100, 5, "", QStringLiteral("stray")),
        "   0.100  ack  id 05: stray", R"({"t":0.100,"event":"ack","id":5,"reason":"stray"})");
    row("a negative acknowledgement without an id", eventOf(Kind::Nack, 100, boxsim::kNoId, "9f 15 9f 03"),
        "   0.100  nack", R"({"t":0.100,"event":"nack","bytes":"9f159f03"})");
    row("a bad frame", eventOf(Kind::BadFrame, 100, boxsim::kNoId, "37 9f", QStringLiteral("a \"reason\"")),
        R"(   0.100  bad frame: a "reason": 37 9f)",
        R"({"t":0.100,"event":"badFrame","reason":"a \"reason\"","bytes":"379f"})");
    row("a resent frame", eventOf(Kind::Resend, 300, 0x50, "9f"), "   0.300  resent  id 50",
        R"({"t":0.300,"event":"resend","id":80,"bytes":"9f"})");
    row("a frame given up", eventOf(Kind::GiveUp, 900, 0x50), "   0.900  gave up  id 50",
        R"({"t":0.900,"event":"giveUp","id":80})");
    row("link up", eventOf(Kind::LinkUp, 1), "   0.001  link up", R"({"t":0.001,"event":"linkUp"})");
    row("link down", eventOf(Kind::LinkDown, 3600000), "3600.000  link down",
        R"({"t":3600.000,"event":"linkDown"})");
    row("silent", eventOf(Kind::Silent, 99), "   0.099  silent from here on",
        R"({"t":0.099,"event":"silent"})");
    row("speaking", eventOf(Kind::Speaking, 99), "   0.099  the silence is over",
        R"({"t":0.099,"event":"speaking"})");
    row("a restart", eventOf(Kind::Restart, 99), "   0.099  restarted", R"({"t":0.099,"event":"restart"})");
    row("a fault of an answer",
        eventOf(Kind::Fault, 99, 0x52, "9f 15 52 52 9f 03", QStringLiteral("negative answer")),
        "   0.099  fault  id 52: negative answer: 9f 15 52 52 9f 03",
        R"({"t":0.099,"event":"fault","id":82,"reason":"negative answer","bytes":"9f1552529f03"})");
    row("a fault of a byte",
        eventOf(Kind::Fault, 99, boxsim::kNoId, "", QStringLiteral("byte 5 flipped: 12 became 13")),
        "   0.099  fault: byte 5 flipped: 12 became 13",
        R"({"t":0.099,"event":"fault","reason":"byte 5 flipped: 12 became 13"})");
    row("bytes of a script", eventOf(Kind::Sent, 99, boxsim::kNoId, "00 9f"), "   0.099  sent: 00 9f",
        R"({"t":0.099,"event":"sent","bytes":"009f"})");
    row("a frame of a script", eventOf(Kind::Sent, 99, 0x51, "9f 02"), "   0.099  sent  id 51: 9f 02",
        R"({"t":0.099,"event":"sent","id":81,"bytes":"9f02"})");
    row("a hang-up", eventOf(Kind::HangUp, 99), "   0.099  the line hangs up",
        R"({"t":0.099,"event":"hangUp"})");
    row("the line's return", eventOf(Kind::LineBack, 99), "   0.099  the line is back",
        R"({"t":0.099,"event":"lineBack"})");
    row("a remark", eventOf(Kind::Note, 99, boxsim::kNoId, "", QStringLiteral("now \"rain\"")),
        R"(   0.099  note: now "rain")", R"({"t":0.099,"event":"note","reason":"now \"rain\""})");
    row("the seed", eventOf(Kind::Seed, 0, boxsim::kNoId, "", QStringLiteral("4294967295")),
        "   0.000  seed: 4294967295", R"({"t":0.000,"event":"seed","reason":"4294967295"})");
}

void TestBoxsimReport::writesAnEventAsALineAndAsJson()
{
    QFETCH(Event, made);
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, json);

    QCOMPARE(boxsim::toLine(made), line);
    QCOMPARE(boxsim::toJson(made), json);
}

void TestBoxsimReport::namesEventsAsInJson()
{
    QCOMPARE(boxsim::eventName(Event::Kind::LinkUp), QStringLiteral("linkUp"));
    QCOMPARE(boxsim::eventName(Event::Kind::BadFrame), QStringLiteral("badFrame"));
    const QStringList known {"command", "ack",    "nack",     "badFrame", "resend",
                             "giveUp",  "linkUp", "linkDown", "silent"};
    for (const QString &name : known)
        QVERIFY2(boxsim::eventNames().contains(name), qPrintable(name));
}

void TestBoxsimReport::writesAnAnswerAsJson()
{
    QCOMPARE(boxsim::answerToJson(QStringLiteral("climate.title=\"Rain\"")),
             QByteArray(R"({"answer":"climate.title=\"Rain\""})"));
}

void TestBoxsimReport::namesEveryEvent()
{
    QCOMPARE(boxsim::eventNames().join(' '),
             QStringLiteral("command ack nack badFrame resend giveUp linkUp linkDown silent speaking restart "
                            "fault sent hangUp lineBack note seed"));
    QCOMPARE(boxsim::eventName(Event::Kind::Command), QStringLiteral("command"));
    QCOMPARE(boxsim::eventName(Event::Kind::Seed), QStringLiteral("seed"));
}

QTEST_GUILESS_MAIN(TestBoxsimReport)
#include "tst_boxsim_report.moc"
