#include "cli/cli_app.h"

#include "cli/json_writer.h"
#include "core/demo/ledger_generator.h"
#include "core/model/clock.h"
#include "core/model/document_host.h"
#include "core/model/finora_doc.h"
#include "core/query/operations_list.h"
#include "core/reports/currency_cash.h"
#include "core/reports/list_csv.h"
#include "core/reports/yearly_summary.h"
#include "core/settings/overlay_settings_store.h"
#include "core/settings/settings.h"
#include "core/storage/backup_writer.h"
#include "core/storage/document_storage.h"
#include "core/storage/file_io.h"
#include "core/storage/filter_file.h"
#include "core/storage/ledger_import.h"
#include "core/storage/ledger_lock.h"
#include "core/text/cp1251.h"
#include "finora_version.h"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <thread>

namespace finora::cli {
namespace {

// A failure that ends the command with its exit status and one line for the user.
struct Failure {
    int status;
    std::string message;
};

struct OptionSpec {
    std::string_view name;
    bool takesValue;
};

// Every option any command knows; a command ignores those that do not concern it.
constexpr OptionSpec kOptions[] = {
    {"--help", false},
    {"--version", false},
    {"--json", false},
    {"--now", true},
    {"--password", true},
    {"-o", true},
    {"--operations", true},
    {"--seed", true},
    {"--force", false},
    {"--new-password", true},
    {"--csv", false},
    {"--from", true},
    {"--to", true},
    {"--type", true},
    {"--currency", true},
    {"--paid", true},
    {"--category", true},
    {"--subcategories", false},
    {"--filter", true},
    {"--search", true},
    {"--mode", true},
    {"--exact", false},
    {"--in", true},
    {"--case-sensitive", false},
    {"--only-matching", false},
    {"--amount", true},
    {"--tolerance", true},
    {"--also-bgl", false},
    {"--pdf", true},
    {"--landscape", false},
    {"--png", true},
    {"--width", true},
    {"--height", true},
};

struct Arguments {
    std::vector<std::string> positional;
    std::map<std::string, std::vector<std::string>, std::less<>> values;
    std::set<std::string, std::less<>> flags;

    bool has(std::string_view flag) const { return flags.count(flag) != 0; }
    std::optional<std::string> value(std::string_view name) const
    {
        const auto it = values.find(name);
        if (it == values.end()) {
            return std::nullopt;
        }
        return it->second.back();
    }
    std::vector<std::string> all(std::string_view name) const
    {
        const auto it = values.find(name);
        return it == values.end() ? std::vector<std::string>() : it->second;
    }
};

std::string oneLine(std::string text)
{
    for (char& c : text) {
        if (c == '\n') {
            c = ' ';
        }
    }
    return text;
}

Arguments parse(const std::vector<std::string>& args)
{
    Arguments a;
    for (std::size_t i = 0; i < args.size(); ++i) {
        std::string arg = args[i];
        if (arg.size() < 2 || arg[0] != '-') {
            a.positional.push_back(arg);
            continue;
        }
        std::optional<std::string> inlineValue;
        if (const auto eq = arg.find('='); eq != std::string::npos && arg.starts_with("--")) {
            inlineValue = arg.substr(eq + 1);
            arg.resize(eq);
        }
        const auto spec = std::find_if(std::begin(kOptions), std::end(kOptions),
                                       [&](const OptionSpec& s) { return s.name == arg; });
        if (spec == std::end(kOptions)) {
            throw Failure{kUsage, "непозната опция „" + arg + "“. Вижте finora-cli --help."};
        }
        if (!spec->takesValue) {
            if (inlineValue) {
                throw Failure{kUsage, "опцията „" + arg + "“ не приема стойност."};
            }
            a.flags.insert(arg);
            continue;
        }
        if (!inlineValue) {
            if (i + 1 >= args.size()) {
                throw Failure{kUsage, "опцията „" + arg + "“ изисква стойност."};
            }
            inlineValue = args[++i];
        }
        a.values[arg].push_back(*inlineValue);
    }
    return a;
}

std::int64_t parseInteger(const std::string& text, std::string_view option, std::int64_t min)
{
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || value < min) {
        throw Failure{kUsage, "невалидна стойност „" + text + "“ за " + std::string(option) + "."};
    }
    return value;
}

DateTime parseNow(const std::string& text)
{
    int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0, used = 0;
    const bool complete = std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d%n", &y, &mo, &d, &h,
                                      &mi, &s, &used) == 6 &&
                          static_cast<std::size_t>(used) == text.size();
    const DateTime now = DateTime::fromParts(y, mo, d, h, mi, s);
    if (!complete || !now.isValid()) {
        throw Failure{kUsage, "--now очаква дата и час във вида \"ГГГГ-ММ-ДД ЧЧ:ММ:СС\", а не „" +
                                  text + "“."};
    }
    return now;
}

