#include "car.h"

#include <canbusplayer.h>
#include <velcanbusprotocol.h>

namespace {

constexpr int kReadMs = 5;

} // namespace

Car::Car()
{
    connect(&m_readTimer, &QTimer::timeout, this, &Car::read);
    m_readTimer.start(kReadMs);
}

Car::~Car() = default;

void Car::start()
{
    m_protocol = std::make_unique<canbus::VelCanBusProtocol>();
    canbus::CanBusPlayer::instance()->setUartPort(m_line.name(), 57600);
    canbus::CanBusPlayer::instance()->init(m_protocol.get());
}

void Car::deleteProtocol()
{
    m_protocol.reset();
}

void Car::send(const QString &hex)
{
    if (!m_line.send(QByteArray::fromHex(hex.toLatin1())))
        qFatal("the line does not take what the box sends");
}

/// Takes the frames off what has come; no test has an escape in one.
void Car::read()
{
    const QByteArray received = m_line.received();
    for (int end = received.indexOf("\x9f\x03", m_taken); end >= 0;
         end = received.indexOf("\x9f\x03", m_taken)) {
        answer(received.mid(m_taken, end + 2 - m_taken));
        m_taken = end + 2;
    }
}

void Car::answer(const QByteArray &frame)
{
    if (!frame.startsWith("\x9f\x02"))
        return;
    m_commands.append(QString::fromLatin1(frame.toHex()));
    const QByteArray id = frame.mid(2, 1);
    if (m_answers)
        m_line.send("\x9f\x06" + id + id + "\x9f\x03");
}
