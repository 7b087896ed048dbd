#include "settings_qt/qt_settings_store.h"

#include <QDateTime>
#include <QFileInfo>

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

void QtSettingsStore::catchUp() const
{
    // QSettings keeps what it read once; another process's write reaches it only through a
    // sync, which reads the whole file. A look at the file first keeps a read cheap.
    const QFileInfo file(m_settings.fileName());
    const qint64 size = file.exists() ? file.size() : -1;
    const qint64 time = file.exists() ? file.lastModified().toMSecsSinceEpoch() : -1;
    if (size != m_seenSize || time != m_seenTime) {
        m_settings.sync();
        m_seenSize = size;
        m_seenTime = time;
    }
}

int QtSettingsStore::readInt(std::string_view section, std::string_view key, int defaultValue) const
{
    catchUp();
    bool ok = false;
    const int value = m_settings.value(path(section, key)).toInt(&ok);
    return ok ? value : defaultValue;
}

std::string QtSettingsStore::readText(std::string_view section, std::string_view key,
                                      std::string_view defaultValue) const
{
    catchUp();
    const QVariant value = m_settings.value(path(section, key));
    if (!value.isValid()) {
        return std::string(defaultValue);
    }
    return value.toString().toStdString();
}

// Writes go to the file at once, so a crash loses no option and another program sees it at its
// next read.
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
