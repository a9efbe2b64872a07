// The smallest host: prints the temperature of the main zone. Its argument is the serial device.
#include <QtCore/QCoreApplication>
#include <QtCore/QTextStream>

#include <canbusplayer.h>
#include <velcanbusprotocol.h>
#include <velclimategroupcmd.h>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    canbus::VelCanBusProtocol protocol;
    QObject::connect(canbus::VelClimateGroupCmd::instance(),
                     &canbus::VelClimateGroupCmd::updateClimateMainTemp, [](int value, int unit) {
                         QTextStream(stdout) << "main zone: " << value << ", unit " << unit << '\n';
                     });
    canbus::CanBusPlayer::instance()->setUartPort(application.arguments().value(1, "/dev/ttyS3"), 57600);
    canbus::CanBusPlayer::instance()->init(&protocol);
    return QCoreApplication::exec();
}
