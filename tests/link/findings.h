#pragma once

#include <QtCore/QString>

/// The first rule that a run has broken.
class Findings {
public:
    void setNow(qint64 nowMs) { m_nowMs = nowMs; }
    qint64 now() const { return m_nowMs; }

    /// @param rule  what should have held
    /// @param how  what has happened instead
    void broken(const char *rule, const QString &how)
    {
        if (m_text.isEmpty())
            m_text = QStringLiteral("at %1 ms: %2: %3").arg(m_nowMs).arg(QLatin1String(rule), how);
    }

    bool isEmpty() const { return m_text.isEmpty(); }

    QString text() const { return m_text; }

private:
    qint64 m_nowMs = 0;
    QString m_text;
};

inline QString hexText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex(' '));
}
