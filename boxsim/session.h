#pragma once

#include "boxsim/box.h"
#include "boxsim/line.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>

namespace boxsim {

/// A box on a line, in real time. Lives on the thread of its event loop; does not own the line.
class Session : public QObject {
    Q_OBJECT

public:
    /// @param line  the box's end, which lives longer than the session
    /// @param faults  what is wrong with the box, whose time begins now
    /// @param split  writes each byte on its own
    Session(Line *line, const Faults &faults, qint64 silentAfterMs, bool split, QObject *parent = nullptr);

Q_SIGNALS:
    /// Something happened on the line.
    void happened(const boxsim::Event &event);

private:
    void fallSilentWhenDue();
    void perform(const Output &output);
    void write(const QByteArray &block);
    void wakeWhenDue();

    Line *m_line;
    Box m_box;
    qint64 m_silentAfterMs;
    bool m_split;
    QElapsedTimer m_clock;
    QTimer m_timer;
};

} // namespace boxsim
