#include "groupcommand.h"

#include "hexbytes.h"
#include "logrecorder.h"
#include "sentframes.h"

#include "canbusdatamap.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

const logging::Origin kOrigin {"car.cpp", 12, "void car::press()"};

} // namespace

class GroupCommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // First: no category has an id yet.
    void hasIdZeroBeforeTheFirstFrame();
    void hasTheIdOfItsOwnCategory();
    void isSentOnce();
    void logsTheIdAsItsCallerHasIt_data();
    void logsTheIdAsItsCallerHasIt();
};

void GroupCommandTest::hasIdZeroBeforeTheFirstFrame()
{
    SentFrames sent;
    sendCommand(kOrigin, Category::Vehicle, Command::Settings, {0});
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 00 92 00 00 92 9f 03")});
}

void GroupCommandTest::hasTheIdOfItsOwnCategory()
{
    CanBusDataMap::instance()->setData(3, {bytes("13")});
    CanBusDataMap::instance()->setData(4, {bytes("14")});
    CanBusDataMap::instance()->setData(5, {bytes("15")});
    SentFrames sent;
    sendCommand(kOrigin, Category::Gauges, Command::Settings, {0});
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 14 92 00 00 86 9f 03")});
}

void GroupCommandTest::isSentOnce()
{
    CanBusDataMap::instance()->setData(3, {bytes("21")});
    SentFrames sent;
    sendCommand(kOrigin, Category::Climate, Command::ClimateButton, {0x1b, 0x01}, bytes("9f"));
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 21 93 00 1b 01 9f9f 37 9f 03")});
}

void GroupCommandTest::logsTheIdAsItsCallerHasIt_data()
{
    QTest::addColumn<int>("idInLog");
    QTest::addColumn<QString>("id");

    QTest::newRow("hexadecimal") << int(IdInLog::Hexadecimal) << "41";
    QTest::newRow("as it is") << int(IdInLog::AsItIs) << "\"A\"";
}

void GroupCommandTest::logsTheIdAsItsCallerHasIt()
{
    QFETCH(int, idInLog);
    QFETCH(QString, id);

    CanBusDataMap::instance()->setData(3, {bytes("41")});
    LogRecorder log;
    sendCommand(kOrigin, Category::Climate, Command::Settings, {0}, {}, IdInLog(idInLog));
    QCOMPARE(log.messages("[DBG]"), (QStringList {id, "d3", "9f0241920000d39f03"}));
    for (const LogLine &line : log.lines())
        QVERIFY2(line.text.contains(" void car::press() 12 -- "), qPrintable(line.text));
}

QTEST_GUILESS_MAIN(GroupCommandTest)
#include "tst_groupcommand.moc"
