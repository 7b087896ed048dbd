#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace finora {

// The fixed text forms of numbers. They never depend on the process locale: a Bulgarian
// desktop must still show "12.50", not "12,50", because that is what the ledger's texts are.
std::string fixedText(double value, int decimals);
std::string amountText(double value);   // "%.2f"
std::string rateText(double value);     // "%.6f"
std::string idText(std::int32_t value); // "%d"
// The shortest text that reads back as the same number: "0", "12.5", "1e+300".
std::string shortestText(double value);
std::string amountWithCurrencyText(double value, std::string_view currency); // "%.2f %s"

// Reads the longest number at the start of the text, after leading white space, as the C
// library's atof does; a text that starts with no number reads as 0.
double parseNumber(std::string_view text);
// A number a person typed into a field: the whole text must be one number; blanks around it,
// a leading '+' and a decimal comma (a Bulgarian user's decimal point) are fine.
bool readNumberField(std::string_view text, double& value);

} // namespace finora
