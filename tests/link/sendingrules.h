#pragma once

#include "findings.h"
#include "linkhealth.h"
#include "wirecounts.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <array>
#include <deque>

/// The rules of sending, as they show on the wire: a queue and three timers of its own are told what the
/// library is told, and what the library then does is compared with what follows from them.
///
/// Times are those of Findings. Each call belongs to the moment that it is made in.
class SendingRules {
public:
    enum Timer { Send, RequestConnect, CheckConnect };

    SendingRules(Findings &findings, WireCounts &counts);

    // What the library is told.

    void commandGiven(const QByteArray &frame);
    void timerExpired(Timer timer);
    void answerRead(bool isAck, quint8 id);
    void readyRead(quint8 id);
    void notReadyRead();

    // What the library does.

    void frameWritten(const QByteArray &frame);
    void frameEnded(const QByteArray &frame, canbus::LinkHealth::Fate fate, int transmissions,
                    qint64 microseconds);
    void statusTold(bool up);

    /// Everything has happened that was to happen until now.
    void settled();

    int cachedFrames() const { return int(m_cache.size()); }
    bool isLinkUp() const { return m_linkUp; }
    /// Whether no timer is left that would send anything without a word from the box.
    bool isStranded() const;
    /// Whether the last connection check that has ended was answered by a NACK.
    bool isCheckRefused() const { return m_checkRefused; }
    /// When the timer expires, or kNever.
    qint64 dueMs(Timer timer) const { return m_due[timer]; }

    static constexpr qint64 kNever = -1;

private:
    using Fate = canbus::LinkHealth::Fate;

    struct Cached {
        QByteArray frame;
        qint64 latestEndMs;   ///< unless it is postponed
        qint64 postponements; ///< before it came
    };

    struct Expected {
        enum Kind { Write, End, Status };

        Kind kind;
        const char *rule;
        qint64 atMs = 0;
        QByteArray frame = {};
        int transmissions = 0;
        Fate fate = Fate::Acknowledged;
        qint64 tookMs = 0;
        bool up = false;
    };

    void append(const QByteArray &frame);
    bool appendConnectFrame(const QByteArray &frame);
    void restart(const char *rule);
    void transmit(const char *rule);
    void giveUp();
    void endHead(Fate fate, const char *rule);
    void expect(const Expected &expected);
    bool isNext(Expected::Kind kind) const;
    void checkBound();
    void checkPace();
    void checkTime(const QByteArray &frame, const Expected &was);
    void unexpectedWrite(const QByteArray &frame);
    void unexpectedEnd(const QByteArray &frame, Fate fate, int transmissions);
    void count(const QByteArray &frame, int transmissions);
    void countEnd(Fate fate, int transmissions, qint64 microseconds);
    QByteArray head() const { return m_cache.empty() ? QByteArray() : m_cache.front().frame; }

    Findings &m_findings;
    WireCounts &m_counts;
    std::deque<Cached> m_cache;
    std::deque<Expected> m_expected;
    std::array<qint64, 3> m_due;
    QList<qint64> m_sentAtMs; ///< of the head, as told
    bool m_restarted = false; ///< the head, by something behind it
    int m_transmissions = 0;  ///< of the head, as they are to be
    qint64 m_firstSentMs = 0;
    qint64 m_postponements = 0; ///< how often the period has begun anew
    QByteArray m_connectionId;
    bool m_handshaking = true;
    bool m_linkUp = false;
    bool m_checkRefused = false;
};
