#pragma once

#include "canbusprotocol.h"
#include "serialport.h"
#include "support/threadsatexit.h"

#include <canbusplayerprobe.h>
#include <pseudoterminal.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QThread>

#include <atomic>

/// A protocol that keeps what it is given.
class PlayedProtocol : public canbus::CanbusProtocol {
public:
    void analyseData(QByteArray data) override
    {
        received += data;
        receivedOn = QThread::currentThread();
    }

    /// How often each signal is connected, in the order of their declaration.
    QList<int> connections() const
    {
        const QMetaObject &type = canbus::CanbusProtocol::staticMetaObject;
        QList<int> counts;
        for (int index = type.methodOffset(); index < type.methodCount(); ++index)
            counts += receivers('2' + type.method(index).methodSignature());
        return counts;
    }

    QList<QByteArray> received;
    QThread *receivedOn = nullptr;
};

/// A player of its own with a line and a protocol, taken down in order.
struct PlayerRig {
    PseudoTerminal line;
    PlayedProtocol protocol;
    canbus::CanBusPlayer player;

    ~PlayerRig()
    {
        QThread *const worker = thread();
        if (!worker)
            return;
        const auto deletePort = [port = port()] { port->deleteLater(); };
        // On its own thread, which may be telling of a lost line.
        if (worker->isRunning())
            QMetaObject::invokeMethod(port(), deletePort, Qt::BlockingQueuedConnection);
        else
            deletePort();
        worker->quit();
        worker->wait();
        canbus::threadsAtExit::remove(worker);
        delete worker;
    }

    void start()
    {
        player.setUartPort(line.name(), 57600);
        player.init(&protocol);
    }

    void startWithoutDevice()
    {
        player.setUartPort(QStringLiteral("/dev/canbus-missing"), 57600);
        player.init(&protocol);
    }

    /// Lets three hundred blocks wait for the line, which nobody reads, and which has taken `late` blocks too
    /// late by then.
    void letBlocksWait(std::atomic<int> &late)
    {
        QObject::connect(
            port(), &canbus::SerialPort::error, port(), [&late] { ++late; }, Qt::DirectConnection);
        while (late == 0) {
            Q_EMIT protocol.onWritPortData(QByteArray(1000, '\x55'));
            QThread::msleep(1);
        }
        for (int count = 0; count < 300; ++count)
            Q_EMIT protocol.onWritPortData(QByteArray::fromHex("9f0621219f03"));
    }

    canbus::SerialPort *port() const { return canbus::CanBusPlayerProbe::data(player).serialPort; }
    QThread *thread() const { return canbus::CanBusPlayerProbe::thread(player); }
    QTimer &syncTimer() const { return canbus::CanBusPlayerProbe::data(player).syncTimer; }
};
