#include "boxsim/steering.h"

#include "boxsim/steeringhelp.h"

#include "hexbytes.h"

#include <QtTest/QTest>

using boxsim::BenchState;
using boxsim::Instruction;
using boxsim::Steered;

Q_DECLARE_METATYPE(boxsim::Instruction::Kind)

/// What a line of standard input comes to.
class TestBoxsimSteering : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void setsFields_data();
    void setsFields();
    void showsValues_data();
    void showsValues();
    void showsWhatCanBeTypedAgain_data();
    void showsWhatCanBeTypedAgain();
    void sendsFrames_data();
    void sendsFrames();
    void sendsBytes_data();
    void sendsBytes();
    void commandsTheBench_data();
    void commandsTheBench();
    void passesOverEmptyLinesAndRemarks_data();
    void passesOverEmptyLinesAndRemarks();
    void saysWhatWouldBeRight_data();
    void saysWhatWouldBeRight();
    void listsCommandsAndObjects();
    void listsWhatCanFollow_data();
    void listsWhatCanFollow();
};

namespace {

Steered steer(const QString &line)
{
    return boxsim::steer(line, BenchState());
}

/// "climate.mainTemp=215" and the like, as somebody else would write down what is set.
QStringList written(const Instruction &instruction)
{
    QStringList list;
    for (const boxsim::Assignment &assignment : instruction.assignments) {
        QString name = boxsim::allFields().at(assignment.field).name;
        if (assignment.entry >= 0)
            name += QString("[%1]").arg(assignment.entry);
        const QVariant &value = assignment.value;
        list.append(name + ' '
                    + (value.canConvert<QString>() ? value.toString() : value.toStringList().join('|')));
    }
    return list;
}

void line(const char *row, const char *typed, const QStringList &expected)
{
    QTest::newRow(row) << QString::fromUtf8(typed) << expected;
}

void frame(const char *row, const char *typed, int id, int tp, int mod, const char *payload)
{
    QTest::newRow(row) << QString(typed) << id << tp << mod << bytes(payload);
}

void wrong(const char *row, const char *typed, const char *error)
{
    QTest::newRow(row) << QString(typed) << QString(error);
}

} // namespace

void TestBoxsimSteering::setsFields_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("set");
    line("a number", "climate.mainTemp=215", {"climate.mainTemp 215"});
    line("an entry", "vehicle.door.1=open", {"vehicle.door[0] true"});
    line("all entries", "vehicle.tire=0, 1,2,3", {"vehicle.tire 0|1|2|3"});
    line("a flag by its name alone", "fault.silence", {"fault.silence true"});
    line("an entry of flags by its name alone", "vehicle.door.4", {"vehicle.door[3] true"});
    line("a flag of two words", "version.ready=not-ready", {"version.ready false"});
    line("a flag off", "fault.silence=off", {"fault.silence false"});
    line("blanks around name and value", "  climate.mainTemp = 215 \r\n", {"climate.mainTemp 215"});
    line("several at once", "climate.mainTemp=215 climate.mainUnit=1\tvehicle.door.2=open",
         {"climate.mainTemp 215", "climate.mainUnit 1", "vehicle.door[1] true"});
    line("a text with blanks and other letters", "vehicle.title=Zweiter Gang, außen",
         {QString::fromUtf8("vehicle.title Zweiter Gang, außen")});
    line("a text with an equals sign", "vehicle.title=a = b=c", {"vehicle.title a = b=c"});
    line("a text before another field", "vehicle.title=In the yard vehicle.hood=open",
         {"vehicle.title In the yard", "vehicle.hood true"});
    line("a text that ends with a question mark", "vehicle.title=Why?", {"vehicle.title Why?"});
    line("an empty text", "vehicle.title=", {"vehicle.title "});
    line("texts", "climate.labels=On, Off", {"climate.labels On|Off"});
    line("a share", "fault.dropAnswers=0.25", {"fault.dropAnswers 0.25"});
}

void TestBoxsimSteering::setsFields()
{
    QFETCH(QString, typed);
    const Steered steered = steer(typed);
    QCOMPARE(steered.error, QString());
    QVERIFY(steered.instruction.has_value());
    QVERIFY(steered.instruction->kind == Instruction::Kind::Set);
    QTEST(written(*steered.instruction), "set");
    QCOMPARE(steered.answer, QStringList());
}

