#pragma once

#include "core/settings/settings_store.h"

#include <map>
#include <string>
#include <utility>
#include <variant>

namespace finora {

// A store that lives in memory, for tests and for runs that must not touch the user's options.
class MemorySettingsStore final : public SettingsStore {
public:
    int readInt(std::string_view section, std::string_view key, int defaultValue) const override;
    std::string readText(std::string_view section, std::string_view key,
                         std::string_view defaultValue) const override;
    void writeInt(std::string_view section, std::string_view key, int value) override;
    void writeText(std::string_view section, std::string_view key, std::string_view value) override;

    bool contains(std::string_view section, std::string_view key) const;
    std::size_t writeCount() const { return m_writes; }

private:
    using Key = std::pair<std::string, std::string>;
    std::map<Key, std::variant<int, std::string>, std::less<>> m_values;
    std::size_t m_writes = 0;
};

} // namespace finora
