#pragma once

#include "boxsim/link/box.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace boxsim {

/// An event as a line of text for people, without its line end:
/// `   1.234  climate.acBtn press=true value=0`.
QByteArray toLine(const Event &event);

/// An event as one JSON object, without a line end:
/// `{"t":1.234,"event":"command","name":"climate.acBtn","press":true,"value":0,"id":33,"bytes":"9f02..."}`.
///
/// `event` is command, ack, nack, badFrame, resend, giveUp, linkUp, linkDown, silent, speaking, restart,
/// fault, sent, hangUp, lineBack, note or seed; `t` is in seconds.
/// `id`, `category` (whose id a command carries), `repeated` and `acknowledged` (only when true), `reason`
/// and `bytes` stand where there is something to say.
QByteArray toJson(const Event &event);

/// A line that answers one of standard input, as a JSON object: `{"answer":"climate.mainTemp=215"}`.
QByteArray answerToJson(const QString &text);

/// The name of an event in a line of JSON, for example "linkUp".
QString eventName(Event::Kind kind);

/// The names of all events.
QStringList eventNames();

} // namespace boxsim
