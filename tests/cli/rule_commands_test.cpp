#include "cli/cli_fixture.h"
#include "core/storage/ledger_format.h"
#include "core/text/cp1251.h"

namespace finora::test {
namespace {

class RuleCommands : public CliTest {
protected:
    RuleCommands()
    {
        Ledger l;
        l.categories.append(Category(1, cp1251::fromUtf8OrThrow("Храна"), 0));
        l.categories.append(Category(2, cp1251::fromUtf8OrThrow("Пазар"), 1));
        l.categories.append(Category(3, cp1251::fromUtf8OrThrow("Гориво"), 0));
        const DateTime day = DateTime::fromParts(2026, 3, 1);
        for (int i = 1; i <= 6; ++i) {
            l.operations.append(Operation(i, day, i % 2 ? "POS LIDL SOFIA" : "POS SHELL SOFIA",
                                          kExpense, i % 2 ? 2 : 3, 10, 0, 10, "", day, 1, 0));
        }
        l.counters = {0, 3, 6, 0};
        write(ledger, serializeLedger(l));
    }

    std::string ledger = path("l.fnr");
};

TEST_F(RuleCommands, RulesAreKeptBesideTheLedgerAndDecideBeforeLearning)
{
    const auto learned = run({"suggest", ledger, "--descr", "LIDL PLOVDIV", "--json"});
    EXPECT_EQ(learned.out, "{\"category\":2,\"path\":\"Храна > Пазар\",\"source\":\"learned\","
                           "\"rule\":null}\n");
    EXPECT_EQ(run({"suggest", ledger, "--descr", "OZONE", "--json"}).out,
              "{\"category\":null,\"path\":\"\",\"source\":\"none\",\"rule\":null}\n");

    ASSERT_EQ(run({"rule-add", ledger, "--contains", "лидл", "--category", "3"}).status, 0);
    ASSERT_EQ(
        run({"rule-add", ledger, "--starts-with", "POS", "--category", "1", "--min", "100"}).status,
        0);
    EXPECT_NE(read(path("l.finora.json")).find("\"text\":\"лидл\""), std::string::npos)
        << "the rules live in the companion, as readable UTF-8";
    const auto byRule = run({"suggest", ledger, "--descr", "pos Лидл 12", "--json"});
    EXPECT_NE(byRule.out.find("\"category\":3,\"path\":\"Гориво\",\"source\":\"rule\",\"rule\":1"),
              std::string::npos)
        << byRule.out;
    EXPECT_NE(run({"suggest", ledger, "--descr", "POS X", "--amount", "150", "--json"})
                  .out.find("\"rule\":2"),
              std::string::npos);

    EXPECT_EQ(run({"rules", ledger}).out, "1. текстът съдържа „лидл“ → Гориво\n"
                                          "2. текстът започва с „POS“, сума от 100.00 → Храна\n");
    ASSERT_EQ(run({"rule-del", ledger, "1"}).status, 0);
    EXPECT_EQ(run({"rules", ledger, "--json"}).out.find("лидл"), std::string::npos);
}

TEST_F(RuleCommands, AWrongRuleIsRefusedAndNothingWritten)
{
    const std::vector<std::vector<std::string>> wrong = {
        {"rule-add", ledger, "--contains", "x", "--category", "9"},
        {"rule-add", ledger, "--contains", "x", "--equals", "y", "--category", "1"},
        {"rule-add", ledger, "--contains", " ", "--category", "1"},
        {"rule-add", ledger, "--contains", "x", "--category", "1", "--min", "5", "--max", "2"},
        {"rule-add", ledger, "--contains", "x", "--category", "1", "--type", "3"},
        {"rule-del", ledger, "1"},
        {"suggest", ledger},
    };
    const std::string before = read(ledger);
    for (const auto& args : wrong) {
        SCOPED_TRACE(args.back());
        const auto r = run(args);
        EXPECT_EQ(r.status, 1);
        EXPECT_FALSE(r.err.empty());
    }
    EXPECT_EQ(read(ledger), before);
    EXPECT_FALSE(std::filesystem::exists(dir / "l.finora.json"));
}

} // namespace
} // namespace finora::test

namespace finora::test {
namespace {

TEST_F(RuleCommands, AStatementsLinesAreFiledByRuleThenByLearningThenTheImportsOwnCategory)
{
    write(path("s.csv"), "Дата;Получател;Основание;Сума;Валута\n"
                         "03.11.2026;LIDL;POS LIDL PLOVDIV;-12,50;BGN\n"
                         "04.11.2026;OMV;POS OMV RUSE;-60,00;BGN\n"
                         "05.11.2026;OZONE;ORDER 77;-20,00;BGN\n");
    ASSERT_EQ(run({"rule-add", ledger, "--contains", "omv", "--category", "3"}).status, 0);
    const auto r = run({"import-statement", ledger, path("s.csv"), "--json"});
    ASSERT_EQ(r.status, 0) << r.err;
    const std::string filed[] = {R"("category":2,"category_source":"learned")",
                                 R"("category":3,"category_source":"rule")",
                                 R"("category":0,"category_source":"none")"};
    std::size_t at = 0;
    for (const std::string& line : filed) {
        at = r.out.find(line, at);
        EXPECT_NE(at, std::string::npos) << line << " in " << r.out;
    }
}

} // namespace
} // namespace finora::test
