#pragma once

#include "core/model/date_time.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace finora::cli {

// A failure that ends the command with its exit status and one line for the user.
struct Failure {
    int status;
    std::string message;
};

// The command line split into its positional arguments, the options with values (each given
// value, in order) and the flags.
struct Arguments {
    std::vector<std::string> positional;
    std::map<std::string, std::vector<std::string>, std::less<>> values;
    std::set<std::string, std::less<>> flags;

    bool has(std::string_view flag) const { return flags.count(flag) != 0; }
    // The last value given for the option.
    std::optional<std::string> value(std::string_view name) const;
    std::vector<std::string> all(std::string_view name) const;
};

// Every option is known to every command, and a command ignores those that do not concern it;
// an unknown option, or a missing or unexpected value, is a usage failure.
Arguments parse(const std::vector<std::string>& args);

// The option values, each refused with a usage failure that names the option.
std::int64_t parseInteger(const std::string& text, std::string_view option, std::int64_t min);
DateTime parseNow(const std::string& text);
DateTime parseDate(const std::string& text, std::string_view option);
double parseAmount(const std::string& text, std::string_view option);
int parseChoice(const std::string& text, std::string_view option);
int parseYear(const std::string& text);
// The ledger's own encoding for a text given on the command line.
std::string toCp1251(const std::string& utf8, std::string_view what);

// Line breaks become spaces: every failure is one line.
std::string oneLine(std::string text);

} // namespace finora::cli
