#include "recorder.h"

#include <QtCore/QDateTime>
#include <QtCore/QMutexLocker>

#include <velcanbusprotocol.h>

namespace canbus::monitor {

using recording::Direction;

Recorder::Recorder()
    : m_startUs(QDateTime::currentMSecsSinceEpoch() * 1000)
{
    m_clock.start();
}

Recorder::~Recorder() = default;

std::shared_ptr<Recorder> Recorder::open(const QString &path, const QString &port, QString *error)
{
    const QString program = QStringLiteral("canbus-monitor " CANBUS_VERSION);
    std::shared_ptr<Recorder> recorder(new Recorder);
    if (recorder->m_writer.open(path, {QStringLiteral("%1 on %2").arg(program, port), program, port}))
        return recorder;
    *error = recorder->error();
    return nullptr;
}

void Recorder::start(const std::shared_ptr<Recorder> &recorder, CanbusProtocol *protocol)
{
    // Each connection keeps the recorder alive: a thread may be writing when everything else ends.
    CanBusReadBuff *const buffer = CanBusReadBuff::instance();
    recorder->m_received = connect(
        buffer, &CanBusReadBuff::received, buffer,
        [recorder](const QByteArray &block) { recorder->take(Direction::Received, block); },
        Qt::DirectConnection);
    recorder->m_sent = connect(
        protocol, &CanbusProtocol::onWritPortData, protocol,
        [recorder](const QByteArray &block) { recorder->take(Direction::Sent, block); },
        Qt::DirectConnection);
}

void Recorder::stop()
{
    QObject::disconnect(m_received);
    QObject::disconnect(m_sent);
}

void Recorder::take(Direction direction, const QByteArray &bytes)
{
    QMutexLocker lock(&m_mutex);
    if (m_hasFailed || m_writer.write(direction, m_startUs + m_clock.nsecsElapsed() / 1000, bytes))
        return;
    m_hasFailed = true;
    lock.unlock();
    Q_EMIT failed();
}

} // namespace canbus::monitor
