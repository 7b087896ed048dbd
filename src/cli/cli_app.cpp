#include "cli/cli_app.h"

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/session.h"
#include "finora_version.h"

#include <algorithm>
#include <new>

namespace finora::cli {
namespace {

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
    {"import-statement", 2, cmdImportStatement,
     "import-statement FILE STATEMENT [--format auto|csv|camt053|ofx|qif|mt940] [--profile "
     "LAYOUT.json] [--currency CODE] [--rate CODE=R]... [--category ID] [--date-order "
     "dmy|mdy|ymd] [--dry-run] [--json]   добавя банково извлечение"},
    {"lock", 1, cmdLock, "lock FILE --new-password P        защитава документа с парола"},
    {"unlock", 1, cmdUnlock, "unlock FILE --password P           премахва защитата"},
    {"save-filter", 1, cmdSaveFilter, "save-filter OUT.ffl [филтър]       записва филтър"},
    {"show-filter", 1, cmdShowFilter, "show-filter IN.ffl --json          показва филтър"},
    {"rules", 1, cmdRules, "rules FILE [--json]                правилата за категории"},
    {"rule-add", 1, cmdRuleAdd,
     "rule-add FILE --contains|--starts-with|--equals TEXT --category ID [--type 1|2] [--min A] "
     "[--max A]   ново правило"},
    {"rule-del", 2, cmdRuleDel, "rule-del FILE N                    изтрива правило N"},
    {"suggest", 1, cmdSuggest,
     "suggest FILE --descr TEXT [--notes TEXT] [--type 1|2] [--amount A] [--json]   предложена "
     "категория"},
    {"add", 1, cmdAdd,
     "add FILE --date Д-М-ГГГГ --type 1|2 --descr ТЕКСТ --category ID --amount A --currency "
     "КОД [--rate R] [--notes ТЕКСТ] [--paid 0|1]   добавя една операция"},
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
           "Сума: --amount A --tolerance T --also-bgl\n"
           "--eur: list, export, cash, year и report показват левовите суми в евро (1.95583 лв за"
           " 1 евро).\n\n"
           "Команди, които записват документ, го заключват за времето си; документ, отворен във\n"
           "Finora, се записва само с --force.\n\n"
           "Изходен код: 0 успех, 1 грешна употреба, 2 файлът не може да бъде прочетен,\n"
           "3 файлът е от по-нова версия, 4 документът е защитен, 5 файлът не може да бъде "
           "записан,\n"
           "6 документът е отворен във Finora, 7 документът е записан, но резервното му копие - "
           "не.\n";
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
        const int status = command->run(session, out);
        // The ledger is written; its backup failing is said, and told apart by its own status.
        if (const auto failures = session.backupFailures(); status == kOk && !failures.empty()) {
            err << "finora-cli: " << oneLine(backupFailedText(failures.back())) << '\n';
            return kBackupNotWritten;
        }
        return status;
    } catch (const Failure& f) {
        err << "finora-cli: " << f.message << '\n';
        return f.status;
    } catch (const std::bad_alloc&) {
        // Readers refuse what memory cannot hold; anything else that runs out is said too.
        err << "finora-cli: " << describe(FileError::TooLarge) << '\n';
        return kUnreadable;
    }
}

} // namespace finora::cli
