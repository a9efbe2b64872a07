#pragma once

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

/// A folder of the test's own in the place of the head unit's file system, for as long as it exists: the ini
/// files that the host reads are below it.
class HostRoot {
public:
    HostRoot()
    {
        if (!m_folder.isValid())
            qFatal("no temporary folder is to be had");
        qputenv("CANBUS_HOST_ROOT", QFile::encodeName(m_folder.path()));
    }

    ~HostRoot() { qunsetenv("CANBUS_HOST_ROOT"); }

    /// Writes the file of the camera setting, or removes it if there is nothing to write.
    void writeCameraFile(const QByteArray &content) const
    {
        write(QStringLiteral("/media/flash/nvm/powerdown/acc_keeped.ini"), content);
    }

    /// Writes the file of the clock's format, or removes it if there is nothing to write.
    void writeClockFile(const QByteArray &content) const
    {
        write(QStringLiteral("/media/flash/nvm/factory/settings.ini"), content);
    }

private:
    Q_DISABLE_COPY(HostRoot)

    void write(const QString &path, const QByteArray &content) const
    {
        QFile file(m_folder.path() + path);
        if (content.isEmpty()) {
            file.remove();
            return;
        }
        const bool written = QDir().mkpath(QFileInfo(file).path()) && file.open(QFile::WriteOnly)
            && file.write(content) == content.size();
        if (!written)
            qFatal("a settings file cannot be written");
    }

    QTemporaryDir m_folder;
};
