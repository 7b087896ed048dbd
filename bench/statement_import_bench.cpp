// A month's bank statement of 10,000 entries, half of them imported before, read, matched
// against a ledger of 100k and 1M operations and added as one command.
#include "core/demo/ledger_generator.h"
#include "core/importing/statement_import.h"
#include "core/model/undo_commands.h"
#include "core/settings/memory_settings_store.h"
#include "core/statements/statement_reader.h"

#include <benchmark/benchmark.h>
#include <map>
#include <memory>
#include <random>

using namespace finora;

namespace {

constexpr int kStatementEntries = 10'000;

// A bank's CSV: card payments, transfers and salaries in leva, euro and dollars.
std::string statementCsv()
{
    static const char* const shops[] = {"ЛИДЛ БЪЛГАРИЯ ЕООД", "Kaufland София 1234", "OMV 0456",
                                        "Аптека Марешки",     "Amazon EU S.a.r.l.",  "Café Müller"};
    static const char* const currencies[] = {"BGN", "BGN", "BGN", "EUR", "USD"};
    std::mt19937 random(7);
    std::string csv = "Дата;Получател;Основание;Сума;Валута\n";
    for (int i = 0; i < kStatementEntries; ++i) {
        const int day = 1 + static_cast<int>(random() % 30);
        const long cents = static_cast<long>(random() % 200'000) - 150'000;
        csv += (day < 10 ? "0" : "") + std::to_string(day) + ".11.2026;" + shops[random() % 6] +
               ";Плащане с карта 4111 терминал " + std::to_string(random() % 100'000) + ";" +
               std::to_string(cents / 100) + "," +
               std::to_string(100 + std::labs(cents) % 100).substr(1) + ";" +
               currencies[random() % 5] + "\n";
    }
    return csv;
}

struct Setting {
    explicit Setting(std::int64_t operations) : settings(store), doc(clock)
    {
        static std::map<std::int64_t, Ledger> ledgers;
        auto it = ledgers.find(operations);
        if (it == ledgers.end()) {
            it = ledgers.emplace(operations, generateLedger(operations, 42)).first;
        }
        doc.replaceLedger(Ledger(it->second));
        doc.setHistoryLimit(kUndoSteps);
        options.rates["USD"] = 1.72;
    }
    FixedClock clock{DateTime::fromParts(2026, 12, 1, 9, 0, 0)};
    MemorySettingsStore store;
    Settings settings;
    CFinoraDoc doc;
    StatementImportOptions options;
};

// The first half of the statement, imported last month.
void importFirstHalf(Setting& s, const std::vector<StatementEntry>& entries)
{
    const std::vector<StatementEntry> half(entries.begin(), entries.begin() + entries.size() / 2);
    applyStatementImport(s.doc, planStatementImport(s.doc, s.settings, half, s.options));
}

void importStatement(benchmark::State& state, bool add)
{
    const std::string bytes = statementCsv();
    const auto read = readStatement(bytes);
    if (!read || read.value().entries.size() != kStatementEntries) {
        state.SkipWithError("the statement was not read whole");
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        auto s = std::make_unique<Setting>(state.range(0));
        importFirstHalf(*s, read.value().entries);
        state.ResumeTiming();
        const auto statement = readStatement(bytes);
        const ImportPlan plan =
            planStatementImport(s->doc, s->settings, statement.value().entries, s->options);
        if (plan.count(LineState::Duplicate) < kStatementEntries / 2 - 100) {
            state.SkipWithError("the entries imported before were not known again");
        }
        if (add) {
            benchmark::DoNotOptimize(applyStatementImport(s->doc, plan).added);
        }
        state.PauseTiming();
        s.reset();
        state.ResumeTiming();
    }
}

// What the preview waits for: the file read and every line decided.
void BM_StatementPreview(benchmark::State& state)
{
    importStatement(state, false);
}

// The whole import: read, matched and added as one step of the history.
void BM_StatementImport(benchmark::State& state)
{
    importStatement(state, true);
}

void ledgerSizes(benchmark::internal::Benchmark* b)
{
    b->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
}

} // namespace

BENCHMARK(BM_StatementPreview)->Apply(ledgerSizes);
BENCHMARK(BM_StatementImport)->Apply(ledgerSizes);