// Answers the core's questions the careful way, so that nothing is written over that the
// command line did not name. What went wrong is learnt from the results, never from the messages.
class CliPrompter final : public Prompter {
public:
    Answer show(const Message& message) override
    {
        switch (message.buttons) {
        case MessageButtons::Ok:
            return Answer::Ok;
        case MessageButtons::YesNo:
            return Answer::No;
        case MessageButtons::YesNoCancel:
            break;
        }
        return Answer::Cancel;
    }
};

// How long a writer waits for another finora-cli command that holds the same ledger.
constexpr auto kWaitForOtherCommand = std::chrono::seconds(30);

// What every command works with: one document and the code paths the desktop program uses.
class Session {
public:
    Session(const Arguments& args, const SettingsStore& userSettings, Renderer* renderer)
        : m_args(args), m_renderer(renderer), m_store(userSettings), m_settings(m_store),
          m_fixed(args.value("--now") ? parseNow(*args.value("--now")) : DateTime()),
          m_clock(args.value("--now") ? static_cast<const Clock&>(m_fixed) : m_system),
          m_doc(m_clock), m_storage(m_doc, m_settings, m_prompter, m_host, m_backups)
    {
        m_storage.setChangedOnDisk(args.has("--force") ? DocumentStorage::ChangedOnDisk::Overwrite
                                                       : DocumentStorage::ChangedOnDisk::Refuse);
        // Older files are converted without a question: that is the command line's contract.
        m_storage.setOlderFormat(DocumentStorage::OlderFormat::Convert);
    }

    // A command that writes a ledger holds its lock from before it reads until it has written:
    // another finora-cli command is waited for, and a ledger open in the desktop program is
    // refused unless --force says to write it all the same.
    void lockForWriting(const std::string& path)
    {
        const auto deadline = std::chrono::steady_clock::now() + kWaitForOtherCommand;
        for (;;) {
            if (m_lock.acquire(path, kCommandLineProgram, m_clock.now()) !=
                LedgerLock::Result::HeldByOther) {
                return; // taken, or no lock can be kept there and so nobody holds one
            }
            const LockOwner& holder = m_lock.holder();
            if (holder.program == kCommandLineProgram &&
                std::chrono::steady_clock::now() < deadline) {
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                continue;
            }
            if (m_args.has("--force")) {
                return;
            }
            throw Failure{kHeld, "документът „" + path + "“ е отворен от " + describeOwner(holder) +
                                     "; затворете го там или добавете --force."};
        }
    }

    CFinoraDoc& doc() { return m_doc; }
    const Arguments& args() const { return m_args; }
    Settings& settings() { return m_settings; }
    Prompter& prompter() { return m_prompter; }
    double openedVersion() const { return m_storage.openedVersion(); }
    const Clock& clock() const { return m_clock; }
    Renderer& renderer() const
    {
        if (!m_renderer) {
            throw Failure{kUsage,
                          "тази програма е построена без рисуване: report и chart не са достъпни."};
        }
        return *m_renderer;
    }

