#include "core/categorise/category_rules.h"
#include "core/categorise/learned_categories.h"
#include "core/categorise/text_words.h"
#include "core/companion/companion_file.h"
#include "core/demo/bank_texts.h"
#include "core/demo/ledger_generator.h"
#include "core/model/finora_doc.h"
#include "core/text/cp1251.h"

#include <gtest/gtest.h>
#include <random>

namespace finora {
namespace {

std::string cp(std::string_view utf8)
{
    return cp1251::fromUtf8OrThrow(utf8);
}

// Texts in Windows-1251.
Operation op(std::string description, std::int32_t category, std::int32_t type = kExpense)
{
    return Operation(0, DateTime::fromParts(2026, 3, 1), std::move(description), type, category,
                     10.0, 0, 10.0, "", DateTime(), 0, 0);
}

struct Fixture : ::testing::Test {
    FixedClock clock{DateTime::fromParts(2026, 11, 24)};
    CFinoraDoc doc{clock};

    void categories(int count)
    {
        for (int i = 1; i <= count; ++i) {
            doc.addCategory("c" + std::to_string(i), 0);
        }
    }
};

TEST(TextWords, KeepLettersFoldedAndDropNumbersAndSingleLetters)
{
    const struct {
        const char* text;
        std::vector<std::string> words;
    } cases[] = {
        {"POS LIDL Sofia BG T12345678", {"pos", "lidl", "sofia", "bg"}},
        {"Покупка ЛИДЛ лидл 4111XXXXXX1234", {"покупка", "лидл"}},
        {"A1 BULGARIA - T MARKET", {"bulgaria", "market"}},
        {"12.03 2026", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        std::vector<std::string> expected;
        for (const std::string& w : c.words) {
            expected.push_back(cp(w));
        }
        EXPECT_EQ(textWords(cp(c.text)), expected);
    }
}

TEST(CategoryRules, MatchTextTypeAndAmountAsWritten)
{
    using M = CategoryRule::Match;
    const std::string description = cp("  POS Лидл София ");
    const std::string notes = cp("справка 77");
    const CategorisedLine line{description, notes, kExpense, -45.5};
    const struct {
        CategoryRule rule;
        bool matches;
    } cases[] = {
        {{M::Contains, cp("лидл"), 0, {}, {}, 1}, true},
        {{M::Contains, cp("ЛИДЛ СОФ"), 0, {}, {}, 1}, true},
        {{M::Contains, cp("билла"), 0, {}, {}, 1}, false},
        {{M::StartsWith, cp("pos"), 0, {}, {}, 1}, true},
        {{M::StartsWith, cp("лидл"), 0, {}, {}, 1}, false},
        {{M::StartsWith, cp("Справка"), 0, {}, {}, 1}, true}, // the notes count too
        {{M::Equals, cp("pos лидл софия"), 0, {}, {}, 1}, true},
        {{M::Equals, cp("pos лидл"), 0, {}, {}, 1}, false},
        {{M::Contains, cp("лидл"), kIncome, {}, {}, 1}, false},
        {{M::Contains, cp("лидл"), kExpense, 45.5, 45.5, 1}, true},
        {{M::Contains, cp("лидл"), 0, 45.51, {}, 1}, false},
        {{M::Contains, cp("лидл"), 0, {}, 45.49, 1}, false},
        {{M::Contains, "  ", 0, {}, {}, 1}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(cp1251::toUtf8(c.rule.text));
        EXPECT_EQ(ruleMatches(c.rule, line), c.matches);
    }
}

TEST_F(Fixture, TheFirstActiveRuleWinsThenLearningThenTheFallback)
{
    categories(3);
    doc.addOperation(op("BILLA SOFIA", 3));
    doc.addOperation(op("BILLA PLOVDIV", 3));
    LearnedCategories learned(doc);
    std::vector<CategoryRule> rules = {
        {CategoryRule::Match::Contains, "BILLA", 0, 100.0, {}, 1},
        {CategoryRule::Match::Contains, "BILLA", 0, {}, {}, 2},
        {CategoryRule::Match::Contains, "BILLA", 0, {}, {}, 1},
    };
    const CategorisedLine line{"POS BILLA VARNA", "", kExpense, 20.0};
    const auto decided = suggestCategory(doc.ledger(), rules, &learned, line, 99);
    EXPECT_EQ(decided.source, SuggestionSource::Rule);
    EXPECT_EQ(decided.categoryId, 2);
    EXPECT_EQ(decided.rule, 1);

    doc.deleteCategory(2); // its rule stays, inactive
    EXPECT_FALSE(ruleIsActive(rules[1], doc.ledger()));
    EXPECT_EQ(suggestCategory(doc.ledger(), rules, &learned, line, 99).rule, 2);

    rules.clear();
    const auto guessed = suggestCategory(doc.ledger(), rules, &learned, line, 99);
    EXPECT_EQ(guessed.source, SuggestionSource::Learned);
    EXPECT_EQ(guessed.categoryId, 3);
    const auto none =
        suggestCategory(doc.ledger(), rules, &learned, {"NEW SHOP", "", kExpense, 1.0}, 99);
    EXPECT_EQ(none.source, SuggestionSource::None);
    EXPECT_EQ(none.categoryId, 99);
}

TEST_F(Fixture, LearningSuggestsOnlyWhatIsClearlyAheadAndKeepsToTheType)
{
    categories(4);
    for (int i = 0; i < 5; ++i) {
        doc.addOperation(op("POS LIDL SOFIA", 1));
        doc.addOperation(op("POS SHELL SOFIA", 2));
        doc.addOperation(op("TRANSFER SALARY", 3, kIncome));
        doc.addOperation(op("TRANSFER RENT", 4));
    }
    LearnedCategories learned(doc);
    EXPECT_EQ(learned.suggest(cp("lidl plovdiv"), ""), 1);
    EXPECT_EQ(learned.suggest("", cp("плащане Shell")), 2);
    EXPECT_EQ(learned.suggest("POS SOFIA", ""), std::nullopt);  // words of every category
    EXPECT_EQ(learned.suggest("LIDL SHELL", ""), std::nullopt); // a tie
    EXPECT_EQ(learned.suggest("TRANSFER", "", kIncome), 3);
    EXPECT_EQ(learned.suggest("TRANSFER", "", kExpense), 4);
    EXPECT_EQ(learned.suggest("SALARY", "", kExpense), std::nullopt);
    doc.addOperation(op("LIDL", 2));
    EXPECT_EQ(learned.suggest("LIDL", ""), 1) << "one contrary filing does not overturn five";
}

// The model that follows the document change by change must equal one built afresh from the
// ledger after the changes, through edits, deletes, undo and redo.
TEST_F(Fixture, FollowsEveryChangeAsARebuildWould)
{
    categories(5);
    doc.setHistoryLimit(100);
    const std::vector<std::string> texts = {"LIDL", "SHELL SOFIA", "OMV VARNA", "IKEA",
                                            "ZARA", "LIDL VARNA",  "SHELL",     "POS IKEA SOFIA"};
    LearnedCategories live(doc);
    std::mt19937 random(7);
    const auto pick = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
    for (int step = 0; step < 300; ++step) {
        const auto& ops = doc.ledger().operations;
        switch (pick(5)) {
        case 0:
        case 1:
            doc.addOperation(op(texts[pick(8)], 1 + pick(5)));
            break;
        case 2:
            if (ops.size() > 0) {
                Operation o = *ops.begin();
                o.set(o.date(), texts[pick(8)], o.type(), 1 + pick(5), 1.0, 0, 1.0, "", o.date(), 0,
                      0);
                doc.changeOperation(o);
            }
            break;
        case 3:
            if (ops.size() > 0) {
                doc.deleteOperation(ops.begin()->id());
            }
            break;
        default:
            pick(2) ? doc.undo() : doc.redo();
            break;
        }
        LearnedCategories fresh(doc);
        ASSERT_EQ(live.wordCount(), fresh.wordCount()) << "step " << step;
        for (const std::string& probe : texts) {
            ASSERT_EQ(live.suggest(probe, ""), fresh.suggest(probe, "")) << probe;
        }
    }
    doc.deleteAllOperations();
    EXPECT_EQ(live.wordCount(), 0U);
    doc.undo();
    EXPECT_EQ(live.wordCount(), LearnedCategories(doc).wordCount());
}

// A year of card payments filed by the user; next month's lines of the same shops must land in
// their group, and lines of shops never seen must get no learned category.
TEST_F(Fixture, GuessesNextMonthsShopsAndKeepsQuietOnUnseenOnes)
{
    for (int g = 0; g < BankTexts::kGroups; ++g) {
        doc.addCategory(BankTexts::groupName(g), 0);
    }
    BankTexts bank(2026);
    for (int i = 0; i < 2400; ++i) {
        const auto line = bank.knownShopLine();
        doc.addOperation(op(line.text, line.group + 1));
    }
    LearnedCategories learned(doc);
    int right = 0;
    int quiet = 0;
    const int lines = 400;
    for (int i = 0; i < lines; ++i) {
        const auto known = bank.knownShopLine();
        right += learned.suggest(known.text, "", kExpense) == known.group + 1;
        quiet += !learned.suggest(bank.unseenShopLine().text, "", kExpense).has_value();
    }
    std::cout << "[ figures  ] known shops right " << right * 100 / lines << "%, unseen quiet "
              << quiet * 100 / lines << "%\n";
    EXPECT_GE(right, lines * 95 / 100);
    EXPECT_GE(quiet, lines * 90 / 100);
}

// On a generated ledger: the last operations, held out, are guessed from the rest; a wrong
// guess is rare.
TEST_F(Fixture, OnAGeneratedLedgerGuessesAreRarelyWrong)
{
    Ledger ledger = generateLedger(20000, 3);
    std::vector<Operation> heldOut;
    for (const Operation& o : ledger.operations) {
        heldOut.push_back(o);
    }
    heldOut.erase(heldOut.begin(), heldOut.end() - 500);
    for (const Operation& o : heldOut) {
        ledger.operations.removeFirst(o.id());
    }
    doc.replaceLedger(std::move(ledger));
    LearnedCategories learned(doc);
    int guessed = 0;
    int wrong = 0;
    for (const Operation& o : heldOut) {
        if (const auto c = learned.suggest(o.description(), o.notes(), o.type())) {
            ++guessed;
            wrong += *c != o.categoryId();
        }
    }
    std::cout << "[ figures  ] generated ledger: guessed " << guessed << " of 500, wrong " << wrong
              << "\n";
    EXPECT_LE(wrong * 20, guessed); // at most 5% of the guesses
}

} // namespace
} // namespace finora

namespace finora {
namespace {

TEST_F(Fixture, RulesChangeInOneStepOfTheHistoryAndSurviveTheCompanionFile)
{
    categories(2);
    doc.setHistoryLimit(10);
    const std::vector<CategoryRule> rules = {
        {CategoryRule::Match::Equals, cp("Заплата"), kIncome, 100.0, std::nullopt, 1},
        {CategoryRule::Match::StartsWith, "POS", 0, std::nullopt, 20.5, 2},
    };
    doc.setModified(false);
    doc.setRules(rules, "правила");
    EXPECT_TRUE(doc.isModified());
    EXPECT_EQ(doc.history().undoLabel(), "правила");
    ASSERT_TRUE(doc.undo());
    EXPECT_TRUE(doc.companion().rules.empty());
    ASSERT_TRUE(doc.redo());
    EXPECT_EQ(doc.companion().rules, rules);

    Companion read;
    ASSERT_EQ(readCompanion(serializeCompanion(doc.companion()), read).status,
              CompanionReadResult::Status::Ok);
    EXPECT_EQ(read.rules, rules);

    const char* damaged[] = {
        R"({"finora_companion":1,"rules":[{"match":"like","text":"a","category":1}]})",
        R"({"finora_companion":1,"rules":[{"match":"contains","text":"a","category":1,"type":7}]})",
        R"({"finora_companion":1,"rules":[{"match":"contains","text":"a","category":1,"min":-1}]})",
        R"({"finora_companion":1,"rules":[{"match":"contains","text":"日本","category":1}]})",
    };
    for (const char* text : damaged) {
        SCOPED_TRACE(text);
        const auto result = readCompanion(text, read);
        EXPECT_EQ(result.status, CompanionReadResult::Status::Damaged);
        EXPECT_EQ(result.where, "rules[0]");
    }
}

} // namespace
} // namespace finora
