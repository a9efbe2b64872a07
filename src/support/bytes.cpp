#include "bytes.h"

#include <utility>

namespace canbus {

namespace {

using StaticByte = QStaticByteArrayData<1>;

template <int... Values>
StaticByte *staticBytes(std::integer_sequence<int, Values...>)
{
    // In the form in which Qt keeps literals: shared without being counted, and never destroyed.
    static StaticByte all[] = {
        {Q_STATIC_BYTE_ARRAY_DATA_HEADER_INITIALIZER(1), {char(Values), '\0'}}...,
    };
    return all;
}

} // namespace

QByteArray oneByte(quint8 value)
{
    return QByteArray(QByteArrayDataPtr {&staticBytes(std::make_integer_sequence<int, 256>())[value].ba});
}

} // namespace canbus
