#include <eventhandler.h>

#include <srcdsplctrl.h>

#include <utility>

namespace {

constexpr int kEnterBoxCameraEvent = 35;
constexpr int kLeaveBoxCameraEvent = 36;

} // namespace

EventHandler::EventHandler()
    : m_srcDsplCtrl(new SrcDsplCtrl(this))
{
}

EventHandler *EventHandler::instance()
{
    static EventHandler handler;
    return &handler;
}

void EventHandler::onEvent(int event)
{
    Q_EMIT eventReceived(event);
    if (event == kEnterBoxCameraEvent)
        enterBoxCamera();
    else if (event == kLeaveBoxCameraEvent)
        leaveBoxCamera();
}

SrcDsplCtrl *EventHandler::srcDsplCtrl() const
{
    return m_srcDsplCtrl;
}

void EventHandler::enterBoxCamera()
{
    const C::DSPLState shown = m_srcDsplCtrl->currentDspl();
    if (shown == C::DSPL_BoxCamera)
        return;
    m_beforeBoxCamera = shown;
    m_srcDsplCtrl->setCurrentDspl(C::DSPL_BoxCamera);
}

void EventHandler::leaveBoxCamera()
{
    // Forgotten in any case: the next visit may begin without an event.
    const C::DSPLState before = std::exchange(m_beforeBoxCamera, C::DSPL_Home);
    if (m_srcDsplCtrl->currentDspl() == C::DSPL_BoxCamera)
        m_srcDsplCtrl->setCurrentDspl(before);
}
