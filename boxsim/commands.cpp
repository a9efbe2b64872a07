#include "commands.h"

#include "wireconstants.h"

namespace boxsim {

namespace {

using canbus::ClimateButton;
using canbus::Command;
using canbus::DataPage;

/// What the bytes of DATA behind a row's `head` are.
struct Field {
    const char *name;
    bool isFlag;
};

using Fields = QVector<Field>;

/// One command: frames with this TP, whose DATA is `head` and one byte for each field.
struct Row {
    Command tp;
    QByteArray head;
    const char *name;
    Fields fields;
    Action action = Action::None;
};

QByteArray head(quint8 byte)
{
    return QByteArray(1, char(byte));
}

Row climateRow(ClimateButton button, const char *name)
{
    static const Fields fields {{"press", true}, {"value", false}};
    return {Command::ClimateButton, head(quint8(button)), name, fields, Action::ClimateButton};
}

Row buttonRow(Command tp, quint8 button, const char *name)
{
    static const Fields fields {{"press", true}};
    return {tp, head(button), name, fields};
}

Row requestRow(DataPage page, const char *name, Action action = Action::None)
{
    return {Command::RequestData, head(quint8(page)), name, {}, action};
}

Row connectionRow(quint8 kind, const char *name, Action action)
{
    return {Command::Connection, head(0) + head(kind), name, {}, action};
}

QVector<Row> climateRows()
{
    return {
        climateRow(ClimateButton::OnOff, "climate.onOff"),
        climateRow(ClimateButton::RearZone, "climate.rearZone"),
        climateRow(ClimateButton::AutoMainZoneTempPlus, "climate.autoMainZoneTempPlus"),
        climateRow(ClimateButton::AutoMainZoneTempMinus, "climate.autoMainZoneTempMinus"),
        climateRow(ClimateButton::AutoSecondZoneTempPlus, "climate.autoSecondZoneTempPlus"),
        climateRow(ClimateButton::AutoSecondZoneTempMinus, "climate.autoSecondZoneTempMinus"),
        climateRow(ClimateButton::ManualMainZoneTempUp, "climate.manualMainZoneTempUp"),
        climateRow(ClimateButton::ManualMainZoneTempDown, "climate.manualMainZoneTempDown"),
        climateRow(ClimateButton::LeftHeatedSeat, "climate.leftHeatedSeat"),
        climateRow(ClimateButton::RightHeatedSeat, "climate.rightHeatedSeat"),
        climateRow(ClimateButton::LeftCooledSeat, "climate.leftCooledSeat"),
        climateRow(ClimateButton::RightCooledSeat, "climate.rightCooledSeat"),
        climateRow(ClimateButton::AutoFanDirectValue, "climate.autoFanDirectValue"),
        climateRow(ClimateButton::Auto, "climate.autoBtn"),
        climateRow(ClimateButton::VentPosition, "climate.ventPos"),
        climateRow(ClimateButton::RecirculatedFreshAir, "climate.recircFresh"),
        climateRow(ClimateButton::Dual, "climate.dualBtn"),
        climateRow(ClimateButton::AirConditioning, "climate.acBtn"),
        climateRow(ClimateButton::MaxAirConditioning, "climate.maxACBtn"),
        climateRow(ClimateButton::FrontDefroster, "climate.frontDefroster"),
        climateRow(ClimateButton::RearDefroster, "climate.rearDefroster"),
        climateRow(ClimateButton::CustomControl1, "climate.customControl1"),
        climateRow(ClimateButton::CustomControl2, "climate.customControl2"),
        climateRow(ClimateButton::HeatedSteeringWheel, "climate.heatedSteerWheel"),
        climateRow(ClimateButton::FanSpeedUp, "climate.fanSpeedUp"),
        climateRow(ClimateButton::FanSpeedDown, "climate.fanSpeedDown"),
        climateRow(ClimateButton::ManualTemp, "climate.manualTemp"),
        climateRow(ClimateButton::ManualFanSpeed, "climate.manualFanSpeed"),
    };
}

QVector<Row> otherButtonRows()
{
    return {
        buttonRow(Command::GaugesButton, 1, "gauges.Gauge1_CenterGauge"),
        buttonRow(Command::GaugesButton, 2, "gauges.Gauge2_TopLeft"),
        buttonRow(Command::GaugesButton, 3, "gauges.Gauge3_TopRight"),
        buttonRow(Command::GaugesButton, 4, "gauges.Gauge4_BottomLeft"),
        buttonRow(Command::GaugesButton, 5, "gauges.Gauge5_BottomRight"),
        buttonRow(Command::GaugesButton, 6, "gauges.customControl1"),
        buttonRow(Command::GaugesButton, 7, "gauges.customControl2"),
        buttonRow(Command::VehicleButton, 1, "vehicle.checkEngine"),
        buttonRow(Command::VehicleButton, 2, "vehicle.customControl1"),
        buttonRow(Command::VehicleButton, 3, "vehicle.customControl2"),
        buttonRow(Command::ParkingButton, 1, "parking.customControl1"),
        buttonRow(Command::ParkingButton, 2, "parking.customControl2"),
    };
}

QVector<Row> pageRows()
{
    return {
        requestRow(DataPage::Normal, "player.requestNormal"),
        requestRow(DataPage::Climate, "climate.requestClimateInfo", Action::ClimateRequest),
        requestRow(DataPage::Gauges, "gauges.requestGaugesInfo"),
        requestRow(DataPage::Vehicle, "vehicle.requestVehicleInfo"),
        requestRow(DataPage::ParkingAssist, "parking.requestParkInfo"),
        {Command::Settings, {}, "settings", {{"value", false}}},
    };
}

QVector<Row> linkAndPlayerRows()
{
    const Fields menu {{"menu", false}, {"item", false}, {"action", false}};
    const Fields time {{"minute", false},     {"hour", false},      {"day", false},   {"month", false},
                       {"yearFirst2", false}, {"yearLast2", false}, {"format", false}};
    return {
        connectionRow(canbus::kConnectRequest, "connection.request", Action::ConnectRequest),
        connectionRow(canbus::kConnectionCheck, "connection.check", Action::ConnectionCheck),
        {Command::MenuPress, {}, "player.onMenuPress", menu},
        {Command::Time, {}, "player.syncGPSTimeToCanbus", time},
    };
}

const QVector<Row> &rows()
{
    static const QVector<Row> all = linkAndPlayerRows() + pageRows() + climateRows() + otherButtonRows();
    return all;
}

/// A flag is 0 or 1 on the wire: any other byte is none.
bool fits(const Field &field, quint8 byte)
{
    return !field.isFlag || byte <= 1;
}

bool matches(const Row &row, const WireFrame &frame)
{
    if (quint8(row.tp) != frame.tp || frame.mod != 0 || !frame.data.startsWith(row.head)
        || frame.data.size() != row.head.size() + row.fields.size())
        return false;
    for (int i = 0; i < row.fields.size(); ++i) {
        if (!fits(row.fields.at(i), quint8(frame.data.at(row.head.size() + i))))
            return false;
    }
    return true;
}

DecodedCommand named(const Row &row, const QByteArray &data)
{
    DecodedCommand command {QString::fromLatin1(row.name), {}, row.action};
    for (int i = 0; i < row.fields.size(); ++i) {
        const Field &field = row.fields.at(i);
        const quint8 byte = quint8(data.at(row.head.size() + i));
        const QVariant value = field.isFlag ? QVariant(byte != 0) : QVariant(int(byte));
        command.arguments.append({QString::fromLatin1(field.name), value});
    }
    return command;
}

QString hex(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

DecodedCommand unknown(const WireFrame &frame)
{
    return {QStringLiteral("unknown"),
            {{QStringLiteral("tp"), hex(head(frame.tp))},
             {QStringLiteral("mod"), hex(head(frame.mod))},
             {QStringLiteral("data"), hex(frame.data)}},
            Action::None};
}

} // namespace

DecodedCommand decodeCommand(const WireFrame &frame)
{
    for (const Row &row : rows()) {
        if (matches(row, frame))
            return named(row, frame.data);
    }
    return unknown(frame);
}

QString toText(const DecodedCommand &command)
{
    QString text = command.name;
    for (const Argument &argument : command.arguments)
        text += QLatin1Char(' ') + argument.name + QLatin1Char('=') + argument.value.toString();
    return text;
}

} // namespace boxsim
