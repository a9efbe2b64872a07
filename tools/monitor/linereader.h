#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QString>

#include <functional>

namespace canbus::monitor {

/// Reads a descriptor as lines of UTF-8 while the event loop runs, and hands each on without its line end.
/// The end of the input ends nothing but the reading; a last line without a line end counts.
class LineReader : public QObject {
public:
    using Listener = std::function<void(const QString &line)>;

    LineReader(int descriptor, Listener listener);

private:
    void readSome();
    void handOnLines();
    void end();

    int m_descriptor;
    Listener m_listener;
    QSocketNotifier m_notifier;
    QByteArray m_pending; // the beginning of a line
};

} // namespace canbus::monitor
