#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <algorithm>

/// One direction of a serial line at 57600 baud, in ticks of 10 ms. The blocks stay as they were written,
/// unless one does not get through in a tick.
class PacedLine {
public:
    static constexpr int kTickMs = 10;

    void write(const QByteArray &block)
    {
        if (!block.isEmpty())
            m_blocks += block;
    }

    bool isIdle() const { return m_blocks.isEmpty(); }

    /// What gets through in this tick.
    QList<QByteArray> deliver()
    {
        QList<QByteArray> delivered;
        m_tenths = std::min(m_tenths, 9) + kTenthsATick;
        while (!m_blocks.isEmpty() && m_tenths >= 10) {
            QByteArray &first = m_blocks.first();
            const int size = std::min(first.size(), m_tenths / 10);
            m_tenths -= 10 * size;
            delivered += first.left(size);
            first.remove(0, size);
            if (first.isEmpty())
                m_blocks.removeFirst();
        }
        return delivered;
    }

private:
    static constexpr int kTenthsATick = 576; // of a byte: 173.6 microseconds each

    QList<QByteArray> m_blocks;
    int m_tenths = 0;
};
