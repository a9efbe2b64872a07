#pragma once

#include "traffic.h"

#include <boxsim/bench/bench.h>
#include <canbusplayerprobe.h>
#include <pseudoterminal.h>
#include <serialport.h>
#include <support/threadsatexit.h>
#include <velcanbusprotocol.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>
#include <QtCore/QTimer>

/// A player of its own, with the real protocol, its port on a thread of its own, and a talkative box at the
/// other end of the line: all in one process. Taken down in order.
class LinkedRig : public QObject {
public:
    LinkedRig()
    {
        m_clock.start();
        player.setUartPort(m_line.name(), 57600);
        player.init(&protocol);
        // Queued: the port emits on its own thread.
        connect(port(), &canbus::SerialPort::error, this,
                [this](const QString &, int code) { m_errors += code; });
        connect(&m_boxTimer, &QTimer::timeout, this, [this] { driveBox(); });
        m_boxTimer.start(5);
        boxsim::Instruction restart;
        restart.kind = boxsim::Instruction::Kind::Restart;
        carryOut(m_box.carryOut(restart, 0));
    }

    ~LinkedRig() override
    {
        QThread *const worker = canbus::CanBusPlayerProbe::thread(player);
        port()->deleteLater();
        worker->quit();
        worker->wait();
        canbus::threadsAtExit::remove(worker);
        delete worker;
    }

    bool isUp() { return player.getCanbusConnectStatus(); }

    /// The codes of the errors that the port has announced.
    const QList<int> &errors() const { return m_errors; }

    /// Closes the box's end in the middle of a frame.
    void hangUp()
    {
        m_boxTimer.stop();
        m_line.send(trafficFrames().first().left(9));
        m_line.hangUp();
    }

    canbus::SerialPort *port() const { return canbus::CanBusPlayerProbe::data(player).serialPort; }

    canbus::VelCanBusProtocol protocol;
    canbus::CanBusPlayer player;

private:
    void driveBox()
    {
        const QByteArray received = m_line.received().mid(m_readFromLine);
        m_readFromLine += received.size();
        carryOut(m_box.receive(received, m_clock.elapsed()));
        carryOut(m_box.advance(m_clock.elapsed()));
        if (isUp())
            m_line.send(trafficFrames().at(m_frames++ % trafficFrames().size()));
    }

    void carryOut(const boxsim::BenchOutput &output)
    {
        for (const boxsim::LineStep &step : output.line)
            m_line.send(step.bytes);
    }

    PseudoTerminal m_line;
    int m_readFromLine = 0;
    boxsim::Bench m_box;
    QTimer m_boxTimer;
    QElapsedTimer m_clock;
    int m_frames = 0;
    QList<int> m_errors;
};
