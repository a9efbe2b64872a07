#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace boxsim {

/// The id of what carries none: an answer without an id, a bad frame.
constexpr int kNoId = -1;

/// One frame as it came from the head unit, or the bytes that did not make one.
struct WireFrame {
    enum class Kind {
        Data, ///< a data frame whose check byte is right
        Ack,  ///< an acknowledgement
        Nack, ///< a negative acknowledgement
        Bad,  ///< bytes that are no frame; `reason` says why
    };

    Kind kind = Kind::Bad;
    int id = kNoId;   ///< 0..255, or kNoId
    quint8 tp = 0;    ///< of a data frame
    quint8 mod = 0;   ///< of a data frame
    QByteArray data;  ///< payload of a data frame, unescaped
    QByteArray bytes; ///< everything as it stood on the wire
    QString reason;   ///< of a bad frame: one line without a full stop
};

/// Reads the wire byte by byte and hands out what is on it.
///
/// In a data frame a doubled DLE is one byte of data, and only an unpaired DLE with an ETX after it ends the
/// frame. Answers are read by position, because their ids are never doubled: the acknowledgement of id 9F
/// is 9F 06 9F 9F 9F 03, and an answer without an id 9F 15 9F 03. A DLE with STX, ACK or NACK after it in a
/// place where it cannot belong to the frame begins a new one. What is no frame comes out as Kind::Bad, so
/// that every byte is accounted for.
class WireReader {
public:
    /// Takes the next bytes, cut anywhere. @return what they completed, in order
    QVector<WireFrame> feed(const QByteArray &bytes);

private:
    enum class State { Outside, Data, Answer };

    void take(quint8 byte);
    void takeOutside(quint8 byte);
    void takeData(quint8 byte);
    void takeAnswer(quint8 byte);
    void begin(quint8 mark);
    void finishData();
    void finishAnswer(int id);
    void finish(WireFrame frame);
    void abandon(const QString &reason);
    void reportBad(const QByteArray &bytes, const QString &reason);

    State m_state = State::Outside;
    bool m_escape = false; ///< the last byte was an unpaired DLE
    quint8 m_mark = 0;     ///< the byte after the DLE that began the frame
    QByteArray m_wire;     ///< the frame so far as it came, or what stands before it
    QByteArray m_body;     ///< data frame: unescaped; answer: as it came
    QVector<WireFrame> m_frames;
};

} // namespace boxsim
