#pragma once

#include "methodcall.h"
#include "options.h"
#include "output.h"
#include "recording/recording.h"
#include "senttraffic.h"
#include "signalspy.h"

#include <QtCore/QObject>

#include <memory>

namespace canbus::monitor {

class HostControls;

/// Reads a recording in the place of a port: the library's own receive path and groups get what the recorded
/// head unit received, at the recorded times of the virtual clock, and what they signal is printed.
///
/// Lives on the main thread, needs the application object, and VirtualClock as the thread's dispatcher.
class Playback : public QObject {
public:
    /// @param stopDescriptor  readable once the program is told to stop; -1: there is none
    Playback(Options options, int stopDescriptor);
    ~Playback() override;

    /// @return the program's exit status
    int run();

private:
    void join();
    void play(const recording::Recording &recording);
    void take(const recording::Block &block);
    void catchUp();
    void advanceTo(qint64 us);
    void finish();
    bool pass();
    void receive(const QByteArray &block);
    void printStatsUntil(qint64 us);
    void printStats();
    void print(const QString &text);
    void hear(const QString &object, const QMetaMethod &signal, const QVariantList &arguments);
    bool isToldToStop();
    qint64 nowMs() const;

    Options m_options;
    int m_stopDescriptor;
    Output m_output;
    std::unique_ptr<HostControls> m_host;
    std::unique_ptr<VelCanBusProtocol> m_protocol;
    std::unique_ptr<SentTraffic> m_sent;
    SignalSpy m_spy;
    qint64 m_tickUs = 0;
    qint64 m_nextTickUs = 0;
    qint64 m_answers = 0; // that the library has given here
    qint64 m_recordedAnswers = 0;
    qint64 m_nextStatsUs;
    bool m_isStopped = false;
};

} // namespace canbus::monitor
