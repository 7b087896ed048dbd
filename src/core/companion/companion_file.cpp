#include "core/companion/companion_file.h"

#include "core/text/cp1251.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <vector>

namespace finora {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kVersionKey = "finora_companion";
constexpr const char* kImportedKey = "imported";
constexpr const char* kRulesKey = "rules";
constexpr std::array<std::pair<CategoryRule::Match, const char*>, 3> kMatchNames = {{
    {CategoryRule::Match::Contains, "contains"},
    {CategoryRule::Match::StartsWith, "starts_with"},
    {CategoryRule::Match::Equals, "equals"},
}};
// Deeper than any section of ours needs; the parser then never works on a hostile nesting.
constexpr int kMaxDepth = 32;

// The byte where the nesting first goes deeper than kMaxDepth, or npos. Brackets inside strings
// do not count.
std::size_t tooDeepAt(std::string_view text)
{
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > kMaxDepth) {
                return i;
            }
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return std::string_view::npos;
}

std::string dateText(std::int32_t yyyymmdd)
{
    char text[16];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", yyyymmdd / 10000, yyyymmdd / 100 % 100,
                  yyyymmdd % 100);
    return text;
}

bool parseDate(const std::string& text, std::int32_t& out)
{
    int y = 0;
    int m = 0;
    int d = 0;
    char tail = 0;
    if (text.size() != 10 || std::sscanf(text.c_str(), "%4d-%2d-%2d%c", &y, &m, &d, &tail) != 3 ||
        y < 1 || m < 1 || m > 12 || d < 1 || d > 31) {
        return false;
    }
    out = y * 10000 + m * 100 + d;
    return true;
}

template <class T> bool integerField(const Json& object, const char* name, T& out)
{
    const auto it = object.find(name);
    if (it == object.end() || !it->is_number_integer()) {
        return false;
    }
    const auto value = it->get<std::int64_t>();
    if (it->is_number_unsigned() && it->get<std::uint64_t>() > INT64_MAX) {
        return false;
    }
    if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max()) {
        return false;
    }
    out = static_cast<T>(value);
    return true;
}

bool readImported(const Json& list, Companion& out, std::string& where)
{
    if (!list.is_array()) {
        where = kImportedKey;
        return false;
    }
    out.imported.reserve(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Json& item = list[i];
        where = std::string(kImportedKey) + "[" + std::to_string(i) + "]";
        if (!item.is_object()) {
            return false;
        }
        const auto key = item.find("key");
        const auto date = item.find("date");
        ImportedOperation entry;
        if (key == item.end() || !key->is_string() || key->get_ref<const std::string&>().empty() ||
            date == item.end() || !date->is_string() ||
            !parseDate(date->get_ref<const std::string&>(), entry.date) ||
            !integerField(item, "operation", entry.operationId) || entry.operationId < 1 ||
            !integerField(item, "amount_cents", entry.amountCents) || entry.amountCents < 0 ||
            !integerField(item, "type", entry.type)) {
            return false;
        }
        out.imported[key->get<std::string>()] = entry;
    }
    where.clear();
    return true;
}

bool optionalAmount(const Json& object, const char* name, std::optional<double>& out)
{
    const auto it = object.find(name);
    if (it == object.end() || it->is_null()) {
        return true;
    }
    if (!it->is_number() || !std::isfinite(it->get<double>()) || it->get<double>() < 0) {
        return false;
    }
    out = it->get<double>();
    return true;
}

bool readRule(const Json& item, CategoryRule& rule)
{
    if (!item.is_object()) {
        return false;
    }
    const auto match = item.find("match");
    const auto text = item.find("text");
    if (match == item.end() || !match->is_string() || text == item.end() || !text->is_string()) {
        return false;
    }
    const auto name = std::find_if(kMatchNames.begin(), kMatchNames.end(), [&](const auto& m) {
        return match->get_ref<const std::string&>() == m.second;
    });
    if (name == kMatchNames.end() ||
        !cp1251::fromUtf8(text->get_ref<const std::string&>(), rule.text)) {
        return false;
    }
    rule.match = name->first;
    return integerField(item, "category", rule.categoryId) &&
           (item.find("type") == item.end() || integerField(item, "type", rule.type)) &&
           rule.type >= 0 && rule.type <= 2 && optionalAmount(item, "min", rule.minAmount) &&
           optionalAmount(item, "max", rule.maxAmount);
}

