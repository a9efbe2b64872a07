#pragma once

#include "methodcall.h"
#include "options.h"
#include "output.h"
#include "signalspy.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QVector>

#include <memory>

namespace canbus {
class LineReader;
class VelCanBusProtocol;
} // namespace canbus

namespace canbus::monitor {

class HostControls;
class PortWatch;
class Recorder;

/// The small head unit: brings the library up on a port, prints what its objects signal, makes the calls
/// that are asked for. Lives on the main thread, needs the application object.
class Monitor : public QObject {
public:
    /// @param stopDescriptor  readable once the program is told to stop; -1: there is none
    Monitor(Options options, int stopDescriptor);
    ~Monitor() override;

    /// Runs until it is told to end.
    /// @return the program's exit status
    int run();

private:
    void start();
    bool openRecording();
    bool openPort();
    void startStats();
    void watchPort();
    void checkPort();
    bool endIfPortIsGone();
    void tellOfPortErrors();
    void giveHints();
    void startReadingStandardInput();
    void endWhenTold(int stopDescriptor);
    void end(int status);

    void makeFirstCalls(bool isLinkUp);
    void takeLine(const QString &line);
    void call(const PreparedCall &call);
    void printCallables();
    void printStats();
    void print(const QString &line);
    void reportMissedCalls() const;
    int closeRecording(int status);

    Options m_options;
    QElapsedTimer m_clock;
    Output m_output;
    std::unique_ptr<HostControls> m_host;
    Targets m_targets;
    QVector<PreparedCall> m_firstCalls; // until the link is up for the first time
    SignalSpy m_spy;
    std::unique_ptr<VelCanBusProtocol> m_protocol;
    std::shared_ptr<Recorder> m_recorder; // null without --record
    std::unique_ptr<PortWatch> m_port;
    std::unique_ptr<LineReader> m_standardInput;
    quint64 m_toldPortErrors = 0; // how many the user has been told of
    bool m_isOpen = false;        // the port has opened
    bool m_seemsGone = false;     // when it was last looked at
    bool m_isGone = false;
    bool m_hasEnded = false;
};

} // namespace canbus::monitor
