// The categoriser: learning from a ledger of bank-like lines, and suggesting for a statement.
#include "core/categorise/learned_categories.h"
#include "core/demo/bank_texts.h"
#include "core/model/finora_doc.h"

#include <benchmark/benchmark.h>
#include <map>
#include <memory>

using namespace finora;

namespace {

const FixedClock kClock(DateTime::fromParts(2026, 11, 1, 12, 0, 0));

// A document of `n` card payments filed by group, made once per run.
CFinoraDoc& filedLedger(std::int64_t n)
{
    static std::map<std::int64_t, std::unique_ptr<CFinoraDoc>> made;
    auto& doc = made[n];
    if (!doc) {
        Ledger ledger;
        for (int g = 0; g < BankTexts::kGroups; ++g) {
            ledger.categories.append(Category(g + 1, BankTexts::groupName(g), 0));
        }
        BankTexts bank(1);
        ledger.operations.reserve(static_cast<std::size_t>(n));
        for (std::int64_t i = 0; i < n; ++i) {
            auto line = bank.knownShopLine();
            ledger.operations.append(Operation(static_cast<std::int32_t>(i + 1),
                                               DateTime(45000.0 + i / 4000.0, DateTime::Valid),
                                               std::move(line.text), kExpense, line.group + 1, 10.0,
                                               0, 10.0, "", DateTime(), 0, 0));
        }
        doc = std::make_unique<CFinoraDoc>(kClock);
        doc->replaceLedger(std::move(ledger));
    }
    return *doc;
}

void BM_LearnCategories(benchmark::State& state)
{
    CFinoraDoc& doc = filedLedger(state.range(0));
    for (auto _ : state) {
        LearnedCategories learned(doc);
        benchmark::DoNotOptimize(learned.wordCount());
    }
}

// A 10,000-line statement, two lines in three of shops the ledger knows.
void BM_SuggestForAStatement(benchmark::State& state)
{
    CFinoraDoc& doc = filedLedger(state.range(0));
    LearnedCategories learned(doc);
    benchmark::DoNotOptimize(learned.wordCount()); // built here, not in the timed loop
    BankTexts bank(2);
    std::vector<std::string> lines;
    for (int i = 0; i < 10'000; ++i) {
        lines.push_back(i % 3 ? bank.knownShopLine().text : bank.unseenShopLine().text);
    }
    for (auto _ : state) {
        int guessed = 0;
        for (const std::string& line : lines) {
            guessed += learned.suggest(line, "", kExpense).has_value();
        }
        benchmark::DoNotOptimize(guessed);
    }
}

void sizes(benchmark::internal::Benchmark* b)
{
    b->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();
}

} // namespace

BENCHMARK(BM_LearnCategories)->Apply(sizes);
BENCHMARK(BM_SuggestForAStatement)->Apply(sizes);
