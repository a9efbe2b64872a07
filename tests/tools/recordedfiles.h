#pragma once

#include "hexbytes.h"
#include "recording/recording.h"

#include <QtCore/QTemporaryDir>
#include <QtCore/QVector>

/// A block of a recording that a test writes down, by its time since the first one.
struct Line {
    int ms;
    canbus::recording::Direction direction;
    const char *hex;
};

constexpr canbus::recording::Direction kReceived = canbus::recording::Direction::Received;
constexpr canbus::recording::Direction kSent = canbus::recording::Direction::Sent;

// The handshake of a box whose ready reply has the id 40.
const QVector<Line> kLinkComesUp {
    {0, kSent, "9f02 21 01 00 0000 20 9f03"},
    {2, kReceived, "9f06 21 21 9f03"},
    {3, kReceived, "9f02 40 01 00 0001 40 9f03"},
    {15, kSent, "9f02 40 01 00 0001 40 9f03"},
    {15, kSent, "9f06 40 40 9f03"},
    {17, kReceived, "9f06 40 40 9f03"},
};

/// A folder of the test's own.
class Files {
public:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    /// Writes a recording. @return its path
    QString write(const QVector<Line> &lines) const
    {
        canbus::recording::Writer writer;
        const QString file = path("drive.pcapng");
        bool isWritten = writer.open(file, QString());
        for (const Line &line : lines) {
            isWritten = isWritten
                && writer.write(line.direction, 1700000000000000 + line.ms * qint64(1000), bytes(line.hex));
        }
        if (!isWritten)
            qFatal("the recording cannot be written");
        return file;
    }

private:
    QTemporaryDir m_folder;
};
