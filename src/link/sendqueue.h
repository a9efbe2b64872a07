#pragma once

#include "linkhealth.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <deque>

namespace canbus {

/// The timers of the link, by what their expiry does.
enum class LinkTimer {
    Send,           ///< resends the current frame
    RequestConnect, ///< asks the box to connect
    CheckConnect,   ///< sends a connection check
};

/// Something that a decision of the send queue asks its owner to do.
struct LinkEffect {
    enum Kind {
        Write,      ///< write `frame` to the line
        StartTimer, ///< start `timer` anew, from whatever it has run
        StopTimer,
        LinkUp,
        LinkDown,
        Ended, ///< tell that the command `frame` is through with
    };

    Kind kind;
    QByteArray frame = {};             ///< of Write and Ended
    LinkTimer timer = LinkTimer::Send; ///< of StartTimer and StopTimer
    /// Of Write and Ended: how often the frame has been sent so far; 0 for what is not sent again.
    int transmissions = 0;
    LinkHealth::Fate fate = LinkHealth::Fate::Acknowledged; ///< of Ended
    qint64 microseconds = 0;                                ///< of Ended: since the first transmission
};

/// Effects in the order of the decisions. They must be carried out in this order.
using LinkEffects = std::deque<LinkEffect>;

/// The sending half of the link as a state machine: the cache of frames that wait for their answers, their
/// retransmission, the connect handshake and the loss of the link.
///
/// No timer, clock, thread, lock or signal in it. Operations go in; what is to be done comes out as effects,
/// appended to the list that each operation is given. Exactly one frame, the cache's head, is under way at
/// a time; an answer is matched by its id alone.
class SendQueue {
public:
    static constexpr int kCacheBound = 65; ///< frames that commands may fill the cache to
    /// Frames beyond which a connect request or connection check is not cached twice: a box may provoke them
    /// without end.
    static constexpr int kOverfull = 1024;
    static constexpr int kMaxTransmissions = 3; ///< of one frame, before it is given up
    static constexpr int kResendIntervalMs = 300;
    static constexpr int kRequestConnectIntervalMs = 2000;
    static constexpr int kCheckConnectIntervalMs = 15000;

    /// What has become of a connect request or connection check.
    enum class Appending {
        Appended,
        LeftOut,      ///< the cache is overfull, and an equal frame waits in it
        FirstLeftOut, ///< as LeftOut, for the first time since the cache has last taken commands
    };

    /// The time of the operations that follow, in microseconds since any moment.
    void setNow(qint64 nowUs) { m_nowUs = nowUs; }

    /// Appends a command's frame and restarts sending.
    /// @return false, with nothing changed, when the cache is at its bound; the command has ended then
    bool enqueue(const QByteArray &frame, LinkEffects &effects);

    /// Sends the head of the cache at once, whatever was added behind it, and counts that as one more
    /// transmission. Nothing happens with an empty cache.
    void restart(LinkEffects &effects);

    /// The send timer's expiry: resends the current frame, or gives it up after its last transmission.
    /// @return whether the send timer has nothing left to do and is to be stopped
    bool resend(LinkEffects &effects);

    /// An ACK or NACK with this id: takes the current frame off when the id is its own and moves on to the
    /// next. Any other id is ignored.
    /// @param fate  Acknowledged or Refused: what is told of the frame, and all that it changes
    void answered(quint8 id, LinkHealth::Fate fate, LinkEffects &effects);

    /// An ACK with this id: reports the link up when it answers a connection check.
    void confirmLink(quint8 id, LinkEffects &effects) const;

    /// Begins or goes on with the handshake: a connect request, appended whatever the cache holds unless that
    /// is overfull. Sends the head of the cache in both cases.
    Appending requestConnect(LinkEffects &effects);

    /// The box has reported itself ready in a frame with this id: the handshake is over.
    void boxReady(const QByteArray &id, LinkEffects &effects);

    /// The box has reported itself not ready: no connection checks until it is.
    void boxNotReady(LinkEffects &effects) const;

    /// Sends a connection check, appended like a connect request.
    Appending checkConnect(LinkEffects &effects);

    /// The connection check that carries this id.
    static QByteArray connectionCheck(quint8 id);

    bool isHandshaking() const { return m_handshaking; }
    int transmissions() const { return m_transmissions; } ///< of the current frame so far
    int cachedFrames() const { return m_cache.size(); }
    quint8 currentId() const { return m_currentId; } ///< 0 when no frame is under way
    quint8 connectionId() const;                     ///< the id of the box's ready reply, 0 before it

private:
    Appending appendConnectFrame(const QByteArray &frame, LinkEffects &effects);
    void takeHead();
    void transmit(LinkEffects &effects);
    void endCurrent(LinkHealth::Fate fate, LinkEffects &effects);
    void dropCurrent();

    QList<QByteArray> m_cache;
    QByteArray m_current;
    QByteArray m_connectionId;
    qint64 m_nowUs = 0;
    qint64 m_firstSentUs = 0; // of the current frame, once it has been sent
    int m_transmissions = 0;
    quint8 m_currentId = 0;
    // There is no link to lose before the first connection.
    bool m_handshaking = true;
    bool m_hasLeftOut = false; // since the cache has last taken commands
};

} // namespace canbus
