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
    // Another process may have written since we last looked.
    m_settings.sync();
    bool ok = false;
    const int value = m_settings.value(path(section, key)).toInt(&ok);
    return ok ? value : defaultValue;
}

std::string QtSettingsStore::readText(std::string_view section, std::string_view key,
                                      std::string_view defaultValue) const
{
    m_settings.sync();
    const QVariant value = m_settings.value(path(section, key));
    if (!value.isValid()) {
        return std::string(defaultValue);
    }
    return value.toString().toStdString();
}

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
