#pragma once

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QMetaObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <memory>

#include <qxprivate.h>

class EventHandler;

namespace canbus {

class CanBusPlayer;
class CanbusProtocol;
class LinkReports;
class SerialPort;

/// The facade's state. All of it belongs to the main thread.
class CanBusPlayerPrivate : public QxPrivate<CanBusPlayer> {
public:
    explicit CanBusPlayerPrivate(CanBusPlayer *player);

    SerialPort *serialPort = nullptr;   // created by init(), then lives on the worker thread; never deleted
    CanbusProtocol *protocol = nullptr; // the host's; set once the port has opened
    EventHandler *eventHandler;
    QString portName = QStringLiteral("/dev/ttyS3");
    qint32 baudRate = 57600;
    QMap<int, bool> screensInfo;
    bool connectStatus = false;
    QTimer syncTimer;
    qint32 menuByte0 = 0;
    qint32 menuByte1 = 0;
    qint32 menuSpare = 0;
    qint32 menuByte2 = 0;
    qint32 menuByte3 = 0;
    QList<int> menuList;
    bool menuMinus = false;
    bool menuPlus = false;
    QStringList menuTexts;

    QMetaObject::Connection errorCount;
    /// Shared with the connections that add to it, on any thread.
    std::shared_ptr<LinkReports> linkReports;

    /// Counts the port's errors in the protocol's health from now on, if it keeps one.
    void countPortErrors(const CanbusProtocol *counting);
    /// Opens the port, on the thread that it lives on.
    bool openPort();
    void connectAll();
};

} // namespace canbus
