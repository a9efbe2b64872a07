#include "hostcontrols.h"

#include <QtCore/QCoreApplication>

#include <displaystate.h>
#include <eventhandler.h>
#include <mcuservice.h>
#include <mcuvechiclebridge.h>
#include <srcdsplctrl.h>
#include <touchevent.h>

namespace canbus::monitor {

namespace {
constexpr int kTouchEventType = 1008;
}

HostControls::HostControls()
{
    EventHandler *const events = EventHandler::instance();
    connect(events, &EventHandler::eventReceived, this, &HostControls::eventReceived);
    connect(events->srcDsplCtrl(), &SrcDsplCtrl::dsplAndSrcChanged, this,
            [this](C::DSPLState display) { Q_EMIT displayShown(display); });
    connect(McuVechicleBridge::instance(), &McuVechicleBridge::reverseChanged, this,
            [this](bool engaged) { Q_EMIT reverseChanged(engaged); });
    QCoreApplication::instance()->installEventFilter(this);
}

bool HostControls::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == kTouchEventType) {
        const auto *const delivered = static_cast<TouchEvent *>(event);
        Q_EMIT touch(delivered->touch, delivered->a, delivered->b);
    }
    return QObject::eventFilter(watched, event);
}

void HostControls::display(int state)
{
    EventHandler::instance()->srcDsplCtrl()->setCurrentDspl(C::DSPLState(state));
}

void HostControls::reverse(bool engaged)
{
    McuVechicleBridge::instance()->setReverse(engaged);
}

void HostControls::needsync(bool needed)
{
    mcu::McuService::instance()->setNeedSyncTimeState(needed);
}

} // namespace canbus::monitor
