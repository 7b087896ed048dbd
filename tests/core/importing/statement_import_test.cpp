#include "core/companion/companion_file.h"
#include "core/importing/statement_import.h"
#include "core/model/undo_commands.h"
#include "support/storage_fixture.h"

using namespace finora;
using namespace finora::test;

namespace {

StatementEntry entry(int day, std::int64_t cents, std::string currency, std::string counterparty,
                     std::string remittance = {}, std::string reference = {})
{
    StatementEntry e;
    e.year = 2026;
    e.month = 11;
    e.day = day;
    e.amountCents = cents;
    e.currency = std::move(currency);
    e.counterparty = std::move(counterparty);
    e.remittance = std::move(remittance);
    e.reference = std::move(reference);
    e.account = "BG80BNBG96611020345678";
    return e;
}

StatementEntry withNotes(StatementEntry e)
{
    e.notes = " за ноември ";
    return e;
}

StatementEntry onDay(int year, int month, int day, StatementEntry e)
{
    e.year = year;
    e.month = month;
    e.day = day;
    return e;
}

std::string utf8(const std::string& cp1251Text)
{
    return cp1251::toUtf8(cp1251Text);
}

class StatementImportTest : public StorageTest {
protected:
    StatementImportTest()
    {
        doc.setHistoryLimit(kUndoSteps);
        doc.addCategory(cp1251::fromUtf8OrThrow("Храна"), 0);
        doc.setModified(false);
    }

    std::vector<LineState> states(const ImportPlan& plan) const
    {
        std::vector<LineState> out;
        for (const ImportLine& l : plan.lines) {
            out.push_back(l.state);
        }
        return out;
    }

    ImportPlan plan(const std::vector<StatementEntry>& entries,
                    const StatementImportOptions& options = {})
    {
        return planStatementImport(doc, settings, entries, options);
    }
};

} // namespace

TEST_F(StatementImportTest, EachEntryBecomesTheOperationTheEditorWouldStore)
{
    const struct {
        const char* what;
        StatementEntry in;
        LineState state;
        std::int32_t type;
        std::int64_t cents;
        const char* currency;
        double rate;
        const char* description;
        const char* notes;
        const char* reasonOrNote; // a part of the reason, or of the note on dropped signs
    } cases[] = {
        {"money in, in leva", withNotes(entry(3, 150000, "BGN", "АКМЕ ООД", "Заплата", "FT26307")),
         LineState::New, kIncome, 150000, "BGL", 1.0, "АКМЕ ООД",
         "Заплата\nза ноември\nРеференция: FT26307", ""},
        {"money out in euro, letters made plain",
         entry(4, -1250, "eur", " Café  René\tGroße ", "покупка"), LineState::New, kExpense, 1250,
         "EUR", 1.95583, "Cafe Rene Grosse", "покупка", ""},
        {"no counterparty: the start of the payment's text",
         entry(5, -300, "BGN", "",
               " Такса за\n обслужване на сметка за месец ноември 2026 г. по договор 1234567 "),
         LineState::New, kExpense, 300, "BGL", 1.0,
         "Такса за обслужване на сметка за месец ноември 2026 г. по",
         "Такса за\n обслужване на сметка за месец ноември 2026 г. по договор 1234567", ""},
        {"signs a ledger cannot keep are dropped and named", entry(6, -500, "BGL", "Кафе ☕ бар"),
         LineState::New, kExpense, 500, "BGL", 1.0, "Кафе бар", "", "☕"},
        {"no currency in the file: the chosen one", entry(7, 2000, "", "Иван"), LineState::New,
         kIncome, 2000, "EUR", 1.95583, "Иван", "", ""},
        {"another currency at the rate given", entry(8, -10000, "USD", "Amazon"), LineState::New,
         kExpense, 10000, "USD", 1.7, "Amazon", "", ""},
        {"another currency with no rate", entry(9, -10000, "GBP", "Harrods"), LineState::NotAdded,
         kExpense, 10000, "GBP", 0.0, "Harrods", "", "GBP"},
        {"amount 0", entry(10, 0, "BGN", "Банка"), LineState::NotAdded, kIncome, 0, "BGL", 1.0,
         "Банка", "", "0"},
        {"no such day", onDay(2026, 2, 30, entry(1, -100, "BGN", "Банка")), LineState::NotAdded,
         kExpense, 100, "BGL", 1.0, "Банка", "", "дата"},
        {"a currency that is no code", entry(11, -100, "€$", "Банка"), LineState::NotAdded,
         kExpense, 100, "", 1.0, "Банка", "", "€$"},
    };
    StatementImportOptions options;
    options.fileCurrency = "EUR";
    options.rates["USD"] = 1.7;
    std::vector<StatementEntry> entries;
    for (const auto& c : cases) {
        entries.push_back(c.in);
    }
    const ImportPlan p = plan(entries, options);
    ASSERT_EQ(p.lines.size(), entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto& c = cases[i];
        const ImportLine& line = p.lines[i];
        SCOPED_TRACE(c.what);
        EXPECT_EQ(line.state, c.state);
        EXPECT_EQ(line.type, c.type);
        EXPECT_EQ(line.amountCents, c.cents);
        EXPECT_EQ(line.currency, c.currency);
        if (c.state == LineState::New) {
            EXPECT_DOUBLE_EQ(line.rate, c.rate);
        }
        EXPECT_EQ(utf8(line.description), c.description);
        EXPECT_EQ(utf8(line.notes), c.notes);
        const std::string& told = c.state == LineState::New ? line.note : line.reason;
        EXPECT_EQ(told.empty(), std::string(c.reasonOrNote).empty()) << told;
        EXPECT_NE(told.find(c.reasonOrNote), std::string::npos) << told;
    }
    EXPECT_EQ(p.missingRates, std::vector<std::string>{"GBP"});
}

