#pragma once

#include "link/receivepath.h"
#include "link/sendqueue.h"

#include <QtCore/QByteArray>
#include <QtCore/QVector>

#include <array>

/// The head unit's end of the link in virtual time: the library's pure receive steps and send queue, with
/// timers that are numbers. It stands where the protocol class stands in the real thing.
class SimulatedHeadUnit {
public:
    struct Report {
        quint8 category;
        quint8 subType;
        QByteArray payload;
    };

    SimulatedHeadUnit();

    /// What the other side of the line has to get, since the last call.
    QByteArray takeWritten();

    void receive(const QByteArray &bytes) { m_buffer += bytes; }

    /// One tick of the parser, and the timers that are due.
    void advance(qint64 nowMs);

    /// A command of the UI. @return whether it was accepted
    bool send(const QByteArray &frame);

    bool isLinkUp() const { return m_linkUp; }
    int cachedFrames() const { return m_queue.cachedFrames(); }
    int transmissions() const { return m_queue.transmissions(); }
    bool isSendTimerRunning() const { return m_due[int(canbus::LinkTimer::Send)] != kNever; }
    /// Whether nothing is left that would send anything without a word from the box.
    bool isStranded() const;
    int bufferedBytes() const { return m_buffer.size(); }
    int linkLosses = 0;
    int nacksSent = 0;
    QVector<Report> reports;
    QVector<canbus::LinkEffect> told; ///< each transmission and end of a command, in order

    // The steps of a parsing pass.
    int onSearchDLE();
    int onSearchDLE_ETX(int start);
    void onRemoveEscapeFrameHeaders(int start, int end);
    bool checkXOR(int start, int end);
    void onProcessingFrameData(int start, int end);
    void onCategoryDataProcessing();

private:
    static constexpr qint64 kNever = -1;

    void takeData();
    void takeVersion(const QByteArray &id, const QByteArray &payload);
    void carryOut();
    bool isDue(canbus::LinkTimer timer) const;
    void startTimer(canbus::LinkTimer timer);

    canbus::SendQueue m_queue;
    canbus::LinkEffects m_effects;
    canbus::receive::Markers m_markers;
    QByteArray m_buffer;
    QByteArray m_frame;
    QByteArray m_lastId;
    quint8 m_check = 0;
    QByteArray m_written;
    std::array<qint64, 3> m_due;
    qint64 m_nowMs = 0;
    bool m_linkUp = false;
};
