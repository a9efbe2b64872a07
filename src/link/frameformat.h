#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QVarLengthArray>

/// The frame format of the serial link: what a frame looks like and how one is built. Pure functions.
///
/// A data frame, in both directions:
///
///     DLE STX | id | TP | MOD | DATA ... | CS | DLE ETX
///
/// CS is the XOR of id, TP, MOD and every DATA byte. Among id .. CS each DLE is sent twice; the marks
/// around them are not. An answer is DLE ACK id id DLE ETX, or with NACK in the place of ACK, and its id
/// is never doubled.
namespace canbus::frame {

constexpr quint8 kDle = 0x9F;  ///< escape; begins every mark
constexpr quint8 kStx = 0x02;  ///< after DLE: a data frame begins
constexpr quint8 kEtx = 0x03;  ///< after DLE: any frame ends
constexpr quint8 kAck = 0x06;  ///< after DLE: an acknowledgement begins
constexpr quint8 kNack = 0x15; ///< after DLE: a negative acknowledgement begins

/// Appends `byte` by the escaping rule: a DLE twice, any other byte once.
void appendEscaped(QByteArray &frame, quint8 byte);

/// Builds one data frame, field by field, and keeps the check byte.
class FrameWriter {
public:
    /// Begins a frame with its id, escaped.
    explicit FrameWriter(quint8 id);

    /// Appends a byte by the escaping rule.
    FrameWriter &escaped(quint8 byte)
    {
        if (byte == kDle)
            append(byte);
        return plain(byte);
    }

    /// Appends every byte by the escaping rule.
    FrameWriter &escaped(const QByteArray &bytes)
    {
        for (const char byte : bytes)
            escaped(quint8(byte));
        return *this;
    }

    /// Appends a byte as it is.
    FrameWriter &plain(quint8 byte)
    {
        append(byte);
        m_checkByte ^= byte;
        return *this;
    }

    /// The XOR of all unescaped bytes so far, the id included.
    quint8 checkByte() const { return m_checkByte; }

    /// Appends the check byte, escaped, and the closing mark. @return the complete frame
    QByteArray finish();

private:
    void append(quint8 byte) { m_frame.append(char(byte)); }

    // Marks, id, TP, MOD, CS and a short payload: most commands fit without allocating.
    QVarLengthArray<char, 32> m_frame;
    quint8 m_checkByte = 0;
};

/// A complete data frame with every field escaped.
QByteArray build(quint8 id, quint8 tp, quint8 mod, const QByteArray &data);

/// An answer frame.
/// @param kind  kAck or kNack
/// @param id  the id of the frame that is answered: one byte, or none when it is not known. Sent as it is
QByteArray buildAnswer(quint8 kind, const QByteArray &id);

} // namespace canbus::frame