void TestBoxsimSteering::showsValues_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("answer");
    line("a number by its name alone", "climate.mainTemp", {"climate.mainTemp=215"});
    line("with a question mark", "climate.mainTemp?", {"climate.mainTemp=215"});
    line("a blank before the question mark", " climate.mainTemp ? ", {"climate.mainTemp=215"});
    line("a flag", "vehicle.hood?", {"vehicle.hood=open"});
    line("a flag that is off", "fault.silence?", {"fault.silence=off"});
    line("all entries by their name alone", "vehicle.door", {"vehicle.door=closed,open,closed,closed"});
    line("an entry", "vehicle.door.2?", {"vehicle.door.2=open"});
    line("an entry of numbers by its name alone", "vehicle.tire.1", {"vehicle.tire.1=0"});
    line("a share", "fault.dropAnswers", {"fault.dropAnswers=0.1"});
    line("a text", "climate.title", {QString::fromUtf8("climate.title=außen, oben")});
    line("texts", "climate.labels", {"climate.labels=1\\,5,\\ x,\\\\"});
}

void TestBoxsimSteering::showsValues()
{
    BenchState state;
    state.car.climate.mainTemp = 215;
    state.car.climate.title = QString::fromUtf8("außen, oben");
    state.car.climate.labels = QStringList {"1,5", " x", "\\"};
    state.car.vehicle.hood = true;
    state.car.vehicle.doors[1] = true;
    state.faults.dropAnswers = 0.1;

    QFETCH(QString, typed);
    const Steered steered = boxsim::steer(typed, state);
    QCOMPARE(steered.error, QString());
    QVERIFY(!steered.instruction.has_value());
    QTEST(steered.answer, "answer");
}

void TestBoxsimSteering::showsWhatCanBeTypedAgain_data()
{
    QTest::addColumn<QString>("typed");
    for (const char *typed : {"climate.mainTemp=215", "vehicle.door=closed,open,closed,open",
                              "vehicle.tire.2=3", "climate.labels=1\\,5,\\ x\\ ,\\\\,,y z",
                              "climate.title=a, b\\c", "fault.noise=12.5", "measured.outside=-10"})
        QTest::newRow(typed) << QString(typed);
}

void TestBoxsimSteering::showsWhatCanBeTypedAgain()
{
    QFETCH(QString, typed);
    const Steered steered = steer(typed);
    QVERIFY2(steered.instruction.has_value(), qPrintable(steered.error));
    BenchState state;
    boxsim::apply(state, steered.instruction->assignments.value(0));
    QCOMPARE(boxsim::steer(typed.section('=', 0, 0) + '?', state).answer, QStringList({typed}));
}

void TestBoxsimSteering::sendsFrames_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("tp");
    QTest::addColumn<int>("mod");
    QTest::addColumn<QByteArray>("payload");
    frame("with a payload", "send 52 03 01 4F 6E 00", 0x52, 0x03, 0x01, "4f6e00");
    frame("without a payload", "send 9f 07 00", 0x9f, 0x07, 0x00, "");
    frame("without blanks", "send 5203014f6E00", 0x52, 0x03, 0x01, "4f6e00");
}

void TestBoxsimSteering::sendsFrames()
{
    QFETCH(QString, typed);
    const Steered steered = steer(typed);
    QVERIFY2(steered.instruction.has_value(), qPrintable(steered.error));
    QVERIFY(steered.instruction->kind == Instruction::Kind::SendFrame);
    QTEST(int(steered.instruction->id), "id");
    QTEST(int(steered.instruction->tp), "tp");
    QTEST(int(steered.instruction->mod), "mod");
    QTEST(steered.instruction->bytes, "payload");
}

void TestBoxsimSteering::sendsBytes_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("with blanks") << "bytes 9F 06 21  21 9f 03" << bytes("9f062121 9f03");
    QTest::newRow("without blanks") << "bytes 9F062121" << bytes("9f062121");
    QTest::newRow("a single one") << "bytes 00" << bytes("00");
}

