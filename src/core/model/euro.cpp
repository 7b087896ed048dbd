#include "core/model/euro.h"

#include "core/model/currency.h"
#include "core/model/number_text.h"

#include <cmath>
#include <cstdint>

namespace finora {
namespace {

// The lev value is first taken to 1e-8 of a lev, which holds every stored amount and every
// product of an amount and a six-decimal rate; the division is then exact in integers, so a value
// that lies on half a cent in decimals rounds up however the double happened to fall.
constexpr double kLevUnitsPerLev = 1e8;
// Units of 1e-8 lev in one euro cent: 1.95583 × 1e8 / 100.
constexpr std::int64_t kUnitsPerCent = 1955830;
// Beyond this the integers could overflow; such figures are far past any ledger's and are
// converted in doubles.
constexpr double kExactLimit = 9e10;

} // namespace

double levsToEuro(double levs)
{
    if (!std::isfinite(levs) || std::fabs(levs) >= kExactLimit) {
        return std::round(levs / kLevsPerEuro * 100.0) / 100.0;
    }
    const auto units = static_cast<std::int64_t>(std::llround(std::fabs(levs) * kLevUnitsPerLev));
    const std::int64_t cents = (units + kUnitsPerCent / 2) / kUnitsPerCent;
    const double euro = static_cast<double>(cents) / 100.0;
    return levs < 0.0 && cents > 0 ? -euro : euro;
}

std::optional<double> legalRate(std::string_view currencyName, const DateTime& date)
{
    static const double pegDay = DateTime::fromParts(kEuroPegYear, 1, 1).days();
    if (currencyName != kEuroName || !date.isValid() || date.days() < pegDay) {
        return std::nullopt;
    }
    return kLevsPerEuro;
}

std::string_view MainMoneyView::label() const
{
    return inEuro() ? kEuroName : kMainCurrencyName;
}

std::string MainMoneyView::text(double levs) const
{
    return amountText(value(levs));
}

std::string MainMoneyView::totalText(double levs) const
{
    std::string text = amountWithCurrencyText(value(levs), label());
    if (dual()) {
        text += " / " + amountWithCurrencyText(levsToEuro(levs), kEuroName);
    }
    return text;
}

} // namespace finora
