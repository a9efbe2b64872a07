#include "link/commandframe.h"

#include "hexbytes.h"
#include "logrecorder.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

const logging::Origin kOrigin {"car.cpp", 12, "void car::press()"};

} // namespace

class CommandFrameTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void putsTheDataBetweenCommandAndCheckByte();
    void doublesTheEscapeByteInIdDataAndCheckByte_data();
    void doublesTheEscapeByteInIdDataAndCheckByte();
    void leavesPlainDataAsItIs();
    void logsCheckByteAndFrameForItsCaller();
};

void CommandFrameTest::putsTheDataBetweenCommandAndCheckByte()
{
    QCOMPARE(buildCommand(kOrigin, 0x22, Command::RequestData, {}), bytes("9f 02 22 97 00 b5 9f 03"));
    QCOMPARE(buildCommand(kOrigin, 0x21, Command::ClimateButton, {0x12, 0x01}, bytes("00")),
             bytes("9f 02 21 93 00 12 01 00 a1 9f 03"));
}

void CommandFrameTest::doublesTheEscapeByteInIdDataAndCheckByte_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("frame");

    QTest::newRow("id 9f") << 0x9f << bytes("00") << bytes("9f 02 9f9f 98 00 00 07 9f 03");
    QTest::newRow("data 9f") << 0x23 << bytes("9f 01") << bytes("9f 02 23 98 00 9f9f 01 25 9f 03");
    QTest::newRow("check byte 9f") << 0x23 << bytes("24") << bytes("9f 02 23 98 00 24 9f9f 9f 03");
}

void CommandFrameTest::doublesTheEscapeByteInIdDataAndCheckByte()
{
    QFETCH(int, id);
    QFETCH(QByteArray, data);

    QTEST(buildCommand(kOrigin, quint8(id), Command::Time, {}, data), "frame");
}

void CommandFrameTest::leavesPlainDataAsItIs()
{
    QCOMPARE(buildCommand(kOrigin, 0x21, Command::ClimateButton, {0x9f}),
             bytes("9f 02 21 93 00 9f 2d 9f 03"));
}

void CommandFrameTest::logsCheckByteAndFrameForItsCaller()
{
    LogRecorder log;
    buildCommand(kOrigin, 0x9f, Command::Settings, {0});
    QCOMPARE(log.messages("[DBG]"), (QStringList {"d", "9f029f9f9200000d9f03"}));
    for (const LogLine &line : log.lines())
        QVERIFY2(line.text.contains(" void car::press() 12 -- "), qPrintable(line.text));
}

QTEST_GUILESS_MAIN(CommandFrameTest)
#include "tst_commandframe.moc"
