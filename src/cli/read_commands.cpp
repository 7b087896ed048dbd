#include "cli/commands.h"
#include "cli/list_options.h"
#include "cli/output.h"
#include "core/reports/currency_cash.h"
#include "core/reports/list_csv.h"
#include "core/reports/print_layout.h"
#include "core/reports/yearly_summary.h"
#include "core/storage/file_io.h"

#include <filesystem>

namespace finora::cli {

int cmdInfo(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    s.open(path, false);
    writeInfo(out, path, s.doc().ledger(), s.openedVersion(), s.args().has("--json"));
    return kOk;
}

int cmdDump(Session& s, std::ostream& out)
{
    s.open(s.args().positional[1], true);
    writeDump(out, s.doc().ledger(), s.openedVersion());
    return kOk;
}

int cmdList(Session& s, std::ostream& out)
{
    s.open(s.args().positional[1], true);
    OperationsList list(s.doc(), s.settings(), s.prompter());
    buildList(s, list);
    writeList(out, list, s.args().has("--json"));
    return kOk;
}

int cmdExport(Session& s, std::ostream& out)
{
    if (!s.args().has("--csv")) {
        throw Failure{kUsage, "export изисква --csv."};
    }
    s.open(s.args().positional[1], true);
    OperationsList list(s.doc(), s.settings(), s.prompter());
    buildList(s, list);
    writeListCsv(out, list, allListColumns());
    return kOk;
}

int cmdCash(Session& s, std::ostream& out)
{
    s.open(s.args().positional[1], true);
    writeCash(out, cashRows(s.doc(), s.settings()), s.settings().mainMoney(),
              s.args().has("--json"));
    return kOk;
}

int cmdYear(Session& s, std::ostream& out)
{
    s.open(s.args().positional[1], true);
    const int year = parseYear(s.args().positional[2]);
    YearlySummary summary;
    const bool hasData = computeYearlySummary(s.doc(), year, summary, s.settings().mainMoney());
    writeYear(out, year, hasData, summary);
    return kOk;
}

int cmdReport(Session& s, std::ostream& out)
{
    const auto pdf = s.args().value("--pdf");
    if (!pdf) {
        throw Failure{kUsage, "report изисква --pdf OUT."};
    }
    Renderer& renderer = s.renderer();
    const std::string& path = s.args().positional[1];
    s.open(path, true);
    OperationsList list(s.doc(), s.settings(), s.prompter());
    buildList(s, list);
    const bool landscape = s.args().has("--landscape");
    const int pages = planReport(list.rowCount(), 0, false, landscape).maxPage;
    if (pages == 0) {
        throw Failure{kNotWritten, "списъкът е празен: справката няма нито една страница."};
    }
    ReportContext context = reportContext(s.doc(), list);
    // The footer names the ledger by its full path, as the desktop program's own does.
    std::error_code ec;
    const auto absolute = std::filesystem::absolute(pathFromUtf8(path), ec);
    if (!ec) {
        context.filePath = pathToUtf8(absolute);
    }
    if (!renderer.reportPdf(*pdf, list, context, s.settings(), landscape)) {
        throw Failure{kNotWritten, "справката не може да бъде записана в „" + *pdf + "“."};
    }
    out << "Справката е записана: " << *pdf << " (страници: " << pages << ")\n";
    return kOk;
}

namespace {

// A side of the chart: up to 8000 pixels, a picture, not a way to exhaust memory.
int chartSide(const Arguments& a, std::string_view option, const char* fallback)
{
    const std::int64_t value = parseInteger(a.value(option).value_or(fallback), option, 1);
    if (value > 8000) {
        throw Failure{kUsage, std::string(option) + " може да бъде най-много 8000."};
    }
    return static_cast<int>(value);
}

} // namespace

int cmdChart(Session& s, std::ostream& out)
{
    const auto png = s.args().value("--png");
    if (!png) {
        throw Failure{kUsage, "chart изисква --png OUT."};
    }
    const int width = chartSide(s.args(), "--width", "800");
    const int height = chartSide(s.args(), "--height", "500");
    Renderer& renderer = s.renderer();
    s.open(s.args().positional[1], true);
    const int year = parseYear(s.args().positional[2]);
    YearlySummary summary;
    computeYearlySummary(s.doc(), year, summary, s.settings().mainMoney());
    if (!renderer.chartPng(*png, summary, year, width, height)) {
        throw Failure{kNotWritten, "диаграмата не може да бъде записана в „" + *png + "“."};
    }
    out << "Диаграмата е записана: " << *png << '\n';
    return kOk;
}

int cmdShowFilter(Session& s, std::ostream& out)
{
    writeFilter(out, loadFilter(s.args().positional[1]));
    return kOk;
}

} // namespace finora::cli
