#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>

namespace canbus::qml {

/// Cuts the bytes of one direction into frames, for the eye: as they were on the line, escaped, good or bad.
class FrameSplitter {
public:
    /// Adds bytes as they came. @return what has ended by them: frames up to their closing mark, and what
    /// stood before an opening mark without being closed
    QList<QByteArray> add(const QByteArray &bytes);

    /// Forgets what has not ended.
    void clear();

private:
    void take(char byte, QList<QByteArray> &ended);

    QByteArray m_pending;
    bool m_isEscaped = false; // the byte before was an escape that stands for no data
};

} // namespace canbus::qml
