// Speed of the operations a user waits for, at 10k, 100k and 1M operations.
#include "core/demo/ledger_generator.h"
#include "core/model/finora_doc.h"
#include "core/model/recording_prompter.h"
#include "core/model/undo_commands.h"
#include "core/query/operations_list.h"
#include "core/reports/currency_cash.h"
#include "core/reports/yearly_summary.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/document_storage.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_import.h"
#include "core/text/cp1251.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <numeric>
#include <random>

#ifdef __GLIBC__
#include <malloc.h>
#endif

using namespace finora;
namespace fs = std::filesystem;

namespace {

const FixedClock kClock(DateTime::fromParts(2026, 11, 1, 12, 0, 0));

fs::path benchDir()
{
    static const fs::path dir = [] {
        fs::path d = fs::temp_directory_path() / "finora-bench";
        fs::create_directories(d);
        return d;
    }();
    return dir;
}

// A generated ledger file of `n` operations, made once per run.
std::string ledgerFile(std::int64_t n)
{
    static std::map<std::int64_t, std::string> made;
    auto it = made.find(n);
    if (it != made.end()) {
        return it->second;
    }
    const std::string path = pathToUtf8(benchDir() / ("ledger-" + std::to_string(n) + ".fnr"));
    writeFile(path, serializeLedger(generateLedger(n, 42)));
    return made[n] = path;
}

// Gives freed memory back to the system, so the next case starts as a user's first open does,
// with memory the process has not touched yet. Without it the allocator keeps small ledgers'
// pages warm between iterations while large ones fault in afresh, which says more about the
// allocator than about the program.
void releaseFreeMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

// Resident memory of this process in bytes (Linux; 0 elsewhere).
double residentBytes()
{
    std::ifstream statm("/proc/self/statm");
    double pages = 0, resident = 0;
    statm >> pages >> resident;
    return resident * 4096.0;
}

Operation sampleOperation(int i)
{
    return Operation(0, DateTime(45000.0 + i / 4000.0, DateTime::Valid),
                     "Description of a purchase", kExpense, 1 + i % 60, 12.5, i % 4, 12.5,
                     i % 5 == 0 ? "notes" : "", DateTime(), 1, 0);
}

void BM_AddOperations(benchmark::State& state)
{
    const auto n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        CFinoraDoc doc(kClock);
        for (int i = 0; i < n; ++i) {
            doc.addOperation(sampleOperation(i));
        }
        benchmark::DoNotOptimize(doc.operationCount());
        state.PauseTiming(); // the teardown is not what a user waits for
        doc.clear();
        releaseFreeMemory();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// Deleting every record by id; `shuffled` picks the order. In list order the work is the same
// but the memory is walked in sequence, which separates the cost of the algorithm from the cost
// of cache misses in a list that no longer fits the cache.
void deleteAllById(benchmark::State& state, bool shuffled)
{
    const auto n = static_cast<int>(state.range(0));
    std::vector<std::int32_t> ids(static_cast<std::size_t>(n));
    std::iota(ids.begin(), ids.end(), 1);
    if (shuffled) {
        std::shuffle(ids.begin(), ids.end(), std::mt19937(5));
    }
    for (auto _ : state) {
        state.PauseTiming();
        CFinoraDoc doc(kClock);
        for (int i = 0; i < n; ++i) {
            doc.addOperation(sampleOperation(i));
        }
        state.ResumeTiming();
        for (std::int32_t id : ids) {
            doc.deleteOperation(id);
        }
        benchmark::DoNotOptimize(doc.operationCount());
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void BM_DeleteAllByIdInRandomOrder(benchmark::State& state)
{
    deleteAllById(state, true);
}

void BM_DeleteAllByIdInListOrder(benchmark::State& state)
{
    deleteAllById(state, false);
}

void BM_ReadFileBytes(benchmark::State& state)
{
    const std::string path = ledgerFile(state.range(0));
    for (auto _ : state) {
        std::string bytes;
        readWholeFile(path, bytes);
        benchmark::DoNotOptimize(bytes.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(path)));
}

void BM_Open(benchmark::State& state)
{
    const std::string path = ledgerFile(state.range(0));
    MemorySettingsStore store;
    Settings settings(store);
    RecordingPrompter prompter;
    NoDocumentHost host;
    BackupWriter backups;
    const double fileSize = static_cast<double>(fs::file_size(path));
    double growth = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto doc = std::make_unique<CFinoraDoc>(kClock);
        DocumentStorage storage(*doc, settings, prompter, host, backups);
        releaseFreeMemory();
        const double before = residentBytes();
        state.ResumeTiming();
        if (storage.open(path) != DocumentStorage::OpenResult::Opened) {
            state.SkipWithError("open failed");
        }
        state.PauseTiming();
        growth = std::max(growth, residentBytes() - before);
        doc.reset();
        state.ResumeTiming();
    }
    state.counters["memory_per_file_byte"] = growth / fileSize;
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fileSize));
}

void BM_SaveWithBackup(benchmark::State& state)
{
    const std::string source = ledgerFile(state.range(0));
    const std::string target =
        pathToUtf8(benchDir() / ("saved-" + std::to_string(state.range(0)) + ".fnr"));
    MemorySettingsStore store;
    Settings settings(store);
    RecordingPrompter prompter;
    NoDocumentHost host;
    BackupWriter backups;
    CFinoraDoc doc(kClock);
    DocumentStorage storage(doc, settings, prompter, host, backups);
    storage.open(source);
    for (auto _ : state) {
        if (!storage.save(target)) {
            state.SkipWithError("save failed");
        }
        backups.waitIdle(); // the backup is part of the work
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(target)));
}

