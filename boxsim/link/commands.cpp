#include "commands.h"

#include "boxsim/link/sender.h"

#include "wireconstants.h"

namespace boxsim {

namespace {

using canbus::Category;
using canbus::ClimateButton;
using canbus::Command;
using canbus::DataPage;
using canbus::GaugesButton;
using canbus::ParkingButton;
using canbus::VehicleButton;

/// The bytes that the head unit's operations can send in a field.
enum class Kind {
    Byte,  // any
    Flag,  // 0 or 1
    Press, // 1: the control reports no release
    Zero,  // 0
};

/// What the bytes of DATA behind a row's `head` are.
struct Field {
    const char *name;
    Kind kind;
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

/// The head unit's general button command sends a release and a value of any button, also of the tap-only
/// ones.
Row climateRow(ClimateButton button, const char *name)
{
    static const Fields fields {{"press", Kind::Flag}, {"value", Kind::Byte}};
    return {Command::ClimateButton, head(quint8(button)), name, fields, Action::ClimateButton};
}

Row gaugeRow(GaugesButton button, const char *name)
{
    static const Fields fields {{"press", Kind::Flag}};
    return {Command::GaugesButton, head(quint8(button)), name, fields, Action::GaugesButton};
}

Row tapRow(Command tp, quint8 button, const char *name, Action action)
{
    static const Fields fields {{"press", Kind::Press}};
    return {tp, head(button), name, fields, action};
}

Row gaugesTapRow(GaugesButton button, const char *name)
{
    return tapRow(Command::GaugesButton, quint8(button), name, Action::GaugesButton);
}

Row vehicleTapRow(VehicleButton button, const char *name)
{
    return tapRow(Command::VehicleButton, quint8(button), name, Action::VehicleButton);
}

Row parkingTapRow(ParkingButton button, const char *name)
{
    return tapRow(Command::ParkingButton, quint8(button), name, Action::ParkingButton);
}

Row requestRow(DataPage page, const char *name, Action action)
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
        gaugeRow(GaugesButton::Center, "gauges.Gauge1_CenterGauge"),
        gaugeRow(GaugesButton::TopLeft, "gauges.Gauge2_TopLeft"),
        gaugeRow(GaugesButton::TopRight, "gauges.Gauge3_TopRight"),
        gaugeRow(GaugesButton::BottomLeft, "gauges.Gauge4_BottomLeft"),
        gaugeRow(GaugesButton::BottomRight, "gauges.Gauge5_BottomRight"),
        gaugesTapRow(GaugesButton::CustomControl1, "gauges.customControl1"),
        gaugesTapRow(GaugesButton::CustomControl2, "gauges.customControl2"),
        vehicleTapRow(VehicleButton::CheckEngine, "vehicle.checkEngine"),
        vehicleTapRow(VehicleButton::CustomControl1, "vehicle.customControl1"),
        vehicleTapRow(VehicleButton::CustomControl2, "vehicle.customControl2"),
        parkingTapRow(ParkingButton::CustomControl1, "parking.customControl1"),
        parkingTapRow(ParkingButton::CustomControl2, "parking.customControl2"),
    };
}

QVector<Row> pageRows()
{
    return {
        requestRow(DataPage::Normal, "player.requestNormal", Action::None),
        requestRow(DataPage::Climate, "climate.requestClimateInfo", Action::ClimateRequest),
        requestRow(DataPage::Gauges, "gauges.requestGaugesInfo", Action::GaugesRequest),
        requestRow(DataPage::Vehicle, "vehicle.requestVehicleInfo", Action::VehicleRequest),
        requestRow(DataPage::ParkingAssist, "parking.requestParkInfo", Action::ParkingRequest),
        {Command::Settings, {}, "settings", {{"value", Kind::Zero}}},
    };
}

QVector<Row> linkAndPlayerRows()
{
    const Fields menu {{"menu", Kind::Byte}, {"item", Kind::Byte}, {"action", Kind::Byte}};
    const Fields time {{"minute", Kind::Byte}, {"hour", Kind::Byte},       {"day", Kind::Byte},
                       {"month", Kind::Byte},  {"yearFirst2", Kind::Byte}, {"yearLast2", Kind::Byte},
                       {"format", Kind::Byte}};
    return {
        connectionRow(canbus::kConnectRequest, "connection.request", Action::ConnectRequest),
        connectionRow(canbus::kConnectionCheck, "connection.check", Action::ConnectionCheck),
        {Command::MenuPress, {}, "player.onMenuPress", menu, Action::MenuPress},
        {Command::Time, {}, "player.syncGPSTimeToCanbus", time},
    };
}

const QVector<Row> &rows()
{
    static const QVector<Row> all = linkAndPlayerRows() + pageRows() + climateRows() + otherButtonRows();
    return all;
}

bool fits(Kind kind, quint8 byte)
{
    switch (kind) {
    case Kind::Byte:
        return true;
    case Kind::Flag:
        return byte <= 1;
    case Kind::Press:
        return byte == 1;
    case Kind::Zero:
        return byte == 0;
    }
    return false;
}

bool isFlag(Kind kind)
{
    return kind == Kind::Flag || kind == Kind::Press;
}

bool matches(const Row &row, const WireFrame &frame)
{
    if (quint8(row.tp) != frame.tp || frame.mod != 0 || !frame.data.startsWith(row.head)
        || frame.data.size() != row.head.size() + row.fields.size())
        return false;
    for (int i = 0; i < row.fields.size(); ++i) {
        if (!fits(row.fields.at(i).kind, quint8(frame.data.at(row.head.size() + i))))
            return false;
    }
    return true;
}

/// The object whose settings are meant, with its dot: the category that owns the id says which.
QString ownerOfSettings(int id)
{
    switch (Category(categoryOfId(id))) {
    case Category::Climate:
        return QStringLiteral("climate.");
    case Category::Gauges:
        return QStringLiteral("gauges.");
    case Category::Vehicle:
        return QStringLiteral("vehicle.");
    case Category::ParkingAssist:
        return QStringLiteral("parking.");
    default:
        return {};
    }
}

QString nameOf(const Row &row, int id)
{
    const QString name = QString::fromLatin1(row.name);
    return row.tp == Command::Settings ? ownerOfSettings(id) + name : name;
}

DecodedCommand named(const Row &row, const WireFrame &frame)
{
    DecodedCommand command {nameOf(row, frame.id), {}, row.action};
    for (int i = 0; i < row.fields.size(); ++i) {
        const Field &field = row.fields.at(i);
        const quint8 byte = quint8(frame.data.at(row.head.size() + i));
        const QVariant value = isFlag(field.kind) ? QVariant(byte != 0) : QVariant(int(byte));
        command.arguments.append({QString::fromLatin1(field.name), value});
    }
    return command;
}

ArgumentForm formOf(const Field &field)
{
    const QString name = QString::fromLatin1(field.name);
    switch (field.kind) {
    case Kind::Byte:
        return {name, ArgumentForm::Kind::Byte, 0, 255};
    case Kind::Flag:
        return {name, ArgumentForm::Kind::Flag, 0, 1};
    case Kind::Press:
        return {name, ArgumentForm::Kind::Flag, 1, 1};
    case Kind::Zero:
        return {name, ArgumentForm::Kind::Byte, 0, 0};
    }
    return {};
}

/// The row's names: its own, and those with the owner of the settings before it.
QStringList namesOf(const Row &row)
{
    const QString name = QString::fromLatin1(row.name);
    QStringList names {name};
    if (row.tp != Command::Settings)
        return names;
    for (const char *object : {"climate.", "gauges.", "vehicle.", "parking."})
        names.append(QLatin1String(object) + name);
    return names;
}

QVector<CommandForm> makeCommandForms()
{
    QVector<CommandForm> forms;
    for (const Row &row : rows()) {
        QVector<ArgumentForm> arguments;
        for (const Field &field : row.fields)
            arguments.append(formOf(field));
        const QStringList names = namesOf(row);
        for (const QString &name : names)
            forms.append({name, arguments});
    }
    constexpr auto hexText = ArgumentForm::Kind::Hex;
    forms.append({QStringLiteral("unknown"),
                  {{QStringLiteral("tp"), hexText},
                   {QStringLiteral("mod"), hexText},
                   {QStringLiteral("data"), hexText}}});
    return forms;
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
            return named(row, frame);
    }
    return unknown(frame);
}

const QVector<CommandForm> &commandForms()
{
    static const QVector<CommandForm> all = makeCommandForms();
    return all;
}

QString toText(const DecodedCommand &command)
{
    QString text = command.name;
    for (const Argument &argument : command.arguments)
        text += QLatin1Char(' ') + argument.name + QLatin1Char('=') + argument.value.toString();
    return text;
}

} // namespace boxsim
