#pragma once

#include "core/model/date_time.h"

#include <cstdint>
#include <string>

namespace finora {

// Record types as stored; every value other than Income counts as expense.
inline constexpr std::int32_t kIncome = 1;
inline constexpr std::int32_t kExpense = 2;

// One income or expense entry: one row of the operations list. The payments of a multi-payment
// operation are records that share a non-zero master id.
class Operation {
public:
    Operation() = default;
    Operation(std::int32_t id, DateTime date, std::string description, std::int32_t type,
              std::int32_t categoryId, double amount, std::int32_t currencyId, double amountBgl,
              std::string notes, DateTime lastModified, std::int32_t paid, std::int32_t masterId)
        : m_id(id), m_date(date), m_description(std::move(description)), m_type(type),
          m_categoryId(categoryId), m_amount(amount), m_currencyId(currencyId),
          m_amountBgl(amountBgl), m_notes(std::move(notes)), m_lastModified(lastModified),
          m_paid(paid), m_masterId(masterId)
    {}

    std::int32_t id() const { return m_id; }
    const DateTime& date() const { return m_date; }
    const std::string& description() const { return m_description; }
    std::int32_t type() const { return m_type; }
    std::int32_t categoryId() const { return m_categoryId; }
    double amount() const { return m_amount; }
    std::int32_t currencyId() const { return m_currencyId; }
    double amountBgl() const { return m_amountBgl; }
    const std::string& notes() const { return m_notes; }
    const DateTime& lastModified() const { return m_lastModified; }
    std::int32_t paid() const { return m_paid; }
    std::int32_t masterId() const { return m_masterId; }

    // Every field but the id, which only the document hands out.
    void set(DateTime date, std::string description, std::int32_t type, std::int32_t categoryId,
             double amount, std::int32_t currencyId, double amountBgl, std::string notes,
             DateTime lastModified, std::int32_t paid, std::int32_t masterId)
    {
        m_date = date;
        m_description = std::move(description);
        m_type = type;
        m_categoryId = categoryId;
        m_amount = amount;
        m_currencyId = currencyId;
        m_amountBgl = amountBgl;
        m_notes = std::move(notes);
        m_lastModified = lastModified;
        m_paid = paid;
        m_masterId = masterId;
    }
    void setLastModified(DateTime lastModified) { m_lastModified = lastModified; }
    void setPaid(std::int32_t paid) { m_paid = paid; }

    bool operator==(const Operation&) const = default;

private:
    std::int32_t m_id = 0;
    DateTime m_date;
    std::string m_description;
    std::int32_t m_type = 0;
    std::int32_t m_categoryId = 0;
    double m_amount = 0.0;
    std::int32_t m_currencyId = 0;
    double m_amountBgl = 0.0;
    std::string m_notes;
    DateTime m_lastModified;
    std::int32_t m_paid = 0;
    std::int32_t m_masterId = 0;
};

} // namespace finora
