// The category tree, the category dialog, the chooser and the currency cash window's rules.
#include "core/editors/category_editors.h"
#include "core/editors/currency_cash_editor.h"
#include "core/model/choice_lists.h"
#include "core/model/recording_prompter.h"
#include "core/settings/memory_settings_store.h"
#include "core/text/cp1251.h"

#include <gtest/gtest.h>

using namespace finora;

namespace {

std::string w(const char* utf8)
{
    return cp1251::fromUtf8OrThrow(utf8);
}

Message plain(const char* text)
{
    return {"", text, MessageIcon::None, MessageButtons::Ok};
}

class CategoryTest : public ::testing::Test {
protected:
    CategoryTest()
    {
        // Дом > Ремонт > Боя, Храна > Пазар; an orphan whose parent is missing.
        Ledger l;
        l.categories.append(Category(1, w("Дом"), 0));
        l.categories.append(Category(2, w("Храна"), 0));
        l.categories.append(Category(3, w("Ремонт"), 1));
        l.categories.append(Category(4, w("Пазар"), 2));
        l.categories.append(Category(5, w("Боя"), 3));
        l.categories.append(Category(6, w("Сирак"), 99));
        l.operations.append(Operation(1, DateTime::fromParts(2026, 1, 1), "op", kExpense, 4, 1.0, 0,
                                      1.0, "", DateTime(), 1, 0));
        l.counters = {0, 6, 1, 0};
        m_doc.replaceLedger(std::move(l));
    }

    std::vector<std::pair<std::int32_t, int>> tree() const
    {
        std::vector<std::pair<std::int32_t, int>> out;
        for (const CategoryNode& n : categoryTree(m_doc)) {
            out.emplace_back(n.id, n.depth);
        }
        return out;
    }