// A generated ledger of `n` operations, read once per run and shared by the cases that only
// read it.
const Ledger& sharedLedger(std::int64_t n)
{
    static std::map<std::int64_t, Ledger> ledgers;
    auto it = ledgers.find(n);
    if (it == ledgers.end()) {
        it = ledgers.emplace(n, generateLedger(n, 42)).first;
    }
    return it->second;
}

// A document with its own copy of the shared ledger, and what the main window keeps beside it.
struct Window {
    explicit Window(std::int64_t n) : doc(kClock), settings(store), list(doc, settings, prompter)
    {
        doc.replaceLedger(Ledger(sharedLedger(n)));
        resetCriteria(list.criteria(), doc, kClock.now());
    }
    CFinoraDoc doc;
    MemorySettingsStore store;
    Settings settings;
    RecordingPrompter prompter{Answer::Yes};
    OperationsList list;
};

// The top-level category of a generated ledger whose subtree is the largest ("Храна").
std::int32_t foodCategory(const CFinoraDoc& doc)
{
    const std::string food = cp1251::fromUtf8OrThrow("Храна");
    for (const Category& c : doc.ledger().categories) {
        if (c.parentId() == 0 && c.name() == food) {
            return c.id();
        }
    }
    return 0;
}

void BM_RefreshNoFilter(benchmark::State& state)
{
    Window w(state.range(0));
    for (auto _ : state) {
        w.list.refresh();
        benchmark::DoNotOptimize(w.list.rowCount());
    }
}

// A refresh as the window shows it, with main-currency figures in leva (0) or in euro (1): the
// rows, the three totals and a screenful of main-currency cells.
void BM_RefreshShownInMoney(benchmark::State& state)
{
    Window w(state.range(0));
    w.settings.setValue(IntSetting::EuroDisplay, static_cast<int>(state.range(1)));
    for (auto _ : state) {
        w.list.refresh();
        const ListTotals& t = w.list.totals();
        std::size_t shown = t.incomeText().size() + t.expenseText().size() + t.balanceText().size();
        for (std::size_t r = 0; r < std::min<std::size_t>(50, w.list.rowCount()); ++r) {
            shown += w.list.cellText(r, kColAmountBgl).size();
        }
        benchmark::DoNotOptimize(shown);
    }
}

void BM_RefreshCategoryWithSubcategories(benchmark::State& state)
{
    Window w(state.range(0));
    w.settings.setValue(IntSetting::ShowDataForSubCategories, 1);
    w.list.criteria().categories = {foodCategory(w.doc)};
    for (auto _ : state) {
        w.list.refresh();
        benchmark::DoNotOptimize(w.list.rowCount());
    }
    state.counters["rows"] = static_cast<double>(w.list.rowCount());
}

void BM_WordSearchDescriptionAndNotes(benchmark::State& state)
{
    Window w(state.range(0));
    SearchRequest request;
    request.text = cp1251::fromUtf8OrThrow("пазар КАРТА");
    request.mode = SearchRequest::Or;
    request.inDescription = true;
    request.inNotes = true;
    for (auto _ : state) {
        state.PauseTiming();
        w.list.refresh();
        state.ResumeTiming();
        w.list.search(request);
    }
}

void BM_AmountFilter(benchmark::State& state)
{
    Window w(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        w.list.refresh();
        state.ResumeTiming();
        w.list.filterByAmount(25.0, 5.0, true);
        benchmark::DoNotOptimize(w.list.rowCount());
    }
}

void BM_CashSummaryOfEveryCurrency(benchmark::State& state)
{
    Window w(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(cashRows(w.doc, w.settings));
    }
}

void BM_YearlySummary(benchmark::State& state)
{
    Window w(state.range(0));
    for (auto _ : state) {
        YearlySummary summary;
        benchmark::DoNotOptimize(computeYearlySummary(w.doc, 2025, summary));
    }
}

