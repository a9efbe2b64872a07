#pragma once

#include <QtCore/QByteArray>

/// Bytes from hexadecimal digits; everything else between them is spacing: bytes("9f 02 21 9f03").
inline QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}