    // Opens the ledger; with `needOperations`, a locked one needs the right --password.
    void open(const std::string& path, bool needOperations)
    {
        const auto result = m_storage.open(path);
        if (result != DocumentStorage::OpenResult::Opened) {
            throw openFailure(result, path);
        }
        if (needOperations) {
            unlockWithPassword(CFinoraDoc::LockCheck::TemporaryUnlock);
        }
    }

    // A protected ledger needs the right --password: to be unlocked for this command, or to
    // have its protection removed.
    void unlockWithPassword(CFinoraDoc::LockCheck mode)
    {
        if (m_doc.lockText().empty() ||
            (mode == CFinoraDoc::LockCheck::TemporaryUnlock && !m_doc.isLocked())) {
            return;
        }
        const auto password = m_args.value("--password");
        if (!password || !m_doc.checkLock(toCp1251(*password, "--password"), mode)) {
            throw Failure{kLocked, password ? "паролата не е вярна за този документ."
                                            : "документът е защитен с парола; посочете я с "
                                              "--password."};
        }
    }

    void save(const std::string& path)
    {
        if (!m_storage.save(path)) {
            throw saveFailure(m_storage.lastSaveFailure(), path);
        }
        m_backups.waitIdle();
    }

    static std::string toCp1251(const std::string& utf8, std::string_view what)
    {
        std::string out;
        cp1251::EncodeError error;
        if (!cp1251::fromUtf8(utf8, out, &error)) {
            throw Failure{kUsage, std::string(what) + ": " + error.message()};
        }
        return out;
    }

private:
    Failure openFailure(DocumentStorage::OpenResult result, const std::string& path) const
    {
        using R = DocumentStorage::OpenResult;
        switch (result) {
        case R::Newer:
            return {kNewerFormat, oneLine(DocumentStorage::kNewerFileText)};
        case R::ConversionDeclined:
            return {kUnreadable, oneLine(DocumentStorage::kCannotContinueText)};
        case R::Corrupt:
            return {kUnreadable, DocumentStorage::corruptFileText(path)};
        case R::Cancelled: // only asked with a lock program, which the command line never sets
            return {kHeld, "документът „" + path + "“ е отворен от друга програма."};
        case R::Unreadable:
        case R::Opened:
            break;
        }
        return {kUnreadable,
                oneLine(DocumentStorage::cannotOpenText(path, m_storage.lastFileError()))};
    }

    Failure saveFailure(DocumentStorage::SaveFailure why, const std::string& path) const
    {
        using F = DocumentStorage::SaveFailure;
        switch (why) {
        case F::ChangedOnDisk:
            return {kNotWritten, "файлът „" + path +
                                     "“ беше променен от друга програма по време на командата; "
                                     "нищо не е записано."};
        case F::ReadOnly:
            return {kNotWritten, "файлът „" + path + "“ е защитен от запис; нищо не е записано."};
        case F::WriteError:
            return {kNotWritten,
                    oneLine(DocumentStorage::cannotWriteText(path, m_storage.lastFileError()))};
        case F::HeldByOther: // the storage keeps no lock for the command line
        case F::Cancelled:   // no file dialog to answer
        case F::None:
            break;
        }
        return {kNotWritten, "файлът „" + path + "“ не е записан."};
    }

    const Arguments& m_args;
    Renderer* m_renderer;
    OverlaySettingsStore m_store;
    Settings m_settings;
    SystemClock m_system;
    FixedClock m_fixed;
    const Clock& m_clock;
    CliPrompter m_prompter;
    NoDocumentHost m_host;
    BackupWriter m_backups;
    CFinoraDoc m_doc;
    DocumentStorage m_storage;
    LedgerLock m_lock; // last: let go only once the backup is written
};

std::string utf8(std::string_view cp1251Text)
{
    return cp1251::toUtf8(cp1251Text);
}

void writeDateTime(JsonWriter& json, const DateTime& dt)
{
    json.beginObject().key("status").value(dt.status()).key("days").value(dt.days()).endObject();
}

