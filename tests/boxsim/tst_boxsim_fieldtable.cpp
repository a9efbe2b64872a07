#include "boxsim/fields/fields.h"

#include <contentof.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QRegularExpressionMatchIterator>
#include <QtCore/QSet>
#include <QtTest/QTest>

using boxsim::Field;
using boxsim::FieldKind;

Q_DECLARE_METATYPE(boxsim::FieldKind)

/// What there is to set, by name: people write scenarios after this table.
class TestBoxsimFieldTable : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasEachField_data();
    void hasEachField();
    void hasNoOtherField();
    void keepsTheOrderOfObjects();
    void namesEachFieldOnce();
    void describesEachFieldInALine();
    void findsFieldsAndEntriesByTheirNames();
    void isWrittenDownBesideTheBytes();
};

namespace {

struct Expected {
    const char *name;
    FieldKind kind;
    int count;
    double least;
    double most;
    const char *words;
};

constexpr FieldKind kFlag = FieldKind::Flag;
constexpr FieldKind kNumber = FieldKind::Number;
constexpr FieldKind kShare = FieldKind::Share;
constexpr FieldKind kText = FieldKind::Text;
constexpr FieldKind kTexts = FieldKind::Texts;

constexpr Expected kFields[] {
    {"version.ready", kFlag, 1, 0, 0, "not-ready ready"},

    {"screens.supported", kFlag, 5, 0, 0, "no yes"},
    {"screens.transition", kNumber, 1, -1, 4, ""},

    {"climate.type", kNumber, 1, 0, 255, ""},
    {"climate.title", kText, 1, 0, 0, ""},
    {"climate.labels", kTexts, 1, 0, 32, ""},
    {"climate.mainTemp", kNumber, 1, 0, 65535, ""},
    {"climate.secondTemp", kNumber, 1, 0, 65535, ""},
    {"climate.mainUnit", kNumber, 1, 0, 3, ""},
    {"climate.secondUnit", kNumber, 1, 0, 3, ""},
    {"climate.leftHeatedSeat", kNumber, 1, 0, 8, ""},
    {"climate.rightHeatedSeat", kNumber, 1, 0, 8, ""},
    {"climate.leftCooledSeat", kNumber, 1, 0, 8, ""},
    {"climate.rightCooledSeat", kNumber, 1, 0, 8, ""},
    {"climate.fanDirectValue", kNumber, 1, 0, 255, ""},
    {"climate.fanSpeedStatus", kNumber, 1, 0, 3, ""},
    {"climate.ventPosition", kNumber, 1, 0, 8, ""},
    {"climate.fanDirect", kNumber, 1, 0, 3, ""},
    {"climate.systemOn", kFlag, 1, 0, 0, "off on"},
    {"climate.driverSeat", kFlag, 1, 0, 0, "off on"},
    {"climate.manualTemp", kNumber, 1, 0, 255, ""},
    {"climate.button", kNumber, 20, 0, 3, ""},

    {"gauges.type", kFlag, 4, 0, 0, "off on"},
    {"gauges.title", kText, 1, 0, 0, ""},
    {"gauges.labels", kTexts, 1, 0, 32, ""},
    {"gauges.scale", kTexts, 1, 0, 11, ""},
    {"gauges.centerTexts", kTexts, 1, 0, 32, ""},
    {"gauges.topTexts", kTexts, 1, 0, 32, ""},
    {"gauges.bottomTexts", kTexts, 1, 0, 32, ""},
    {"gauges.zeroPosition", kNumber, 5, 0, 255, ""},
    {"gauges.value", kNumber, 5, 0, 255, ""},
    {"gauges.format", kFlag, 5, 0, 0, "off on"},
    {"gauges.shift", kFlag, 1, 0, 0, "off on"},
    {"gauges.labelState1", kNumber, 1, 0, 3, ""},
    {"gauges.labelState2", kNumber, 1, 0, 3, ""},
    {"gauges.peakColor", kNumber, 1, 0, 6, ""},
    {"gauges.valueTexts", kTexts, 1, 0, 32, ""},

    {"vehicle.title", kText, 1, 0, 0, ""},
    {"vehicle.labels", kTexts, 1, 0, 32, ""},
    {"vehicle.door", kFlag, 4, 0, 0, "closed open"},
    {"vehicle.hood", kFlag, 1, 0, 0, "closed open"},
    {"vehicle.trunk", kFlag, 1, 0, 0, "closed open"},
    {"vehicle.tire", kNumber, 4, 0, 3, ""},
    {"vehicle.checkEngine", kNumber, 1, 0, 3, ""},
    {"vehicle.battery", kFlag, 1, 0, 0, "off on"},
    {"vehicle.labelState1", kNumber, 1, 0, 3, ""},
    {"vehicle.labelState2", kNumber, 1, 0, 3, ""},
    {"vehicle.tireTexts", kTexts, 1, 0, 32, ""},

    {"parking.title", kText, 1, 0, 0, ""},
    {"parking.labels", kTexts, 1, 0, 32, ""},
    {"parking.front", kNumber, 4, 0, 255, ""},
    {"parking.rear", kNumber, 4, 0, 255, ""},
    {"parking.left", kNumber, 4, 0, 255, ""},
    {"parking.right", kNumber, 4, 0, 255, ""},
    {"parking.labelState1", kNumber, 1, 0, 3, ""},
    {"parking.labelState2", kNumber, 1, 0, 3, ""},
    {"parking.sensor", kFlag, 4, 0, 0, "off on"},

    {"textScreen.menu", kNumber, 4, 0, 255, ""},
    {"textScreen.minus", kFlag, 1, 0, 0, "off on"},
    {"textScreen.plus", kFlag, 1, 0, 0, "off on"},
    {"textScreen.texts", kTexts, 1, 0, 32, ""},

    {"measured.speed", kNumber, 1, 0, 300, ""},
    {"measured.engineSpeed", kNumber, 1, 0, 10000, ""},
    {"measured.coolant", kNumber, 1, -60, 200, ""},
    {"measured.boost", kNumber, 1, -20, 40, ""},
    {"measured.oil", kNumber, 1, -60, 200, ""},
    {"measured.oilPressure", kNumber, 1, 0, 150, ""},
    {"measured.fuel", kNumber, 1, 0, 100, ""},
    {"measured.consumption", kNumber, 1, 0, 999, ""},
    {"measured.voltage", kNumber, 1, 0, 320, ""},
    {"measured.outside", kNumber, 1, -60, 80, ""},
    {"measured.face", kNumber, 5, 0, 1, ""},

    {"fault.dropFirstAnswers", kNumber, 1, 0, 1000000, ""},
    {"fault.dropAnswers", kShare, 1, 0, 1, ""},
    {"fault.nackAnswers", kShare, 1, 0, 1, ""},
    {"fault.wrongIds", kShare, 1, 0, 1, ""},
    {"fault.wrongChecks", kShare, 1, 0, 1, ""},
    {"fault.flipBytes", kShare, 1, 0, 1, ""},
    {"fault.loseBytes", kShare, 1, 0, 1, ""},
    {"fault.doubleBytes", kShare, 1, 0, 1, ""},
    {"fault.insertBytes", kShare, 1, 0, 1, ""},
    {"fault.noise", kShare, 1, 0, 5760, ""},
    {"fault.split", kFlag, 1, 0, 0, "off on"},
    {"fault.splitAt", kNumber, 1, 0, 4096, ""},
    {"fault.splitRound", kFlag, 1, 0, 0, "off on"},
    {"fault.mergeMs", kNumber, 1, 0, 60000, ""},
    {"fault.pauseMs", kNumber, 1, 0, 60000, ""},
    {"fault.silence", kFlag, 1, 0, 0, "off on"},
    {"fault.notReadyReplies", kNumber, 1, 0, 1000000, ""},
};

} // namespace

