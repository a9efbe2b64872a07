#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>

namespace boxsim {

/// The box's end of the serial line. Lives on the thread of its event loop and does not block it.
class Line : public QObject {
    Q_OBJECT

public:
    /// Puts one block on the line. What the line cannot take is lost, as on a wire that nobody reads.
    virtual void write(const QByteArray &block) = 0;

Q_SIGNALS:
    /// Bytes came, cut anywhere.
    void received(const QByteArray &bytes);

    /// The line is gone; `error` is one line that says how. Emitted once.
    void failed(const QString &error);
};

/// Makes a pseudo-terminal in raw mode and links `link` to it.
///
/// The line outlives head units that open and close it. A symbolic link that leads nowhere, or to another
/// pseudo-terminal, is replaced; anything else of that name is left alone and is an error. The link is
/// removed with the line, unless it leads somewhere else by then.
/// @return the line, or null with `error` set to one line
std::unique_ptr<Line> openPty(const QString &link, QString *error);

/// Opens a serial device with 8 data bits, no parity, one stop bit and no flow control.
/// @return the line, or null with `error` set to one line
std::unique_ptr<Line> openPort(const QString &device, int baudRate, QString *error);

} // namespace boxsim