void writeCounters(JsonWriter& json, const LedgerCounters& c)
{
    json.beginObject()
        .key("currency")
        .value(c.nextCurrencyId)
        .key("category")
        .value(c.nextCategoryId)
        .key("operation")
        .value(c.nextOperationId)
        .key("master")
        .value(c.nextMasterId)
        .endObject();
}

// --- the commands

// `new` and `generate` make a ledger from nothing: an existing file is replaced only when asked.
void refuseExisting(const Session& s, const std::string& path)
{
    std::error_code ec;
    if (!s.args().has("--force") && std::filesystem::exists(pathFromUtf8(path), ec)) {
        throw Failure{kNotWritten,
                      "файлът „" + path + "“ вече съществува; с --force ще бъде заменен."};
    }
}

int cmdNew(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    refuseExisting(s, path);
    s.lockForWriting(path);
    s.save(path);
    out << "Създаден е празен документ: " << path << '\n';
    return kOk;
}

int cmdInfo(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    s.open(path, false);
    const Ledger& l = s.doc().ledger();
    const double version = s.openedVersion();
    if (s.args().has("--json")) {
        JsonWriter json(out);
        json.beginObject()
            .key("file")
            .value(path)
            .key("version")
            .value(version)
            .key("currencies")
            .value(static_cast<std::int64_t>(l.currencies.size()))
            .key("categories")
            .value(static_cast<std::int64_t>(l.categories.size()))
            .key("operations")
            .value(static_cast<std::int64_t>(l.operations.size()))
            .key("counters");
        writeCounters(json, l.counters);
        json.key("locked").value(!l.lockText.empty()).endObject();
        out << '\n';
        return kOk;
    }
    std::array<char, 32> v{};
    const auto end = std::to_chars(v.data(), v.data() + v.size(), version).ptr;
    out << "Файл: " << path << '\n'
        << "Версия на формата: " << std::string_view(v.data(), end - v.data()) << '\n'
        << "Валути: " << l.currencies.size() << '\n'
        << "Категории: " << l.categories.size() << '\n'
        << "Операции: " << l.operations.size() << '\n'
        << "Броячи: валути " << l.counters.nextCurrencyId << ", категории "
        << l.counters.nextCategoryId << ", операции " << l.counters.nextOperationId << ", плащания "
        << l.counters.nextMasterId << '\n'
        << "Защита с парола: " << (l.lockText.empty() ? "не" : "да") << '\n';
    return kOk;
}

int cmdDump(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    s.open(path, true);
    const Ledger& l = s.doc().ledger();
    JsonWriter json(out);
    json.beginObject().key("version").value(s.openedVersion());
    json.key("lock_text").value(utf8(l.lockText));
    json.key("counters");
    writeCounters(json, l.counters);
    json.key("currencies").beginArray();
    for (const Currency& c : l.currencies) {
        json.beginObject().key("id").value(c.id()).key("name").value(utf8(c.name())).endObject();
    }
    json.endArray().key("categories").beginArray();
    for (const Category& c : l.categories) {
        json.beginObject()
            .key("id")
            .value(c.id())
            .key("name")
            .value(utf8(c.name()))
            .key("parent")
            .value(c.parentId())
            .endObject();
    }
    json.endArray().key("operations").beginArray();
    for (const Operation& op : l.operations) {
        json.beginObject().key("id").value(op.id()).key("date");
        writeDateTime(json, op.date());
        json.key("description")
            .value(utf8(op.description()))
            .key("type")
            .value(op.type())
            .key("category")
            .value(op.categoryId())
            .key("amount")
            .value(op.amount())
            .key("currency")
            .value(op.currencyId())
            .key("amount_bgl")
            .value(op.amountBgl())
            .key("notes")
            .value(utf8(op.notes()))
            .key("last_modified");
        writeDateTime(json, op.lastModified());
        json.key("paid").value(op.paid()).key("master").value(op.masterId()).endObject();
    }
    json.endArray().endObject();
    out << '\n';
    return kOk;
}