void TestBoxsimSteering::sendsBytes()
{
    QFETCH(QString, typed);
    const Steered steered = steer(typed);
    QVERIFY2(steered.instruction.has_value(), qPrintable(steered.error));
    QVERIFY(steered.instruction->kind == Instruction::Kind::SendBytes);
    QTEST(steered.instruction->bytes, "sent");
}

void TestBoxsimSteering::commandsTheBench_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<Instruction::Kind>("kind");
    QTest::addColumn<int>("ms");
    QTest::addColumn<QString>("text");
    using Kind = Instruction::Kind;
    QTest::newRow("restart") << " restart " << Kind::Restart << 0 << QString();
    QTest::newRow("hangup for a second") << "hangup" << Kind::HangUp << 1000 << QString();
    QTest::newRow("hangup for a while") << "hangup 250" << Kind::HangUp << 250 << QString();
    QTest::newRow("hangup for a moment") << "hangup 1" << Kind::HangUp << 1 << QString();
    QTest::newRow("hangup for a day") << "hangup 86400000" << Kind::HangUp << 86400000 << QString();
    QTest::newRow("note") << "note door=open? yes" << Kind::Note << 0 << QString("door=open? yes");
    QTest::newRow("quit") << "quit" << Kind::End << 0 << QString();
}

void TestBoxsimSteering::commandsTheBench()
{
    QFETCH(QString, typed);
    const Steered steered = steer(typed);
    QVERIFY2(steered.instruction.has_value(), qPrintable(steered.error));
    QTEST(steered.instruction->kind, "kind");
    QTEST(steered.instruction->ms, "ms");
    QTEST(steered.instruction->text, "text");
}

void TestBoxsimSteering::passesOverEmptyLinesAndRemarks_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("nothing") << "";
    QTest::newRow("blanks") << " \t\r\n";
    QTest::newRow("a remark") << " # vehicle.hood=open";
}

void TestBoxsimSteering::passesOverEmptyLinesAndRemarks()
{
    QFETCH(QString, typed);
    const Steered steered = steer(typed);
    QVERIFY(!steered.instruction.has_value());
    QCOMPARE(steered.answer, QStringList());
    QCOMPARE(steered.error, QString());
}

void TestBoxsimSteering::saysWhatWouldBeRight_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("error");
    wrong("a mistyped command", "restrt", "no command \"restrt\": did you mean restart?");
    wrong("no command", "jingle along", "no command \"jingle\": help lists what there is");
    wrong("a mistyped field", "climate.mainTmp=215",
          "no field \"climate.mainTmp\": did you mean climate.mainTemp?");
    wrong("a mistyped field alone", "climate.mainTmp",
          "no field \"climate.mainTmp\": did you mean climate.mainTemp?");
    wrong("a mistyped field to show", "climate.mainTmp?",
          "no field \"climate.mainTmp\": did you mean climate.mainTemp?");
    wrong("a blank in place of the equals sign", "climate.mainTemp 215",
          "no field \"climate.mainTemp 215\": did you mean climate.mainTemp?");
    wrong("an object alone", "screens",
          "no field \"screens\": there are screens.supported and screens.transition");
    wrong("a wrong value", "climate.mainTemp=warm",
          "climate.mainTemp takes a whole number from 0 to 65535, not \"warm\"");
    wrong("one wrong value among several", "climate.mainTemp=1 vehicle.door.5=open climate.mainUnit=1",
          "vehicle.door has the entries 1 to 4, not 5");
    const char *const frame = "send takes id, category, sub-type and payload, two hexadecimal digits a byte, "
                              "as in: send 51 07 00 02";
    wrong("a frame without anything", "send", frame);
    wrong("a frame without a sub-type", "send 50 03", frame);
    wrong("a frame with half a byte", "send 50 03 0", frame);
    wrong("a frame with an x", "send 0x50 03 00", frame);
    const char *const bytes = "bytes takes two hexadecimal digits a byte, as in: bytes 9F 06 21 21 9F 03";
    wrong("no bytes", "bytes", bytes);
    wrong("half a byte", "bytes 9F 0", bytes);
    wrong("a word", "bytes noise", bytes);
    wrong("hangup for a word", "hangup soon",
          "hangup takes milliseconds from 1 to 86400000, or nothing, not \"soon\"");
    wrong("hangup for no time", "hangup 0",
          "hangup takes milliseconds from 1 to 86400000, or nothing, not \"0\"");
    wrong("hangup for too long", "hangup 86400001",
          "hangup takes milliseconds from 1 to 86400000, or nothing, not \"86400001\"");
    wrong("restart with more", "restart now", "restart stands alone, without \"now\"");
    wrong("quit with more", "quit now", "quit stands alone, without \"now\"");
    wrong("an empty note", "note", "note takes a text, as in: note door test begins");
    QTest::newRow("a note with a zero")
        << QString("note a") + QChar(0) + 'b' << QString("note takes a text without control characters");
    wrong("a note of two lines", "note a\rb", "note takes a text without control characters");
    wrong("help for an unknown object", "help radio",
          "no object \"radio\": there are version, screens, climate, gauges, vehicle, parking, textScreen, "
          "measured "
          "and fault");
    wrong("help for an unknown field", "help vehicle.dor",
          "no field \"vehicle.dor\": did you mean vehicle.door?");
}

