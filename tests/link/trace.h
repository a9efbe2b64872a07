#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

/// Everything that has happened in a run: as a number by which two runs are compared, and as a file.
class Trace {
public:
    /// Writes all that follows to this file.
    bool open(const QString &path)
    {
        m_file.setFileName(path);
        return m_file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    }

    void add(qint64 atMs, const char *what, const QByteArray &bytes = {}, qint64 number = 0)
    {
        mix(quint64(atMs));
        mix(quint64(number));
        for (const char *c = what; *c; ++c)
            mix(quint8(*c));
        for (const char byte : bytes)
            mix(quint8(byte));
        if (m_file.isOpen())
            write(atMs, what, bytes, number);
    }

    quint64 digest() const { return m_digest; }

private:
    void mix(quint64 value) { m_digest = (m_digest ^ value) * 0x100000001b3U; }

    void write(qint64 atMs, const char *what, const QByteArray &bytes, qint64 number)
    {
        QByteArray line = QByteArray::number(atMs).rightJustified(8) + "  " + what;
        if (number != 0)
            line += ' ' + QByteArray::number(number);
        if (!bytes.isEmpty())
            line += "  " + bytes.toHex(' ');
        m_file.write(line + '\n');
        m_file.flush(); // a run that crashes has its trace, too
    }

    quint64 m_digest = 0xcbf29ce484222325U;
    QFile m_file;
};