TEST_F(StatementImportTest, ACurrencyWithoutAGivenRateTakesTheLedgersSuggestionWhenThereIsOne)
{
    doc.addCurrency("CHF");
    doc.addOperation(Operation(0, DateTime::fromParts(2026, 10, 1), "Zurich", kExpense, 1, 100.0, 1,
                               205.0, "", {}, 1, 0));
    settings.setLastFixing("CHF", 2.1);
    // The option: no suggestion, the last rate used, or the average of the ledger's rates.
    for (const auto& [mode, rate] : {std::pair{0, 0.0}, {1, 2.1}, {2, 2.05}}) {
        SCOPED_TRACE(mode);
        settings.setValue(IntSetting::FixingSuggestMode, mode);
        const ImportPlan p = plan({entry(3, -1000, "CHF", "Hotel")});
        EXPECT_EQ(p.lines[0].state, mode == 0 ? LineState::NotAdded : LineState::New);
        EXPECT_EQ(p.missingRates.empty(), mode != 0);
        if (mode != 0) {
            EXPECT_DOUBLE_EQ(p.lines[0].rate, rate);
        }
    }
}

TEST_F(StatementImportTest, AddingIsOneCommandThatOneUndoTakesBackWhole)
{
    settings.setValue(IntSetting::AutoSave, 1);
    const std::string file = path("дом.fnr");
    ASSERT_TRUE(storage.save(file));
    const Ledger before = doc.ledger();
    StatementImportOptions options;
    options.rates["USD"] = 1.7;
    const ImportPlan p = plan({entry(3, -1234, "USD", "Amazon"), entry(4, 5000, "EUR", "Иван"),
                               entry(5, 0, "BGN", "Банка"), entry(6, -250, "BGN", "Лидл")},
                              options);
    const std::string fileBefore = readFile(file);
    const std::size_t stepsBefore = doc.history().undoCount();

    const ImportOutcome outcome = applyStatementImport(doc, p);
    EXPECT_EQ(outcome.added, 3u);
    EXPECT_EQ(doc.history().undoCount(), stepsBefore + 1);
    EXPECT_NE(doc.history().undoLabel().find("извлечение"), std::string::npos);
    EXPECT_FALSE(doc.isModified()); // saved once, by the auto-save after the command
    EXPECT_NE(readFile(file), fileBefore);
    Companion saved;
    ASSERT_EQ(readCompanion(readFile(companionPathFor(file)), saved).status,
              CompanionReadResult::Status::Ok);
    EXPECT_EQ(saved.imported.size(), 3u);

    const Operation usd = doc.operation(doc.ledger().counters.nextOperationId - 2);
    EXPECT_EQ(doc.currencyName(usd.currencyId()), "USD");
    EXPECT_DOUBLE_EQ(usd.amount(), 12.34);
    EXPECT_DOUBLE_EQ(usd.amountBgl(), 20.98); // 12.34 × 1.7, to the cent
    EXPECT_EQ(usd.type(), kExpense);
    EXPECT_EQ(usd.paid(), 1);
    EXPECT_EQ(doc.categoryName(usd.categoryId()), outcome.category);
    EXPECT_EQ(doc.operation(doc.ledger().counters.nextOperationId - 1).amountBgl(), 97.79);
    EXPECT_EQ(doc.currencyId("EUR") > 0, true);

    ASSERT_TRUE(undoCommand(doc, prompter));
    EXPECT_EQ(doc.ledger().operations.size(), before.operations.size());
    EXPECT_EQ(doc.ledger().currencies.size(), before.currencies.size());
    EXPECT_EQ(doc.ledger().categories.size(), before.categories.size());
}

