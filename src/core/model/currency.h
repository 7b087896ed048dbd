#pragma once

#include <cstdint>
#include <string>

namespace finora {

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
