#pragma once

#include "recording/recording.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QMutex>
#include <QtCore/QObject>

#include <memory>

namespace canbus {
class CanbusProtocol;
}

namespace canbus::monitor {

/// Records what comes over the line and what is sent, on whichever thread it happens and at once.
///
/// Its times begin with the wall clock's and go on steadily, also while that is set to another time.
class Recorder : public QObject {
    Q_OBJECT

public:
    /// Makes the file. @return nothing where that fails, with the reason in `error`
    static std::shared_ptr<Recorder> open(const QString &path, const QString &port, QString *error);

    ~Recorder() override;

    /// Listens from now on until stop(). The recorder lives as long as somebody is at it.
    static void start(const std::shared_ptr<Recorder> &recorder, CanbusProtocol *protocol);
    void stop();

    /// The file is not wanted after all.
    void discard() { m_writer.discard(); }

    /// Empty as long as nothing has failed.
    QString error() const { return m_writer.error(); }

Q_SIGNALS:
    /// The first block could not be written. Emitted once, on any thread.
    void failed();

private:
    Recorder();
    void take(recording::Direction direction, const QByteArray &bytes);

    recording::Writer m_writer;
    qint64 m_startUs; // of the wall clock
    QElapsedTimer m_clock;
    QMetaObject::Connection m_received;
    QMetaObject::Connection m_sent;
    QMutex m_mutex; // guards what follows, and keeps the blocks in the order of their times
    bool m_hasFailed = false;
};

} // namespace canbus::monitor
