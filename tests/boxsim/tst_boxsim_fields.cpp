#include "boxsim/fields/fields.h"

#include <QtTest/QTest>

#include <limits>

using boxsim::Assignment;

/// What can be assigned, and what is said about what cannot.
class TestBoxsimFields : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void takesValuesFromJson_data();
    void takesValuesFromJson();
    void refusesValuesFromJson_data();
    void refusesValuesFromJson();
    void takesValuesAsTyped_data();
    void takesValuesAsTyped();
    void refusesValuesAsTyped_data();
    void refusesValuesAsTyped();
    void refusesNames_data();
    void refusesNames();
    void refusesTextsThatFitIntoNoFrame();
};

namespace {

void json(const char *row, const char *name, const QVariant &given, const QVariant &value, int entry = -1)
{
    QTest::newRow(row) << QString(name) << given << value << entry;
}

void typed(const char *row, const char *name, const char *text, const QVariant &value, int entry = -1)
{
    QTest::newRow(row) << QString(name) << QString::fromUtf8(text) << value << entry;
}

void wrong(const char *row, const char *name, const QVariant &given, const char *error)
{
    QTest::newRow(row) << QString(name) << given << QString::fromUtf8(error);
}

void wrongName(const char *row, const char *name, const char *error)
{
    QTest::newRow(row) << QString(name) << QString(error);
}

void assignmentColumns()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("entry");
}

/// Compares with the type: 215 is not 215.0, and true is not "on".
void compareAssignment(const Assignment &assignment, const QString &name)
{
    QFETCH(QVariant, value);
    QCOMPARE(boxsim::allFields().at(assignment.field).name, name.section('.', 0, 1));
    QTEST(assignment.entry, "entry");
    QCOMPARE(assignment.value.userType(), value.userType());
    QCOMPARE(assignment.value, value);
}

} // namespace

void TestBoxsimFields::takesValuesFromJson_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("given");
    assignmentColumns();
    json("a whole number", "climate.mainTemp", 215, 215);
    json("a number that came as a double", "climate.mainTemp", 215.0, 215);
    json("a long number", "climate.mainTemp", qlonglong(215), 215);
    json("the least of two bytes", "climate.mainTemp", 0, 0);
    json("the most of two bytes", "climate.mainTemp", 65535, 65535);
    json("the most of two bits", "climate.mainUnit", 3, 3);
    json("the most of four bits", "climate.ventPosition", 8, 8);
    json("the most of three bits", "gauges.peakColor", 6, 6);
    json("the most of a byte", "climate.manualTemp", 255, 255);
    json("the least below zero", "measured.outside", -60, -60);
    json("no transition", "screens.transition", -1, -1);
    json("a share", "fault.dropAnswers", 0.25, 0.25);
    json("a whole share", "fault.dropAnswers", 1, 1.0);
    json("a boolean", "fault.silence", true, true);
    json("a flag's first word", "vehicle.hood", "closed", false);
    json("a flag's second word", "vehicle.hood", "open", true);
    json("off for a flag with other words", "vehicle.hood", "off", false);
    json("on for a flag with other words", "vehicle.hood", "on", true);
    json("a text", "climate.title", QString::fromUtf8("Müsli, \"x\" = 1"),
         QString::fromUtf8("Müsli, \"x\" = 1"));
    json("an empty text", "climate.title", "", QString(""));
    json("texts", "climate.labels", QVariantList {"On", "Off"}, QStringList {"On", "Off"});
    json("no texts", "climate.labels", QVariantList {}, QStringList {});
    json("an entry", "climate.button.20", 3, 3, 19);
    json("an entry of flags", "vehicle.door.1", "open", true, 0);
    json("all entries", "vehicle.tire", QVariantList {1, 2.0, 3, 0}, QVariantList {1, 2, 3, 0});
    json("all entries of flags", "vehicle.door", QVariantList {"open", false, "on", "closed"},
         QVariantList {true, false, true, false});
}

void TestBoxsimFields::takesValuesFromJson()
{
    QFETCH(QString, name);
    QFETCH(QVariant, given);
    Assignment assignment;
    QString error;
    QVERIFY2(boxsim::assign(name, given, &assignment, &error), qPrintable(error));
    compareAssignment(assignment, name);
}

