#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QVector>

/// Recordings of the line: pcapng files of link type USER0 (147), one packet for each block of bytes.
///
/// The format's source is the IETF draft draft-ietf-opsawg-pcapng, "PCAP Next Generation (pcapng) Capture
/// File Format".
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
    QString comment; ///< of the first section: the program's version and the port
    QVector<Block> blocks;
};

/// What a recording says about itself. What is empty is left out of the file.
struct Head {
    QString comment;       ///< for the reader, for example the program's version and the port
    QString application;   ///< what has made it: "canbus-monitor 1.0.0"
    QString interfaceName; ///< the port
};

/// Writes a recording as it goes. A kill at any moment leaves a file that is complete up to a block: each
/// block is one write to the system.
///
/// write() may be called on any thread; the blocks come into the file in the order of the calls.
class Writer {
public:
    Writer();
    ~Writer();

    /// Makes the file and writes its head. A file that is there and not empty is not touched.
    /// @return whether it worked; else error() says why, and no file is left that was not there before
    bool open(const QString &path, const Head &head);

    /// As above, with a comment alone.
    bool open(const QString &path, const QString &comment);

    /// Appends one block, in one go. After a failure nothing more is written; what part of a block may have
    /// come into the file is taken out again.
    /// @return whether it worked; else error() says why
    bool write(Direction direction, qint64 timeUs, const QByteArray &bytes);

    /// Closes the file and takes it away: it is not wanted after all. A file that was there, empty, is empty
    /// again.
    void discard();

    /// One line, empty as long as nothing has failed.
    QString error() const;

private:
    bool make(const QString &path);
    void beginToWait();
    bool put(const QByteArray &block);
    bool fail(const QString &what);
    void close();
    void takeAway();

    mutable QMutex m_mutex; // guards all below
    int m_descriptor = -1;
    bool m_isFresh = false; // made by open()
    QString m_path;
    QString m_error;
};

/// Reads a recording: pcapng of link type USER0, either byte order, any time resolution, several sections and
/// interfaces; blocks of other kinds are passed over. A block without a time has the time of the one before
/// it, one without a direction counts as received.
/// @param error  set to one line, the file's name first, when nothing could be read, or when the file is
///   faulty from some block on: then `recording` holds what stands before that
/// @return whether the file was read to its end without a fault
bool read(const QString &path, Recording *recording, QString *error);

/// As above, from the bytes of a file; the error has no file's name.
bool parse(const QByteArray &file, Recording *recording, QString *error);

} // namespace canbus::recording
