#include "linkstate.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QMetaProperty>

#include <canbusplayer.h>
#include <canbusprotocol.h>
#include <linkhealth.h>
#include <velcanbusprotocol.h>

#include <algorithm>

namespace canbus::qml {

namespace {

constexpr int kRefreshMs = 500;

QVariantMap mapOf(const LinkFigures &figures)
{
    QVariantMap map;
    const QMetaObject &type = LinkFigures::staticMetaObject;
    for (int index = 0; index < type.propertyCount(); ++index) {
        const QMetaProperty figure = type.property(index);
        map.insert(QString::fromLatin1(figure.name()), figure.readOnGadget(&figures));
    }
    return map;
}

} // namespace

LinkState::LinkState(QObject *parent)
    : State(parent)
    , m_frames(this)
{
    m_refreshTimer.setInterval(kRefreshMs);
    connect(&m_refreshTimer, &QTimer::timeout, this, &LinkState::refresh);
    connect(this, &State::staleChanged, this, &LinkState::takeConnection);
    if (isConnected())
        setValid();
    compareFigures();
}

void LinkState::takeConnection()
{
    if (isConnected())
        setValid();
    Q_EMIT connectedChanged();
}

QVariantMap LinkState::figures() const
{
    const CanbusProtocol *const protocol = CanBusPlayer::instance()->protocol();
    const LinkHealth *const health = protocol ? protocol->linkHealth() : nullptr;
    return health ? mapOf(health->figures()) : QVariantMap();
}

void LinkState::setRefreshInterval(int milliseconds)
{
    const int interval = std::max(milliseconds, kShortestRefreshMs);
    if (interval == m_refreshTimer.interval())
        return;
    m_refreshTimer.setInterval(interval);
    Q_EMIT refreshIntervalChanged();
}

void LinkState::connectNotify(const QMetaMethod &signal)
{
    if (signal == QMetaMethod::fromSignal(&LinkState::figuresChanged) && !isRefreshing())
        m_refreshTimer.start();
}

void LinkState::refresh()
{
    if (m_isRecording)
        listenToProtocol();
    const bool areFiguresWanted = isSignalConnected(QMetaMethod::fromSignal(&LinkState::figuresChanged));
    const bool isProtocolMissing = m_isRecording && !m_heard;
    if (!areFiguresWanted && !isProtocolMissing)
        m_refreshTimer.stop();
    if (areFiguresWanted)
        compareFigures();
}

/// Announces the figures where they have changed since the last look.
void LinkState::compareFigures()
{
    const QVariantMap now = figures();
    if (!replaceIfChanged(m_seenFigures, now))
        return;
    if (now.value(QStringLiteral("receivedFrames")).toULongLong() > 0)
        setValid();
    Q_EMIT figuresChanged();
}

void LinkState::setRecording(bool isRecording)
{
    if (!replaceIfChanged(m_isRecording, isRecording))
        return;
    CanBusReadBuff *const buffer = CanBusReadBuff::instance();
    if (isRecording) {
        m_splitter.clear();
        connect(buffer, &CanBusReadBuff::received, this, &LinkState::takeReceived, Qt::QueuedConnection);
        listenToProtocol();
    } else {
        disconnect(buffer, nullptr, this, nullptr);
        if (m_heard)
            disconnect(m_heard, nullptr, this, nullptr);
        m_heard = nullptr;
    }
    Q_EMIT recordFramesChanged();
}

/// Hears what the player's protocol writes. The host may give the player another one at any time, or none.
void LinkState::listenToProtocol()
{
    CanbusProtocol *const protocol = CanBusPlayer::instance()->protocol();
    if (protocol != m_heard) {
        if (m_heard)
            disconnect(m_heard, nullptr, this, nullptr);
        m_heard = protocol;
        if (protocol) {
            // Queued from its own thread too, so that the order is that of the emissions. By signature: a
            // host's own protocol may declare the signal anew.
            connect(protocol, SIGNAL(onWritPortData(QByteArray)), this, SLOT(takeSent(QByteArray)),
                    Qt::QueuedConnection);
            connect(protocol, &QObject::destroyed, this, [this] { m_refreshTimer.start(); });
        }
    }
    if (!protocol && !isRefreshing())
        m_refreshTimer.start();
}

void LinkState::takeReceived(const QByteArray &block)
{
    if (!m_isRecording)
        return;
    const QList<QByteArray> ended = m_splitter.add(block);
    for (const QByteArray &frame : ended)
        keep(FramesModel::Direction::Received, frame);
}

void LinkState::takeSent(const QByteArray &block)
{
    if (m_isRecording)
        keep(FramesModel::Direction::Sent, block);
}

void LinkState::keep(FramesModel::Direction direction, const QByteArray &frame)
{
    m_frames.add(direction, QTime::currentTime(), frame);
    const QString hex = FramesModel::hex(frame);
    if (direction == FramesModel::Direction::Sent)
        announce(this, store(m_lastSent, hex, &LinkState::lastSentChanged));
    else
        announce(this, store(m_lastReceived, hex, &LinkState::lastReceivedChanged));
}

void LinkState::clearFrames()
{
    m_frames.clear();
    const auto received = store(m_lastReceived, QString(), &LinkState::lastReceivedChanged);
    announce(this, received, store(m_lastSent, QString(), &LinkState::lastSentChanged));
}

} // namespace canbus::qml
