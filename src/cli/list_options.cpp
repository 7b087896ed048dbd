#include "cli/list_options.h"

#include "core/model/currency.h"
#include "core/model/euro.h"

#include <algorithm>

namespace finora::cli {
namespace {

SearchRequest::Mode searchMode(const Arguments& a)
{
    const std::string mode = a.value("--mode").value_or("and");
    if (mode == "and") {
        return SearchRequest::And;
    }
    if (mode == "or") {
        return SearchRequest::Or;
    }
    if (mode == "not") {
        return SearchRequest::Not;
    }
    throw Failure{kUsage, "--mode приема and, or или not."};
}

// "--in description,notes,currency": the fields the search looks in.
void searchFields(const Arguments& a, SearchRequest& r)
{
    r.inDescription = false;
    const std::string fields = a.value("--in").value_or("description");
    std::size_t pos = 0;
    while (pos <= fields.size()) {
        const std::size_t end = std::min(fields.find(',', pos), fields.size());
        const std::string field = fields.substr(pos, end - pos);
        if (field == "description") {
            r.inDescription = true;
        } else if (field == "notes") {
            r.inNotes = true;
        } else if (field == "currency") {
            r.inCurrency = true;
        } else {
            throw Failure{kUsage,
                          "--in приема description, notes и currency, а не „" + field + "“."};
        }
        pos = end + 1;
    }
}

SearchRequest searchFromOptions(const Arguments& a)
{
    SearchRequest r;
    r.text = toCp1251(*a.value("--search"), "--search");
    r.mode = searchMode(a);
    r.exactPhrase = a.has("--exact");
    r.caseSensitive = a.has("--case-sensitive");
    r.showOnlyMatching = a.has("--only-matching");
    searchFields(a, r);
    return r;
}

} // namespace

StoredFilter loadFilter(const std::string& path)
{
    auto loaded = loadFilterFile(path);
    if (!loaded) {
        throw Failure{kUnreadable, oneLine(filterLoadMessage(loaded.error(), path))};
    }
    return std::move(loaded.value());
}

StoredFilter criteriaFromOptions(Session& s)
{
    const Arguments& a = s.args();
    StoredFilter f;
    resetCriteria(f.criteria, s.doc(), s.clock().now());
    f.includeSubcategories = s.settings().isOn(IntSetting::ShowDataForSubCategories);
    if (const auto file = a.value("--filter")) {
        f = loadFilter(*file);
    }
    if (const auto v = a.value("--from")) {
        f.criteria.from = parseDate(*v, "--from");
    }
    if (const auto v = a.value("--to")) {
        f.criteria.to = parseDate(*v, "--to");
    }
    if (const auto v = a.value("--type")) {
        f.criteria.typeFilter = parseChoice(*v, "--type");
    }
    if (const auto v = a.value("--paid")) {
        f.criteria.paidState = parseChoice(*v, "--paid");
    }
    if (const auto v = a.value("--currency")) {
        // The lev as banks write it names the main currency too.
        f.criteria.currency =
            isMainCurrencyCode(*v) ? std::string(kMainCurrencyName) : toCp1251(*v, "--currency");
    }
    if (a.values.count("--category")) {
        f.criteria.categories.clear();
        for (const std::string& id : a.all("--category")) {
            f.criteria.categories.push_back(static_cast<std::int32_t>(std::clamp<std::int64_t>(
                parseInteger(id, "--category", INT32_MIN), INT32_MIN, INT32_MAX)));
        }
    }
    if (a.has("--subcategories")) {
        f.includeSubcategories = true;
    }
    return f;
}

void buildList(Session& s, OperationsList& list)
{
    const StoredFilter f = criteriaFromOptions(s);
    s.settings().setValue(IntSetting::ShowDataForSubCategories, f.includeSubcategories ? 1 : 0);
    list.criteria() = f.criteria;
    list.refresh();
    if (s.args().value("--search")) {
        list.search(searchFromOptions(s.args()));
    }
    if (const auto amount = s.args().value("--amount")) {
        list.filterByAmount(parseAmount(*amount, "--amount"),
                            parseAmount(s.args().value("--tolerance").value_or("0"), "--tolerance"),
                            s.args().has("--also-bgl"));
    }
}

} // namespace finora::cli