    FixedClock m_clock{DateTime::fromParts(2026, 11, 21)};
    CFinoraDoc m_doc{m_clock};
    RecordingPrompter m_prompter{Answer::Yes};
};

TEST_F(CategoryTest, TheTreeIsTopLevelInLedgerOrderWithChildrenDepthFirst)
{
    EXPECT_EQ(tree(), (std::vector<std::pair<std::int32_t, int>>{
                          {1, 0}, {3, 1}, {5, 2}, {2, 0}, {4, 1}, {6, 0}}));
    // The list beside it: newest first, with the parent's name or "няма".
    const auto rows = categoryListRows(m_doc);
    ASSERT_EQ(rows.size(), 6u);
    EXPECT_EQ(rows[0], (CategoryListRow{"6", w("Сирак"), ""}));
    EXPECT_EQ(rows[1], (CategoryListRow{"5", w("Боя"), w("Ремонт")}));
    EXPECT_EQ(rows[5], (CategoryListRow{"1", w("Дом"), w("няма")}));

    // A hand-made cycle neither hangs nor hides its members.
    Ledger l;
    l.categories.append(Category(1, "a", 2));
    l.categories.append(Category(2, "b", 1));
    m_doc.replaceLedger(std::move(l));
    EXPECT_EQ(tree().size(), 2u);
}

TEST_F(CategoryTest, DeletingRefusesCategoriesInUseAndAsksFirst)
{
    EXPECT_FALSE(deleteCategoryAsked(m_doc, m_prompter, std::nullopt));
    EXPECT_EQ(m_prompter.messages().back(), plain("Не сте избрали категория!"));
    EXPECT_FALSE(deleteCategoryAsked(m_doc, m_prompter, 0));
    EXPECT_EQ(m_prompter.messages().back(), (Message{"Грешка", kCategoryUnknownErrorText,
                                                     MessageIcon::Error, MessageButtons::Ok}));

    // A parent stays while its subcategory does; after that it goes.
    EXPECT_FALSE(deleteCategoryAsked(m_doc, m_prompter, 3));
    EXPECT_EQ(m_prompter.messages().back(),
              (Message{"Отказ", kCategoryInUseText, MessageIcon::Error, MessageButtons::Ok}));
    m_prompter.queue(Answer::No);
    EXPECT_FALSE(deleteCategoryAsked(m_doc, m_prompter, 5));
    EXPECT_EQ(
        m_prompter.messages().back(),
        (Message{"Потвърдете!", "Сигурни ли сте?", MessageIcon::Question, MessageButtons::YesNo}));
    EXPECT_FALSE(m_doc.isModified());
    EXPECT_TRUE(deleteCategoryAsked(m_doc, m_prompter, 5));
    EXPECT_TRUE(deleteCategoryAsked(m_doc, m_prompter, 3));
    // A category used by a single record stays.
    EXPECT_FALSE(deleteCategoryAsked(m_doc, m_prompter, 4));
    EXPECT_EQ(m_prompter.messages().back().text, kCategoryInUseText);
    EXPECT_EQ(m_doc.categoryName(4), w("Пазар"));
}

TEST_F(CategoryTest, TheCategoryDialogKeepsTheTreeATree)
{
    // Below its own grandchild: refused, as is being its own parent (checked first).
    CategoryEditor change(m_doc, m_prompter, CategoryEditor::Mode::Change, 1);
    EXPECT_EQ(change.title(), "Промяна на категория");
    EXPECT_EQ(change.parentText(), w("не е указана категория"));
    EXPECT_FALSE(change.isSubcategory());
    change.setSubcategory(true);
    EXPECT_FALSE(change.save());
    EXPECT_EQ(m_prompter.messages().back(), plain(CategoryEditor::kParentMissingText));
    change.chooseParent(5);
    EXPECT_FALSE(change.save());
    EXPECT_EQ(m_prompter.messages().back(), plain(CategoryEditor::kDescendantParentText));
    change.chooseParent(1);
    EXPECT_FALSE(change.save());
    EXPECT_EQ(m_prompter.messages().back(), plain(CategoryEditor::kOwnParentText));
    change.chooseParent(2);
    EXPECT_EQ(change.parentText(), w("Храна"));
    ASSERT_TRUE(change.save());
    EXPECT_EQ(m_doc.categoryParent(1), 2);

    // Unticking makes it top-level again.
    CategoryEditor back(m_doc, m_prompter, CategoryEditor::Mode::Change, 1);
    EXPECT_TRUE(back.isSubcategory());
    EXPECT_EQ(back.parentText(), w("Храна"));
    back.setSubcategory(false);
    EXPECT_EQ(back.parentId(), 0);
    ASSERT_TRUE(back.save());
    EXPECT_EQ(m_doc.categoryParent(1), 0);

    back.setName("");
    EXPECT_FALSE(back.save());
    EXPECT_EQ(m_prompter.messages().back(), plain("Моля, укажете наименование за тази категория!"));
}

TEST_F(CategoryTest, NamesAreUniqueUnderOneParentOnly)
{
    CategoryEditor add(m_doc, m_prompter, CategoryEditor::Mode::New);
    EXPECT_FALSE(add.save());
    EXPECT_EQ(m_prompter.messages().back(),
              plain("Моля, укажете наименование за новата категория!"));
    add.setName(w("Дом"));
    EXPECT_FALSE(add.save());
    EXPECT_EQ(m_prompter.messages().back(), plain(CategoryEditor::kDuplicateText));
    add.setSubcategory(true);
    add.chooseParent(2);
    ASSERT_TRUE(add.save());
    EXPECT_EQ(m_doc.categoryParent(7), 2);
    EXPECT_EQ(m_doc.categoryName(7), w("Дом"));
    // Renaming onto a sibling's name is refused too.
    CategoryEditor rename(m_doc, m_prompter, CategoryEditor::Mode::Change, 4);
    rename.setName(w("Дом"));
    EXPECT_FALSE(rename.save());
    EXPECT_EQ(m_doc.categoryName(4), w("Пазар"));
}

TEST_F(CategoryTest, TheChooserTellsSameNamesApartByTheirIds)
{
    CategoryChooser none(m_doc, 0);
    EXPECT_EQ(none.chosenText(), w(":: няма избрана категория ::"));
    EXPECT_FALSE(none.canChoose());
    EXPECT_TRUE(none.chosenName().empty());

    m_doc.addCategory(w("Ремонт"), 2);
    CategoryChooser chooser(m_doc, 3);
    EXPECT_EQ(chooser.chosenText(), w("Ремонт"));
    chooser.choose(7);
    EXPECT_TRUE(chooser.canChoose());
    EXPECT_EQ(chooser.chosenId(), 7);
    EXPECT_EQ(chooser.chosenName(), w("Ремонт"));
}

class CurrencyCashTest : public ::testing::Test {
protected:
    CurrencyCashTest()
    {
        Ledger l;
        l.currencies.append(Currency(1, "USD"));
        l.currencies.append(Currency(2, "EUR"));
        l.operations.append(Operation(1, DateTime::fromParts(2026, 1, 1), "op", kIncome, 1, 100.0,
                                      2, 195.0, "", DateTime(), 1, 0));
        l.operations.append(Operation(2, DateTime::fromParts(2026, 1, 2), "op", kIncome, 1, 5.0, 0,
                                      5.0, "", DateTime(), 1, 0));
        l.counters = {2, 1, 2, 0};
        m_doc.replaceLedger(std::move(l));
    }

