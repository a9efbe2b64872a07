#include "module.h"

#include "climatestate.h"
#include "framesmodel.h"
#include "gaugesstate.h"
#include "linkstate.h"
#include "menustate.h"
#include "parkingstate.h"
#include "screensstate.h"
#include "vehiclestate.h"

#include <QtQml/QQmlEngine>
#include <QtQml/qqml.h>

#include <canbusplayer.h>
#include <velclimategroupcmd.h>
#include <velgaugesgroupcmd.h>
#include <velparkinggroupcmd.h>
#include <velvehiclegroupcmd.h>

namespace canbus::qml {

namespace {

/// An object of the library, which no engine may delete.
template <class T>
QObject *theOneOf(QQmlEngine *, QJSEngine *)
{
    T *const object = T::instance();
    QQmlEngine::setObjectOwnership(object, QQmlEngine::CppOwnership);
    return object;
}

/// An object for this engine, which deletes it.
template <class T>
QObject *made(QQmlEngine *, QJSEngine *)
{
    return new T;
}

template <class T>
void add(const char *uri, const char *name, QObject *(*provide)(QQmlEngine *, QJSEngine *))
{
    qmlRegisterSingletonType<T>(uri, 1, 0, name, provide);
}

} // namespace

void registerTypes(const char *uri)
{
    add<CanBusPlayer>(uri, "CanBusPlayer", theOneOf<CanBusPlayer>);
    add<VelClimateGroupCmd>(uri, "Climate", theOneOf<VelClimateGroupCmd>);
    add<VelGaugesGroupCmd>(uri, "Gauges", theOneOf<VelGaugesGroupCmd>);
    add<VelVehicleGroupCmd>(uri, "Vehicle", theOneOf<VelVehicleGroupCmd>);
    add<VelParkingGroupCmd>(uri, "Parking", theOneOf<VelParkingGroupCmd>);

    add<ClimateState>(uri, "ClimateState", made<ClimateState>);
    add<GaugesState>(uri, "GaugesState", made<GaugesState>);
    add<VehicleState>(uri, "VehicleState", made<VehicleState>);
    add<ParkingState>(uri, "ParkingState", made<ParkingState>);
    add<MenuState>(uri, "MenuState", made<MenuState>);
    add<ScreensState>(uri, "ScreensState", made<ScreensState>);
    add<LinkState>(uri, "LinkState", made<LinkState>);
    qmlRegisterAnonymousType<FramesModel>(uri, 1);
}

} // namespace canbus::qml
