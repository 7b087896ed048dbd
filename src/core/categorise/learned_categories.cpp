#include "core/categorise/learned_categories.h"

#include "core/categorise/text_words.h"
#include "core/model/finora_doc.h"

#include <algorithm>
#include <cmath>

namespace finora {
namespace {

// How far ahead a category must be: its votes at least this share of a word filed nowhere else,
// and this many times the next category's.
constexpr double kLeastScore = 0.4;
constexpr double kLeadOverNext = 2.0;

} // namespace

LearnedCategories::LearnedCategories(const CFinoraDoc& doc) : m_doc(doc)
{
    m_doc.addObserver(this);
}

LearnedCategories::~LearnedCategories()
{
    m_doc.removeObserver(this);
}

void LearnedCategories::operationsReset()
{
    m_built = false;
    m_words = {};
    m_categories = {};
}

void LearnedCategories::build() const
{
    if (m_built) {
        return;
    }
    m_built = true;
    for (const Operation& op : m_doc.ledger().operations) {
        count(op, +1);
    }
}

void LearnedCategories::add(Tally& tally, std::int32_t category, int delta)
{
    auto it = std::find_if(tally.byCategory.begin(), tally.byCategory.end(),
                           [&](const auto& entry) { return entry.first == category; });
    if (delta > 0) {
        ++tally.total;
        if (it == tally.byCategory.end()) {
            tally.byCategory.emplace_back(category, 1U);
        } else {
            ++it->second;
        }
    } else if (it != tally.byCategory.end()) {
        --tally.total;
        if (--it->second == 0) {
            tally.byCategory.erase(it);
        }
    }
}

void LearnedCategories::count(const Operation& op, int delta) const
{
    if (!m_built || op.categoryId() <= 0) {
        return;
    }
    CategoryUse& use = m_categories[op.categoryId()];
    std::uint32_t& uses = op.type() == kIncome ? use.income : use.expense;
    uses = delta > 0 ? uses + 1 : (uses > 0 ? uses - 1 : 0);
    if (use.income == 0 && use.expense == 0) {
        m_categories.erase(op.categoryId());
    }
    m_scratch.clear();
    appendTextWords(op.description(), m_scratch);
    appendTextWords(op.notes(), m_scratch);
    for (std::string& word : m_scratch) {
        auto it = m_words.find(std::string_view(word));
        if (it == m_words.end()) {
            if (delta < 0) {
                continue;
            }
            it = m_words.emplace(std::move(word), Tally()).first;
        }
        add(it->second, op.categoryId(), delta);
        if (it->second.total == 0) {
            m_words.erase(it);
        }
    }
}

bool LearnedCategories::usedWithType(std::int32_t category, std::int32_t type) const
{
    const auto it = m_categories.find(category);
    if (it == m_categories.end()) {
        return false;
    }
    if (type == kIncome) {
        return it->second.income > 0;
    }
    return type == 0 || it->second.expense > 0;
}

std::optional<std::int32_t> LearnedCategories::suggest(std::string_view description,
                                                       std::string_view notes,
                                                       std::int32_t type) const
{
    build();
    std::vector<std::string> words = textWords(description);
    appendTextWords(notes, words);
    // Entropy is measured against the number of categories in use, so a word spread evenly over
    // all of them weighs nothing.
    const double most =
        std::log(static_cast<double>(std::max<std::size_t>(2, m_categories.size())));
    std::vector<std::pair<std::int32_t, double>> votes;
    std::vector<std::pair<std::int32_t, std::uint32_t>> counts;
    for (const std::string& word : words) {
        const auto it = m_words.find(std::string_view(word));
        if (it == m_words.end()) {
            continue;
        }
        // Only the categories the line could go to: of its type, and still in the ledger.
        counts.clear();
        double total = 0.0;
        for (const auto& entry : it->second.byCategory) {
            if (usedWithType(entry.first, type) && m_doc.ledger().categories.find(entry.first)) {
                counts.push_back(entry);
                total += entry.second;
            }
        }
        double entropy = 0.0;
        for (const auto& count : counts) {
            const double p = count.second / total;
            entropy -= p * std::log(p);
        }
        const double weight = std::max(0.0, 1.0 - entropy / most) * total / (total + 1.0);
        for (const auto& count : counts) {
            const std::int32_t category = count.first;
            auto vote = std::find_if(votes.begin(), votes.end(),
                                     [&](const auto& v) { return v.first == category; });
            if (vote == votes.end()) {
                votes.emplace_back(category, 0.0);
                vote = votes.end() - 1;
            }
            vote->second += weight * count.second / total;
        }
    }
    std::sort(votes.begin(), votes.end(),
              [](const auto& a, const auto& b) { return a.second > b.second; });
    if (votes.empty() || votes[0].second < kLeastScore ||
        (votes.size() > 1 && votes[0].second < kLeadOverNext * votes[1].second)) {
        return std::nullopt;
    }
    return votes[0].first;
}

} // namespace finora
