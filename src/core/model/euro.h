#pragma once

#include <string_view>

namespace finora {

// The lev was converted to the euro at this irrevocably fixed rate; it is never rounded.
inline constexpr double kLevsPerEuro = 1.95583;
inline constexpr std::string_view kEuroName = "EUR";
// The fixed rate holds for operations dated on or after the day the lev was pegged to the euro.
inline constexpr int kEuroPegYear = 1999;

// Banks write the lev as "BGN"; the ledger's main currency is "BGL". Both name the main currency
// and neither is ever stored as a currency of its own.
inline bool isMainCurrencyCode(std::string_view code)
{
    return code == "BGL" || code == "BGN";
}

} // namespace finora
