#include "cli/commands.h"
#include "cli/json_writer.h"
#include "cli/output.h"
#include "core/categorise/category_rules.h"
#include "core/categorise/learned_categories.h"
#include "core/model/number_text.h"
#include "core/text/cp1251.h"

#include <algorithm>

namespace finora::cli {
namespace {

// Each way a rule matches: its option, its name in JSON and its words in a listing.
struct MatchNames {
    CategoryRule::Match match;
    std::string_view option;
    std::string_view key;
    std::string_view words;
};
constexpr MatchNames kMatches[] = {
    {CategoryRule::Match::Contains, "--contains", "contains", "съдържа"},
    {CategoryRule::Match::StartsWith, "--starts-with", "starts_with", "започва с"},
    {CategoryRule::Match::Equals, "--equals", "equals", "е точно"},
};

const MatchNames& namesOf(CategoryRule::Match match)
{
    for (const MatchNames& names : kMatches) {
        if (names.match == match) {
            return names;
        }
    }
    return kMatches[0];
}

// "Храна > Пазар" (UTF-8): the category under its parents, as the chooser shows the way to it.
std::string categoryPath(const CFinoraDoc& doc, std::int32_t id)
{
    std::string path;
    // A hand-made file may hold a cycle; no real tree is deeper than its categories.
    for (std::size_t depth = 0; id > 0 && depth <= doc.ledger().categories.size(); ++depth) {
        if (!doc.ledger().categories.find(id)) {
            break;
        }
        const std::string name = cp1251::toUtf8(doc.categoryName(id));
        path = path.empty() ? name : name + " > " + path;
        id = doc.categoryParent(id);
    }
    return path;
}

std::int32_t typeOption(const Arguments& a)
{
    const std::string type = a.value("--type").value_or("0");
    if (type != "0" && type != "1" && type != "2") {
        throw Failure{kUsage, "--type приема 1 (приход) или 2 (разход), а не „" + type + "“."};
    }
    return type[0] - '0';
}

std::optional<double> amountOption(const Arguments& a, std::string_view option)
{
    const auto v = a.value(option);
    return v ? std::optional<double>(parseAmount(*v, option)) : std::nullopt;
}

CategoryRule ruleFromOptions(Session& s)
{
    const Arguments& a = s.args();
    CategoryRule rule;
    int given = 0;
    for (const MatchNames& names : kMatches) {
        if (const auto text = a.value(names.option)) {
            rule.match = names.match;
            rule.text = toCp1251(*text, names.option);
            ++given;
        }
    }
    if (given != 1 || rule.text.find_first_not_of(' ') == std::string::npos) {
        throw Failure{kUsage, "rule-add изисква непразен текст в точно една от --contains, "
                              "--starts-with и --equals."};
    }
    const auto category = a.value("--category");
    if (!category) {
        throw Failure{kUsage, "rule-add изисква --category."};
    }
    rule.categoryId = static_cast<std::int32_t>(
        std::min<std::int64_t>(parseInteger(*category, "--category", 1), INT32_MAX));
    if (!s.doc().ledger().categories.find(rule.categoryId)) {
        throw Failure{kUsage, "в документа няма категория " + *category + "."};
    }
    rule.type = typeOption(a);
    rule.minAmount = amountOption(a, "--min");
    rule.maxAmount = amountOption(a, "--max");
    if (rule.minAmount && rule.maxAmount && *rule.minAmount > *rule.maxAmount) {
        throw Failure{kUsage, "--min е по-голямо от --max."};
    }
    return rule;
}

std::string ruleText(const CFinoraDoc& doc, const CategoryRule& rule)
{
    std::string text = "текстът " + std::string(namesOf(rule.match).words) + " „" +
                       cp1251::toUtf8(rule.text) + "“";
    if (rule.type != 0) {
        text += rule.type == kIncome ? ", приход" : ", разход";
    }
    if (rule.minAmount) {
        text += ", сума от " + amountText(*rule.minAmount);
    }
    if (rule.maxAmount) {
        text += ", сума до " + amountText(*rule.maxAmount);
    }
    const std::string path = categoryPath(doc, rule.categoryId);
    return text + " → " +
           (ruleIsActive(rule, doc.ledger()) ? path
                                             : "категория " + std::to_string(rule.categoryId) +
                                                   " (изтрита, правилото не действа)");
}

void writeRules(std::ostream& out, const CFinoraDoc& doc, bool json)
{
    const auto& rules = doc.companion().rules;
    if (!json) {
        for (std::size_t i = 0; i < rules.size(); ++i) {
            out << i + 1 << ". " << ruleText(doc, rules[i]) << '\n';
        }
        return;
    }
    JsonWriter w(out);
    w.beginObject().key("rules").beginArray();
    for (const CategoryRule& rule : rules) {
        w.beginObject()
            .key("match")
            .value(namesOf(rule.match).key)
            .key("text")
            .value(cp1251::toUtf8(rule.text))
            .key("type")
            .value(rule.type)
            .key("category")
            .value(rule.categoryId)
            .key("path")
            .value(categoryPath(doc, rule.categoryId))
            .key("active")
            .value(ruleIsActive(rule, doc.ledger()));
        w.key("min");
        rule.minAmount ? w.value(*rule.minAmount) : w.null();
        w.key("max");
        rule.maxAmount ? w.value(*rule.maxAmount) : w.null();
        w.endObject();
    }
    w.endArray().endObject();
    out << '\n';
}

} // namespace

int cmdRules(Session& s, std::ostream& out)
{
    s.open(s.args().positional[1], false);
    writeRules(out, s.doc(), s.args().has("--json"));
    return kOk;
}

int cmdRuleAdd(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    s.lockForWriting(path);
    s.open(path, true);
    std::vector<CategoryRule> rules = s.doc().companion().rules;
    rules.push_back(ruleFromOptions(s));
    s.doc().setRules(rules, "ново правило");
    s.save(path);
    out << "Правило " << rules.size() << ": " << ruleText(s.doc(), rules.back()) << '\n';
    return kOk;
}

int cmdRuleDel(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const std::int64_t n = parseInteger(s.args().positional[2], "N", 1);
    s.lockForWriting(path);
    s.open(path, true);
    std::vector<CategoryRule> rules = s.doc().companion().rules;
    if (n > static_cast<std::int64_t>(rules.size())) {
        throw Failure{kUsage, "документът има " + std::to_string(rules.size()) +
                                  " правила; няма правило " + std::to_string(n) + "."};
    }
    const std::string gone = ruleText(s.doc(), rules[static_cast<std::size_t>(n - 1)]);
    rules.erase(rules.begin() + (n - 1));
    s.doc().setRules(std::move(rules), "изтриване на правило");
    s.save(path);
    out << "Изтрито правило " << n << ": " << gone << '\n';
    return kOk;
}

int cmdSuggest(Session& s, std::ostream& out)
{
    const auto description = s.args().value("--descr");
    if (!description) {
        throw Failure{kUsage, "suggest изисква --descr."};
    }
    const std::string text = toCp1251(*description, "--descr");
    const std::string notes = toCp1251(s.args().value("--notes").value_or(""), "--notes");
    const std::int32_t type = typeOption(s.args());
    const double amount = amountOption(s.args(), "--amount").value_or(0.0);
    s.open(s.args().positional[1], true);
    const LearnedCategories learned(s.doc());
    const CategorySuggestion suggestion = suggestCategory(
        s.doc().ledger(), s.doc().companion().rules, &learned, {text, notes, type, amount}, 0);
    const char* source = suggestionSourceName(suggestion.source);
    if (!s.args().has("--json")) {
        out << (suggestion.categoryId ? categoryPath(s.doc(), suggestion.categoryId) : "-") << '\t'
            << source << '\n';
        return kOk;
    }
    JsonWriter w(out);
    w.beginObject().key("category");
    suggestion.categoryId ? w.value(suggestion.categoryId) : w.null();
    w.key("path").value(categoryPath(s.doc(), suggestion.categoryId)).key("source").value(source);
    w.key("rule");
    suggestion.rule >= 0 ? w.value(static_cast<std::int32_t>(suggestion.rule + 1)) : w.null();
    w.endObject();
    out << '\n';
    return kOk;
}

} // namespace finora::cli
