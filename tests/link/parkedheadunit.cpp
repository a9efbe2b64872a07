#include "parkedheadunit.h"

#include <QtCore/QLoggingCategory>

using namespace canbus;

ParkedHeadUnit::ParkedHeadUnit()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false\ndefault.critical=false"));
    CanBusReadBuff::instance()->mutex.lock();
    CanBusPlayer *const player = CanBusPlayer::instance();
    // Before the protocol joins itself: slots are called in the order of their connection.
    QObject::connect(player, &CanBusPlayer::sendCmdData, player, [this](const QByteArray &frame) {
        if (m_tap)
            m_tap(frame);
    });
    m_protocol = std::make_unique<VelCanBusProtocol>();
    player->setUartPort(m_line.name(), 57600);
    player->init(m_protocol.get());
    QObject::disconnect(m_protocol.get(), SIGNAL(onWritPortData(QByteArray)), port(), nullptr);
}

ParkedHeadUnit::~ParkedHeadUnit()
{
    // The protocol waits for its parser thread, which waits for this.
    CanBusReadBuff::instance()->mutex.unlock();
}

SerialPort *ParkedHeadUnit::port() const
{
    return CanBusPlayerProbe::data(*CanBusPlayer::instance()).serialPort;
}

QTimer *ParkedHeadUnit::syncTimer() const
{
    return &CanBusPlayerProbe::data(*CanBusPlayer::instance()).syncTimer;
}
