#pragma once

#include "program.h"

#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <memory>

/// A simulated box and a monitor, each a process of its own, joined by a pseudo-terminal.
class Bench {
public:
    explicit Bench(const QStringList &boxArguments = {})
        : m_boxArguments(boxArguments)
    {
    }

    static auto isStatus(bool up)
    {
        return [up](const QJsonObject &line) {
            return line["signal"] == QLatin1String("canbusConnectStatus")
                && line["args"].toObject()["status"] == up;
        };
    }

    static auto isSignal(const QString &name)
    {
        return [name](const QJsonObject &line) { return line["signal"] == name; };
    }

    QString link() const { return m_folder.filePath(QStringLiteral("box")); }

    /// Starts the box and waits until a head unit may open its line.
    bool startBox()
    {
        box = std::make_unique<Program>(QStringLiteral("canbus-boxsim"),
                                        QStringList {"--pty", link(), "--json"} + m_boxArguments);
        return QTest::qWaitFor([this] { return box->lines().contains("ready " + link().toUtf8()); }, 10000);
    }

    void startMonitor(const QStringList &arguments = {})
    {
        monitor = std::make_unique<Program>(QStringLiteral("canbus-monitor"),
                                            QStringList {"--port", link(), "--json"} + arguments);
    }

    bool waitForLink(bool up = true, int ms = 20000)
    {
        return QTest::qWaitFor([this, up] { return monitor->hasObject(isStatus(up)); }, ms);
    }

    std::unique_ptr<Program> box;
    std::unique_ptr<Program> monitor;

private:
    QTemporaryDir m_folder;
    QStringList m_boxArguments;
};
