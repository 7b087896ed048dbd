#pragma once

#include "core/model/date_time.h"

#include <optional>
#include <string>
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

// A lev value in euro: divided by the fixed rate once, then rounded half away from zero to the
// cent (1.70 лв is 0.87 €). Totals are converted whole, never summed from converted cells.
double levsToEuro(double levs);

// The rate the euro takes on `date`: the fixed one from the peg on, nothing before it (and
// nothing for any other currency). The name is Windows-1251, which spells "EUR" as ASCII does.
std::optional<double> legalRate(std::string_view currencyName, const DateTime& date);

// How the figures kept in leva are shown: as they are, in euro, or both side by side.
enum class MainMoney { Levs = 0, Euro = 1, Both = 2 };

// Shows a lev figure as the chosen mode asks. In dual mode the single figure stays in leva and
// the euro one is asked for apart (totals give both).
class MainMoneyView {
public:
    explicit MainMoneyView(MainMoney mode = MainMoney::Levs) : m_mode(mode) {}

    MainMoney mode() const { return m_mode; }
    bool inEuro() const { return m_mode == MainMoney::Euro; }
    bool dual() const { return m_mode == MainMoney::Both; }
    // "BGL" or "EUR": the code a main-currency figure is labelled with.
    std::string_view label() const;
    // The figure as shown: the lev value, or its euro value.
    double value(double levs) const { return inEuro() ? levsToEuro(levs) : levs; }
    // "%.2f" of value().
    std::string text(double levs) const;
    // A main-currency total with its code; in dual mode "1.70 BGL / 0.87 EUR".
    std::string totalText(double levs) const;

private:
    MainMoney m_mode;
};

} // namespace finora
