#include "controls.h"

#include "canbusplayer.h"
#include "velclimategroupcmd.h"
#include "velgaugesgroupcmd.h"
#include "velparkinggroupcmd.h"
#include "velvehiclegroupcmd.h"

#include <eventhandler.h>
#include <mcuservice.h>
#include <mcuvechiclebridge.h>
#include <srcdsplctrl.h>

#include <algorithm>

using namespace canbus;

namespace {

constexpr int kMostArguments = 6;

/// Those that take part in receiving or repeat what is held, and send nothing.
bool isNoControl(const QByteArray &name)
{
    static const QList<QByteArray> kNames {"onTimerOut",
                                           "onReverseChanged",
                                           "onSyncTimeTmrout",
                                           "onCanbusSourceDsplChange",
                                           "getTextScreenInfo",
                                           "setCanbusConnectStatus",
                                           "getClimateInfo",
                                           "getGaugesInfo",
                                           "getVehicleInfo",
                                           "getParkInfo",
                                           "getCanbusCameraEnable",
                                           "getCanbusConnectStatus"};
    return kNames.contains(name);
}

bool takesPlainValues(const QMetaMethod &method)
{
    const QList<QByteArray> types = method.parameterTypes();
    return std::all_of(types.begin(), types.end(), [](const QByteArray &type) {
        return type == "bool" || type == "int" || type == "char";
    });
}

/// An argument of any of the three types, and where its value is.
struct Argument {
    QByteArray type;
    bool flag = false;
    int number = 0;
    char byte = 0;

    QGenericArgument generic() const
    {
        if (type == "bool")
            return {"bool", &flag};
        if (type == "int")
            return {"int", &number};
        return {type == "char" ? "char" : nullptr, &byte};
    }
};

} // namespace

Controls::Controls()
{
    addFrom(CanBusPlayer::instance());
    addFrom(VelClimateGroupCmd::instance());
    addFrom(VelGaugesGroupCmd::instance());
    addFrom(VelVehicleGroupCmd::instance());
    addFrom(VelParkingGroupCmd::instance());
}

void Controls::addFrom(QObject *object)
{
    const QMetaObject *const type = object->metaObject();
    for (int i = type->methodOffset(); i < type->methodCount(); ++i) {
        const QMetaMethod method = type->method(i);
        const bool isOffered = method.methodType() != QMetaMethod::Signal
            && method.access() == QMetaMethod::Public && method.returnType() == QMetaType::Void;
        if (isOffered && takesPlainValues(method) && !isNoControl(method.name()))
            m_controls.append({object, method});
    }
}

QByteArray Controls::use(Chance &chance) const
{
    const Control &control = m_controls.at(chance.below(m_controls.size()));
    const QList<QByteArray> types = control.method.parameterTypes();
    Argument arguments[kMostArguments];
    for (int i = 0; i < types.size(); ++i)
        arguments[i] = {types.at(i), chance.happens(0.5), chance.between(-1, 256), char(chance.byte())};
    control.method.invoke(control.object, Qt::DirectConnection, arguments[0].generic(),
                          arguments[1].generic(), arguments[2].generic(), arguments[3].generic(),
                          arguments[4].generic(), arguments[5].generic());
    return control.method.name();
}

QByteArray Controls::playHost(Chance &chance)
{
    static constexpr int kDisplays[] = {0, 25, 73, 74, 75, 76, 77, 78};
    switch (chance.below(4)) {
    case 0:
        McuVechicleBridge::instance()->setReverse(chance.happens(0.5));
        return "reverse gear";
    case 1:
        mcu::McuService::instance()->setNeedSyncTimeState(chance.happens(0.3));
        return "clock";
    default:
        EventHandler::instance()->srcDsplCtrl()->setCurrentDspl(C::DSPLState(kDisplays[chance.below(8)]));
        return "display";
    }
}

QByteArray Controls::askForAll(Chance &chance)
{
    switch (chance.below(5)) {
    case 0:
        VelClimateGroupCmd::instance()->getClimateInfo();
        return "getClimateInfo";
    case 1:
        VelGaugesGroupCmd::instance()->getGaugesInfo();
        return "getGaugesInfo";
    case 2:
        VelVehicleGroupCmd::instance()->getVehicleInfo();
        return "getVehicleInfo";
    case 3:
        VelParkingGroupCmd::instance()->getParkInfo();
        return "getParkInfo";
    default:
        CanBusPlayer::instance()->getTextScreenInfo();
        return "getTextScreenInfo";
    }
}
