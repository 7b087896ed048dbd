#pragma once

#include <cstdint>
#include <string>

namespace finora {

// A node of the category tree; parent id 0 marks a top-level category.
class Category {
public:
    Category() = default;
    Category(std::int32_t id, std::string name, std::int32_t parentId)
        : m_id(id), m_name(std::move(name)), m_parentId(parentId)
    {}

    std::int32_t id() const { return m_id; }
    const std::string& name() const { return m_name; }
    std::int32_t parentId() const { return m_parentId; }

    bool operator==(const Category&) const = default;

private:
    std::int32_t m_id = 0;
    std::string m_name;
    std::int32_t m_parentId = 0;
};

} // namespace finora
