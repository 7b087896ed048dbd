#include "settings_qt/qt_settings_store.h"

namespace finora {
namespace {

QString path(std::string_view section, std::string_view key)
{
    QString p = QString::fromUtf8(section.data(), static_cast<qsizetype>(section.size()));
    p += QLatin1Char('/');
    p += QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
    return p;
}

} // namespace

QtSettingsStore::QtSettingsStore()
    : m_settings(QSettings::NativeFormat, QSettings::UserScope, QString::fromLatin1(kOrganization),
                 QString::fromLatin1(kApplication))
{}

QtSettingsStore::QtSettingsStore(const QString& iniFile) : m_settings(iniFile, QSettings::IniFormat)
{}

int QtSettingsStore::readInt(std::string_view section, std::string_view key, int defaultValue) const
{
    bool ok = false;
    const int value = m_settings.value(path(section, key)).toInt(&ok);
    return ok ? value : defaultValue;
}

std::string QtSettingsStore::readText(std::string_view section, std::string_view key,
                                      std::string_view defaultValue) const
{
    const QVariant value = m_settings.value(path(section, key));
    if (!value.isValid()) {
        return std::string(defaultValue);
    }
    return value.toString().toStdString();
}

// Reads come from QSettings' cache, which every store of this process shares; writes go to the
// file at once, so a crash loses no option and the next program to start sees it.
void QtSettingsStore::writeInt(std::string_view section, std::string_view key, int value)
{
    m_settings.setValue(path(section, key), value);
    m_settings.sync();
}

void QtSettingsStore::writeText(std::string_view section, std::string_view key,
                                std::string_view value)
{
    m_settings.setValue(path(section, key),
                        QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size())));
    m_settings.sync();
}

} // namespace finora
