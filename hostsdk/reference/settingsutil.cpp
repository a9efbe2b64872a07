#include <settingsutil.h>

#include <QtCore/QSettings>

namespace mem {

QVariant SettingsExe::getValue(const QString &key, const QString &file, const QVariant &defaultValue) const
{
    const QString path = qEnvironmentVariable("CANBUS_HOST_ROOT") + file;
    return QSettings(path, QSettings::IniFormat).value(key, defaultValue);
}

SettingsUtil::SettingsUtil()
    : m_saver(new SettingsExe)
{
}

SettingsUtil::~SettingsUtil()
{
    delete m_saver;
}

SettingsUtil *SettingsUtil::instance()
{
    static SettingsUtil util;
    return &util;
}

SettingsExe *SettingsUtil::getSaver() const
{
    return m_saver;
}

} // namespace mem
