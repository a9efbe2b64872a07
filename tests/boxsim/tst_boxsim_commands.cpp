#include "boxsim/link/commands.h"

#include "hexbytes.h"

#include <QtTest/QTest>

using boxsim::Action;
using boxsim::DecodedCommand;
using boxsim::WireFrame;

namespace {

/// The command of the one frame on the wire.
DecodedCommand decode(const QByteArray &wire)
{
    const QVector<WireFrame> frames = boxsim::WireReader().feed(wire);
    if (frames.size() != 1 || frames.at(0).kind != WireFrame::Kind::Data)
        return {QStringLiteral("(not one data frame)"), {}, Action::None};
    return boxsim::decodeCommand(frames.at(0));
}

void row(const char *text, const char *wire)
{
    QTest::newRow(text) << bytes(wire) << QString::fromLatin1(text);
}

QString text(const boxsim::ArgumentForm &form)
{
    const QString range = QStringLiteral(" %1..%2").arg(form.least).arg(form.most);
    switch (form.kind) {
    case boxsim::ArgumentForm::Kind::Flag:
        return form.name + " flag" + range;
    case boxsim::ArgumentForm::Kind::Byte:
        return form.name + " byte" + range;
    case boxsim::ArgumentForm::Kind::Hex:
        return form.name + " hex";
    }
    return {};
}

} // namespace

class TestBoxsimCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void namesEachClimateButton_data();
    void namesEachClimateButton() { namesTheCommand(); }
    void namesTheOtherCommands_data();
    void namesTheOtherCommands() { namesTheCommand(); }
    void saysWhenACommandIsUnknown_data();
    void saysWhenACommandIsUnknown() { namesTheCommand(); }
    void tellsWhatTheBoxHasToDo_data();
    void tellsWhatTheBoxHasToDo();
    void typesTheArguments();
    void listsEachNameWithItsArguments_data();
    void listsEachNameWithItsArguments();
    void listsEachNameOnce();

private:
    static void namesTheCommand();
};

void TestBoxsimCommands::namesTheCommand()
{
    QFETCH(QByteArray, wire);
    QFETCH(QString, text);

    QCOMPARE(boxsim::toText(decode(wire)), text);
}

void TestBoxsimCommands::namesEachClimateButton_data()
{
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QString>("text");

    row("climate.onOff press=true value=0", "9f 02 21 93 00 01 01 00 b2 9f 03");
    row("climate.rearZone press=true value=0", "9f 02 21 93 00 02 01 00 b1 9f 03");
    row("climate.rearZone press=false value=0", "9f 02 21 93 00 02 00 00 b0 9f 03");
    row("climate.autoMainZoneTempPlus press=true value=0", "9f 02 21 93 00 03 01 00 b0 9f 03");
    row("climate.autoMainZoneTempMinus press=false value=0", "9f 02 21 93 00 04 00 00 b6 9f 03");
    row("climate.autoSecondZoneTempPlus press=true value=0", "9f 02 21 93 00 05 01 00 b6 9f 03");
    row("climate.autoSecondZoneTempMinus press=false value=0", "9f 02 21 93 00 06 00 00 b4 9f 03");
    row("climate.manualMainZoneTempUp press=true value=0", "9f 02 21 93 00 07 01 00 b4 9f 03");
    row("climate.manualMainZoneTempDown press=false value=0", "9f 02 21 93 00 08 00 00 ba 9f 03");
    row("climate.leftHeatedSeat press=true value=0", "9f 02 21 93 00 09 01 00 ba 9f 03");
    row("climate.rightHeatedSeat press=true value=0", "9f 02 21 93 00 0a 01 00 b9 9f 03");
    row("climate.leftCooledSeat press=true value=0", "9f 02 21 93 00 0b 01 00 b8 9f 03");
    row("climate.rightCooledSeat press=true value=0", "9f 02 21 93 00 0c 01 00 bf 9f 03");
    row("climate.autoFanDirectValue press=true value=255", "9f 02 21 93 00 0d 01 ff 41 9f 03");
    row("climate.autoBtn press=true value=0", "9f 02 21 93 00 0e 01 00 bd 9f 03");
    row("climate.ventPos press=true value=0", "9f 02 21 93 00 0f 01 00 bc 9f 03");
    row("climate.recircFresh press=true value=0", "9f 02 21 93 00 10 01 00 a3 9f 03");
    row("climate.dualBtn press=true value=0", "9f 02 21 93 00 11 01 00 a2 9f 03");
    row("climate.acBtn press=true value=0", "9f 02 21 93 00 12 01 00 a1 9f 03");
    row("climate.maxACBtn press=true value=0", "9f 02 21 93 00 13 01 00 a0 9f 03");
    row("climate.frontDefroster press=true value=0", "9f 02 21 93 00 14 01 00 a7 9f 03");
    row("climate.rearDefroster press=true value=0", "9f 02 21 93 00 15 01 00 a6 9f 03");
    row("climate.customControl1 press=true value=0", "9f 02 21 93 00 16 01 00 a5 9f 03");
    row("climate.customControl2 press=true value=0", "9f 02 21 93 00 17 01 00 a4 9f 03");
    row("climate.customControl2 press=false value=7", "9f 02 21 93 00 17 00 07 a2 9f 03");
    row("climate.heatedSteerWheel press=true value=0", "9f 02 21 93 00 18 01 00 ab 9f 03");
    row("climate.fanSpeedUp press=true value=0", "9f 02 21 93 00 19 01 00 aa 9f 03");
    row("climate.fanSpeedDown press=false value=0", "9f 02 21 93 00 1a 00 00 a8 9f 03");
    row("climate.manualTemp press=true value=159", "9f 02 21 93 00 1b 01 9f9f 37 9f 03");
    row("climate.manualFanSpeed press=true value=3", "9f 02 21 93 00 1c 01 03 ac 9f 03");
}