void BM_ImportIntoACopyOfItself(benchmark::State& state)
{
    const std::string bytes = serializeLedger(sharedLedger(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto w = std::make_unique<Window>(state.range(0));
        state.ResumeTiming();
        const ImportResult r = importLedger(w->doc, bytes, w->prompter);
        if (r.added != 0) {
            state.SkipWithError("an operation was imported twice");
        }
        state.PauseTiming();
        w.reset();
        state.ResumeTiming();
    }
}

// `steps` 0 measures the delete alone; otherwise the history keeps the step, as in the desktop
// program, which costs a move of each record into it.
void deleteEveryShownRow(benchmark::State& state, std::size_t steps)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto w = std::make_unique<Window>(state.range(0));
        w->doc.setHistoryLimit(steps);
        w->list.refresh();
        state.ResumeTiming();
        w->list.deleteShown();
        benchmark::DoNotOptimize(w->doc.operationCount());
        state.PauseTiming();
        w.reset();
        state.ResumeTiming();
    }
}

void BM_DeleteEveryShownRow(benchmark::State& state)
{
    deleteEveryShownRow(state, 0);
}

void BM_DeleteEveryShownRowKeepingTheStep(benchmark::State& state)
{
    deleteEveryShownRow(state, kUndoSteps);
}

// Deletes `rows` rows spread evenly over a ledger of `operations` with one command, as a filter
// that shows every tenth (or hundredth) entry and "Изтрий всички визуализирани записи" would.
// Gives the number of rows the list showed before.
std::size_t deleteSpreadRows(Window& w, std::int64_t operations, std::int64_t rows)
{
    w.doc.setHistoryLimit(kUndoSteps);
    w.list.refresh();
    const std::size_t shown = w.list.rowCount();
    const auto every = static_cast<std::size_t>(operations / rows);
    for (std::size_t row = 0; row < shown; ++row) {
        w.list.setSelected(row, row % every == 0);
    }
    w.list.deleteSelected();
    return shown;
}

// What the user waits for after Ctrl+Z (or Ctrl+Y): the records put back (or taken out again)
// and the list refilled.
void undoOrRedoDelete(benchmark::State& state, bool redo)
{
    const std::int64_t operations = state.range(0);
    const std::int64_t rows = state.range(1);
    for (auto _ : state) {
        state.PauseTiming();
        auto w = std::make_unique<Window>(operations);
        const std::size_t shown = deleteSpreadRows(*w, operations, rows);
        const std::size_t left = w->list.rowCount();
        if (redo) {
            w->doc.undo();
        }
        releaseFreeMemory();
        state.ResumeTiming();
        redo ? w->doc.redo() : w->doc.undo();
        w->list.refresh();
        state.PauseTiming();
        if (w->list.rowCount() != (redo ? left : shown)) {
            state.SkipWithError("the rows are not what the command left");
            break;
        }
        w.reset();
        state.ResumeTiming();
    }
    state.counters["rows_deleted"] = static_cast<double>(rows);
}

void BM_UndoDeleteOfRows(benchmark::State& state)
{
    undoOrRedoDelete(state, false);
}

void BM_RedoDeleteOfRows(benchmark::State& state)
{
    undoOrRedoDelete(state, true);
}

void undoSizes(benchmark::internal::Benchmark* b)
{
    b->Args({100'000, 10'000})
        ->Args({100'000, 100'000})
        ->Args({1'000'000, 10'000})
        ->Args({1'000'000, 100'000});
    b->Args({1'000'000, 1'000'000}); // every row: the holes are gone, so the list is merged anew
    b->ArgNames({"operations", "rows"})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(3);
}

void sizes(benchmark::internal::Benchmark* b)
{
    b->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();
}

} // namespace

BENCHMARK(BM_AddOperations)->Apply(sizes);
BENCHMARK(BM_DeleteAllByIdInRandomOrder)->Apply(sizes);
BENCHMARK(BM_DeleteAllByIdInListOrder)->Apply(sizes);
BENCHMARK(BM_ReadFileBytes)->Apply(sizes);
BENCHMARK(BM_Open)->Apply(sizes);
BENCHMARK(BM_SaveWithBackup)->Apply(sizes);
BENCHMARK(BM_RefreshNoFilter)->Apply(sizes);
BENCHMARK(BM_RefreshCategoryWithSubcategories)->Apply(sizes);
BENCHMARK(BM_RefreshShownInMoney)
    ->ArgsProduct({{100'000, 1'000'000}, {0, 1}})
    ->ArgNames({"operations", "euro"})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_WordSearchDescriptionAndNotes)->Apply(sizes);
BENCHMARK(BM_AmountFilter)->Apply(sizes);
BENCHMARK(BM_CashSummaryOfEveryCurrency)->Apply(sizes);
BENCHMARK(BM_YearlySummary)->Apply(sizes);
BENCHMARK(BM_ImportIntoACopyOfItself)->Apply(sizes);
BENCHMARK(BM_DeleteEveryShownRow)->Apply(sizes);
BENCHMARK(BM_DeleteEveryShownRowKeepingTheStep)->Apply(sizes);
BENCHMARK(BM_UndoDeleteOfRows)->Apply(undoSizes);
BENCHMARK(BM_RedoDeleteOfRows)->Apply(undoSizes);

#ifndef FINORA_BENCH_VIEW // then the view's bench starts Qt first
BENCHMARK_MAIN();
#endif