int cmdConvert(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const std::string target = s.args().value("-o").value_or(path);
    s.lockForWriting(target);
    s.open(path, false);
    s.save(target);
    out << "Записан във формат 1.4: " << target << '\n';
    return kOk;
}

int cmdGenerate(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const auto count = s.args().value("--operations");
    if (!count) {
        throw Failure{kUsage, "generate изисква --operations N."};
    }
    const std::int64_t n = parseInteger(*count, "--operations", 0);
    if (n > 50'000'000) {
        throw Failure{kUsage, "--operations може да бъде най-много 50000000."};
    }
    const auto seed = static_cast<std::uint64_t>(
        parseInteger(s.args().value("--seed").value_or("1"), "--seed", 0));
    refuseExisting(s, path);
    s.lockForWriting(path);
    s.doc().replaceLedger(generateLedger(n, seed));
    s.save(path);
    out << "Създаден е документ с " << n << " операции: " << path << '\n';
    return kOk;
}

// --- filter, search and amount options

DateTime parseDate(const std::string& text, std::string_view option)
{
    int d = 0, m = 0, y = 0, used = 0;
    const bool complete = std::sscanf(text.c_str(), "%2d-%2d-%4d%n", &d, &m, &y, &used) == 3 &&
                          static_cast<std::size_t>(used) == text.size();
    const DateTime date = DateTime::fromParts(y, m, d);
    if (!complete || !date.isValid()) {
        throw Failure{kUsage,
                      std::string(option) + " очаква дата във вида Д-М-ГГГГ, а не „" + text + "“."};
    }
    return date;
}

double parseAmount(const std::string& text, std::string_view option)
{
    double value = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        throw Failure{kUsage, std::string(option) + " очаква число, а не „" + text + "“."};
    }
    return value;
}

int parseChoice(const std::string& text, std::string_view option)
{
    const std::int64_t value = parseInteger(text, option, 0);
    if (value > 2) {
        throw Failure{kUsage, std::string(option) + " приема 0, 1 или 2."};
    }
    return static_cast<int>(value);
}

StoredFilter loadFilter(const std::string& path)
{
    auto loaded = loadFilterFile(path);
    if (!loaded) {
        throw Failure{kUnreadable, oneLine(filterLoadMessage(loaded.error(), path))};
    }
    return std::move(loaded.value());
}

// The criteria the options describe: "без филтър" values, or those of a filter file, with the
// options given beside it on top.
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
        f.criteria.currency = Session::toCp1251(*v, "--currency");
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

SearchRequest searchFromOptions(const Arguments& a)
{
    SearchRequest r;
    r.text = Session::toCp1251(*a.value("--search"), "--search");
    const std::string mode = a.value("--mode").value_or("and");
    if (mode == "and") {
        r.mode = SearchRequest::And;
    } else if (mode == "or") {
        r.mode = SearchRequest::Or;
    } else if (mode == "not") {
        r.mode = SearchRequest::Not;
    } else {
        throw Failure{kUsage, "--mode приема and, or или not."};
    }
    r.exactPhrase = a.has("--exact");
    r.caseSensitive = a.has("--case-sensitive");
    r.showOnlyMatching = a.has("--only-matching");
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
    return r;
}

// The main window's list after refresh, then the search, then the amount filter.
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

