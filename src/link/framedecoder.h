#pragma once

#include "velcanbusprotocol.h"

namespace canbus::receive {

/// The bytes in front of a data frame's payload: id, TP and MOD.
constexpr int kFieldBytes = 3;

/// Takes id, TP, MOD and the payload off the front of a data frame's bytes into `frame`, whose check byte is
/// known: the payload is appended to what is there.
///
/// A field that the bytes do not reach is left as it is. Nothing is allocated while `frame` alone has its
/// payload, and has had one as long.
/// @param rest  from the id on; what is left is the check byte and the closing mark, or nothing
void decode(QByteArray &rest, FrameDataFormat &frame);

} // namespace canbus::receive
