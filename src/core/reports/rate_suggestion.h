#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/settings/settings.h"

#include <optional>
#include <string_view>

namespace finora {

// What the payment fields should show after a suggestion.
struct RateAndValue {
    double rate;
    double value;
};

// Run when the user picks a foreign currency for a new payment: offers the last used or the
// averaged rate, as the options say, asking first when they say so. nullopt: leave the fields.
// The currency name is Windows-1251.
std::optional<RateAndValue> suggestRate(const CFinoraDoc& doc, const Settings& settings,
                                        Prompter& prompter, double amount,
                                        std::string_view currencyName);

// Remembers the rate typed for a currency; nothing for the main currency.
void rememberLastRate(const CFinoraDoc& doc, Settings& settings, std::int32_t currencyId,
                      double rate);

inline constexpr const char* kRateCaption = "Указване на курс";

} // namespace finora
