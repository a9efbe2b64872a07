// Takes so many frames of 58 bytes, of the vehicle's categories in turn, through the receive path and the
// groups' decoders on one thread, and does nothing else: bench-frames NUMBER. For machines without callgrind:
// what a frame costs is the difference between two numbers, divided by theirs.

#include "cases/benchbytes.h"
#include "player/canbusplayer.h"
#include "velcanbusprotocol.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>

namespace {

constexpr int kPayload = 50;

struct Kind {
    quint8 tp;
    quint8 mod;
};
constexpr Kind kKinds[] = {{0x03, 2}, {0x04, 5}, {0x05, 2}, {0x06, 2}, {0x11, 0}, {0x02, 0}};

QByteArray frameOf(const Kind &kind, int value)
{
    QByteArray payload = bench::plainBytes(kPayload);
    payload[0] = char(value);
    payload[kPayload - 1] = '\0';
    return canbus::frame::build(0x21, kind.tp, kind.mod, payload);
}

/// One of each kind, and another of each that differs.
QList<QByteArray> allFrames()
{
    QList<QByteArray> all;
    for (const int value : {1, 2}) {
        for (const Kind &kind : kKinds)
            all += frameOf(kind, value);
    }
    return all;
}

void joinDirectly(canbus::VelCanBusProtocol &protocol)
{
    using canbus::CanBusPlayer;
    using canbus::CanbusProtocol;
    CanBusPlayer *const player = CanBusPlayer::instance();
    QObject::connect(&protocol, &CanbusProtocol::notifyClimateInfo, player, &CanBusPlayer::onClimateInfo);
    QObject::connect(&protocol, &CanbusProtocol::notifyGaugesInfo, player, &CanBusPlayer::onGaugesInfo);
    QObject::connect(&protocol, &CanbusProtocol::notifyVehicleInfo, player, &CanBusPlayer::onVehicleInfo);
    QObject::connect(&protocol, &CanbusProtocol::notifyParingAssistInfo, player,
                     &CanBusPlayer::onParingAssistInfo);
    QObject::connect(&protocol, &CanbusProtocol::notifyTextScreen, player, &CanBusPlayer::onTextScreen);
    QObject::connect(&protocol, &CanbusProtocol::notifyScreensInfo, player, &CanBusPlayer::suppScreen);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const int number = argc == 2 ? QByteArray(argv[1]).toInt() : 0;
    if (number < 1)
        bench::giveUp("usage: bench-frames NUMBER");
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    canbus::CanBusReadBuff *const buffer = canbus::CanBusReadBuff::instance();
    // The library's own parser thread waits meanwhile.
    buffer->mutex.lock();
    canbus::VelCanBusProtocol protocol;
    joinDirectly(protocol);
    const QList<QByteArray> frames = allFrames();
    for (int i = 0; i < number; ++i) {
        buffer->data.append(frames.at(i % frames.size()));
        protocol.onParseDataTmrout();
    }
    const bool isEmpty = buffer->data.isEmpty();
    buffer->mutex.unlock();
    return isEmpty ? 0 : 1;
}
