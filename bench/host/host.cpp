// A head unit that does nothing but run the library: bench-host PORT. It says what its start took, then
// follows the lines that it reads: "go" begins a measurement, "stop" ends it and prints what happened in
// between. It ends with its input. Every line that it prints is a JSON object.

#include "canbusplayer.h"
#include "linkhealth.h"
#include "velcanbusprotocol.h"
#include "velclimategroupcmd.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLoggingCategory>
#include <QtCore/QSocketNotifier>

#include <cstdio>
#include <ctime>

#include <unistd.h>

namespace {

void print(const QJsonObject &object)
{
    std::puts(QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

/// All threads' time on a processor so far, in seconds.
double processorTime()
{
    timespec time {};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

class Host : public QObject {
public:
    void start(const QString &port)
    {
        QElapsedTimer clock;
        clock.start();
        canbus::CanBusPlayer *const player = canbus::CanBusPlayer::instance();
        player->setUartPort(port, 57600);
        m_protocol = new canbus::VelCanBusProtocol;
        player->init(m_protocol);
        print({{"start us", double(clock.nsecsElapsed()) / 1000}});
        connect(&m_input, &QSocketNotifier::activated, this, &Host::readInput);
    }

private:
    void readInput()
    {
        char text[64];
        const ssize_t size = ::read(STDIN_FILENO, text, sizeof text);
        if (size <= 0)
            QCoreApplication::quit();
        else if (QByteArray(text, int(size)).startsWith("go"))
            begin();
        else
            end();
    }

    void begin()
    {
        m_clock.start();
        m_processorTime = processorTime();
        print({{"began", true}});
    }

    void end() const
    {
        const canbus::LinkFigures figures = m_protocol->linkHealth()->figures();
        print({{"processor seconds", processorTime() - m_processorTime},
               {"seconds", double(m_clock.nsecsElapsed()) / 1e9},
               {"frames", double(figures.receivedFrames)},
               {"answers", double(figures.receivedAcks)},
               {"discarded buffers", double(figures.discardedBuffers)},
               {"bad checks", double(figures.badChecks)},
               {"most bytes waiting", double(figures.bufferHighWater)}});
    }

    QSocketNotifier m_input {STDIN_FILENO, QSocketNotifier::Read};
    QElapsedTimer m_clock;
    double m_processorTime = 0;
    canbus::VelCanBusProtocol *m_protocol = nullptr;
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: bench-host PORT\n", stderr);
        return 2;
    }
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    Host host;
    host.start(QString::fromLocal8Bit(argv[1]));
    return QCoreApplication::exec();
}