void TestBoxsimCommands::namesTheOtherCommands_data()
{
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QString>("text");

    row("connection.request", "9f 02 21 01 00 00 00 20 9f 03");
    row("connection.check", "9f 02 40 01 00 00 01 40 9f 03");
    row("player.requestNormal", "9f 02 22 97 00 00 b5 9f 03");
    row("climate.requestClimateInfo", "9f 02 21 97 00 01 b7 9f 03");
    row("gauges.requestGaugesInfo", "9f 02 21 97 00 02 b4 9f 03");
    row("vehicle.requestVehicleInfo", "9f 02 21 97 00 03 b5 9f 03");
    row("parking.requestParkInfo", "9f 02 21 97 00 04 b2 9f 03");
    row("settings value=0", "9f 02 21 92 00 00 b3 9f 03");
    row("climate.settings value=0", "9f 02 50 92 00 00 c2 9f 03");
    row("gauges.settings value=0", "9f 02 5f 92 00 00 cd 9f 03");
    row("vehicle.settings value=0", "9f 02 60 92 00 00 f2 9f 03");
    row("parking.settings value=0", "9f 02 6b 92 00 00 f9 9f 03");
    row("player.onMenuPress menu=1 item=159 action=3", "9f 02 21 91 00 01 9f9f 03 2d 9f 03");
    row("player.syncGPSTimeToCanbus minute=34 hour=12 day=5 month=6 yearFirst2=20 yearLast2=26 format=1",
        "9f 02 23 98 00 22 0c 05 06 14 1a 01 99 9f 03");
    row("player.syncGPSTimeToCanbus minute=255 hour=255 day=255 month=255 yearFirst2=255 yearLast2=255 "
        "format=255",
        "9f 02 23 98 00 ff ff ff ff ff ff ff 44 9f 03");
    row("gauges.Gauge1_CenterGauge press=true", "9f 02 23 94 00 01 01 b7 9f 03");
    row("gauges.Gauge2_TopLeft press=false", "9f 02 23 94 00 02 00 b5 9f 03");
    row("gauges.Gauge3_TopRight press=true", "9f 02 23 94 00 03 01 b5 9f 03");
    row("gauges.Gauge4_BottomLeft press=true", "9f 02 23 94 00 04 01 b2 9f 03");
    row("gauges.Gauge5_BottomRight press=true", "9f 02 23 94 00 05 01 b3 9f 03");
    row("gauges.customControl1 press=true", "9f 02 23 94 00 06 01 b0 9f 03");
    row("gauges.customControl2 press=true", "9f 02 23 94 00 07 01 b1 9f 03");
    row("vehicle.checkEngine press=true", "9f 02 23 95 00 01 01 b6 9f 03");
    row("vehicle.customControl1 press=true", "9f 02 23 95 00 02 01 b5 9f 03");
    row("vehicle.customControl2 press=true", "9f 02 23 95 00 03 01 b4 9f 03");
    row("parking.customControl1 press=true", "9f 02 23 96 00 01 01 b5 9f 03");
    row("parking.customControl2 press=true", "9f 02 9f9f 96 00 02 01 0a 9f 03");
}

