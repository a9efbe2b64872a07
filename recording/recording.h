#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QVector>

/// Recordings of the line: pcapng files of link type USER0 (147), one packet for each block of bytes.
namespace canbus::recording {

/// As the head unit sees it.
enum class Direction {
    Received, ///< from the box
    Sent,     ///< to the box
};

/// Some bytes as they were read or written at once.
struct Block {
    Direction direction = Direction::Received;
    qint64 timeUs = 0; ///< microseconds since 1970-01-01 UTC
    QByteArray bytes;
};

/// A whole recording.
struct Recording {
    QString comment; ///< of the section: the program's version and the port
    QVector<Block> blocks;
};

/// Writes a recording as it goes. A kill at any moment leaves a file that is complete up to a block.
///
/// write() may be called on any thread; the blocks come into the file in the order of the calls.
class Writer {
public:
    Writer();
    ~Writer();

    /// Makes the file and writes its head. A file that is there and not empty is not touched.
    /// @param comment  kept in the file's head
    /// @return whether it worked; else error() says why
    bool open(const QString &path, const QString &comment);

    /// Appends one block, in one go. After a failure nothing more is written, so that no half block is
    /// followed by others.
    /// @return whether it worked; else error() says why
    bool write(Direction direction, qint64 timeUs, const QByteArray &bytes);

    /// One line, empty as long as nothing has failed.
    QString error() const;

private:
    bool put(const QByteArray &block);
    bool fail(const QString &what);

    mutable QMutex m_mutex; // guards all below
    int m_descriptor = -1;
    QString m_path;
    QString m_error;
};

/// Reads a recording: pcapng of link type USER0, either byte order, any time resolution, several sections and
/// interfaces; blocks of other kinds are passed over.
/// @param error  set to one line when nothing could be read, or when the file ends in the middle of a block:
///   then `recording` holds what stands before that
/// @return whether the file was read to its end without a fault
bool read(const QString &path, Recording *recording, QString *error);

} // namespace canbus::recording
