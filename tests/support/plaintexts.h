#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Readers of texts, made from what UTF-8 is and without Qt's own decoder or ours: what those are compared
/// with.
namespace plaintexts {

/// How many bytes the character that begins with this one has; 0 where none begins with it.
inline int lengthOf(quint8 lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

/// The character at `at`, and how many bytes it has: 0 where there is none.
inline uint characterAt(const QByteArray &bytes, int at, int *length)
{
    static constexpr uint kLeadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    static constexpr uint kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const int size = lengthOf(quint8(bytes.at(at)));
    *length = 0;
    if (size == 0 || at + size > bytes.size())
        return 0;
    uint character = quint8(bytes.at(at)) & kLeadBits[size];
    for (int i = at + 1; i < at + size; ++i) {
        const quint8 byte = quint8(bytes.at(i));
        if (byte < 0x80 || byte > 0xBF)
            return 0;
        character = character * 64 + (byte - 0x80U);
    }
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    if (character < kLeast[size] || character > 0x10FFFF || isSurrogate)
        return 0;
    *length = size;
    return character;
}

inline void append(QString &text, uint character)
{
    if (character >= 0x10000) {
        text += QChar(ushort(0xD800 + ((character - 0x10000) >> 10)));
        text += QChar(ushort(0xDC00 + ((character - 0x10000) & 0x3FF)));
    } else {
        text += QChar(ushort(character));
    }
}

/// The text that the bytes are, with U+FFFD for each byte that belongs to no character. A byte order mark in
/// front is none of it.
inline QString decoded(const QByteArray &bytes)
{
    QString text;
    int length = 0;
    for (int at = bytes.startsWith("\xef\xbb\xbf") ? 3 : 0; at < bytes.size(); at += length) {
        const uint character = characterAt(bytes, at, &length);
        append(text, length == 0 ? 0xFFFDU : character);
        length = length == 0 ? 1 : length;
    }
    return text;
}

inline QString cleaned(const QString &text)
{
    QString clean;
    for (const QChar character : text) {
        if (character.unicode() != 0xFFFD)
            clean += character;
    }
    return clean;
}

/// The bytes before the first zero byte, or all.
inline QByteArray upToZero(const QByteArray &bytes)
{
    QByteArray before;
    for (const char byte : bytes) {
        if (byte == 0)
            break;
        before += byte;
    }
    return before;
}

/// The zero-terminated texts, cleaned. What stands behind the last zero byte is lost.
inline QStringList split(const QByteArray &bytes)
{
    QStringList texts;
    QByteArray text;
    for (const char byte : bytes) {
        if (byte != 0) {
            text += byte;
            continue;
        }
        texts += cleaned(decoded(text));
        text.clear();
    }
    return texts;
}

} // namespace plaintexts
