#pragma once

#include <QtCore/QByteArray>

#include <array>

/// Readers of bytes and of the bit fields in them. Pure functions, usable on every thread.
///
/// Bytes are unsigned here, whatever `char` is on the machine (signed on x86, unsigned on ARM).
namespace canbus {

/// The byte at `index`, or 0 where the array has none: no read leaves a payload.
inline quint8 byteAt(const QByteArray &data, int index)
{
    return index >= 0 && index < data.size() ? quint8(data.at(index)) : quint8(0);
}

/// The first byte, or 0 of an empty array.
inline quint8 firstByte(const QByteArray &data)
{
    return byteAt(data, 0);
}

/// This byte alone. Nothing is allocated: all arrays of one value are the same one.
QByteArray oneByte(quint8 value);

/// The 16-bit number whose most significant byte stands at `index`.
inline int bigEndian16At(const QByteArray &data, int index)
{
    return byteAt(data, index) * 0x100 + byteAt(data, index + 1);
}

/// Bit `position` of `value`, 0 being the least significant. A byte has no other bits than 0 to 7: they
/// read as false.
inline bool bitAt(quint8 value, int position)
{
    return position >= 0 && position < 8 && ((value >> position) & 1) != 0;
}

/// The named bits as flags, in the order of the arguments.
template <class... Positions>
std::array<bool, sizeof...(Positions)> bitsAt(quint8 value, Positions... positions)
{
    return {bitAt(value, positions)...};
}

/// The 2-bit state of the named bits, lowest first: 0..3.
inline int state2At(quint8 value, int bit0, int bit1)
{
    return int(bitAt(value, bit0)) + 2 * int(bitAt(value, bit1));
}

/// The 3-bit state of the named bits, lowest first: 0..6. Only seven states are defined: 7 reads as 0.
inline int state3At(quint8 value, int bit0, int bit1, int bit2)
{
    const int state = state2At(value, bit0, bit1) + 4 * int(bitAt(value, bit2));
    return state == 7 ? 0 : state;
}

/// The 4-bit state of the named bits, lowest first: 0..8. Only nine states are defined: 9..15 read as 0.
inline int state4At(quint8 value, int bit0, int bit1, int bit2, int bit3)
{
    const int state = state2At(value, bit0, bit1) + 4 * state2At(value, bit2, bit3);
    return state > 8 ? 0 : state;
}

} // namespace canbus
