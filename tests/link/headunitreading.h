#pragma once

#include <QtCore/QByteArray>

/// What the head unit must read from the bytes that have arrived: the six steps of docs/protocol.md, "How the
/// head unit reads", one after the other and a byte at a time.
///
/// Nothing of the library is used here.
class HeadUnitReading {
public:
    enum class Found {
        Nothing,   ///< no frame, or not all of one
        Discarded, ///< too much has waited, and all of it was thrown away
        Broken,    ///< a frame whose check byte is wrong
        Ack,
        Nack,
        Data,
    };

    struct Pass {
        Found found = Found::Nothing;
        bool awaitsEnd = false;     ///< a NACK is due, with the id of `awaiting`
        QByteArray awaiting;        ///< the id of the last decoded frame, or nothing
        int discarded = 0;          ///< bytes thrown away
        int skipped = 0;            ///< bytes before the frame
        bool reachedBeyond = false; ///< an escape was taken away behind the frame's end
        QByteArray id;
        QByteArray tp; ///< nothing where the frame was too short, as `mod`
        QByteArray mod;
        QByteArray payload;
    };

    void arrive(const QByteArray &bytes) { m_buffer += bytes; }

    /// One pass over what has arrived.
    Pass pass();

    const QByteArray &waiting() const { return m_buffer; }

private:
    enum class Mark { None, Data, Ack, Nack };

    int start();
    int end(int from) const;
    bool endsInEscape(int from) const;
    int unescape(int from, int to);
    void decode(const QByteArray &frame, quint8 check, Pass &pass);

    QByteArray m_buffer;
    QByteArray m_lastId;
    Mark m_mark = Mark::None;
};
