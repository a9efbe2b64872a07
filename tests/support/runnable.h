#pragma once

#include <QtCore/QProcess>
#include <QtCore/QStringList>

#include <csignal>

#include <sys/types.h>

/// Whether this runs in an emulator, which may lack what few programs ask of a kernel.
inline bool isEmulated()
{
    return qEnvironmentVariableIsSet("CANBUS_EMULATOR");
}

/// Sends a signal to a process that runs, and else to none: the number of one that has not started can be -1,
/// which stands for all processes of the machine, and that of one that has ended is 0, for the whole group.
/// So no test calls QProcess::kill(), which looks at neither.
inline void sendSignal(const QProcess &process, int signal)
{
    if (const qint64 id = process.processId(); id > 0)
        ::kill(pid_t(id), signal);
}

/// The words that start a program of this build: itself, and before it the emulator where the build is for
/// another machine. Tests that start programs begin their command lines so.
inline QStringList runnable(const QString &program)
{
    const QString emulator = qEnvironmentVariable("CANBUS_EMULATOR");
    return emulator.isEmpty() ? QStringList {program} : QStringList {emulator, program};
}