bool readRules(const Json& list, Companion& out, std::string& where)
{
    where = kRulesKey;
    if (!list.is_array()) {
        return false;
    }
    for (std::size_t i = 0; i < list.size(); ++i) {
        where = std::string(kRulesKey) + "[" + std::to_string(i) + "]";
        CategoryRule rule;
        if (!readRule(list[i], rule)) {
            return false;
        }
        out.rules.push_back(std::move(rule));
    }
    where.clear();
    return true;
}

Json ruleJson(const CategoryRule& rule)
{
    const auto name = std::find_if(kMatchNames.begin(), kMatchNames.end(),
                                   [&](const auto& m) { return m.first == rule.match; });
    Json item{{"match", name->second},
              {"text", cp1251::toUtf8(rule.text)},
              {"type", rule.type},
              {"category", rule.categoryId}};
    if (rule.minAmount) {
        item["min"] = *rule.minAmount;
    }
    if (rule.maxAmount) {
        item["max"] = *rule.maxAmount;
    }
    return item;
}

} // namespace

std::string companionPathFor(const std::string& ledgerPath)
{
    std::string stem = ledgerPath;
    if (stem.size() > 4) {
        std::string ending = stem.substr(stem.size() - 4);
        std::transform(ending.begin(), ending.end(), ending.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (ending == ".fnr") {
            stem.resize(stem.size() - 4);
        }
    }
    return stem + ".finora.json";
}

CompanionReadResult readCompanion(std::string_view bytes, Companion& out)
{
    out.clear();
    CompanionReadResult result;
    if (const std::size_t at = tooDeepAt(bytes); at != std::string_view::npos) {
        result.where = "байт " + std::to_string(at + 1);
        return result;
    }
    Json root;
    try {
        root = Json::parse(bytes);
    } catch (const Json::parse_error& e) {
        result.where = "байт " + std::to_string(e.byte);
        return result;
    } catch (const Json::exception&) {
        result.where = "число извън допустимото"; // a number too large for any type
        return result;
    }
    std::int32_t version = 0;
    if (!root.is_object() || !integerField(root, kVersionKey, version) || version < 1) {
        result.where = kVersionKey;
        return result;
    }
    if (version > kCompanionVersion) {
        result.status = CompanionReadResult::Status::Newer;
        return result;
    }
    Companion read;
    for (const auto& [name, value] : root.items()) {
        if (name == kImportedKey) {
            if (!readImported(value, read, result.where)) {
                return result;
            }
        } else if (name == kRulesKey) {
            if (!readRules(value, read, result.where)) {
                return result;
            }
        } else if (name != kVersionKey) {
            read.otherSections[name] = value.dump();
        }
    }
    out = std::move(read);
    result.status = CompanionReadResult::Status::Ok;
    return result;
}

std::string serializeCompanion(const Companion& companion)
{
    std::vector<const std::pair<const std::string, ImportedOperation>*> entries;
    entries.reserve(companion.imported.size());
    for (const auto& entry : companion.imported) {
        entries.push_back(&entry);
    }
    std::sort(entries.begin(), entries.end(), [](const auto* a, const auto* b) {
        return a->second.operationId != b->second.operationId
                   ? a->second.operationId < b->second.operationId
                   : a->first < b->first;
    });
    Json root = Json::object();
    root[kVersionKey] = kCompanionVersion;
    Json& imported = root[kImportedKey] = Json::array();
    for (const auto* entry : entries) {
        const ImportedOperation& op = entry->second;
        imported.push_back(Json{{"key", entry->first},
                                {"operation", op.operationId},
                                {"date", dateText(op.date)},
                                {"amount_cents", op.amountCents},
                                {"type", op.type}});
    }
    if (!companion.rules.empty()) {
        Json& rules = root[kRulesKey] = Json::array();
        for (const CategoryRule& rule : companion.rules) {
            rules.push_back(ruleJson(rule));
        }
    }
    for (const auto& [name, text] : companion.otherSections) {
        root[name] = Json::parse(text);
    }
    // One entry a line: readable, and a diff of two saves shows what an import added.
    std::string out = "{\n";
    bool first = true;
    for (const auto& [name, value] : root.items()) {
        out += first ? "  " : ",\n  ";
        first = false;
        out += Json(name).dump() + ": ";
        if (value.is_array() && !value.empty()) {
            out += "[\n";
            for (std::size_t i = 0; i < value.size(); ++i) {
                out += "    " + value[i].dump() + (i + 1 < value.size() ? ",\n" : "\n");
            }
            out += "  ]";
        } else {
            out += value.dump();
        }
    }
    out += "\n}\n";
    return out;
}

} // namespace finora