void TestBoxsimFields::refusesValuesFromJson_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("given");
    QTest::addColumn<QString>("error");
    const char *const mainTemp = "climate.mainTemp";
    wrong("a word for a number", mainTemp, "warm",
          "climate.mainTemp takes a whole number from 0 to 65535, not \"warm\"");
    wrong("a number in quotes", mainTemp, "215",
          "climate.mainTemp takes a whole number from 0 to 65535, not \"215\"");
    wrong("half a number", mainTemp, 21.5, "climate.mainTemp takes a whole number from 0 to 65535, not 21.5");
    wrong("below the least", mainTemp, -1, "climate.mainTemp takes a whole number from 0 to 65535, not -1");
    wrong("above two bytes", mainTemp, 65536,
          "climate.mainTemp takes a whole number from 0 to 65535, not 65536");
    wrong("far above", mainTemp, 1e300, "climate.mainTemp takes a whole number from 0 to 65535, not 1e+300");
    wrong("no number at all", mainTemp, std::numeric_limits<double>::quiet_NaN(),
          "climate.mainTemp takes a whole number from 0 to 65535, not nan");
    wrong("a boolean for a number", mainTemp, true,
          "climate.mainTemp takes a whole number from 0 to 65535, not true");
    wrong("null", mainTemp, QVariant(), "climate.mainTemp takes a whole number from 0 to 65535, not null");
    wrong("a list for a number", mainTemp, QVariantList {1},
          "climate.mainTemp takes a whole number from 0 to 65535, not a list");
    wrong("an object", mainTemp, QVariantMap(),
          "climate.mainTemp takes a whole number from 0 to 65535, not an object");
    wrong("above two bits", "climate.mainUnit", 4,
          "climate.mainUnit takes a whole number from 0 to 3, not 4");
    wrong("above four bits", "climate.leftHeatedSeat", 9,
          "climate.leftHeatedSeat takes a whole number from 0 to 8, not 9");
    wrong("above a byte", "parking.front.1", 256,
          "parking.front.1 takes a whole number from 0 to 255, not 256");
    wrong("below no transition", "screens.transition", -2,
          "screens.transition takes a whole number from -1 to 4, not -2");
    wrong("above a share", "fault.dropAnswers", 1.01,
          "fault.dropAnswers takes a number from 0 to 1, not 1.01");
    wrong("below a share", "fault.dropAnswers", -0.1,
          "fault.dropAnswers takes a number from 0 to 1, not -0.1");
    wrong("a wrong word", "vehicle.hood", "ajar", "vehicle.hood takes closed or open, not \"ajar\"");
    wrong("a number for a flag", "fault.silence", 1, "fault.silence takes off or on, not 1");
    wrong("a number for a text", "climate.title", 3, "climate.title takes a text, not 3");
    wrong("a zero in a text", "climate.title", QString(QChar::Null),
          "climate.title takes no zero character: it would end the text");
    wrong("a text for texts", "climate.labels", "On", "climate.labels takes a list of texts, not \"On\"");
    wrong("a number among texts", "climate.labels", QVariantList {"On", 3},
          "climate.labels takes texts alone in its list, not 3");
    wrong("too many texts", "gauges.scale",
          QVariantList {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12"},
          "gauges.scale takes at most 11 texts, not 12");
    wrong("too few entries", "vehicle.door", QVariantList {true, true, true},
          "vehicle.door takes a list of 4 values, not 3");
    wrong("too many entries", "vehicle.door", QVariantList {true, true, true, true, true},
          "vehicle.door takes a list of 4 values, not 5");
    wrong("one value for all entries", "vehicle.door", true,
          "vehicle.door takes a list of 4 values, not true; one of them is vehicle.door.1");
    wrong("a wrong value among the entries", "vehicle.tire", QVariantList {0, 0, 4, 0},
          "vehicle.tire.3 takes a whole number from 0 to 3, not 4");
    wrong("a long text is cut in the error", mainTemp, QString(50, 'x'),
          "climate.mainTemp takes a whole number from 0 to 65535, "
          "not \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx…\"");
}

void TestBoxsimFields::refusesValuesFromJson()
{
    QFETCH(QString, name);
    QFETCH(QVariant, given);
    Assignment assignment;
    QString error;
    QVERIFY(!boxsim::assign(name, given, &assignment, &error));
    QTEST(error, "error");
}

void TestBoxsimFields::takesValuesAsTyped_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    assignmentColumns();
    typed("a number", "climate.mainTemp", "215", 215);
    typed("a number below zero", "measured.boost", "-10", -10);
    typed("a share", "fault.dropAnswers", "0.25", 0.25);
    typed("a flag's word", "vehicle.door.1", "open", true, 0);
    typed("on", "fault.silence", "on", true);
    typed("off", "fault.silence", "off", false);
    typed("true", "fault.silence", "true", true);
    typed("false", "fault.silence", "false", false);
    typed("1", "fault.silence", "1", true);
    typed("0", "fault.silence", "0", false);
    typed("a text with blanks, commas and other letters", "climate.title", "Klima vorn, außen",
          QString::fromUtf8("Klima vorn, außen"));
    typed("a text that looks like a number", "climate.title", "215", QString("215"));
    typed("an empty text", "climate.title", "", QString(""));
    typed("texts", "climate.labels", "On,Off", QStringList {"On", "Off"});
    typed("blanks around texts do not count", "climate.labels", " On , Off it ",
          QStringList {"On", "Off it"});
    typed("empty texts", "climate.labels", ",", QStringList {"", ""});
    typed("no texts", "climate.labels", "", QStringList {});
    typed("a comma, a blank and a backslash in texts", "climate.labels", "1\\,5,\\ x\\ , \\\\,\\",
          QStringList {"1,5", " x ", "\\", "\\"});
    typed("all entries", "vehicle.tire", "1, 2,3,0", QVariantList {1, 2, 3, 0});
    typed("all entries of flags", "vehicle.door", "open,closed,on,0",
          QVariantList {true, false, true, false});
}

