#include "cli_fixture.h"
#include "core/storage/ledger_format.h"
#include "core/text/cp1251.h"

#include <algorithm>

using namespace finora;
using namespace finora::test;

namespace {

Ledger euroLedger()
{
    Ledger l;
    l.currencies.append(Currency(1, "EUR"));
    l.categories.append(Category(1, cp1251::fromUtf8OrThrow("Заплата"), 0));
    l.operations.append(Operation(1, DateTime::fromParts(2026, 1, 5), "Salary", kIncome, 1, 2000, 0,
                                  2000, "", {}, 1, 0));
    l.operations.append(Operation(2, DateTime::fromParts(2026, 1, 6), "Hotel", kExpense, 1, 50, 1,
                                  97.79, "", {}, 1, 0));
    l.counters = {1, 1, 2, 0};
    return l;
}

bool has(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

TEST_F(CliTest, EurShowsTheMainCurrencyFiguresInEuroAndLeavesTheLedgerAlone)
{
    const std::string file = path("e.fnr");
    write(file, serializeLedger(euroLedger()));
    const std::string before = read(file);
    // 2000 лв are 1022.58 €, 97.79 лв are 50.00 €, the balance 1902.21 лв is 972.58 €.
    const struct {
        std::vector<std::string> args;
        std::vector<std::string> parts;
    } cases[] = {
        {{"list", file, "--eur", "--json"},
         {"\"сума в EUR\"", "\"50.00\"", "\"1022.58 EUR\"", "\"972.58 EUR\""}},
        {{"list", file, "--eur", "--amount", "50", "--also-bgl"}, {"Hotel"}},
        {{"export", file, "--csv", "--eur"}, {"сума в EUR", ",1022.58,"}},
        {{"cash", file, "--eur", "--json"}, {"ср. стойност в EUR", "\"1022.58\""}},
        {{"year", file, "2026", "--eur"}, {"1022.58", "\"year_expense\":50"}},
        {{"list", file, "--currency", "BGN"}, {"Salary", "2000.00 BGL"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args[0]);
        const CliResult r = run(c.args);
        ASSERT_EQ(r.status, 0) << r.err;
        for (const std::string& part : c.parts) {
            EXPECT_TRUE(has(r.out, part)) << part << " not in " << r.out;
        }
        if (c.args[1] == file && c.args.size() > 2 && c.args[2] == "--eur") {
            EXPECT_FALSE(has(r.out, " BGL")) << "a main-currency total left in leva";
        }
    }
    EXPECT_FALSE(has(run({"list", file, "--currency", "BGN"}).out, "Hotel"));
    EXPECT_EQ(read(file), before);
}

TEST_F(CliTest, AddEntersOneOperationByTheEditorsRulesOrSaysWhyNot)
{
    const std::string file = path("a.fnr");
    write(file, serializeLedger(euroLedger()));
    const std::vector<std::string> base = {"add",     file,   "--type",     "2",
                                           "--descr", "Кафе", "--category", "1"};
    const struct {
        std::vector<std::string> more;
        int status;
        std::string expected; // in the dump of the new record, or in the error line
    } cases[] = {
        {{"--date", "5-1-2026", "--amount", "2", "--currency", "EUR"},
         0,
         R"("amount":2,"currency":1,"amount_bgl":3.91)"},
        {{"--date", "5-1-2026", "--amount", "2", "--currency", "EUR", "--rate", "2"},
         0,
         R"("amount":2,"currency":1,"amount_bgl":4)"},
        {{"--date", "5-1-2026", "--amount", "1,70", "--currency", "BGN", "--paid", "0"},
         0,
         R"("amount":1.7,"currency":0,"amount_bgl":1.7)"},
        {{"--date", "5-1-2026", "--amount", "abc", "--currency", "EUR"}, 1, "трябва да има число"},
        {{"--date", "5-1-2026", "--amount", "0", "--currency", "EUR"}, 1, "Не сте указали сума."},
        {{"--date", "5-1-2026", "--amount", "2", "--currency", "XYZ"}, 1, "XYZ"},
        {{"--amount", "2", "--currency", "EUR"}, 1, "--date"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        std::vector<std::string> args = base;
        args.insert(args.end(), c.more.begin(), c.more.end());
        const CliResult r = run(args);
        ASSERT_EQ(r.status, c.status) << r.err;
        const std::string dump = run({"dump", file, "--json"}).out;
        if (c.status == 0) {
            EXPECT_TRUE(has(dump, c.expected)) << dump;
        } else {
            EXPECT_TRUE(has(r.err, c.expected)) << r.err;
        }
    }
    // Nothing refused was written: three rows added to the two there were, and the totals.
    const std::string list = run({"list", file}).out;
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 5 + 3);
    const std::string empty = path("empty.fnr");
    ASSERT_EQ(run({"new", empty}).status, 0);
    EXPECT_EQ(run({"add", empty, "--date", "5-1-2026", "--type", "2", "--descr", "x", "--category",
                   "1", "--amount", "2", "--currency", "BGN"})
                  .status,
              1); // no such category
}
