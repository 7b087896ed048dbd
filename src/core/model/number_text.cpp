#include "core/model/number_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace finora {

std::string fixedText(double value, int decimals)
{
    // Enough for the largest double in fixed notation (309 digits) and the decimals.
    std::array<char, 400> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::fixed, decimals);
    return std::string(buffer.data(), result.ptr);
}

std::string shortestText(double value)
{
    std::array<char, 64> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return std::string(buffer.data(), result.ptr);
}

std::string amountText(double value)
{
    return fixedText(value, 2);
}

std::string rateText(double value)
{
    return fixedText(value, 6);
}

std::string idText(std::int32_t value)
{
    return std::to_string(value);
}

std::string amountWithCurrencyText(double value, std::string_view currency)
{
    std::string text = amountText(value);
    text += ' ';
    text += currency;
    return text;
}

double parseNumber(std::string_view text)
{
    std::size_t pos = 0;
    while (pos < text.size() && (text[pos] == ' ' || (text[pos] >= '\t' && text[pos] <= '\r'))) {
        ++pos;
    }
    bool negative = false;
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) {
        negative = text[pos] == '-';
        ++pos;
    }
    // from_chars takes neither a sign of its own after ours nor leading blanks, as atof would not.
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) {
        return 0.0;
    }
    double value = 0.0;
    const char* first = text.data() + pos;
    const auto result = std::from_chars(first, text.data() + text.size(), value);
    if (result.ec == std::errc::invalid_argument) {
        return 0.0;
    }
    // Out of range: from_chars leaves value alone; atof gives the infinity or the zero it tends to.
    if (result.ec == std::errc::result_out_of_range) {
        // Decide by the exponent's sign: a large magnitude overflows, a tiny one underflows.
        std::string_view digits(first, static_cast<std::size_t>(result.ptr - first));
        const auto e = digits.find_first_of("eE");
        const bool tiny =
            e != std::string_view::npos && e + 1 < digits.size() && digits[e + 1] == '-';
        value = tiny ? 0.0 : HUGE_VAL;
    }
    return negative ? -value : value;
}

bool readNumberField(std::string_view text, double& value)
{
    const auto first = text.find_first_not_of(" \t");
    const auto last = text.find_last_not_of(" \t");
    std::string s = first == std::string_view::npos
                        ? std::string()
                        : std::string(text.substr(first, last - first + 1));
    for (char& c : s) {
        if (c == ',') {
            c = '.';
        }
    }
    if (!s.empty() && s[0] == '+') {
        s.erase(0, 1);
    }
    double read = 0.0;
    const auto result = std::from_chars(s.data(), s.data() + s.size(), read);
    if (s.empty() || result.ec != std::errc() || result.ptr != s.data() + s.size() ||
        !std::isfinite(read)) {
        return false;
    }
    value = read;
    return true;
}

} // namespace finora
