#include "cli/commands.h"
#include "cli/json_writer.h"
#include "cli/output.h"
#include "core/categorise/learned_categories.h"
#include "core/importing/import_categories.h"
#include "core/importing/statement_import.h"
#include "core/statements/statement_reader.h"
#include "core/storage/file_io.h"

#include <charconv>

namespace finora::cli {
namespace {

std::string fileFailure(const std::string& path, const std::string& what)
{
    return "файлът „" + path + "“ " + what;
}

std::string readBytes(const std::string& path)
{
    std::string bytes;
    FileError error = FileError::None;
    if (!readWholeFile(path, bytes, &error)) {
        throw Failure{kUnreadable,
                      fileFailure(path, "не може да бъде отворен. " + describe(error))};
    }
    return bytes;
}

StatementReadOptions readOptions(const Arguments& args)
{
    StatementReadOptions options;
    if (const auto format = args.value("--format"); format && *format != "auto") {
        options.format = statementFormatFromName(*format);
        if (!options.format) {
            throw Failure{kUsage, "--format приема auto, csv, camt053, ofx, qif или mt940."};
        }
    }
    if (const auto order = args.value("--date-order")) {
        const std::pair<const char*, DateOrder> orders[] = {
            {"dmy", DateOrder::Dmy}, {"mdy", DateOrder::Mdy}, {"ymd", DateOrder::Ymd}};
        const auto* found = std::find_if(std::begin(orders), std::end(orders),
                                         [&](const auto& o) { return *order == o.first; });
        if (found == std::end(orders)) {
            throw Failure{kUsage, "--date-order приема dmy, mdy или ymd."};
        }
        options.dateOrder = found->second;
    }
    if (const auto profile = args.value("--profile")) {
        auto layout = readCsvLayoutJson(readBytes(*profile));
        if (!layout) {
            throw Failure{
                kUnreadable,
                oneLine(fileFailure(*profile, "не може да бъде прочетен: " + layout.error().where +
                                                  ": " + layout.error().reason))};
        }
        options.csvLayout = layout.value();
    }
    return options;
}

StatementImportOptions importOptions(Session& s)
{
    StatementImportOptions options;
    options.fileCurrency = s.args().value("--currency").value_or("");
    for (const std::string& given : s.args().all("--rate")) {
        const auto equals = given.find('=');
        const double rate =
            equals == std::string::npos ? 0.0 : parseAmount(given.substr(equals + 1), "--rate");
        if (equals == std::string::npos || equals == 0 || !(rate > 0.0)) {
            throw Failure{kUsage, "--rate се задава като КОД=КУРС, например USD=1,72."};
        }
        std::string code = given.substr(0, equals);
        std::transform(code.begin(), code.end(), code.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        options.rates[code] = rate;
    }
    if (const auto category = s.args().value("--category")) {
        options.category = static_cast<std::int32_t>(parseInteger(*category, "--category", 1));
        if (!s.doc().ledger().categories.find(options.category)) {
            throw Failure{kUsage, "в документа няма категория с номер " + *category + "."};
        }
    }
    return options;
}

const char* stateName(LineState state)
{
    switch (state) {
    case LineState::New:
        return "new";
    case LineState::Duplicate:
        return "duplicate";
    case LineState::NotAdded:
    case LineState::Unchosen:
        break;
    }
    return "not_added";
}

std::string amountOf(const ImportLine& line)
{
    const std::int64_t cents = line.amountCents;
    std::string text = std::to_string(cents / 100) + ",";
    text += static_cast<char>('0' + cents % 100 / 10);
    text += static_cast<char>('0' + cents % 10);
    return (line.type == kIncome ? "" : "-") + text;
}

void writeOutcome(std::ostream& out, std::string_view format, const ImportPlan& plan,
                  std::size_t added, const ImportOutcome& outcome, bool dryRun, bool json)
{
    const std::size_t duplicates = plan.count(LineState::Duplicate);
    const std::size_t notAdded = plan.count(LineState::NotAdded);
    if (!json) {
        for (const ImportLine& line : plan.lines) {
            out << line.date.dateText() << '\t' << utf8(line.description) << '\t' << amountOf(line)
                << '\t' << utf8(line.currency) << '\t' << stateName(line.state);
            if (!line.reason.empty()) {
                out << '\t' << line.reason;
            }
            out << '\n';
        }
        out << (dryRun ? "Биха били добавени: " : "Добавени: ") << added
            << ", вече в документа: " << duplicates << ", недобавени: " << notAdded
            << " (прочетени " << plan.lines.size() << ")\n";
        return;
    }
    JsonWriter w(out);
    w.beginObject().key("format").value(format);
    w.key("read").value(static_cast<std::int64_t>(plan.lines.size()));
    w.key("added").value(static_cast<std::int64_t>(added));
    w.key("duplicates").value(static_cast<std::int64_t>(duplicates));
    w.key("not_added").value(static_cast<std::int64_t>(notAdded));
    w.key("dry_run").value(dryRun).key("import_category");
    outcome.category.empty() ? w.null() : w.value(utf8(outcome.category));
    w.key("lines").beginArray();
    for (const ImportLine& line : plan.lines) {
        w.beginObject().key("date").value(line.date.dateText());
        w.key("description").value(utf8(line.description));
        w.key("notes").value(utf8(line.notes));
        w.key("type").value(line.type);
        w.key("amount").value(static_cast<double>(line.amountCents) / 100.0);
        w.key("currency").value(utf8(line.currency)).key("rate").value(line.rate);
        w.key("category").value(line.category).key("category_source");
        w.value(suggestionSourceName(line.categorySource));
        w.key("state").value(stateName(line.state)).key("reason").value(line.reason);
        w.key("note").value(line.note).endObject();
    }
    w.endArray().endObject();
    out << '\n';
}

} // namespace

int cmdImportStatement(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const std::string& file = s.args().positional[2];
    const bool dryRun = s.args().has("--dry-run");
    const StatementReadOptions reading = readOptions(s.args());
    if (!dryRun) {
        s.lockForWriting(path);
    }
    s.open(path, true);
    const StatementImportOptions options = importOptions(s);

    const auto read = readStatement(readBytes(file), reading);
    if (!read) {
        throw Failure{kUnreadable,
                      oneLine(fileFailure(file, "не може да бъде прочетен: " + read.error().where +
                                                    ": " + read.error().reason))};
    }
    const Statement& statement = read.value();
    if (statement.dateOrderAmbiguous) {
        throw Failure{kUsage, "датите във „" + file +
                                  "“ могат да се четат по повече от един начин; посочете "
                                  "--date-order dmy, mdy или ymd."};
    }
    ImportPlan plan = planStatementImport(s.doc(), s.settings(), statement.entries, options);
    if (options.category == 0) {
        const LearnedCategories learned(s.doc());
        categoriseImportPlan(s.doc(), &learned, plan);
    }
    if (!plan.missingRates.empty()) {
        const std::string& code = plan.missingRates.front();
        throw Failure{kUsage, "няма курс за валутата " + code + "; задайте го с --rate " + code +
                                  "=КУРС. Нищо не е добавено."};
    }
    ImportOutcome outcome;
    std::size_t added = plan.count(LineState::New);
    if (!dryRun && added > 0) {
        outcome = applyStatementImport(s.doc(), plan);
        added = outcome.added;
        s.save(path);
    }
    writeOutcome(out, statementFormatName(statement.format), plan, added, outcome, dryRun,
                 s.args().has("--json"));
    return kOk;
}

} // namespace finora::cli