void TestBoxsimFieldTable::hasEachField_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<FieldKind>("kind");
    QTest::addColumn<int>("count");
    QTest::addColumn<double>("least");
    QTest::addColumn<double>("most");
    QTest::addColumn<QStringList>("words");
    int row = 0;
    for (const Expected &field : kFields)
        QTest::newRow(field.name) << row++ << field.kind << field.count << field.least << field.most
                                  << QString(field.words).split(' ', Qt::SkipEmptyParts);
}

void TestBoxsimFieldTable::hasEachField()
{
    QFETCH(int, row);
    const Field field = boxsim::allFields().value(row);
    QCOMPARE(field.name, QString(QTest::currentDataTag()));
    QTEST(field.kind, "kind");
    QTEST(field.count, "count");
    QTEST(field.least, "least");
    QTEST(field.most, "most");
    QTEST(field.words, "words");
}

void TestBoxsimFieldTable::hasNoOtherField()
{
    QCOMPARE(boxsim::allFields().size(), int(std::size(kFields)));
}

void TestBoxsimFieldTable::keepsTheOrderOfObjects()
{
    QCOMPARE(boxsim::allObjects(),
             QStringList({"version", "screens", "climate", "gauges", "vehicle", "parking", "textScreen",
                          "measured", "fault"}));
}

void TestBoxsimFieldTable::namesEachFieldOnce()
{
    QSet<QString> names;
    for (const Field &field : boxsim::allFields())
        names.insert(field.name);
    QCOMPARE(names.size(), boxsim::allFields().size());
}

void TestBoxsimFieldTable::describesEachFieldInALine()
{
    for (const Field &field : boxsim::allFields()) {
        QVERIFY2(!field.about.isEmpty() && !field.about.endsWith('.'), qPrintable(field.name));
        QVERIFY2(!field.about.contains('\n') && field.about.size() < 100, qPrintable(field.name));
    }
}

void TestBoxsimFieldTable::findsFieldsAndEntriesByTheirNames()
{
    int field = -1;
    int entry = 0;
    QString error;
    QVERIFY(boxsim::findField("climate.type", &field, &entry, &error));
    QCOMPARE(field, 3);
    QCOMPARE(entry, -1);
    QVERIFY(boxsim::findField("screens.supported.5", &field, &entry, &error));
    QCOMPARE(field, 1);
    QCOMPARE(entry, 4);
    QVERIFY(!boxsim::findField("screens.supported.6", &field, &entry, &error));
    QCOMPARE(error, QString("screens.supported has the entries 1 to 5, not 6"));
}

/// Both ways: each item that goes on the wire has its name in the document, and each name there is a field's.
void TestBoxsimFieldTable::isWrittenDownBesideTheBytes()
{
    const QString document = QString::fromUtf8(contentOf(CANBUS_SOURCE_DIR "/docs/protocol.md"));
    for (const Field &field : boxsim::allFields()) {
        const bool isOnTheWire = !field.name.startsWith("measured.") && !field.name.startsWith("fault.");
        QVERIFY2(!isOnTheWire || document.contains('`' + field.name + '`'), qPrintable(field.name));
    }
    const QRegularExpression name("`((?:" + boxsim::allObjects().join('|') + ")\\.[A-Za-z0-9.]+)`");
    int field = 0;
    int entry = 0;
    QString error;
    QRegularExpressionMatchIterator matches = name.globalMatch(document);
    while (matches.hasNext())
        QVERIFY2(boxsim::findField(matches.next().captured(1), &field, &entry, &error), qPrintable(error));
}

QTEST_GUILESS_MAIN(TestBoxsimFieldTable)
#include "tst_boxsim_fieldtable.moc"
