#pragma once

#include <string>
#include <string_view>

namespace finora {

// Per-user options by section and key, as integers and texts. Implementations read and write
// through at once: nothing is cached, so two programs sharing the store see each other's writes.
// Keys and texts are UTF-8.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    virtual int readInt(std::string_view section, std::string_view key, int defaultValue) const = 0;
    virtual std::string readText(std::string_view section, std::string_view key,
                                 std::string_view defaultValue) const = 0;
    virtual void writeInt(std::string_view section, std::string_view key, int value) = 0;
    virtual void writeText(std::string_view section, std::string_view key,
                           std::string_view value) = 0;
};

} // namespace finora
