#pragma once

#include "canbusexport.h"

#include <QtCore/QByteArray>
#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QVariantMap>

#include <memory>

namespace canbus {

class LinkHealthPrivate;

/// The figures of a link since its protocol object was made. Every property is a figure: a reader that walks
/// the meta-object finds new ones by itself.
struct CANBUS_EXPORT LinkFigures {
    Q_GADGET
    Q_PROPERTY(quint64 receivedBytes MEMBER receivedBytes)
    Q_PROPERTY(quint64 receivedFrames MEMBER receivedFrames)
    Q_PROPERTY(quint64 receivedAcks MEMBER receivedAcks)
    Q_PROPERTY(quint64 receivedNacks MEMBER receivedNacks)
    Q_PROPERTY(quint64 badChecks MEMBER badChecks)
    Q_PROPERTY(quint64 discardedBuffers MEMBER discardedBuffers)
    Q_PROPERTY(quint64 discardedBytes MEMBER discardedBytes)
    Q_PROPERTY(quint64 skippedBytes MEMBER skippedBytes)
    Q_PROPERTY(quint64 bufferHighWater MEMBER bufferHighWater)
    Q_PROPERTY(quint64 sentBytes MEMBER sentBytes)
    Q_PROPERTY(quint64 sentFrames MEMBER sentFrames)
    Q_PROPERTY(quint64 sentAcks MEMBER sentAcks)
    Q_PROPERTY(quint64 sentNacks MEMBER sentNacks)
    Q_PROPERTY(quint64 awaitingNacks MEMBER awaitingNacks)
    Q_PROPERTY(quint64 retransmissions MEMBER retransmissions)
    Q_PROPERTY(quint64 givenUp MEMBER givenUp)
    Q_PROPERTY(quint64 refusedFull MEMBER refusedFull)
    Q_PROPERTY(quint64 cacheHighWater MEMBER cacheHighWater)
    Q_PROPERTY(quint64 answers MEMBER answers)
    Q_PROPERTY(quint64 lastAnswerUs MEMBER lastAnswerUs)
    Q_PROPERTY(quint64 meanAnswerUs MEMBER meanAnswerUs)
    Q_PROPERTY(quint64 maxAnswerUs MEMBER maxAnswerUs)
    Q_PROPERTY(quint64 connectRequests MEMBER connectRequests)
    Q_PROPERTY(quint64 connectionChecks MEMBER connectionChecks)
    Q_PROPERTY(quint64 linkLosses MEMBER linkLosses)
    Q_PROPERTY(quint64 portErrors MEMBER portErrors)
    Q_PROPERTY(QVariantMap receivedByCategory MEMBER receivedByCategory)
    Q_PROPERTY(QVariantMap sentByCommand MEMBER sentByCommand)

public:
    quint64 receivedBytes = 0;    ///< from the line, whatever they were
    quint64 receivedFrames = 0;   ///< data frames whose check byte held
    quint64 receivedAcks = 0;     ///< whatever their id
    quint64 receivedNacks = 0;    ///< whatever their id
    quint64 badChecks = 0;        ///< frames that were dropped for their check byte
    quint64 discardedBuffers = 0; ///< how often the receive buffer outgrew 2048 bytes and was thrown away
    quint64 discardedBytes = 0;   ///< bytes that went so
    quint64 skippedBytes = 0;     ///< bytes that went with a frame, before its opening mark
    quint64 bufferHighWater = 0;  ///< most bytes that a parsing pass has found waiting
    quint64 sentBytes = 0;        ///< all that was given to the port, the loop-back test's replies too
    quint64 sentFrames = 0;       ///< data frames, each transmission counted
    quint64 sentAcks = 0;         ///< answers to frames that were taken
    quint64 sentNacks = 0;        ///< the awaiting ones included
    quint64 awaitingNacks = 0;    ///< NACKs sent while a frame's end was awaited; also counted in sentNacks
    quint64 retransmissions = 0;  ///< transmissions of a frame beyond its first
    quint64 givenUp = 0;          ///< frames that no answer came for
    quint64 refusedFull = 0;      ///< commands that were not accepted since the cache was full
    quint64 cacheHighWater = 0;   ///< most frames that have waited at once
    quint64 answers = 0;          ///< answers that took a frame off the cache
    quint64 lastAnswerUs = 0;     ///< from the frame's first transmission to its answer
    quint64 meanAnswerUs = 0;     ///< over all answers to frames that had been sent
    quint64 maxAnswerUs = 0;      ///< the slowest answer
    quint64 connectRequests = 0;  ///< put into the cache, not counting retransmissions
    quint64 connectionChecks = 0; ///< put into the cache, not counting retransmissions
    quint64 linkLosses = 0;       ///< how often the link was reported down
    quint64 portErrors = 0;       ///< errors that the serial port has reported
    /// By the category's name in wireconstants.h ("Climate"), "Other" for the rest: a map with "frames" (good
    /// data frames) and "bytes" (their payloads). Categories without any frame are there with zeros.
    QVariantMap receivedByCategory;
    /// By the command's name in wireconstants.h ("ClimateButton"), "Other" for the rest: a map with "frames"
    /// (each transmission) and "bytes" (as on the wire).
    QVariantMap sentByCommand;
};

/// What a link has been through: figures since the protocol object was made, and the fate of each command.
///
/// Owned by the protocol object, VelCanBusProtocol::linkHealth(), and gone with it: who may outlive the
/// protocol holds it by a QPointer, on the protocol's thread. Always on.
///
/// What a signal of the protocol tells is counted before it is emitted, but for the bytes skipped before a
/// frame.
///
/// @thread{The protocol's: the host's main thread.}
class CANBUS_EXPORT LinkHealth : public QObject {
    Q_OBJECT

public:
    /// How a command's frame has ended.
    enum class Fate {
        Acknowledged, ///< the box has answered with an ACK
        Refused,      ///< the box has answered with a NACK
        GivenUp,      ///< no answer came
        NotAccepted,  ///< the cache was full: never sent
    };
    Q_ENUM(Fate)

    /// All figures at 0. A protocol makes its own.
    LinkHealth();
    /// Its protocol destroys it, with itself.
    ~LinkHealth() override;

    /// The figures as they are now. Each is read by itself: two of one reading may be a frame apart.
    /// @return a copy
    /// @thread{Any, as long as the object is there.}
    LinkFigures figures() const;

Q_SIGNALS:
    /// A frame has left the send cache, or was not let in. Connect requests and connection checks are
    /// commands too. Two equal frames are two commands, each with its own transmissions and its own time.
    ///
    /// Comes in order with the protocol's signals about writing and about the link's state; the state of
    /// sending is not locked then.
    /// @param frame  complete, as it went on the wire
    /// @param fate  how it has ended
    /// @param transmissions  how often it was sent; 0 for NotAccepted, and for a frame that still waited to
    ///   be sent when an answer with its id came
    /// @param microseconds  from its first transmission to its end, by a clock that nobody sets; 0 where it
    ///   was not sent
    /// @emitted{The protocol's thread or the parser thread.}
    void commandEnded(QByteArray frame, canbus::LinkHealth::Fate fate, int transmissions,
                      qint64 microseconds);

private:
    friend class CanBusPlayerPrivate; // counts the port's errors
    friend class VelCanBusProtocolPrivate;

    std::shared_ptr<LinkHealthPrivate> d;
};

} // namespace canbus

Q_DECLARE_METATYPE(canbus::LinkFigures)
Q_DECLARE_METATYPE(canbus::LinkHealth::Fate)
