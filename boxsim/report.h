#pragma once

#include "boxsim/box.h"

#include <QtCore/QByteArray>

namespace boxsim {

/// An event as a line of text for people, without its line end:
/// `   1.234  climate.acBtn press=true value=0`.
QByteArray toLine(const Event &event);

/// An event as one JSON object, without a line end:
/// `{"t":1.234,"event":"command","name":"climate.acBtn","press":true,"value":0,"id":33,"bytes":"9f02..."}`.
///
/// `event` is command, ack, nack, badFrame, resend, giveUp, linkUp, linkDown or silent; `t` is in seconds.
/// `id`, `category` (whose id a command carries), `repeated` and `acknowledged` (only when true), `reason`
/// and `bytes` stand where there is something to say.
QByteArray toJson(const Event &event);

} // namespace boxsim
