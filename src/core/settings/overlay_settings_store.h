#pragma once

#include "core/settings/memory_settings_store.h"

namespace finora {

// Reads the user's options but keeps its own writes to itself. finora-cli works through the same
// code as the desktop program, which records things such as the last file used; a script that
// runs the CLI must not change what the desktop program reopens next time.
class OverlaySettingsStore final : public SettingsStore {
public:
    explicit OverlaySettingsStore(const SettingsStore& base) : m_base(base) {}

    int readInt(std::string_view section, std::string_view key, int defaultValue) const override
    {
        return m_own.contains(section, key) ? m_own.readInt(section, key, defaultValue)
                                            : m_base.readInt(section, key, defaultValue);
    }
    std::string readText(std::string_view section, std::string_view key,
                         std::string_view defaultValue) const override
    {
        return m_own.contains(section, key) ? m_own.readText(section, key, defaultValue)
                                            : m_base.readText(section, key, defaultValue);
    }
    void writeInt(std::string_view section, std::string_view key, int value) override
    {
        m_own.writeInt(section, key, value);
    }
    void writeText(std::string_view section, std::string_view key, std::string_view value) override
    {
        m_own.writeText(section, key, value);
    }

private:
    const SettingsStore& m_base;
    MemorySettingsStore m_own;
};

} // namespace finora
