#include "core/model/choice_lists.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace finora {

std::vector<CategoryNode> categoryTree(const CFinoraDoc& doc, SiblingOrder order)
{
    const auto& categories = doc.ledger().categories;
    // Children by parent in ledger order; one pass, so a tree of thousands stays instant.
    std::unordered_map<std::int32_t, std::vector<const Category*>> children;
    std::unordered_set<std::int32_t> ids;
    std::vector<const Category*> firsts;
    for (const Category& c : categories) {
        if (ids.insert(c.id()).second) {
            firsts.push_back(&c);
            children[c.parentId()].push_back(&c);
        }
    }

    if (order == SiblingOrder::Name) {
        // Byte order of Windows-1251 is alphabetical for Latin and for Cyrillic letters alike.
        for (auto& [parent, kids] : children) {
            std::stable_sort(kids.begin(), kids.end(), [](const Category* a, const Category* b) {
                return a->name() < b->name();
            });
        }
    }

    std::vector<CategoryNode> out;
    out.reserve(firsts.size());
    std::unordered_set<std::int32_t> placed;
    // An explicit stack: a deep chain of subcategories must not exhaust the call stack.
    std::vector<std::pair<const Category*, int>> stack;
    const auto walkFrom = [&](const std::vector<const Category*>& roots) {
        for (auto it = roots.rbegin(); it != roots.rend(); ++it) {
            stack.emplace_back(*it, 0);
        }
        while (!stack.empty()) {
            const auto [c, depth] = stack.back();
            stack.pop_back();
            if (!placed.insert(c->id()).second) {
                continue;
            }
            out.push_back({c->id(), depth, &c->name()});
            // Id 0 means "no parent": a record carrying it has no children of its own.
            const auto kids = c->id() == 0 ? children.end() : children.find(c->id());
            if (kids != children.end()) {
                for (auto k = kids->second.rbegin(); k != kids->second.rend(); ++k) {
                    stack.emplace_back(*k, depth + 1);
                }
            }
        }
    };
    const auto tops = children.find(0);
    if (tops != children.end()) {
        walkFrom(tops->second);
    }
    // Orphans and members of a hand-made cycle: shown at the top level, with what hangs below.
    for (const Category* c : firsts) {
        if (!placed.count(c->id())) {
            walkFrom({c});
        }
    }
    return out;
}

std::vector<std::string> currencyNames(const CFinoraDoc& doc, SiblingOrder order)
{
    std::vector<std::string> names;
    names.reserve(doc.ledger().currencies.size() + 1);
    names.push_back(doc.currencyName(0));
    for (const Currency& c : doc.ledger().currencies) {
        names.push_back(c.name());
    }
    if (order == SiblingOrder::Name) {
        std::sort(names.begin(), names.end());
        names.erase(std::unique(names.begin(), names.end()), names.end());
    }
    return names;
}

} // namespace finora