int cmdList(Session& s, std::ostream& out)
{
    s.open(s.args().positional[1], true);
    OperationsList list(s.doc(), s.settings(), s.prompter());
    buildList(s, list);
    const ListTotals& t = list.totals();
    if (s.args().has("--json")) {
        JsonWriter json(out);
        json.beginObject().key("columns").beginArray();
        for (const ListColumnSpec& c : listColumns()) {
            json.value(c.header);
        }
        json.endArray().key("rows").beginArray();
        for (std::size_t r = 0; r < list.rowCount(); ++r) {
            json.beginObject().key("cells").beginArray();
            for (int c = 0; c < kListColumnCount; ++c) {
                json.value(utf8(list.cellText(r, c)));
            }
            json.endArray().key("selected").value(list.isSelected(r)).endObject();
        }
        json.endArray()
            .key("totals")
            .beginObject()
            .key("income")
            .value(utf8(t.incomeText()))
            .key("expense")
            .value(utf8(t.expenseText()))
            .key("balance")
            .value(utf8(t.balanceText()))
            .endObject()
            .endObject();
        out << '\n';
        return kOk;
    }
    for (std::size_t r = 0; r < list.rowCount(); ++r) {
        for (int c = 0; c < kListColumnCount; ++c) {
            out << (c ? "\t" : "") << utf8(list.cellText(r, c));
        }
        out << '\n';
    }
    out << "приходи: " << utf8(t.incomeText()) << "\nразходи: " << utf8(t.expenseText())
        << "\nбаланс: " << utf8(t.balanceText()) << '\n';
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
    const auto rows = cashRows(s.doc(), s.settings());
    if (s.args().has("--json")) {
        JsonWriter json(out);
        json.beginObject().key("columns").beginArray();
        for (const char* h : cashColumnHeaders()) {
            json.value(h);
        }
        json.endArray().key("rows").beginArray();
        for (const CashRow& row : rows) {
            json.beginObject().key("cells").beginArray();
            for (const std::string& cell : row) {
                json.value(utf8(cell));
            }
            json.endArray().endObject();
        }
        json.endArray().endObject();
        out << '\n';
        return kOk;
    }
    for (const CashRow& row : rows) {
        for (std::size_t c = 1; c < row.size(); ++c) {
            out << (c > 1 ? "\t" : "") << utf8(row[c]);
        }
        out << '\n';
    }
    return kOk;
}

int parseYear(const std::string& text)
{
    return static_cast<int>(
        std::clamp<std::int64_t>(parseInteger(text, "YEAR", INT32_MIN), INT32_MIN, INT32_MAX));
}

