// The operation editor's rules: payments, the tracking list, the master id and the save.
#include "core/editors/operation_editor.h"
#include "core/model/number_text.h"
#include "core/model/recording_prompter.h"
#include "core/settings/memory_settings_store.h"
#include "core/text/cp1251.h"
#include "support/ledger_builders.h"

#include <gtest/gtest.h>

using namespace finora;

namespace {

std::string w(const char* utf8)
{
    return cp1251::fromUtf8OrThrow(utf8);
}

class OperationEditorTest : public ::testing::Test {
protected:
    OperationEditorTest()
    {
        Ledger l = test::sampleLedger();
        l.lockText.clear();
        m_doc.replaceLedger(std::move(l));
    }

    OperationEditor editor(std::int32_t id = 0, std::int32_t master = 0, std::int32_t category = -1)
    {
        return OperationEditor(m_doc, m_settings, m_prompter, m_today, {id, master, category});
    }

    // Types into a field as a user does: focus in, the text, focus out.
    static void type(OperationEditor& e, EntryField field, const std::string& text)
    {
        e.focusIn(field);
        e.setText(field, text);
        e.focusOut(field);
    }

    static void addPayment(OperationEditor& e, const std::string& amount,
                           const std::string& currency = "BGL")
    {
        type(e, EntryField::Amount, amount);
        e.selectCurrency(currency);
        e.currencyListClosed();
        ASSERT_TRUE(e.addOrChange());
    }

    std::vector<const Operation*> withMaster(std::int32_t master) const
    {
        std::vector<const Operation*> out;
        for (const Operation& op : m_doc.ledger().operations) {
            if (op.masterId() == master) {
                out.push_back(&op);
            }
        }
        return out;
    }