    CurrencyCashEditor::NameAsker answer(std::optional<std::string> name)
    {
        return [this, name](const std::string& current) {
            m_asked.push_back(current);
            return name;
        };
    }

    std::vector<std::string> names(const CurrencyCashEditor& e) const
    {
        std::vector<std::string> out;
        for (const CashRow& r : e.rows()) {
            out.push_back(r[1]);
        }
        return out;
    }

    FixedClock m_clock{DateTime::fromParts(2026, 11, 21)};
    CFinoraDoc m_doc{m_clock};
    MemorySettingsStore m_store;
    Settings m_settings{m_store};
    RecordingPrompter m_prompter{Answer::Yes};
    std::vector<std::string> m_asked;
};

TEST_F(CurrencyCashTest, ChoosersListTheMainCurrencyFirstOrEveryNameOnceInOrder)
{
    Ledger l = m_doc.ledger();
    l.currencies.append(Currency(3, "AUD"));
    l.currencies.append(Currency(4, "EUR")); // a hand-made file may repeat a name
    m_doc.replaceLedger(std::move(l));
    // The editors and the cash window: as the ledger lists them, after the main currency.
    EXPECT_EQ(currencyNames(m_doc), (std::vector<std::string>{"BGL", "USD", "EUR", "AUD", "EUR"}));
    EXPECT_EQ(cashRows(m_doc, m_settings).size(), 5u);
    // The filter panel: by name, each once, the main currency among them.
    EXPECT_EQ(currencyNames(m_doc, SiblingOrder::Name),
              (std::vector<std::string>{"AUD", "BGL", "EUR", "USD"}));
}

TEST_F(CurrencyCashTest, AddingRefusesTheMainCurrencyAndDuplicates)
{
    CurrencyCashEditor e(m_doc, m_settings, m_prompter);
    EXPECT_EQ(names(e), (std::vector<std::string>{"BGL", "EUR", "USD"}));
    EXPECT_FALSE(e.add(answer(std::nullopt)));
    EXPECT_EQ(m_asked.back(), "");
    // Typed in small letters, the name dialog makes it the main currency's name.
    EXPECT_EQ(currencyNameFromTyped(w("bgl")), "BGL");
    EXPECT_EQ(currencyNameFromTyped(w("лв.ё")), w("ЛВ.Ё"));
    EXPECT_FALSE(e.add(answer(currencyNameFromTyped("bgl"))));
    EXPECT_EQ(m_prompter.messages().back(),
              (Message{"Грешка", CurrencyCashEditor::kReservedNameText, MessageIcon::Error,
                       MessageButtons::Ok}));
    EXPECT_FALSE(e.add(answer("EUR")));
    EXPECT_EQ(m_prompter.messages().back().text, "Тази валута вече съществува в този документ!");
    EXPECT_FALSE(m_doc.isModified());

    ASSERT_TRUE(e.add(answer("GBP")));
    EXPECT_EQ(e.rows()[0], (CashRow{"3", "GBP", "0", "0", "n/a", "0", "0", "0"}));
    EXPECT_EQ(m_doc.currencyId("GBP"), 3);
}

TEST_F(CurrencyCashTest, RenamingKeepsTheMainCurrencyAndTheRecordsFollow)
{
    CurrencyCashEditor e(m_doc, m_settings, m_prompter);
    EXPECT_FALSE(e.rename(0, answer("XXX")));
    EXPECT_EQ(m_prompter.messages().back(), (Message{"Грешка", CurrencyCashEditor::kMainRenameText,
                                                     MessageIcon::Error, MessageButtons::Ok}));
    EXPECT_TRUE(m_asked.empty()); // refused before the name dialog
    // Renaming to the main currency's name is a duplicate, not a reserved name.
    EXPECT_FALSE(e.rename(1, answer("BGL")));
    EXPECT_EQ(m_asked.back(), "EUR");
    EXPECT_EQ(m_prompter.messages().back().text, CurrencyCashEditor::kDuplicateText);
    EXPECT_FALSE(e.rename(1, answer("USD")));
    ASSERT_TRUE(e.rename(1, answer("EURO")));
    EXPECT_EQ(e.rows()[1][1], "EURO");
    EXPECT_EQ(m_doc.currencyName(m_doc.operation(1).currencyId()), "EURO");
}

TEST_F(CurrencyCashTest, DeletingAsksFirstAndKeepsCurrenciesInUse)
{
    CurrencyCashEditor e(m_doc, m_settings, m_prompter);
    m_prompter.queue(Answer::No);
    EXPECT_FALSE(e.remove(0));
    EXPECT_EQ(m_prompter.messages().size(), 1u); // the question comes before the checks
    EXPECT_FALSE(e.remove(0));
    EXPECT_EQ(m_prompter.messages().back(), (Message{"Отказ", CurrencyCashEditor::kMainDeleteText,
                                                     MessageIcon::Error, MessageButtons::Ok}));
    EXPECT_FALSE(e.remove(1)); // EUR has one record
    EXPECT_EQ(m_prompter.messages().back().text, CurrencyCashEditor::kInUseText);
    ASSERT_TRUE(e.remove(2));
    EXPECT_EQ(names(e), (std::vector<std::string>{"BGL", "EUR"}));
    EXPECT_EQ(m_doc.currencyId("USD"), -1);
}

TEST_F(CurrencyCashTest, SortsNumbersAsNumbersAndTurnsRoundOnASecondClick)
{
    CurrencyCashEditor e(m_doc, m_settings, m_prompter);
    e.sortBy(1); // the first click on the name sorts A to Z
    EXPECT_TRUE(e.sortAscending());
    EXPECT_EQ(names(e), (std::vector<std::string>{"BGL", "EUR", "USD"}));
    e.sortBy(5); // record counts 1, 1, 0
    EXPECT_EQ(names(e).front(), "USD");
    e.sortBy(2); // in stock 5, 100, 0: as numbers 100 is the largest
    EXPECT_EQ(names(e), (std::vector<std::string>{"USD", "BGL", "EUR"}));
    e.sortBy(2);
    EXPECT_FALSE(e.sortAscending());
    EXPECT_EQ(names(e), (std::vector<std::string>{"EUR", "BGL", "USD"}));
}

} // namespace
