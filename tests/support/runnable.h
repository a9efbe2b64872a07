#pragma once

#include <QtCore/QStringList>

/// Whether this runs in an emulator, which may lack what few programs ask of a kernel.
inline bool isEmulated()
{
    return qEnvironmentVariableIsSet("CANBUS_EMULATOR");
}

/// The words that start a program of this build: itself, and before it the emulator where the build is for
/// another machine. Tests that start programs begin their command lines so.
inline QStringList runnable(const QString &program)
{
    const QString emulator = qEnvironmentVariable("CANBUS_EMULATOR");
    return emulator.isEmpty() ? QStringList {program} : QStringList {emulator, program};
}
