// Select every row of the main list and set them paid, in the real view: the time before the
// question and after "Да", as a person waits for them.
#include "core/demo/ledger_generator.h"
#include "core/model/finora_doc.h"
#include "core/model/recording_prompter.h"
#include "core/settings/memory_settings_store.h"
#include "core/settings/settings.h"
#include "gui/window/finora_view.h"

#include <QApplication>
#include <QTableView>
#include <benchmark/benchmark.h>
#include <chrono>

using namespace finora;

namespace {

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_SelectAllAndSetPaidInTheView(benchmark::State& state)
{
    const FixedClock clock(DateTime::fromParts(2026, 11, 1, 12, 0, 0));
    MemorySettingsStore store;
    Settings settings(store);
    RecordingPrompter prompter{Answer::Yes};
    CFinoraDoc doc(clock);
    doc.replaceLedger(generateLedger(state.range(0), 42));
    CFinoraView view(doc, settings, prompter);
    view.resize(1400, 900);
    view.show();
    view.resetFilter(); // every row shown
    double beforeQuestion = 0, afterYes = 0;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        view.table()->setFocus();
        view.changeRows([&] {
            view.list().selectAll();
            return true;
        });
        benchmark::DoNotOptimize(view.grab()); // what the person sees before asking
        beforeQuestion += secondsSince(start);
        start = std::chrono::steady_clock::now();
        view.changeRows([&] { return view.list().setSelectedPaid(); });
        benchmark::DoNotOptimize(view.grab());
        afterYes += secondsSince(start);
    }
    const auto n = static_cast<double>(state.iterations());
    state.counters["before_question_ms"] = beforeQuestion / n * 1000.0;
    state.counters["after_yes_ms"] = afterYes / n * 1000.0;
}

} // namespace

BENCHMARK(BM_SelectAllAndSetPaidInTheView)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1); // the first set-paid marks the unpaid rows; a second would mark none

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
