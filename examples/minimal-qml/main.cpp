// Starts the smallest screen. Its argument is the serial device.
#include <QtCore/QTextStream>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

#include <canbusplayer.h>
#include <velcanbusprotocol.h>

#include <memory>

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    QQmlEngine engine;
    QQmlComponent screen(&engine, QUrl("qrc:/main.qml"));
    const std::unique_ptr<QObject> window(screen.isReady() ? screen.create() : nullptr);
    if (!window) {
        QTextStream(stderr) << "minimal-qml: " << screen.errors().first().description()
                            << " (CanBus is looked for in Qt's QML folder and in QML2_IMPORT_PATH)\n";
        return 1;
    }
    canbus::VelCanBusProtocol protocol;
    canbus::CanBusPlayer::instance()->setUartPort(application.arguments().value(1, "/dev/ttyS3"), 57600);
    canbus::CanBusPlayer::instance()->init(&protocol);
    return QGuiApplication::exec();
}
