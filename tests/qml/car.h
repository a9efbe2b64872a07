#pragma once

#include <pseudoterminal.h>

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <memory>

namespace canbus {
class VelCanBusProtocol;
}

/// The box's end of the line, and the host's part in C++, for tests written in QML.
class Car : public QObject {
    Q_OBJECT
    /// Whether the box acknowledges what it gets.
    Q_PROPERTY(bool answers MEMBER m_answers)
    /// The commands that have arrived at the box, each transmission, in hexadecimal.
    Q_PROPERTY(QStringList commands MEMBER m_commands)

public:
    Car();
    ~Car() override;

    /// Does what a host does: makes the protocol and gives it to the player, with this line.
    Q_INVOKABLE void start();
    /// Deletes the protocol, which a host may do at any time.
    Q_INVOKABLE void deleteProtocol();
    /// The box sends bytes, in hexadecimal.
    Q_INVOKABLE void send(const QString &hex);

private:
    void read();
    void answer(const QByteArray &frame);

    PseudoTerminal m_line;
    QTimer m_readTimer;
    std::unique_ptr<canbus::VelCanBusProtocol> m_protocol;
    int m_taken = 0; // bytes of what the line has received
    bool m_answers = true;
    QStringList m_commands;
};
