#pragma once

#include <longestwait.h>
#include <runnable.h>

#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <csignal>

/// The command, started with standard input open; ended with the test.
class Command {
public:
    explicit Command(const QStringList &arguments, const QString &program = QStringLiteral(CANBUS_MONITOR))
    {
        start(runnable(program) + arguments);
    }
    /// A script of the shell, which gets as its arguments the words that run the monitor with those given
    /// here.
    Command(const QString &script, const QStringList &arguments)
    {
        start(QStringList {"/bin/sh", "-c", script, "sh"} + runnable(QStringLiteral(CANBUS_MONITOR))
              + arguments);
    }
    ~Command()
    {
        sendSignal(SIGKILL);
        process.waitForFinished(kLongestWaitMs);
    }

    const QByteArray &output()
    {
        m_output += process.readAllStandardOutput();
        return m_output;
    }
    const QByteArray &errors()
    {
        m_errors += process.readAllStandardError();
        return m_errors;
    }
    QList<QByteArray> lines() { return output().split('\n'); }
    bool hasLine(const QByteArray &line) { return lines().contains(line); }
    bool hasLineWith(const QByteArray &start)
    {
        const QList<QByteArray> all = lines();
        return std::any_of(all.cbegin(), all.cend(),
                           [&](const QByteArray &line) { return line.startsWith(start); });
    }
    void type(const QByteArray &line) { process.write(line + '\n'); }
    /// The exit status, or -1 where it does not end, or crashes.
    int waitForEnd()
    {
        if (process.state() != QProcess::NotRunning && !process.waitForFinished(kLongestWaitMs))
            return -1;
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    /// To a process that has ended it does nothing.
    void sendSignal(int signal) { ::sendSignal(process, signal); }

    QProcess process;

private:
    void start(QStringList words)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C")); // the system's errors in English
        environment.remove(QStringLiteral("LANGUAGE"));
        process.setProcessEnvironment(environment);
        process.start(words.takeFirst(), words);
        if (!process.waitForStarted(kLongestWaitMs))
            qFatal("the command does not start");
    }

    QByteArray m_output;
    QByteArray m_errors;
};

/// A simulated box, and the place at which a head unit may open it.
class Box {
public:
    Box()
        : link(m_folder.filePath(QStringLiteral("box")))
        , command({QStringLiteral("--pty"), link}, QStringLiteral(CANBUS_BOXSIM))
    {
    }
    bool isReady() { return command.hasLine("ready " + link.toUtf8()); }

private:
    QTemporaryDir m_folder;

public:
    const QString link;
    Command command;
};
