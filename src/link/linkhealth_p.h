#pragma once

#include "linkhealth.h"
#include "receivepath.h"
#include "wireconstants.h"

#include <array>
#include <atomic>

namespace canbus {

/// A figure that any thread may change and read. The figures say nothing of each other, so no order among
/// them is asked for.
class Counter {
public:
    void add(quint64 amount = 1) { m_value.fetch_add(amount, std::memory_order_relaxed); }
    void set(quint64 value) { m_value.store(value, std::memory_order_relaxed); }
    quint64 value() const { return m_value.load(std::memory_order_relaxed); }

    void raiseTo(quint64 value)
    {
        quint64 highest = this->value();
        while (highest < value && !m_value.compare_exchange_weak(highest, value, std::memory_order_relaxed))
            continue;
    }

private:
    std::atomic<quint64> m_value {0};
};

/// Frames of one kind, told by their TP.
struct NamedTraffic {
    quint8 tp;
    const char *name;
    Counter frames {};
    Counter bytes {};

    void add(int size)
    {
        frames.add();
        bytes.add(quint64(size));
    }
};

/// The counters behind the figures. Shared with those who count on other threads, so that the link's end need
/// not wait for them.
class LinkHealthPrivate {
public:
    Counter receivedBytes;
    Counter receivedAcks;
    Counter receivedNacks;
    Counter bufferHighWater;
    Counter awaitingNacks;
    Counter cacheHighWater;
    Counter connectRequests;
    Counter connectionChecks;
    Counter linkLosses;
    Counter portErrors;

    /// A data frame whose check byte held.
    void countReceivedFrame(quint8 tp, int payloadSize);

    /// What a parsing pass has taken off the buffer.
    void countPass(const receive::Pass &pass);

    /// A block for the port.
    /// @param transmissions  how often its frame has been sent with it; 0 for what is not sent again
    void countWritten(const QByteArray &block, int transmissions);

    /// The end of a command. The protocol ends one at a time.
    void countEnded(LinkHealth::Fate fate, int transmissions, qint64 microseconds);

    LinkFigures figures() const;

private:
    static constexpr int kOther = 1; // the last place of a table: what has no name

    void countAnswer(int transmissions, qint64 microseconds);

    Counter m_receivedFrames;
    Counter m_badChecks;
    Counter m_discardedBuffers;
    Counter m_discardedBytes;
    Counter m_skippedBytes;
    Counter m_sentBytes;
    Counter m_sentFrames;
    Counter m_sentAcks;
    Counter m_sentNacks;
    Counter m_retransmissions;
    Counter m_givenUp;
    Counter m_refusedFull;
    Counter m_answers;
    Counter m_timedAnswers;
    Counter m_answersUs; // all that were timed, together
    Counter m_lastAnswerUs;
    Counter m_meanAnswerUs;
    Counter m_maxAnswerUs;
    std::array<NamedTraffic, 8 + kOther> m_received {{
        {quint8(Category::Version), "Version"},
        {quint8(Category::ScreensInfo), "ScreensInfo"},
        {quint8(Category::Climate), "Climate"},
        {quint8(Category::Gauges), "Gauges"},
        {quint8(Category::Vehicle), "Vehicle"},
        {quint8(Category::ParkingAssist), "ParkingAssist"},
        {quint8(Category::ScreensTransition), "ScreensTransition"},
        {quint8(Category::TextScreen), "TextScreen"},
        {0, "Other"},
    }};
    std::array<NamedTraffic, 9 + kOther> m_sent {{
        {quint8(Command::Connection), "Connection"},
        {quint8(Command::MenuPress), "MenuPress"},
        {quint8(Command::Settings), "Settings"},
        {quint8(Command::ClimateButton), "ClimateButton"},
        {quint8(Command::GaugesButton), "GaugesButton"},
        {quint8(Command::VehicleButton), "VehicleButton"},
        {quint8(Command::ParkingButton), "ParkingButton"},
        {quint8(Command::RequestData), "RequestData"},
        {quint8(Command::Time), "Time"},
        {0, "Other"},
    }};
};

} // namespace canbus
