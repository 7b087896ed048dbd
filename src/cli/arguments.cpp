#include "cli/arguments.h"

#include "cli/cli_app.h"
#include "core/text/cp1251.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace finora::cli {
namespace {

struct KnownOption {
    std::string_view name;
    bool takesValue;
};

constexpr KnownOption kOptions[] = {
    {"--help", false},
    {"--version", false},
    {"--json", false},
    {"--now", true},
    {"--password", true},
    {"-o", true},
    {"--operations", true},
    {"--seed", true},
    {"--force", false},
    {"--new-password", true},
    {"--csv", false},
    {"--from", true},
    {"--to", true},
    {"--type", true},
    {"--currency", true},
    {"--paid", true},
    {"--category", true},
    {"--subcategories", false},
    {"--filter", true},
    {"--search", true},
    {"--mode", true},
    {"--exact", false},
    {"--in", true},
    {"--case-sensitive", false},
    {"--only-matching", false},
    {"--amount", true},
    {"--tolerance", true},
    {"--also-bgl", false},
    {"--pdf", true},
    {"--landscape", false},
    {"--png", true},
    {"--width", true},
    {"--height", true},
    {"--contains", true},
    {"--starts-with", true},
    {"--equals", true},
    {"--min", true},
    {"--max", true},
    {"--eur", false},
    {"--date", true},
    {"--descr", true},
    {"--rate", true},
    {"--notes", true},
    {"--format", true},
    {"--profile", true},
    {"--date-order", true},
    {"--dry-run", false},
};

} // namespace

std::optional<std::string> Arguments::value(std::string_view name) const
{
    const auto it = values.find(name);
    if (it == values.end()) {
        return std::nullopt;
    }
    return it->second.back();
}

std::vector<std::string> Arguments::all(std::string_view name) const
{
    const auto it = values.find(name);
    return it == values.end() ? std::vector<std::string>() : it->second;
}

std::string oneLine(std::string text)
{
    for (char& c : text) {
        if (c == '\n') {
            c = ' ';
        }
    }
    return text;
}

Arguments parse(const std::vector<std::string>& args)
{
    Arguments a;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        std::string arg = args[i];
        if (!optionsEnded && arg == "--") {
            optionsEnded = true; // what follows is a name, even "-x.fnr"
            continue;
        }
        if (optionsEnded || arg.size() < 2 || arg[0] != '-') {
            a.positional.push_back(arg);
            continue;
        }
        std::optional<std::string> inlineValue;
        if (const auto eq = arg.find('='); eq != std::string::npos && arg.starts_with("--")) {
            inlineValue = arg.substr(eq + 1);
            arg.resize(eq);
        }
        const auto option = std::find_if(std::begin(kOptions), std::end(kOptions),
                                         [&](const KnownOption& o) { return o.name == arg; });
        if (option == std::end(kOptions)) {
            throw Failure{kUsage, "непозната опция „" + arg + "“. Вижте finora-cli --help."};
        }
        if (!option->takesValue) {
            if (inlineValue) {
                throw Failure{kUsage, "опцията „" + arg + "“ не приема стойност."};
            }
            a.flags.insert(arg);
            continue;
        }
        if (!inlineValue) {
            if (i + 1 >= args.size()) {
                throw Failure{kUsage, "опцията „" + arg + "“ изисква стойност."};
            }
            inlineValue = args[++i];
        }
        a.values[arg].push_back(*inlineValue);
    }
    return a;
}

std::int64_t parseInteger(const std::string& text, std::string_view option, std::int64_t min)
{
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || value < min) {
        throw Failure{kUsage, "невалидна стойност „" + text + "“ за " + std::string(option) + "."};
    }
    return value;
}

DateTime parseNow(const std::string& text)
{
    int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0, used = 0;
    const bool complete = std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d%n", &y, &mo, &d, &h,
                                      &mi, &s, &used) == 6 &&
                          static_cast<std::size_t>(used) == text.size();
    const DateTime now = DateTime::fromParts(y, mo, d, h, mi, s);
    if (!complete || !now.isValid()) {
        throw Failure{kUsage, "--now очаква дата и час във вида \"ГГГГ-ММ-ДД ЧЧ:ММ:СС\", а не „" +
                                  text + "“."};
    }
    return now;
}

DateTime parseDate(const std::string& text, std::string_view option)
{
    int d = 0, m = 0, y = 0, used = 0;
    const bool complete = std::sscanf(text.c_str(), "%2d-%2d-%4d%n", &d, &m, &y, &used) == 3 &&
                          static_cast<std::size_t>(used) == text.size();
    const DateTime date = DateTime::fromParts(y, m, d);
    if (!complete || !date.isValid()) {
        throw Failure{kUsage,
                      std::string(option) + " очаква дата във вида Д-М-ГГГГ, а не „" + text + "“."};
    }
    return date;
}

double parseAmount(const std::string& text, std::string_view option)
{
    double value = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        throw Failure{kUsage, std::string(option) + " очаква число, а не „" + text + "“."};
    }
    return value;
}

int parseChoice(const std::string& text, std::string_view option)
{
    const std::int64_t value = parseInteger(text, option, 0);
    if (value > 2) {
        throw Failure{kUsage, std::string(option) + " приема 0, 1 или 2."};
    }
    return static_cast<int>(value);
}

int parseYear(const std::string& text)
{
    return static_cast<int>(
        std::clamp<std::int64_t>(parseInteger(text, "YEAR", INT32_MIN), INT32_MIN, INT32_MAX));
}

std::string toCp1251(const std::string& utf8, std::string_view what)
{
    std::string out;
    cp1251::EncodeError error;
    if (!cp1251::fromUtf8(utf8, out, &error)) {
        throw Failure{kUsage, std::string(what) + ": " + error.message()};
    }
    return out;
}

} // namespace finora::cli
