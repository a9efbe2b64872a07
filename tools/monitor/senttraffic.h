#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtCore/QVector>

#include <linkhealth.h>

#include <functional>

namespace canbus {
class VelCanBusProtocol;
}

namespace canbus::monitor {

/// Lets a protocol that no port and no timer drives send what a recorded head unit has sent, when it has, so
/// that the recorded answers find their commands, and the link is up and down as it was.
///
/// What the library sends by itself, because of what it has received, is waited for in the recording and not
/// sent again. Answers to the box are the library's own alone. Needs the virtual clock.
class SentTraffic : public QObject {
public:
    /// @param pass  one parsing pass; returns whether it has consumed something
    SentTraffic(VelCanBusProtocol *protocol, std::function<bool()> pass);

    /// A recorded block.
    void take(const QByteArray &block);

    /// The recording is over: what still awaits its answer is not given up.
    void end() { m_giveUpTimer.stop(); }

    /// The link's figures, their times in those of the recording.
    LinkFigures figures() const;

    /// From the first transmission of the command that has ended last to its end.
    qint64 lastCommandUs() const { return m_lastCommandUs; }

private:
    struct Own {
        QByteArray frame;
        qint64 timeUs;
    };

    void notice(const QByteArray &written);
    void forget(const QByteArray &frame, LinkHealth::Fate fate, int transmissions);
    bool takeOwn(const QByteArray &frame);
    bool hasOwn(const QByteArray &frame) const;
    template <class Condition>
    void passWhile(Condition condition);
    void giveUp();
    void send(const QByteArray &frame);
    void requestConnect();

    VelCanBusProtocol *m_protocol;
    std::function<bool()> m_pass;
    QVector<Own> m_own;         // what the library has sent by itself and the recording is still to show
    QByteArray m_ownCheck;      // the connection check that it has made last
    QByteArray m_current;       // what awaits its answer
    int m_transmissions = 0;    // of that
    qint64 m_firstSentUs = 0;   // of that
    bool m_isFollowing = false; // the recording makes it send
    QTimer m_giveUpTimer;
    quint64 m_answers = 0; // the timed ones
    qint64 m_answersUs = 0;
    qint64 m_lastAnswerUs = 0;
    qint64 m_maxAnswerUs = 0;
    qint64 m_lastCommandUs = 0;
};

} // namespace canbus::monitor