int cmdYear(Session& s, std::ostream& out)
{
    s.open(s.args().positional[1], true);
    const int year = parseYear(s.args().positional[2]);
    YearlySummary summary;
    const bool hasData = computeYearlySummary(s.doc(), year, summary);
    JsonWriter json(out);
    json.beginObject()
        .key("year")
        .value(static_cast<std::int64_t>(year))
        .key("has_data")
        .value(hasData)
        .key("maximum")
        .value(summary.maximum)
        .key("income")
        .beginArray();
    for (double v : summary.income) {
        json.value(v);
    }
    json.endArray().key("expense").beginArray();
    for (double v : summary.expense) {
        json.value(v);
    }
    json.endArray()
        .key("year_income")
        .value(summary.yearIncome)
        .key("year_expense")
        .value(summary.yearExpense)
        .endObject();
    out << '\n';
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

int cmdChart(Session& s, std::ostream& out)
{
    const auto png = s.args().value("--png");
    if (!png) {
        throw Failure{kUsage, "chart изисква --png OUT."};
    }
    // Up to 8000 pixels a side: a picture, not a way to exhaust memory.
    const auto side = [&](std::string_view option, const char* fallback) {
        const std::int64_t value =
            parseInteger(s.args().value(option).value_or(fallback), option, 1);
        if (value > 8000) {
            throw Failure{kUsage, std::string(option) + " може да бъде най-много 8000."};
        }
        return static_cast<int>(value);
    };
    const int width = side("--width", "800");
    const int height = side("--height", "500");
    Renderer& renderer = s.renderer();
    s.open(s.args().positional[1], true);
    const int year = parseYear(s.args().positional[2]);
    YearlySummary summary;
    computeYearlySummary(s.doc(), year, summary);
    if (!renderer.chartPng(*png, summary, year, width, height)) {
        throw Failure{kNotWritten, "диаграмата не може да бъде записана в „" + *png + "“."};
    }
    out << "Диаграмата е записана: " << *png << '\n';
    return kOk;
}

int cmdImport(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const std::string& other = s.args().positional[2];
    const std::string target = s.args().value("-o").value_or(path);
    s.lockForWriting(target);
    s.open(path, true);
    std::string bytes;
    FileError error = FileError::None;
    if (!readWholeFile(other, bytes, &error)) {
        throw Failure{kUnreadable,
                      "файлът „" + other + "“ не може да бъде отворен. " + describe(error)};
    }
    const ImportResult r = importLedger(s.doc(), bytes, s.prompter());
    if (r.status != ImportResult::Status::Imported) {
        throw Failure{r.status == ImportResult::Status::Newer ? kNewerFormat : kUnreadable,
                      oneLine(r.message)};
    }
    s.save(target);
    if (s.args().has("--json")) {
        JsonWriter json(out);
        json.beginObject().key("added").value(r.added).key("skipped").value(r.skipped).key(
            "import_category");
        if (r.importCategory) {
            json.value(utf8(*r.importCategory));
        } else {
            json.null();
        }
        json.key("message").value(r.message).endObject();
        out << '\n';
        return kOk;
    }
    out << r.message << '\n';
    return kOk;
}

int cmdLock(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const auto password = s.args().value("--new-password");
    if (!password || password->empty()) {
        throw Failure{kUsage, "lock изисква непразна --new-password."};
    }
    s.lockForWriting(path);
    s.open(path, false);
    // Changing an existing protection takes the current password first.
    s.unlockWithPassword(CFinoraDoc::LockCheck::RemoveProtection);
    s.doc().setLock(Session::toCp1251(*password, "--new-password"));
    s.save(path);
    out << "Документът е защитен с парола: " << path << '\n';
    return kOk;
}

int cmdUnlock(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    s.lockForWriting(path);
    s.open(path, false);
    if (s.doc().lockText().empty()) {
        out << "Документът не е защитен с парола: " << path << '\n';
        return kOk;
    }
    s.unlockWithPassword(CFinoraDoc::LockCheck::RemoveProtection);
    s.save(path);
    out << "Документът вече не е защитен с парола: " << path << '\n';
    return kOk;
}

int cmdSaveFilter(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const StoredFilter f = criteriaFromOptions(s);
    FileError error = FileError::None;
    if (!saveFilterFile(path, f, &error)) {
        throw Failure{kNotWritten,
                      "филтърът не може да бъде записан в „" + path + "“. " + describe(error)};
    }
    out << "Филтърът е записан: " << path << '\n';
    return kOk;
}

int cmdShowFilter(Session& s, std::ostream& out)
{
    const std::string& path = s.args().positional[1];
    const StoredFilter f = loadFilter(path);
    JsonWriter json(out);
    json.beginObject()
        .key("from")
        .value(f.criteria.from.dateText())
        .key("to")
        .value(f.criteria.to.dateText())
        .key("type")
        .value(static_cast<std::int64_t>(f.criteria.typeFilter))
        .key("categories")
        .beginArray();
    for (std::int32_t id : f.criteria.categories) {
        json.value(id);
    }
    json.endArray()
        .key("subcategories")
        .value(f.includeSubcategories)
        .key("currency")
        .value(utf8(f.criteria.currency))
        .key("paid")
        .value(static_cast<std::int64_t>(f.criteria.paidState))
        .endObject();
    out << '\n';
    return kOk;
}

struct Command {
    std::string_view name;
    std::size_t arguments; // positional ones after the command's name
    int (*run)(Session&, std::ostream&);
    std::string_view usage;
};

constexpr Command kCommands[] = {
    {"new", 1, cmdNew, "new FILE [--force]                 празен документ"},
    {"info", 1, cmdInfo, "info FILE [--json]                 версия, брой записи, броячи, защита"},
    {"dump", 1, cmdDump, "dump FILE --json                   всички записи и броячи като JSON"},
    {"convert", 1, cmdConvert, "convert FILE [-o OUT]              записва във формат 1.4"},
    {"generate", 1, cmdGenerate,
     "generate FILE --operations N [--seed S] [--force]   примерен документ за демонстрации и "
     "измервания"},
    {"list", 1, cmdList,
     "list FILE [филтър] [търсене] [сума] [--json]   списъкът на главния прозорец"},
    {"export", 1, cmdExport,
     "export FILE --csv [филтър] [търсене] [сума]   същите редове като CSV"},
    {"cash", 1, cmdCash, "cash FILE [--json]                 валутната каса"},
    {"year", 2, cmdYear, "year FILE YEAR                     приходи и разходи по месеци"},
    {"report", 1, cmdReport,
     "report FILE --pdf OUT [филтър] [търсене] [сума] [--landscape]   отпечатаната справка като "
     "PDF"},
    {"chart", 2, cmdChart,
     "chart FILE YEAR --png OUT [--width W --height H]   диаграмата на годината като PNG"},
    {"import", 2, cmdImport, "import FILE OTHER [-o OUT] [--json]   добавя операциите на OTHER"},
    {"lock", 1, cmdLock, "lock FILE --new-password P        защитава документа с парола"},
    {"unlock", 1, cmdUnlock, "unlock FILE --password P           премахва защитата"},
    {"save-filter", 1, cmdSaveFilter, "save-filter OUT.ffl [филтър]       записва филтър"},
    {"show-filter", 1, cmdShowFilter, "show-filter IN.ffl --json          показва филтър"},
};

void printHelp(std::ostream& out)
{
    out << "Употреба: finora-cli [глобални опции] КОМАНДА ...\n\n"
           "Команди:\n";
    for (const Command& c : kCommands) {
        out << "  " << c.usage << '\n';
    }
    out << "\nГлобални опции:\n"
           "  --now \"ГГГГ-ММ-ДД ЧЧ:ММ:СС\"   фиксира текущия момент\n"
           "  --password P                 отключва защитен документ за командата\n"
           "  --json                       изход като един JSON документ\n"
           "  --help                       тази помощ\n"
           "  --version                    версията на програмата\n\n"
           "Филтър: --from Д-М-ГГГГ --to Д-М-ГГГГ --type 0|1|2 --currency КОД --paid 0|1|2\n"
           "        --category ID (повече от веднъж) --subcategories --filter IN.ffl\n"
           "Търсене: --search ТЕКСТ --mode and|or|not --exact --in description,notes,currency\n"
           "         --case-sensitive --only-matching\n"
           "Сума: --amount A --tolerance T --also-bgl\n\n"
           "Команди, които записват документ, го заключват за времето си; документ, отворен във\n"
           "Finora, се записва само с --force.\n\n"
           "Изходен код: 0 успех, 1 грешна употреба, 2 файлът не може да бъде прочетен,\n"
           "3 файлът е от по-нова версия, 4 документът е защитен, 5 файлът не може да бъде "
           "записан,\n"
           "6 документът е отворен във Finora.\n";
}

} // namespace

int run(const std::vector<std::string>& argv, std::ostream& out, std::ostream& err,
        const SettingsStore& userSettings, Renderer* renderer)
{
    try {
        const Arguments args = parse(argv);
        if (args.has("--version")) {
            out << "finora-cli " << kVersionText << '\n';
            return kOk;
        }
        if (args.has("--help") || args.positional.empty()) {
            printHelp(args.positional.empty() && !args.has("--help") ? err : out);
            return args.has("--help") ? kOk : kUsage;
        }
        const std::string& name = args.positional[0];
        const auto command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                          [&](const Command& c) { return c.name == name; });
        if (command == std::end(kCommands)) {
            throw Failure{kUsage, "непозната команда „" + name + "“. Вижте finora-cli --help."};
        }
        if (args.positional.size() != command->arguments + 1) {
            throw Failure{kUsage, "употреба: finora-cli " + std::string(command->usage)};
        }
        Session session(args, userSettings, renderer);
        return command->run(session, out);
    } catch (const Failure& f) {
        err << "finora-cli: " << f.message << '\n';
        return f.status;
    }
}

} // namespace finora::cli
