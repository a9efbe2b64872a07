#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QString>

#include <functional>

namespace canbus {

/// Reads a descriptor as lines of UTF-8 while the event loop runs, and hands each on without its line end.
/// The end of the input ends nothing but the reading; a last line without a line end counts.
///
/// A line that is not UTF-8, or longer than kMostBytes, is passed over, and told of as one line that says so.
class LineReader : public QObject {
public:
    static constexpr int kMostBytes = 4096;

    using Listener = std::function<void(const QString &line)>;

    LineReader(int descriptor, Listener listener, Listener complaints);

private:
    void readSome();
    void handOnLines();
    void endLine(QByteArray line);
    void end();

    int m_descriptor;
    Listener m_listener;
    Listener m_complaints;
    QSocketNotifier m_notifier;
    QByteArray m_pending; // the beginning of a line
};

} // namespace canbus
