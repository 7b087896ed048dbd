#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace finora {

// The main currency's name (the same bytes in Windows-1251 and UTF-8).
inline constexpr std::string_view kMainCurrencyName = "BGL";

// A foreign currency of the ledger. The main currency "BGL" (id 0) is implicit and never a record.
class Currency {
public:
    Currency() = default;
    Currency(std::int32_t id, std::string name) : m_id(id), m_name(std::move(name)) {}

    std::int32_t id() const { return m_id; }
    const std::string& name() const { return m_name; }

    bool operator==(const Currency&) const = default;

private:
    std::int32_t m_id = 0;
    std::string m_name;
};

} // namespace finora
