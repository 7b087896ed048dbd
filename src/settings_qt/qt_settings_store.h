#pragma once

#include "core/settings/settings_store.h"

#include <QSettings>

namespace finora {

// The user's options in the platform's own store: the registry under
// Software\Orvalen Software Solutions\Finora on Windows, an INI file under the XDG config folder
// elsewhere. The desktop program and finora-cli share it, and so may two running Finoras: every
// read first looks whether the file changed under this process and then reads it anew, and
// every write goes to the file at once.
class QtSettingsStore final : public SettingsStore {
public:
    QtSettingsStore();
    // A store kept in one INI file, for tests that must not touch the user's options.
    explicit QtSettingsStore(const QString& iniFile);

    int readInt(std::string_view section, std::string_view key, int defaultValue) const override;
    std::string readText(std::string_view section, std::string_view key,
                         std::string_view defaultValue) const override;
    void writeInt(std::string_view section, std::string_view key, int value) override;
    void writeText(std::string_view section, std::string_view key, std::string_view value) override;

    static constexpr const char* kOrganization = "Orvalen Software Solutions";
    static constexpr const char* kApplication = "Finora";

private:
    // Reloads the file when its size or time differs from what this store last saw.
    void catchUp() const;

    mutable QSettings m_settings;
    mutable qint64 m_seenSize = -1;
    mutable qint64 m_seenTime = -1;
};

} // namespace finora
