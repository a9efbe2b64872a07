#pragma once

#include <QtCore/QCommandLineOption>
#include <QtCore/QString>
#include <QtCore/QStringList>

class QCommandLineParser;

namespace canbus {

/// What the program was started with, its own name first: for what must be read before there is an
/// application object. Call std::setlocale() before.
QStringList argumentsOf(int argc, char *argv[]);

/// One of a command's options.
/// @param value  what it takes, as --help names it; nothing for a flag
QCommandLineOption option(const char *name, const char *about, const char *value = "");

/// What the parser did not understand: its sentence without the full stop, so that it can go on.
QString mistakeOf(const QCommandLineParser &parser);

} // namespace canbus
