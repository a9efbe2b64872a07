#pragma once

#include "serial/serialport.h"

#include <QtSerialPort/QSerialPort>
#include <QtTest/QSignalSpy>

/// A serial port with everything that it emits. The port stays on the test's own thread.
struct RecordedPort {
    canbus::SerialPort port;
    QSignalSpy connected {&port, &canbus::SerialPort::connected};
    QSignalSpy error {&port, &canbus::SerialPort::error};
    QSignalSpy disconnected {&port, &canbus::SerialPort::disconnected};
    QSignalSpy read {&port, &canbus::SerialPort::read};
    QSignalSpy status {&port, &canbus::SerialPort::status};

    /// The port inside, found as every QObject finds its children.
    QSerialPort *inner() const { return port.findChild<QSerialPort *>(); }

    /// The bytes of all read() signals so far.
    QByteArray allRead() const
    {
        QByteArray all;
        for (const QList<QVariant> &arguments : read)
            all += arguments.at(0).toByteArray();
        return all;
    }
};
