#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace mem {

/// Reads the head unit's ini files. Its users get it from SettingsUtil::getSaver().
///
/// @thread{The host's main thread.}
class SettingsExe {
public:
    /// The value of a key in a file, read at the time of the call.
    ///
    /// The reference host puts the environment variable `CANBUS_HOST_ROOT`, when it is set, before the file's
    /// path, so that a test has files of its own.
    /// @param key  the key's name; one without a "/" belongs to the file's general section
    /// @param file  the absolute path of the ini file
    /// @param defaultValue  what is returned when the file or the key in it is missing
    /// @return as QSettings reads it: a text, mostly
    QVariant getValue(const QString &key, const QString &file, const QVariant &defaultValue) const;
};

/// The head unit's settings by name.
///
/// A process-wide singleton that is never deleted by its users. The readers are inline: they are compiled
/// into the program that calls them.
///
/// @thread{The host's main thread, to which it belongs.}
class SettingsUtil {
public:
    /// The one object, built on first use and destroyed at process exit.
    /// @return never null
    static SettingsUtil *instance();

    /// The reader of the ini files.
    /// @return never null; it belongs to this object
    SettingsExe *getSaver() const;

    /// Whether the box's camera picture is to be used.
    /// @param def  what is returned when the setting is missing
    /// @return true when it is
    bool getCameraComposite(bool def) const
    {
        return getSaver()
            ->getValue(QStringLiteral("CameraComposite"),
                       QStringLiteral("/media/flash/nvm/powerdown/acc_keeped.ini"), def)
            .toBool();
    }

    /// The clock format; what the number means is the host's.
    /// @return 1 when the setting is missing
    int getTimeFormat() const
    {
        return getSaver()
            ->getValue(QStringLiteral("TimeFormat"), QStringLiteral("/media/flash/nvm/factory/settings.ini"),
                       1)
            .toInt();
    }

private:
    SettingsUtil();
    ~SettingsUtil();
    Q_DISABLE_COPY(SettingsUtil)

    SettingsExe *m_saver;
};

} // namespace mem
