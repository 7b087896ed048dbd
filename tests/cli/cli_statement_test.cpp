#include "cli/cli_fixture.h"

using namespace finora;
using namespace finora::test;

namespace {

// A bank's CSV as Bulgarian banks write it: a preamble, ";" and a decimal comma.
const char* const kStatement = "Сметка: BG80BNBG96611020345678\n"
                               "\n"
                               "Дата;Получател;Основание;Дебит;Кредит;Валута\n"
                               "03.11.2026;Лидл България;Покупка с карта 4111;12,50;;BGN\n"
                               "04.11.2026;АКМЕ ООД;Заплата;;1 500,00;BGN\n"
                               "05.11.2026;Amazon EU;Order 123;20,00;;USD\n"
                               "07.11.2026;Банка;Такса;0,00;;BGN\n";

} // namespace

TEST_F(CliTest, ImportStatementAddsEachEntryOnceAndRefusesWhatItCannotDo)
{
    const std::string ledger = path("дом.fnr");
    const std::string statement = path("ноември.csv");
    ASSERT_EQ(run({"new", ledger}).status, 0);
    write(statement, kStatement);
    write(path("счупен.csv"), "Дата;Сума\n03.11.2026;много\n");
    ASSERT_EQ(run({"new", path("заключен.fnr")}).status, 0);
    ASSERT_EQ(run({"lock", path("заключен.fnr"), "--new-password", "таен"}).status, 0);

    const struct {
        const char* what;
        std::vector<std::string> args;
        int status;
        std::size_t operations; // in the ledger afterwards
        const char* says;       // in the JSON printed, or in the one line of the error
    } cases[] = {
        {"a currency with no rate names it and the option",
         {"import-statement", ledger, statement, "--json"},
         cli::kUsage,
         0,
         "--rate USD="},
        {"a dry run adds nothing",
         {"import-statement", ledger, statement, "--rate", "USD=1.72", "--dry-run", "--json"},
         0,
         0,
         R"("read":4,"added":3,"duplicates":0,"not_added":1,"dry_run":true)"},
        {"the entries are added",
         {"import-statement", ledger, statement, "--rate", "USD=1.72", "--json"},
         0,
         3,
         R"({"format":"csv","read":4,"added":3,"duplicates":0,"not_added":1)"},
        {"and never twice",
         {"import-statement", ledger, statement, "--rate", "USD=1.72", "--json"},
         0,
         3,
         R"("read":4,"added":0,"duplicates":3,"not_added":1)"},
        {"a file that breaks says where",
         {"import-statement", ledger, path("счупен.csv"), "--format", "csv"},
         cli::kUnreadable,
         3,
         "ред 2"},
        {"a missing file",
         {"import-statement", ledger, path("няма.csv")},
         cli::kUnreadable,
         3,
         "няма.csv"},
        {"an unknown format",
         {"import-statement", ledger, statement, "--format", "xls"},
         cli::kUsage,
         3,
         "--format"},
        {"a category the ledger lacks",
         {"import-statement", ledger, statement, "--category", "9"},
         cli::kUsage,
         3,
         "9"},
        {"a locked ledger",
         {"import-statement", path("заключен.fnr"), statement},
         cli::kLocked,
         0,
         "--password"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const CliResult r = run(c.args);
        EXPECT_EQ(r.status, c.status) << r.err;
        EXPECT_NE((r.status == 0 ? r.out : r.err).find(c.says), std::string::npos)
            << r.out << r.err;
        if (r.status != 0) {
            EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
        }
        EXPECT_EQ(operationsIn(read(c.args[1])), c.operations);
    }
}
