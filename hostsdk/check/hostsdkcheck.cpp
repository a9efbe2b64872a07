// Names every operation of the host's SDK that the library needs, once, so that an SDK which lacks one does
// not compile here, with a message that says what is missing. Nothing of it runs.

#include <datetimemanager.h>
#include <displaystate.h>
#include <eventhandler.h>
#include <mcuservice.h>
#include <mcuvechiclebridge.h>
#include <qxprivate.h>
#include <settingsutil.h>
#include <srcdsplctrl.h>
#include <touchevent.h>

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QVariant>

#include <type_traits>
#include <utility>

namespace {

struct Missing { };

template <template <class> class Operation, class T, class = void>
struct Detect {
    using Type = Missing;
};

template <template <class> class Operation, class T>
struct Detect<Operation, T, std::void_t<Operation<T>>> {
    using Type = Operation<T>;
};

/// Whether `Operation` compiles for `T` and has exactly the type `Result`.
template <class Result, template <class> class Operation, class T>
constexpr bool kHas = std::is_same_v<typename Detect<Operation, T>::Type, Result>;

template <class T>
using Instance = decltype(T::instance());

// mcuvechiclebridge.h

template <class T>
using ReverseChanged = decltype(&T::reverseChanged);

static_assert(std::is_base_of_v<QObject, McuVechicleBridge>, "McuVechicleBridge must be a QObject");
static_assert(kHas<McuVechicleBridge *, Instance, McuVechicleBridge>,
              "the host SDK lacks: static McuVechicleBridge *McuVechicleBridge::instance()");
static_assert(kHas<void (McuVechicleBridge::*)(bool, int), ReverseChanged, McuVechicleBridge>,
              "the host SDK lacks: signal void McuVechicleBridge::reverseChanged(bool, int)");

// displaystate.h

static_assert(std::is_enum_v<C::DSPLState>, "C::DSPLState must be an enumeration");
static_assert(std::is_convertible_v<C::DSPLState, int>, "C::DSPLState must convert to int: no enum class");
static_assert(QtPrivate::IsQEnumHelper<C::DSPLState>::Value,
              "the host SDK lacks: Q_ENUM_NS(DSPLState) in a namespace C with Q_NAMESPACE");
static_assert(std::is_enum_v<C::SourceState>, "C::SourceState must be an enumeration");
static_assert(QtPrivate::IsQEnumHelper<C::SourceState>::Value,
              "the host SDK lacks: Q_ENUM_NS(SourceState) in a namespace C with Q_NAMESPACE");

// srcdsplctrl.h

template <class T>
using CurrentDspl = decltype(std::declval<const T &>().currentDspl());
template <class T>
using DsplAndSrcChanged = decltype(&T::dsplAndSrcChanged);

static_assert(std::is_base_of_v<QObject, SrcDsplCtrl>, "SrcDsplCtrl must be a QObject");
static_assert(kHas<C::DSPLState, CurrentDspl, SrcDsplCtrl>,
              "the host SDK lacks: C::DSPLState SrcDsplCtrl::currentDspl() const");
static_assert(
    kHas<void (SrcDsplCtrl::*)(C::DSPLState, C::SourceState, QByteArray), DsplAndSrcChanged, SrcDsplCtrl>,
    "the host SDK lacks: signal void SrcDsplCtrl::dsplAndSrcChanged(C::DSPLState, C::SourceState, "
    "QByteArray)");

// eventhandler.h

template <class T>
using OnEvent = decltype(std::declval<T &>().onEvent(0));
template <class T>
using HeldSrcDsplCtrl = decltype(std::declval<const T &>().srcDsplCtrl());

static_assert(std::is_base_of_v<QObject, EventHandler>, "EventHandler must be a QObject");
static_assert(kHas<EventHandler *, Instance, EventHandler>,
              "the host SDK lacks: static EventHandler *EventHandler::instance()");
static_assert(kHas<void, OnEvent, EventHandler>, "the host SDK lacks: void EventHandler::onEvent(int)");
static_assert(kHas<SrcDsplCtrl *, HeldSrcDsplCtrl, EventHandler>,
              "the host SDK lacks: SrcDsplCtrl *EventHandler::srcDsplCtrl() const");

// mcuservice.h

template <class T>
using GetNeedSyncTimeState = decltype(std::declval<const T &>().getNeedSyncTimeState());

static_assert(std::is_base_of_v<QObject, mcu::McuService>, "mcu::McuService must be a QObject");
static_assert(kHas<mcu::McuService *, Instance, mcu::McuService>,
              "the host SDK lacks: static mcu::McuService *mcu::McuService::instance()");
static_assert(kHas<bool, GetNeedSyncTimeState, mcu::McuService>,
              "the host SDK lacks: bool mcu::McuService::getNeedSyncTimeState() const");

// datetimemanager.h

template <class T>
using CurrentDateTime = decltype(std::declval<const T &>().currentDateTime());
template <class T>
using CurrentDateTimeAs = decltype(std::declval<const T &>().currentDateTime(Qt::UTC));

static_assert(std::is_base_of_v<QObject, kddatetime::DateTimeManager>,
              "kddatetime::DateTimeManager must be a QObject");
static_assert(
    kHas<kddatetime::DateTimeManager *, Instance, kddatetime::DateTimeManager>,
    "the host SDK lacks: static kddatetime::DateTimeManager *kddatetime::DateTimeManager::instance()");
static_assert(
    kHas<QDateTime, CurrentDateTimeAs, kddatetime::DateTimeManager>,
    "the host SDK lacks: QDateTime kddatetime::DateTimeManager::currentDateTime(Qt::TimeSpec) const");
static_assert(kHas<QDateTime, CurrentDateTime, kddatetime::DateTimeManager>,
              "the host SDK lacks: the default argument of kddatetime::DateTimeManager::currentDateTime()");

// settingsutil.h

template <class T>
using GetValue = decltype(std::declval<const T &>().getValue(QString(), QString(), QVariant()));
template <class T>
using GetSaver = decltype(std::declval<const T &>().getSaver());
template <class T>
using GetCameraComposite = decltype(std::declval<const T &>().getCameraComposite(false));
template <class T>
using GetTimeFormat = decltype(std::declval<const T &>().getTimeFormat());

static_assert(kHas<QVariant, GetValue, mem::SettingsExe>,
              "the host SDK lacks: QVariant mem::SettingsExe::getValue(const QString &key, "
              "const QString &file, const QVariant &defaultValue) const");
static_assert(kHas<mem::SettingsUtil *, Instance, mem::SettingsUtil>,
              "the host SDK lacks: static mem::SettingsUtil *mem::SettingsUtil::instance()");
static_assert(kHas<mem::SettingsExe *, GetSaver, mem::SettingsUtil>,
              "the host SDK lacks: mem::SettingsExe *mem::SettingsUtil::getSaver() const");
static_assert(kHas<bool, GetCameraComposite, mem::SettingsUtil>,
              "the host SDK lacks: bool mem::SettingsUtil::getCameraComposite(bool) const");
static_assert(kHas<int, GetTimeFormat, mem::SettingsUtil>,
              "the host SDK lacks: int mem::SettingsUtil::getTimeFormat() const");

// touchevent.h

template <class T>
using TouchMember = decltype(T::touch);
template <class T>
using AMember = decltype(T::a);
template <class T>
using BMember = decltype(T::b);
template <class T>
using SerializedMember = decltype(T::serialized);

static_assert(std::is_enum_v<Qx::Touch>, "Qx::Touch must be an enumeration");
static_assert(std::is_base_of_v<QEvent, SimpleEvent<Qx::Touch>>, "SimpleEvent<Qx::Touch> must be a QEvent");
static_assert(std::is_base_of_v<SimpleEvent<Qx::Touch>, TouchEvent>,
              "TouchEvent must be a SimpleEvent<Qx::Touch>");
static_assert(std::is_constructible_v<TouchEvent, Qx::Touch, int, int>,
              "the host SDK lacks: TouchEvent(Qx::Touch, int, int)");
static_assert(kHas<Qx::Touch, TouchMember, TouchEvent>, "the host SDK lacks: Qx::Touch TouchEvent::touch");
static_assert(kHas<int, AMember, TouchEvent>, "the host SDK lacks: int TouchEvent::a");
static_assert(kHas<int, BMember, TouchEvent>, "the host SDK lacks: int TouchEvent::b");
static_assert(kHas<QByteArray, SerializedMember, TouchEvent>,
              "the host SDK lacks: QByteArray TouchEvent::serialized");

// qxprivate.h

struct Owner { };

// The library reaches the back pointer from a derived class.
struct OwnerPrivate : QxPrivate<Owner> {
    using QxPrivate<Owner>::QxPrivate;
    using QxPrivate<Owner>::q;
};

template <class T>
using BackPointer = decltype(T::q);

static_assert(std::has_virtual_destructor_v<QxPrivate<Owner>>, "QxPrivate<T> must have a virtual destructor");
static_assert(std::is_constructible_v<OwnerPrivate, Owner *>, "the host SDK lacks: QxPrivate<T>(T *owner)");
static_assert(kHas<Owner *, BackPointer, OwnerPrivate>,
              "the host SDK lacks: the back pointer T *QxPrivate<T>::q");

} // namespace