void TestBoxsimCommands::saysWhenACommandIsUnknown_data()
{
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QString>("text");

    row("unknown tp=55 mod=00 data=01", "9f 02 21 55 00 01 75 9f 03");
    row("unknown tp=93 mod=00 data=1d0100", "9f 02 21 93 00 1d 01 00 ae 9f 03");
    row("unknown tp=93 mod=00 data=000100", "9f 02 21 93 00 00 01 00 b3 9f 03");
    row("unknown tp=93 mod=01 data=120100", "9f 02 21 93 01 12 01 00 a0 9f 03");
    row("unknown tp=93 mod=00 data=1201", "9f 02 21 93 00 12 01 a1 9f 03");
    row("unknown tp=93 mod=00 data=12010000", "9f 02 21 93 00 12 01 00 00 a1 9f 03");
    row("unknown tp=93 mod=00 data=120200", "9f 02 21 93 00 12 02 00 a2 9f 03");
    row("unknown tp=97 mod=00 data=05", "9f 02 21 97 00 05 b3 9f 03");
    row("unknown tp=01 mod=00 data=0002", "9f 02 21 01 00 00 02 22 9f 03");
    row("unknown tp=94 mod=00 data=0600", "9f 02 23 94 00 06 00 b1 9f 03");
    row("unknown tp=94 mod=00 data=0700", "9f 02 23 94 00 07 00 b0 9f 03");
    row("unknown tp=94 mod=00 data=0602", "9f 02 23 94 00 06 02 b3 9f 03");
    row("unknown tp=95 mod=00 data=0100", "9f 02 23 95 00 01 00 b7 9f 03");
    row("unknown tp=95 mod=00 data=0200", "9f 02 23 95 00 02 00 b4 9f 03");
    row("unknown tp=95 mod=00 data=0300", "9f 02 23 95 00 03 00 b5 9f 03");
    row("unknown tp=96 mod=00 data=0100", "9f 02 23 96 00 01 00 b4 9f 03");
    row("unknown tp=96 mod=00 data=0200", "9f 02 23 96 00 02 00 b7 9f 03");
    row("unknown tp=92 mod=00 data=01", "9f 02 50 92 00 01 c3 9f 03");
    row("unknown tp=92 mod=00 data=07", "9f 02 57 92 00 07 c2 9f 03");
    row("unknown tp=92 mod=00 data=", "9f 02 21 92 00 b3 9f 03");
    row("unknown tp=9f mod=9f data=07", "9f 02 21 9f9f 9f9f 07 26 9f 03");
}

