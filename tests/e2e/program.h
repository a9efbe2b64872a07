#pragma once

#include <runnable.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QVector>

#include <algorithm>
#include <csignal>

/// One of the commands under test as a process of its own, whose standard output is collected line by line.
class Program {
public:
    /// @param name  of a command in the build's bin folder
    Program(const QString &name, const QStringList &arguments)
    {
        m_process.setProcessChannelMode(QProcess::SeparateChannels);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        environment.remove(QStringLiteral("LANGUAGE"));
        m_process.setProcessEnvironment(environment);
        QStringList command = runnable(QStringLiteral(CANBUS_BIN_DIR "/") + name) + arguments;
        m_process.start(command.takeFirst(), command);
    }

    ~Program()
    {
        sendSignal(m_process, SIGKILL);
        m_process.waitForFinished();
    }

    void writeLine(const QByteArray &line) { m_process.write(line + '\n'); }

    /// Ends the standard input.
    void closeInput() { m_process.closeWriteChannel(); }

    /// To a process that has ended it does nothing.
    void signal(int number) { sendSignal(m_process, number); }

    /// All lines of standard output so far.
    const QVector<QByteArray> &lines()
    {
        m_process.waitForReadyRead(0);
        while (m_process.canReadLine())
            m_lines.append(m_process.readLine().trimmed());
        return m_lines;
    }

    /// The lines as JSON objects; lines that are none give empty objects.
    QVector<QJsonObject> objects()
    {
        const QVector<QByteArray> all = lines();
        while (m_objects.size() < all.size())
            m_objects.append(QJsonDocument::fromJson(all.at(m_objects.size())).object());
        return m_objects;
    }

    template <class Condition>
    bool hasObject(Condition &&condition)
    {
        const QVector<QJsonObject> all = objects();
        return std::any_of(all.begin(), all.end(), condition);
    }

    template <class Condition>
    int count(Condition &&condition)
    {
        const QVector<QJsonObject> all = objects();
        return int(std::count_if(all.begin(), all.end(), condition));
    }

    bool isRunning()
    {
        m_process.waitForReadyRead(0);
        return m_process.state() == QProcess::Running;
    }

    /// Waits for the end. @return whether the process ended by itself, with status 0
    bool endsWell(int ms = 10000)
    {
        if (!m_process.waitForFinished(ms) && m_process.state() != QProcess::NotRunning)
            return false;
        return m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
    }

    /// Waits for the end. @return the exit status, or -1 when the process does not end by itself
    int exitStatus(int ms = 10000)
    {
        if (!m_process.waitForFinished(ms) && m_process.state() != QProcess::NotRunning)
            return -1;
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

    /// The lines of standard error.
    QList<QByteArray> complaints()
    {
        QList<QByteArray> lines = m_process.readAllStandardError().split('\n');
        lines.removeAll(QByteArray());
        return lines;
    }

    /// Processor time that the process has used, in clock ticks of the system.
    long processorTicks() const
    {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(m_process.processId()));
        if (!stat.open(QIODevice::ReadOnly))
            return -1;
        const QByteArray text = stat.readAll();
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        return fields.value(11).toLong() + fields.value(12).toLong();
    }

private:
    QProcess m_process;
    QVector<QByteArray> m_lines;
    QVector<QJsonObject> m_objects;
};