TEST_F(StatementImportTest, AnEntryAlreadyAddedIsKnownAgainWhateverTheUserChangedSince)
{
    const std::vector<StatementEntry> november = {
        entry(3, -1250, "BGN", "Лидл", "карта 4111"),
        entry(3, -1250, "BGN", "Лидл", "карта 4111"), // two alike on one day: both are real
        entry(4, 150000, "BGN", "АКМЕ ООД", "Заплата", "FT26307"),
        entry(5, -4000, "BGN", "Кауфланд", "", "NONREF"),
    };
    applyStatementImport(doc, plan(november));
    const std::int32_t last = doc.ledger().counters.nextOperationId;
    // The user files, renames and marks the imported operations as they like.
    for (std::int32_t id = last - 3; id <= last; ++id) {
        Operation op = doc.operation(id);
        op.set(op.date(), "renamed", op.type(), 1, op.amount(), op.currencyId(), op.amountBgl(),
               "other notes", {}, 0, 0);
        ASSERT_TRUE(doc.changeOperation(op));
    }
    const ImportPlan again = plan(november);
    EXPECT_EQ(again.count(LineState::Duplicate), november.size());

    // Next month's statement overlaps this one, printed with other spacing and letter case: the
    // four payments at Лидл on the 3rd are the two known ones and two more.
    const std::vector<StatementEntry> overlap = {
        entry(3, -1250, "BGN", "ЛИДЛ", "карта  4111"),
        entry(4, 150000, "BGN", "АКМЕ ООД", "Заплата за ноември", "FT26307"),
        entry(5, -4000, "BGN", "  Кауфланд ", ""),
        entry(3, -1250, "BGN", "Лидл", "Карта 4111"),
        entry(3, -1250, "BGN", "Лидл", "карта 4111"),
        entry(3, -1250, "BGN", "Лидл", "карта 4111"),
    };
    EXPECT_EQ(
        states(plan(overlap)),
        (std::vector<LineState>{LineState::Duplicate, LineState::Duplicate, LineState::Duplicate,
                                LineState::Duplicate, LineState::New, LineState::New}));

    // Taken back, or saved and opened again, the ledger says what it holds.
    ASSERT_TRUE(storage.save(path("дом.fnr")));
    ASSERT_EQ(storage.open(path("дом.fnr")), DocumentStorage::OpenResult::Opened);
    EXPECT_EQ(plan(november).count(LineState::Duplicate), november.size());
    doc.setHistoryLimit(kUndoSteps);
    applyStatementImport(doc, plan(overlap));
    ASSERT_TRUE(doc.deleteOperation(last - 1));
    EXPECT_EQ(plan(november).count(LineState::Duplicate), november.size() - 1);
    ASSERT_TRUE(undoCommand(doc, prompter));
    ASSERT_TRUE(undoCommand(doc, prompter));
    EXPECT_EQ(plan(overlap).count(LineState::New), 2u);
    // The next operation added takes the number an undone one had: it is not that entry.
    doc.addOperation(
        Operation(0, DateTime::fromParts(2026, 11, 3), "", kExpense, 1, 3.0, 0, 3.0, "", {}, 1, 0));
    EXPECT_EQ(plan(overlap).count(LineState::New), 2u);
}