void TestBoxsimCommands::tellsWhatTheBoxHasToDo_data()
{
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<int>("action");

    QTest::newRow("a connect request")
        << bytes("9f 02 21 01 00 00 00 20 9f 03") << int(Action::ConnectRequest);
    QTest::newRow("a connection check")
        << bytes("9f 02 40 01 00 00 01 40 9f 03") << int(Action::ConnectionCheck);
    QTest::newRow("a request for the climate page")
        << bytes("9f 02 21 97 00 01 b7 9f 03") << int(Action::ClimateRequest);
    QTest::newRow("a climate button")
        << bytes("9f 02 21 93 00 12 01 00 a1 9f 03") << int(Action::ClimateButton);
    QTest::newRow("a request for the gauges page")
        << bytes("9f 02 21 97 00 02 b4 9f 03") << int(Action::GaugesRequest);
    QTest::newRow("a request for the vehicle page")
        << bytes("9f 02 21 97 00 03 b5 9f 03") << int(Action::VehicleRequest);
    QTest::newRow("a request for the parking page")
        << bytes("9f 02 21 97 00 04 b2 9f 03") << int(Action::ParkingRequest);
    QTest::newRow("a request for no page") << bytes("9f 02 22 97 00 00 b5 9f 03") << int(Action::None);
    QTest::newRow("a gauges button") << bytes("9f 02 23 94 00 03 01 b5 9f 03") << int(Action::GaugesButton);
    QTest::newRow("a vehicle button") << bytes("9f 02 23 95 00 01 01 b6 9f 03") << int(Action::VehicleButton);
    QTest::newRow("a parking button") << bytes("9f 02 23 96 00 01 01 b5 9f 03") << int(Action::ParkingButton);
    QTest::newRow("a press on the menu")
        << bytes("9f 02 21 91 00 01 9f9f 03 2d 9f 03") << int(Action::MenuPress);
    QTest::newRow("settings") << bytes("9f 02 50 92 00 00 c2 9f 03") << int(Action::None);
    QTest::newRow("the clock") << bytes("9f 02 23 98 00 22 0c 05 06 14 1a 01 99 9f 03") << int(Action::None);
    QTest::newRow("an unknown climate button")
        << bytes("9f 02 21 93 00 1d 01 00 ae 9f 03") << int(Action::None);
}

void TestBoxsimCommands::tellsWhatTheBoxHasToDo()
{
    QFETCH(QByteArray, wire);
    QFETCH(int, action);

    QCOMPARE(int(decode(wire).action), action);
}

void TestBoxsimCommands::typesTheArguments()
{
    const DecodedCommand command = decode(bytes("9f 02 21 93 00 1c 01 03 ac 9f 03"));

    QCOMPARE(command.arguments.size(), 2);
    QCOMPARE(command.arguments.at(0).value, QVariant(true));
    QCOMPARE(command.arguments.at(1).value, QVariant(3));
}

void TestBoxsimCommands::listsEachNameWithItsArguments_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("a button with a value")
        << "climate.manualTemp" << QStringList {"press flag 0..1", "value byte 0..255"};
    QTest::newRow("a button without a release") << "vehicle.checkEngine" << QStringList {"press flag 1..1"};
    QTest::newRow("a menu") << "player.onMenuPress"
                            << QStringList {"menu byte 0..255", "item byte 0..255", "action byte 0..255"};
    QTest::newRow("settings of nobody") << "settings" << QStringList {"value byte 0..0"};
    QTest::newRow("settings of the vehicle") << "vehicle.settings" << QStringList {"value byte 0..0"};
    QTest::newRow("no arguments") << "connection.check" << QStringList {};
    QTest::newRow("anything else") << "unknown" << QStringList {"tp hex", "mod hex", "data hex"};
}

void TestBoxsimCommands::listsEachNameWithItsArguments()
{
    QFETCH(QString, name);
    QFETCH(QStringList, arguments);

    const auto &forms = boxsim::commandForms();
    const auto form = std::find_if(forms.begin(), forms.end(),
                                   [&name](const boxsim::CommandForm &one) { return one.name == name; });

    QVERIFY(form != forms.end());
    QStringList found;
    for (const boxsim::ArgumentForm &argument : form->arguments)
        found.append(text(argument));
    QCOMPARE(found, arguments);
}

void TestBoxsimCommands::listsEachNameOnce()
{
    QStringList names;
    for (const boxsim::CommandForm &form : boxsim::commandForms())
        names.append(form.name);

    // 4 of link and player, 5 pages, settings of 4 groups and of nobody, 28 + 12 buttons, unknown.
    QCOMPARE(names.size(), 4 + 5 + 5 + 28 + 12 + 1);
    QCOMPARE(names.removeDuplicates(), 0);
}

QTEST_GUILESS_MAIN(TestBoxsimCommands)
#include "tst_boxsim_commands.moc"
