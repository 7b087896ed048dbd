#pragma once

#include "core/model/operation_observer.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace finora {

class CFinoraDoc;

// What the user's own filing says about a new text: the words of every operation's description
// and notes vote for the category it was filed under. A word filed under one category only votes
// with its whole weight; one spread over many categories (a town, "POS", "плащане") hardly
// counts, and a word seen once counts half. A category is suggested only when it is clearly
// ahead, as a wrong guess costs the user more than none.
//
// Built from the document's ledger the first time it is asked, then kept in step with every change
// through the document's observer hook, for as long as it lives: a ledger that is never asked
// for a suggestion costs nothing, and one that is costs one pass.
class LearnedCategories : public OperationObserver {
public:
    explicit LearnedCategories(const CFinoraDoc& doc);
    ~LearnedCategories() override;
    LearnedCategories(const LearnedCategories&) = delete;
    LearnedCategories& operator=(const LearnedCategories&) = delete;

    // The category the texts (Windows-1251) point to, or none. `type` 1 or 2 keeps to the
    // categories the user has filed operations of that type under; 0 looks at all.
    std::optional<std::int32_t> suggest(std::string_view description, std::string_view notes,
                                        std::int32_t type = 0) const;

    std::size_t wordCount() const
    {
        build();
        return m_words.size();
    }

    void operationAdded(const Operation& op) override { count(op, +1); }
    void operationRemoved(const Operation& op) override { count(op, -1); }
    void operationsReset() override;

private:
    struct Tally {
        std::uint32_t total = 0;
        std::vector<std::pair<std::int32_t, std::uint32_t>> byCategory;
    };
    struct CategoryUse {
        std::uint32_t income = 0;
        std::uint32_t expense = 0;
    };
    struct WordHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view word) const
        {
            return std::hash<std::string_view>{}(word);
        }
    };

    void build() const;
    void count(const Operation& op, int delta) const;
    static void add(Tally& tally, std::int32_t category, int delta);
    bool usedWithType(std::int32_t category, std::int32_t type) const;

    const CFinoraDoc& m_doc;
    // A cache of the ledger's filing, filled on first use.
    mutable bool m_built = false;
    mutable std::unordered_map<std::string, Tally, WordHash, std::equal_to<>> m_words;
    mutable std::unordered_map<std::int32_t, CategoryUse> m_categories;
    mutable std::vector<std::string> m_scratch;
};

} // namespace finora