void TestBoxsimSteering::saysWhatWouldBeRight()
{
    QFETCH(QString, typed);
    const Steered steered = steer(typed);
    QVERIFY(!steered.instruction.has_value());
    QCOMPARE(steered.answer, QStringList());
    QTEST(steered.error, "error");
}

void TestBoxsimSteering::listsCommandsAndObjects()
{
    const Steered steered = steer("help");
    QCOMPARE(steered.error, QString());
    const QStringList expected {
        "NAME=VALUE ...         set fields, all of a line at once",
        "NAME                   set a flag, or show the value of another field",
        "NAME?                  show the value of a field",
        "send ID TP MOD HEX...  send a data frame once; all bytes hexadecimal",
        "bytes HEX...           put bytes on the line as they are",
        "restart                switch the box off and on",
        "hangup [MS]            take the line away, for 1000 or MS milliseconds",
        "note TEXT              put a text among the reports",
        "quit                   end the run",
        "help [BEGINNING]       list everything, or the fields whose names begin so",
    };
    QCOMPARE(steered.answer.mid(0, expected.size()), expected);
    QCOMPARE(steered.answer.mid(expected.size()),
             QStringList {QStringLiteral(
                 "NAME begins with one of: version, screens, climate, gauges, vehicle, parking, "
                 "textScreen, measured, fault")});
}

void TestBoxsimSteering::listsWhatCanFollow_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("answer");
    line("fields that begin so", "help climate.ma",
         {"climate.mainTemp    a whole number from 0 to 65535  main temperature; the drive counts in tenths "
          "of a degree",
          "climate.mainUnit    a whole number from 0 to 3      unit of the main temperature",
          "climate.manualTemp  a whole number from 0 to 255    temperature of a manual system"});
    line("whatever their case", "help FAULT.DROPF",
         {"fault.dropFirstAnswers  a whole number from 0 to 1000000  so many answers, from here on, are not "
          "sent"});
    line("a field with entries", "help vehicle.door",
         {"vehicle.door.1 to .4  closed or open  doors: front left, front right, rear left, rear right"});
    line("an entry", "help vehicle.door.2",
         {"vehicle.door.1 to .4  closed or open  doors: front left, front right, rear left, rear right"});
    line("a share", "help fault.dropA",
         {"fault.dropAnswers  a number from 0 to 1  share of answers that are not sent"});
    line("a text", "help climate.ti", {"climate.title  a text  title of the climate screen"});
    line("texts", "help gauges.c",
         {"gauges.centerTexts  a list of at most 32 texts  texts of the centre gauge"});
    line("an object", "help screens",
         {"screens.supported.1 to .5  no or yes                    which screens there are; entry 1 is "
          "screen 0 of the wire",
          "screens.transition         a whole number from -1 to 4  the move to another screen that is asked "
          "for; -1 asks for none"});
    line("a command", "help hangup", {"hangup [MS]  take the line away, for 1000 or MS milliseconds"});
}

void TestBoxsimSteering::listsWhatCanFollow()
{
    QFETCH(QString, typed);
    const Steered steered = steer(typed);
    QCOMPARE(steered.error, QString());
    QVERIFY(!steered.instruction.has_value());
    QTEST(steered.answer, "answer");
}

QTEST_GUILESS_MAIN(TestBoxsimSteering)
#include "tst_boxsim_steering.moc"
