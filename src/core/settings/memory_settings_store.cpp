#include "core/settings/memory_settings_store.h"

namespace finora {

int MemorySettingsStore::readInt(std::string_view section, std::string_view key,
                                 int defaultValue) const
{
    const auto it = m_values.find(Key(section, key));
    if (it == m_values.end() || !std::holds_alternative<int>(it->second)) {
        return defaultValue;
    }
    return std::get<int>(it->second);
}

std::string MemorySettingsStore::readText(std::string_view section, std::string_view key,
                                          std::string_view defaultValue) const
{
    const auto it = m_values.find(Key(section, key));
    if (it == m_values.end() || !std::holds_alternative<std::string>(it->second)) {
        return std::string(defaultValue);
    }
    return std::get<std::string>(it->second);
}

void MemorySettingsStore::writeInt(std::string_view section, std::string_view key, int value)
{
    m_values[Key(section, key)] = value;
    ++m_writes;
}

void MemorySettingsStore::writeText(std::string_view section, std::string_view key,
                                    std::string_view value)
{
    m_values[Key(section, key)] = std::string(value);
    ++m_writes;
}

bool MemorySettingsStore::contains(std::string_view section, std::string_view key) const
{
    return m_values.find(Key(section, key)) != m_values.end();
}

} // namespace finora