void TestBoxsimFields::takesValuesAsTyped()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    Assignment assignment;
    QString error;
    QVERIFY2(boxsim::assignText(name, text, &assignment, &error), qPrintable(error));
    compareAssignment(assignment, name);
}

void TestBoxsimFields::refusesValuesAsTyped_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("given");
    QTest::addColumn<QString>("error");
    wrong("a word for a number", "climate.mainTemp", "warm",
          "climate.mainTemp takes a whole number from 0 to 65535, not \"warm\"");
    wrong("nothing for a number", "climate.mainTemp", "",
          "climate.mainTemp takes a whole number from 0 to 65535, not \"\"");
    wrong("a number out of range", "climate.mainTemp", "65536",
          "climate.mainTemp takes a whole number from 0 to 65535, not 65536");
    wrong("an infinite number", "fault.noise", "inf",
          "fault.noise takes a number from 0 to 5760, not \"inf\"");
    wrong("a number with a unit", "measured.speed", "50 km/h",
          "measured.speed takes a whole number from 0 to 300, not \"50 km/h\"");
    wrong("a wrong word", "vehicle.door.2", "2", "vehicle.door.2 takes closed or open, not \"2\"");
    wrong("too few entries", "vehicle.door", "open", "vehicle.door takes a list of 4 values, not 1");
    wrong("a wrong entry", "vehicle.door", "open,open,ajar,open",
          "vehicle.door.3 takes closed or open, not \"ajar\"");
    wrong("an entry that there is not", "vehicle.door.5", "open",
          "vehicle.door has the entries 1 to 4, not 5");
    wrong("a name that there is not", "vehicle.dor", "open",
          "no field \"vehicle.dor\": did you mean vehicle.door?");
}

void TestBoxsimFields::refusesValuesAsTyped()
{
    QFETCH(QString, name);
    QFETCH(QVariant, given);
    Assignment assignment;
    QString error;
    QVERIFY(!boxsim::assignText(name, given.toString(), &assignment, &error));
    QTEST(error, "error");
}

void TestBoxsimFields::refusesNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("error");
    wrongName("a letter is missing", "climate.mainTmp",
              "no field \"climate.mainTmp\": did you mean climate.mainTemp?");
    wrongName("the nearest of several", "climate.manualTmp",
              "no field \"climate.manualTmp\": did you mean climate.manualTemp?");
    wrongName("letters of another case", "climate.maintemp",
              "no field \"climate.maintemp\": did you mean climate.mainTemp?");
    wrongName("like none", "textScreen.brightness",
              "no field \"textScreen.brightness\": there are textScreen.menu, textScreen.minus, "
              "textScreen.plus and textScreen.texts");
    wrongName("an object alone", "screens",
              "no field \"screens\": there are screens.supported and screens.transition");
    wrongName(
        "an unknown object", "radio.volume",
        "no object \"radio\": there are version, screens, climate, gauges, vehicle, parking, textScreen, "
        "measured and fault");
    wrongName("nothing", "",
              "no object \"\": there are version, screens, climate, gauges, vehicle, parking, textScreen, "
              "measured and fault");
    wrongName("an entry above the last", "vehicle.door.5", "vehicle.door has the entries 1 to 4, not 5");
    wrongName("an entry below the first", "vehicle.door.0", "vehicle.door has the entries 1 to 4, not 0");
    wrongName("an entry that is no number", "vehicle.door.left",
              "vehicle.door has the entries 1 to 4, not \"left\"");
    wrongName("an entry of an entry", "vehicle.door.1.2", "vehicle.door has the entries 1 to 4, not \"1.2\"");
    wrongName("an entry of a single value", "climate.mainTemp.1",
              "climate.mainTemp has no entries, and so no 1");
}

void TestBoxsimFields::refusesNames()
{
    QFETCH(QString, name);
    Assignment assignment;
    QString error;
    QVERIFY(!boxsim::assign(name, 1, &assignment, &error));
    QTEST(error, "error");
}

void TestBoxsimFields::refusesTextsThatFitIntoNoFrame()
{
    Assignment assignment;
    QString error;
    QVERIFY(boxsim::assign("climate.title", QString(999, 'x'), &assignment, &error));
    QVERIFY(!boxsim::assign("climate.title", QString(500, QChar(0xfc)), &assignment, &error));
    QCOMPARE(error,
             QString("climate.title takes at most 1000 bytes of UTF-8 with a zero after each text, "
                     "not 1001"));
    QVERIFY(boxsim::assign("climate.labels", QVariantList {QString(499, 'x'), QString(499, 'x')}, &assignment,
                           &error));
    QVERIFY(!boxsim::assign("climate.labels", QVariantList {QString(499, 'x'), QString(500, 'x')},
                            &assignment, &error));
    QCOMPARE(error,
             QString("climate.labels takes at most 1000 bytes of UTF-8 with a zero after each text, "
                     "not 1001"));
}

QTEST_GUILESS_MAIN(TestBoxsimFields)
#include "tst_boxsim_fields.moc"
