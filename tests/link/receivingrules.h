#pragma once

#include "boxsim/link/wirereader.h"
#include "findings.h"
#include "headunitreading.h"
#include "wirecounts.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

/// The rules of receiving: what a pass takes from the bytes, what it tells of them, and what it answers.
class ReceivingRules {
public:
    /// A frame as the library announces it.
    struct Notified {
        quint8 tp;
        quint8 mod; ///< 0 where the category's signal carries none
        QByteArray payload;
    };

    ReceivingRules(Findings &findings, WireCounts &counts);

    /// Bytes arrive.
    void arrive(const QByteArray &block);

    /// A pass begins. @return what it must find
    const HeadUnitReading::Pass &passBegins();

    void notified(const Notified &notified) { m_notified += notified; }
    void answered(const QByteArray &frame) { m_answered += frame; }
    void textWritten(const QByteArray &text);

    /// The pass is over. @param waiting  what it has left
    void passEnds(const QByteArray &waiting);

    /// Nothing was to be answered or told outside of a pass.
    void settled();

    /// Whether all that arrives from here on is well-formed: each frame has to be taken once and in order.
    void expectWellFormed(bool isWellFormed);
    /// All has been taken by now. @return how many frames that were
    int checkWellFormed();

    int waitingBytes() const { return m_reading.waiting().size(); }

private:
    bool hasEndInside(const QByteArray &block);
    void stopComparing();
    void startComparing();
    void count(const HeadUnitReading::Pass &pass);
    void checkNotified();
    void checkAnswers();
    void compareWellFormed();

    Findings &m_findings;
    WireCounts &m_counts;
    HeadUnitReading m_reading;
    HeadUnitReading::Pass m_pass;
    QList<Notified> m_notified;
    QList<QByteArray> m_answered;
    int m_loopBacks = 0;

    bool m_isWellFormed = false; ///< all that arrives
    bool m_compares = false;     ///< what is taken with what has arrived
    bool m_isAtEnd = true;       ///< of a frame, with the last byte that has arrived
    bool m_isDisturbed = false;  ///< the next frame may have lost an escape to the one before it
    int m_escapes = 0;           ///< in a row, up to now
    boxsim::WireReader m_properReader;
    QList<boxsim::WireFrame> m_properFrames; ///< that no pass has taken yet
    int m_takenProperly = 0;
};