    FixedClock m_clock{DateTime::fromParts(2026, 11, 21, 10)};
    DateTime m_today = DateTime::fromParts(2026, 11, 21);
    CFinoraDoc m_doc{m_clock};
    MemorySettingsStore m_store;
    Settings m_settings{m_store};
    RecordingPrompter m_prompter{Answer::Yes};
};

TEST_F(OperationEditorTest, ANewOperationOfThreePaymentsInTwoCurrencies)
{
    m_settings.setValue(IntSetting::FixingSuggestMode, 1);
    m_settings.setValue(IntSetting::AskForFixingSuggestion, 0);
    m_settings.setLastFixing("EUR", 1.95583);
    OperationEditor e = editor(0, 0, 2);
    EXPECT_TRUE(e.isNew());
    EXPECT_EQ(e.categoryText(), w("Пазар"));
    EXPECT_EQ(e.currencies(), (std::vector<std::string>{"BGL", "EUR", w("лв.")}));
    e.setDescription(w("Ремонт"));
    e.setTypeIndex(1);

    addPayment(e, "100");
    // The last rate used for EUR is offered when EUR is picked, after the amount.
    type(e, EntryField::Amount, "50");
    e.selectCurrency("EUR");
    EXPECT_EQ(e.rateText(), "1.955830");
    EXPECT_EQ(e.valueText(), "97.79");
    EXPECT_FALSE(e.rateAndValueReadOnly());
    ASSERT_TRUE(e.addOrChange());
    type(e, EntryField::Amount, "20");
    e.selectCurrency("EUR");
    type(e, EntryField::Rate, "2");
    EXPECT_EQ(e.valueText(), "40.00");
    e.setPaid(false);
    ASSERT_TRUE(e.addOrChange());

    ASSERT_EQ(e.rows().size(), 3u);
    EXPECT_EQ(e.rows()[0].cells,
              (std::array<std::string, 7>{"", "20.00", "EUR", "40.00", "2.000000", w("НЕ"), "3"}));
    EXPECT_EQ(e.rows()[2].cells[kPayValue], "100.00");
    EXPECT_EQ(e.totalText(), "237.79 ");
    EXPECT_EQ(m_settings.lastFixing("EUR"), 2.0); // the rate typed is remembered

    const std::size_t before = m_doc.operationCount();
    ASSERT_TRUE(e.save());
    EXPECT_TRUE(m_prompter.messages().empty());
    EXPECT_EQ(m_doc.operationCount(), before + 3);
    const auto records = withMaster(8); // the ledger's counter stood at 7
    ASSERT_EQ(records.size(), 3u);
    // The tracking list is walked in the order the rows were added.
    EXPECT_EQ(records[0]->amount(), 100.0);
    EXPECT_EQ(records[0]->currencyId(), 0);
    EXPECT_EQ(records[1]->currencyId(), 1);
    EXPECT_EQ(records[1]->amountBgl(), 97.79);
    EXPECT_EQ(records[2]->paid(), 0);
    for (const Operation* op : records) {
        EXPECT_EQ(op->description(), w("Ремонт"));
        EXPECT_EQ(op->type(), kExpense);
        EXPECT_EQ(op->categoryId(), 2);
        EXPECT_EQ(op->date(), m_today);
        EXPECT_EQ(op->lastModified(), m_clock.now());
    }
    EXPECT_EQ(m_settings.value(IntSetting::LastOpType), 1);
}

TEST_F(OperationEditorTest, TheMasterIdFollowsTheNumberOfPaymentsBothWays)
{
    // One payment grows to two: both records get a newly issued master id.
    {
        OperationEditor e = editor(1, 0);
        EXPECT_FALSE(e.isNew());
        EXPECT_EQ(e.description(), w("Хляб и мляко"));
        EXPECT_EQ(e.initialRow(), 0);
        addPayment(e, "3");
        ASSERT_TRUE(e.save());
    }
    const auto grown = withMaster(8);
    ASSERT_EQ(grown.size(), 2u);
    EXPECT_EQ(grown[0]->id(), 1);
    EXPECT_EQ(grown[1]->amount(), 3.0);

    // Two payments shrink to one: the one left is a single-payment operation again.
    {
        OperationEditor e = editor(2, 7);
        ASSERT_EQ(e.rows().size(), 2u);
        // Stored rows come in reverse ledger order, the edited one selected.
        EXPECT_EQ(e.rows()[0].cells[kPayRecordId], "3");
        EXPECT_EQ(e.initialRow(), 1);
        e.setSelected({0});
        ASSERT_TRUE(e.deleteSelected());
        EXPECT_NE(m_doc.operation(3).id(), 0); // deleted only on save
        ASSERT_TRUE(e.save());
    }
    EXPECT_EQ(m_doc.operation(3).id(), 0);
    EXPECT_EQ(m_doc.operation(2).masterId(), 0);
    EXPECT_TRUE(withMaster(7).empty());
}

TEST_F(OperationEditorTest, DeletedRowsLeaveNoTraceUntilSavedAndThenOnlyTheirOwn)
{
    const std::size_t before = m_doc.operationCount();
    {
        OperationEditor e = editor(2, 7);
        addPayment(e, "10");
        e.setSelected({0, 2}); // the new row and the stored record 2
        m_prompter.queue(Answer::No);
        EXPECT_FALSE(e.deleteSelected());
        EXPECT_EQ(e.rows().size(), 3u);
        EXPECT_TRUE(e.deleteSelected());
        EXPECT_EQ(m_prompter.messages().back(),
                  (Message{"Потвърдете!", OperationEditor::kDeleteSelectedText,
                           MessageIcon::Question, MessageButtons::YesNo}));
        ASSERT_EQ(e.rows().size(), 1u);
        EXPECT_EQ(e.tracking()[0].state, RowState::StoredDeleted);
        EXPECT_EQ(e.tracking()[1].state, RowState::StoredUnchanged);
        EXPECT_EQ(e.tracking()[2].state, RowState::NewDeleted);
        // Closed without saving: the ledger is as it was.
    }
    EXPECT_EQ(m_doc.operationCount(), before);
    EXPECT_FALSE(m_doc.isModified());

    OperationEditor e = editor(2, 7);
    addPayment(e, "10");
    EXPECT_TRUE(e.deleteAll());
    EXPECT_FALSE(e.canDeleteAll());
    EXPECT_EQ(e.tracking()[2].state, RowState::NewDeleted);
    EXPECT_FALSE(e.save()); // no payments left
    EXPECT_EQ(m_prompter.messages().back().text, OperationEditor::kNoPaymentText);
    addPayment(e, "7");
    ASSERT_TRUE(e.save());
    EXPECT_EQ(m_doc.operation(2).id(), 0);
    EXPECT_EQ(m_doc.operation(3).id(), 0);
    EXPECT_EQ(m_doc.operationCount(), before - 1); // two deleted, one added, the 10 never stored
    EXPECT_EQ(m_doc.ledger().operations.rbegin()->amount(), 7.0);
    EXPECT_EQ(m_doc.ledger().operations.rbegin()->masterId(), 0);
}

TEST_F(OperationEditorTest, ARowInChangeIsAskedAboutAndSavedWithItsOldValues)
{
    OperationEditor e = editor(1, 0);
    e.loadSelected();
    EXPECT_EQ(e.entryRecordId(), 1);
    EXPECT_EQ(e.amountText(), "4.35");
    type(e, EntryField::Amount, "99");
    m_prompter.queue(Answer::No);
    EXPECT_FALSE(e.save());
    EXPECT_EQ(m_prompter.messages().back(),
              (Message{"Потвърдете", OperationEditor::kPendingChangeText, MessageIcon::Warning,
                       MessageButtons::YesNo}));
    EXPECT_FALSE(m_doc.isModified());
    ASSERT_TRUE(e.save());
    EXPECT_EQ(m_doc.operation(1).amount(), 4.35);

    // Changed through "добава/променя": a stored row becomes an update with the new texts.
    OperationEditor again = editor(1, 0);
    again.loadSelected();
    type(again, EntryField::Amount, "5.5");
    ASSERT_TRUE(again.addOrChange());
    EXPECT_EQ(again.tracking()[0].state, RowState::StoredChanged);
    EXPECT_EQ(again.entryRowKey(), 0);
    ASSERT_TRUE(again.save());
    EXPECT_EQ(m_doc.operation(1).amount(), 5.5);
    EXPECT_EQ(m_doc.operation(1).amountBgl(), 5.5);
}

TEST_F(OperationEditorTest, StoredRowsShowTheImpliedRateAndEverythingIsSavedAsShown)
{
    OperationEditor stored = editor(2, 7);
    // 977.915 / 500, whatever rate was typed when the payment was entered.
    EXPECT_EQ(stored.rows()[1].cells[kPayRate], "1.955830");
    EXPECT_EQ(stored.rows()[1].cells[kPayValue], amountText(977.915));

    OperationEditor e = editor(0, 0, 1);
    e.setDescription("x");
    addPayment(e, "10.005");
    const std::string shown = e.rows()[0].cells[kPayAmount];
    EXPECT_EQ(shown.size(), 5u); // two decimals
    ASSERT_TRUE(e.save());
    EXPECT_EQ(m_doc.ledger().operations.rbegin()->amount(), parseNumber(shown));
    EXPECT_EQ(m_doc.ledger().operations.rbegin()->amountBgl(), parseNumber(shown));
    EXPECT_EQ(m_doc.ledger().operations.rbegin()->masterId(), 0); // one payment needs no master
}

TEST_F(OperationEditorTest, TheFieldsRecomputeFromTheOneBeingTyped)
{
    OperationEditor e = editor();
    EXPECT_EQ(e.rateText(), "1.000000");
    EXPECT_TRUE(e.rateAndValueReadOnly());
    // A zero field is emptied on focus so the user types over nothing; empty reads back as 0.
    e.focusIn(EntryField::Amount);
    EXPECT_EQ(e.amountText(), "");
    e.focusOut(EntryField::Amount);
    EXPECT_EQ(e.amountText(), "0");

    type(e, EntryField::Amount, "12");
    EXPECT_EQ(e.valueText(), "12.00");
    e.setDate(DateTime::fromParts(1998, 12, 31)); // before the peg the euro has no fixed rate
    e.selectCurrency("EUR");                      // suggestion off by default
    EXPECT_FALSE(e.rateAndValueReadOnly());
    e.focusIn(EntryField::Value);
    e.setText(EntryField::Value, "24");
    EXPECT_EQ(e.rateText(), "2.000000");
    e.focusOut(EntryField::Value);
    // A new foreign payment starts again from rate 1 when its amount changes.
    e.focusIn(EntryField::Amount);
    e.setText(EntryField::Amount, "30");
    EXPECT_EQ(e.rateText(), "1.000000");
    EXPECT_EQ(e.valueText(), "30.00");
    e.focusOut(EntryField::Amount);
    // A text set while another field has the focus drives nothing.
    e.setText(EntryField::Rate, "3");
    EXPECT_EQ(e.valueText(), "30.00");
    e.focusOut(EntryField::Amount);
    EXPECT_EQ(e.valueText(), "90.00"); // leaving the amount applies the rate

    // A stored foreign payment keeps its rate when its amount changes.
    OperationEditor stored = editor(2, 7);
    stored.setSelected({1});
    stored.loadSelected();
    stored.focusIn(EntryField::Amount);
    stored.setText(EntryField::Amount, "100");
    EXPECT_EQ(stored.valueText(), "195.58");
    // Going back to the main currency makes the value the amount again.
    stored.selectCurrency("BGL");
    stored.currencyListClosed();
    EXPECT_EQ(stored.valueText(), "100.00");
    EXPECT_FALSE(stored.valueEnabled());
}

TEST_F(OperationEditorTest, RefusalsComeInOrderAndKeepEverything)
{
    OperationEditor e = editor();
    EXPECT_EQ(e.categoryText(), w("изберете категория"));
    EXPECT_FALSE(e.addOrChange());
    EXPECT_EQ(m_prompter.messages().back(), (Message{"Липсват данни", "Не сте указали сума.",
                                                     MessageIcon::Error, MessageButtons::Ok}));
    type(e, EntryField::Amount, "abc");
    EXPECT_FALSE(e.addOrChange());

    EXPECT_FALSE(e.save());
    EXPECT_EQ(m_prompter.messages().back().text, "Моля, въведете описание на операцията.");
    e.setDescription("d");
    EXPECT_FALSE(e.save());
    EXPECT_EQ(m_prompter.messages().back().text, "Моля, изберете категория!");
    e.chooseCategory(5, ""); // the chooser closed with no text: no change
    EXPECT_EQ(e.categoryId(), 0);
    e.chooseCategory(1, w("Храна"));
    EXPECT_FALSE(e.save());
    EXPECT_EQ(m_prompter.messages().back(),
              (Message{"Липсват данни", "Моля, въведете поне eдно плащане по операцията!",
                       MessageIcon::Error, MessageButtons::Ok}));
    EXPECT_FALSE(m_doc.isModified());
    EXPECT_EQ(e.description(), "d");
}

TEST_F(OperationEditorTest, TheTypeOfANewOperationComesFromTheOptions)
{
    EXPECT_EQ(editor().typeIndex(), 0); // "the last one made", none made yet
    m_settings.setValue(IntSetting::LastOpType, 1);
    EXPECT_EQ(editor().typeIndex(), 1);
    m_settings.setValue(IntSetting::OpType, 0);
    EXPECT_EQ(editor().typeIndex(), 0);
    // An existing operation shows its own type: anything but income is an expense.
    EXPECT_EQ(editor(1).typeIndex(), 1);
}

TEST_F(OperationEditorTest, SaveAndAddAnotherAsksForANewEditorOnlyAfterASave)
{
    OperationEditor e = editor(0, 0, 1);
    EXPECT_FALSE(e.saveAndAddNew());
    EXPECT_FALSE(e.addAnother());
    e.setDescription("d");
    addPayment(e, "1");
    EXPECT_TRUE(e.saveAndAddNew());
    EXPECT_TRUE(e.addAnother());
}

} // namespace
