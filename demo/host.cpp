#include "host.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QMap>

#include <datetimemanager.h>
#include <eventhandler.h>
#include <mcuvechiclebridge.h>
#include <srcdsplctrl.h>
#include <touchevent.h>

namespace canbus::headunit {

namespace {

constexpr int kMinuteMs = 60000;
constexpr int kTouchEventType = 1008;

C::DSPLState displayOf(const QString &page)
{
    static const QMap<QString, C::DSPLState> displays {
        {QStringLiteral("climate"), C::DSPL_Climate}, {QStringLiteral("gauges"), C::DSPL_Gauges},
        {QStringLiteral("vehicle"), C::DSPL_Vehicle}, {QStringLiteral("parking"), C::DSPL_Parking},
        {QStringLiteral("menu"), C::DSPL_TextScreen},
    };
    return displays.value(page, C::DSPL_Home);
}

/// What this head unit makes of the touches that the box sends it. Reverse gear brings the parking page.
QString pageOf(int touch)
{
    static const QMap<int, QString> pages {
        {Qx::Touch15, QStringLiteral("climate")},
        {Qx::Touch81, QStringLiteral("vehicle")},
        {Qx::Touch82, QStringLiteral("climate")},
        {Qx::Touch83, QStringLiteral("gauges")},
    };
    return pages.value(touch);
}

bool isInput(QEvent::Type type)
{
    return type == QEvent::MouseButtonPress || type == QEvent::TouchBegin || type == QEvent::KeyPress;
}

} // namespace

Host::Host(qint64 quietMs)
    : m_quietMs(quietMs)
{
    m_sinceInput.start();
    m_clockTimer.setSingleShot(true);
    m_clockTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_clockTimer, &QTimer::timeout, this, &Host::readClock);
    connect(McuVechicleBridge::instance(), &McuVechicleBridge::reverseChanged, this, &Host::takeReverse);
    QCoreApplication::instance()->installEventFilter(this);
    readClock();
}

void Host::showPage(const QString &page)
{
    SrcDsplCtrl *const control = EventHandler::instance()->srcDsplCtrl();
    const C::DSPLState display = displayOf(page);
    // The camera view is the parking page, too, and the host leaves it when the gear is out.
    if (control->currentDspl() == C::DSPL_BoxCamera && display == C::DSPL_Parking)
        return;
    control->setCurrentDspl(display);
}

void Host::toggleReverse()
{
    setReverse(!m_isReverse);
}

void Host::setReverse(bool engaged)
{
    McuVechicleBridge::instance()->setReverse(engaged);
}

void Host::takeReverse(bool engaged)
{
    if (m_isReverse == engaged)
        return;
    m_isReverse = engaged;
    Q_EMIT reverseChanged();
}

bool Host::eventFilter(QObject *watched, QEvent *event)
{
    if (isInput(event->type()))
        m_sinceInput.restart();
    else if (int(event->type()) == kTouchEventType && watched == QCoreApplication::instance())
        takeTouch(static_cast<TouchEvent *>(event)->touch);
    return QObject::eventFilter(watched, event);
}

void Host::takeTouch(int touch)
{
    const QString page = pageOf(touch);
    if (m_followsBox && !m_isReverse && !page.isEmpty() && m_sinceInput.elapsed() >= m_quietMs)
        Q_EMIT pageWanted(page);
}

void Host::readClock()
{
    const QDateTime now = kddatetime::DateTimeManager::instance()->currentDateTime();
    const int gone = now.time().second() * 1000 + now.time().msec();
    m_clockTimer.start(kMinuteMs - gone);
    const QString text = now.toString(QStringLiteral("HH:mm"));
    if (text == m_clock)
        return;
    m_clock = text;
    Q_EMIT clockChanged();
}

} // namespace canbus::headunit
