// Undo and redo: long random runs of every command that changes a ledger, taken back and done
// again, against the ledger's bytes after each command; and the rules around them.
#include "core/demo/ledger_generator.h"
#include "core/editors/category_editors.h"
#include "core/editors/currency_cash_editor.h"
#include "core/editors/operation_editor.h"
#include "core/lock/lock_commands.h"
#include "core/model/lock_guard.h"
#include "core/model/recording_prompter.h"
#include "core/model/undo_commands.h"
#include "core/query/operations_list.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/ledger_format.h"
#include "core/storage/ledger_import.h"
#include "core/text/cp1251.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>

using namespace finora;

namespace {

std::string w(const char* utf8)
{
    return cp1251::fromUtf8OrThrow(utf8);
}

// Every lookup finds the first record of its id in list order, as a scan would.
template <class T> void expectLookupsAsScans(const RecordList<T>& list)
{
    std::map<std::int32_t, const T*> first;
    for (const T& record : list) {
        first.emplace(record.id(), &record);
    }
    for (const auto& [id, record] : first) {
        ASSERT_EQ(list.find(id), record) << id;
    }
}

const DateTime kStart = DateTime::fromParts(2026, 11, 2, 9);

// A desk with the document and what the commands of the main window and the editors use, and
// one random command of every kind that changes a ledger.
class Desk {
public:
    explicit Desk(Ledger ledger)
    {
        m_doc.replaceLedger(std::move(ledger));
        m_doc.setHistoryLimit(100000);
        resetCriteria(m_list.criteria(), m_doc, m_clock.now());
    }

    CFinoraDoc& doc() { return m_doc; }
    RecordingPrompter& prompter() { return m_prompter; }
    std::string bytes() const { return serializeLedger(m_doc.ledger()); }

    // One command, chosen by `seed`, run at `now`; each is at most one step. The same seed and
    // time on the same ledger run the same command.
    void randomCommand(std::uint64_t seed, DateTime now)
    {
        m_rng.seed(seed);
        m_clock.set(now);
        m_prompter.clear();
        if (m_doc.isLocked()) {
            // A protection done again locks at once; the user unlocks it for the session first.
            ASSERT_TRUE(temporaryUnlockCommand(m_doc, m_prompter,
                                               [this](bool) { return std::optional(m_password); }));
        }
        switch (m_rng() % 13) {
        case 0:
        case 1:
            newOperation();
            break;
        case 2:
        case 3:
            editOperation();
            break;
        case 4:
            deleteShown();
            break;
        case 5:
            deleteSelected();
            break;
        case 6:
            setPaid();
            break;
        case 7:
            importOther();
            break;
        case 8:
            categoryCommand();
            break;
        case 9:
            currencyCommand();
            break;
        case 10:
            protectionCommand();
            break;
        case 11:
            // Rare, as users do it: most runs would otherwise be about empty ledgers.
            if (m_rng() % 8 == 0) {
                m_list.refresh();
                m_list.deleteAll();
            } else {
                editOperation();
            }
            break;
        default:
            deleteSelected();
            break;
        }
    }

private:
    template <class T> const T* pick(const RecordList<T>& list)
    {
        if (list.empty()) {
            return nullptr;
        }
        auto it = list.begin();
        std::advance(it, static_cast<std::ptrdiff_t>(m_rng() % list.size()));
        return &*it;
    }
    std::string word() { return std::string("w").append(std::to_string(m_rng() % 50)); }

    void newOperation()
    {
        const Category* category = pick(m_doc.ledger().categories);
        OperationEditor e(m_doc, m_settings, m_prompter, m_clock.now(),
                          {0, 0, category ? category->id() : -1});
        e.setDescription(word());
        e.setTypeIndex(static_cast<int>(m_rng() % 2));
        const int payments = 1 + static_cast<int>(m_rng() % 3);
        for (int i = 0; i < payments; ++i) {
            e.focusIn(EntryField::Amount);
            e.setText(EntryField::Amount, std::to_string(1 + m_rng() % 500));
            e.focusOut(EntryField::Amount);
            e.selectCurrency(e.currencies()[m_rng() % e.currencies().size()]);
            e.setPaid(m_rng() % 2 == 0);
            e.addOrChange();
        }
        e.save();
    }

    void editOperation()
    {
        const Operation* op = pick(m_doc.ledger().operations);
        if (!op) {
            return newOperation();
        }
        OperationEditor e(m_doc, m_settings, m_prompter, m_clock.now(),
                          {op->id(), op->masterId(), -1});
        e.setDescription(word());
        if (e.rows().size() > 1 && m_rng() % 2 == 0) {
            e.setSelected({static_cast<int>(m_rng() % e.rows().size())});
            e.deleteSelected();
        }
        if (m_rng() % 3 == 0) {
            e.focusIn(EntryField::Amount);
            e.setText(EntryField::Amount, std::to_string(1 + m_rng() % 90));
            e.focusOut(EntryField::Amount);
            e.addOrChange();
        }
        e.save();
    }

    // The list under a random filter: a type, a category with its subcategories, or none.
    void filterAtRandom()
    {
        resetCriteria(m_list.criteria(), m_doc, m_clock.now());
        m_list.criteria().typeFilter = static_cast<int>(m_rng() % 3);
        if (const Category* c = pick(m_doc.ledger().categories); c && m_rng() % 2 == 0) {
            m_list.criteria().categories = {c->id()};
        }
        m_settings.setValue(IntSetting::ShowDataForSubCategories, 1);
        m_list.refresh();
    }

    void selectAtRandom()
    {
        filterAtRandom();
        for (std::size_t row = 0; row < m_list.rowCount(); ++row) {
            m_list.setSelected(row, m_rng() % 3 == 0);
        }
    }

    void deleteShown()
    {
        filterAtRandom();
        m_list.deleteShown();
    }
    void deleteSelected()
    {
        selectAtRandom();
        m_list.deleteSelected();
    }
    void setPaid()
    {
        selectAtRandom();
        m_list.setSelectedPaid();
    }

    void importOther()
    {
        // Another ledger, or this one (every entry a duplicate but the ones changed since).
        const std::string other = m_rng() % 3 == 0
                                      ? serializeLedger(m_doc.ledger())
                                      : serializeLedger(generateLedger(20 + m_rng() % 60, m_rng()));
        importLedger(m_doc, other, m_prompter);
    }

    void categoryCommand()
    {
        const Category* c = pick(m_doc.ledger().categories);
        switch (m_rng() % 3) {
        case 0: {
            CategoryEditor e(m_doc, m_prompter, CategoryEditor::Mode::New);
            e.setName(word());
            if (c && m_rng() % 2 == 0) {
                e.setSubcategory(true);
                e.chooseParent(c->id());
            }
            e.save();
            break;
        }
        case 1:
            if (c) {
                CategoryEditor e(m_doc, m_prompter, CategoryEditor::Mode::Change, c->id());
                e.setName(word());
                e.save();
            }
            break;
        default:
            deleteCategoryAsked(m_doc, m_prompter, c ? std::optional(c->id()) : std::nullopt);
        }
    }

    void currencyCommand()
    {
        CurrencyCashEditor cash(m_doc, m_settings, m_prompter);
        const std::string name = std::string("C").append(std::to_string(m_rng() % 20));
        const auto asker = [&](const std::string&) { return std::optional(name); };
        const std::size_t row = m_rng() % cash.rows().size();
        switch (m_rng() % 3) {
        case 0:
            cash.add(asker);
            break;
        case 1:
            cash.rename(row, asker);
            break;
        default:
            cash.remove(row);
        }
    }

    void protectionCommand()
    {
        const bool setting = m_doc.lockText().empty();
        m_password = setting ? word() : m_password;
        const auto password = [this](bool) { return std::optional(m_password); };
        permanentProtectionCommand(m_doc, m_prompter, password);
        if (setting) {
            // Nothing changes while locked, and no step is made; then the session unlocks it.
            const std::size_t steps = m_doc.history().undoCount();
            EXPECT_FALSE(m_list.deleteAll());
            EXPECT_FALSE(undoCommand(m_doc, m_prompter));
            EXPECT_EQ(m_doc.history().undoCount(), steps);
            temporaryUnlockCommand(m_doc, m_prompter, password);
        }
    }

    std::mt19937_64 m_rng;
    FixedClock m_clock{kStart};
    CFinoraDoc m_doc{m_clock};
    MemorySettingsStore m_store;
    Settings m_settings{m_store};
    RecordingPrompter m_prompter{Answer::Yes};
    OperationsList m_list{m_doc, m_settings, m_prompter};
    std::string m_password;
};

// A generated ledger, with a few records whose ids repeat as hand-made files may have them.
Ledger ledgerWithRepeatedIds(std::uint64_t seed)
{
    Ledger l = generateLedger(300, seed);
    std::vector<Operation> again;
    for (const Operation& op : l.operations) {
        if (op.id() % 37 == 0) {
            again.push_back(op);
        }
    }
    for (const Operation& op : again) {
        l.operations.append(op);
    }
    l.categories.append(*l.categories.begin());
    return l;
}

// Two ledgers' bytes alike, or where they first differ (the whole of them would drown the report).
::testing::AssertionResult sameBytes(const std::string& actual, const std::string& expected)
{
    if (actual == expected) {
        return ::testing::AssertionSuccess();
    }
    const auto at = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    return ::testing::AssertionFailure()
           << "the ledger's " << actual.size() << " bytes differ from the " << expected.size()
           << " expected at byte " << (at.first - actual.begin());
}

// The time of the i-th command: a second apart, so every step stamps its own.
DateTime at(int i)
{
    return DateTime(kStart.days() + (i + 1) / 86400.0, DateTime::Valid);
}

class HistoryProperty : public ::testing::TestWithParam<std::uint64_t> {};

} // namespace

TEST_P(HistoryProperty, UndoAllGivesTheOriginalBytesRedoAllTheLastAndEveryStepItsOwn)
{
    Desk desk(ledgerWithRepeatedIds(GetParam()));
    CFinoraDoc& doc = desk.doc();
    std::mt19937_64 rng(GetParam());
    std::vector<std::string> states{desk.bytes()};
    for (int i = 0; i < 250; ++i) {
        const std::size_t before = doc.history().undoCount();
        desk.randomCommand(rng(), at(i));
        const std::size_t after = doc.history().undoCount();
        // A command is one step or, refused or changing nothing, none.
        if (after == before) {
            ASSERT_TRUE(sameBytes(desk.bytes(), states.back()))
                << "command " << i << " changed the ledger without a step";
        } else {
            ASSERT_EQ(after, before + 1) << "command " << i;
            states.push_back(desk.bytes());
        }
    }
    ASSERT_GT(states.size(), 150u);

    for (std::size_t n = states.size() - 1; n > 0; --n) {
        ASSERT_TRUE(doc.undo());
        ASSERT_TRUE(sameBytes(desk.bytes(), states[n - 1])) << "undo back to state " << n - 1;
    }
    EXPECT_FALSE(doc.history().canUndo());
    EXPECT_FALSE(doc.undo());
    expectLookupsAsScans(doc.ledger().operations);
    expectLookupsAsScans(doc.ledger().categories);

    for (std::size_t n = 1; n < states.size(); ++n) {
        ASSERT_TRUE(doc.redo());
        ASSERT_TRUE(sameBytes(desk.bytes(), states[n])) << "redo to state " << n;
    }
    EXPECT_FALSE(doc.redo());
    expectLookupsAsScans(doc.ledger().operations);
    expectLookupsAsScans(doc.ledger().currencies);
}

TEST_P(HistoryProperty, UndoRedoAndNewCommandsInterleavedAgreeWithAReplayOfTheCommandsThatStand)
{
    // The line of commands that stand: a new command cuts it where undo and redo have reached.
    // Each is kept with its seed and time, and the ledger's bytes after it.
    struct Command {
        std::uint64_t seed;
        DateTime now;
        std::string bytes;
    };
    const Ledger original = ledgerWithRepeatedIds(GetParam() + 100);
    Desk desk{Ledger(original)};
    CFinoraDoc& doc = desk.doc();
    std::vector<Command> line{{0, kStart, desk.bytes()}};
    std::size_t at = 0;
    std::mt19937_64 rng(GetParam());
    for (int i = 0; i < 500; ++i) {
        switch (rng() % 3) {
        case 0:
            ASSERT_EQ(doc.undo(), at > 0);
            at -= at > 0 ? 1 : 0;
            break;
        case 1:
            ASSERT_EQ(doc.redo(), at + 1 < line.size());
            at += at + 1 < line.size() ? 1 : 0;
            break;
        default: {
            const std::size_t before = doc.history().undoCount();
            const Command command{rng(), ::at(i), {}};
            desk.randomCommand(command.seed, command.now);
            if (doc.history().undoCount() != before) {
                line.resize(at + 1);
                line.push_back(command);
                line.back().bytes = desk.bytes();
                ++at;
                ASSERT_FALSE(doc.history().canRedo())
                    << "a new step keeps the steps undone before it";
            }
        }
        }
        ASSERT_EQ(doc.history().undoCount(), at);
        ASSERT_TRUE(sameBytes(desk.bytes(), line[at].bytes)) << "after action " << i;
        if (i % 50 == 0) {
            expectLookupsAsScans(doc.ledger().operations);
            expectLookupsAsScans(doc.ledger().categories);
            expectLookupsAsScans(doc.ledger().currencies);
        }
    }

    // The same commands on a document that never took anything back reach the same bytes.
    Desk replay{Ledger(original)};
    for (std::size_t n = 1; n <= at; ++n) {
        replay.randomCommand(line[n].seed, line[n].now);
        ASSERT_TRUE(sameBytes(replay.bytes(), line[n].bytes)) << "replay of command " << n;
    }
    EXPECT_TRUE(sameBytes(replay.bytes(), desk.bytes()));
    EXPECT_GT(at, 20u);
}

INSTANTIATE_TEST_SUITE_P(Seeds, HistoryProperty, ::testing::Values(1u, 2u, 3u));

namespace {

class HistoryTest : public ::testing::Test {
protected:
    HistoryTest()
    {
        m_doc.setHistoryLimit(100);
        m_doc.setChangeHandler([this](ChangeKind kind) { m_changes.push_back(kind); });
    }

    FixedClock m_clock{DateTime::fromParts(2026, 3, 4, 10)};
    CFinoraDoc m_doc{m_clock};
    std::vector<ChangeKind> m_changes;
    RecordingPrompter m_prompter{Answer::Yes};
    MemorySettingsStore m_store;
    Settings m_settings{m_store};
};

} // namespace

TEST_F(HistoryTest, UndoAndRedoAreChangesOfTheirOwn)
{
    ASSERT_TRUE(m_doc.addCategory("A", 0));
    m_doc.setModified(false);
    m_changes.clear();
    const std::uint64_t revision = m_doc.recordsRevision();
    ASSERT_TRUE(m_doc.undo());
    EXPECT_TRUE(m_doc.isModified());
    EXPECT_EQ(m_changes, std::vector<ChangeKind>{ChangeKind::Ordinary});
    EXPECT_NE(m_doc.recordsRevision(), revision);
    m_doc.setModified(false);
    ASSERT_TRUE(m_doc.redo());
    EXPECT_TRUE(m_doc.isModified());
    EXPECT_EQ(m_changes.size(), 2u);
    // Nothing to undo or redo is no change at all.
    m_doc.undo();
    m_doc.setModified(false);
    m_changes.clear();
    EXPECT_FALSE(m_doc.undo());
    EXPECT_FALSE(m_doc.isModified());
    EXPECT_TRUE(m_changes.empty());
}

TEST_F(HistoryTest, UndoingOrRedoingBackToTheSavedStateClearsTheModifiedMark)
{
    int told = 0;
    m_doc.setStateHandler([&told] { ++told; });
    m_doc.setModified(false); // as opened: no step yet
    ASSERT_TRUE(m_doc.addCategory("A", 0));
    ASSERT_TRUE(m_doc.undo());
    EXPECT_FALSE(m_doc.isModified()) << "back where it was opened";
    ASSERT_TRUE(m_doc.redo());
    ASSERT_TRUE(m_doc.addCategory("B", 0));
    m_doc.setModified(false); // saved with A and B
    // Each entry: undo or redo, then whether the ledger differs from the saved one.
    const std::pair<bool, bool> steps[] = {
        {true, true}, {true, true}, {false, true}, {false, false}, {true, true}};
    for (const auto& [undo, modified] : steps) {
        ASSERT_TRUE(undo ? m_doc.undo() : m_doc.redo());
        EXPECT_EQ(m_doc.isModified(), modified) << (undo ? "undo" : "redo");
    }
    // A new change where B was undone: the saved state can no longer be reached.
    ASSERT_TRUE(m_doc.addCategory("C", 0));
    ASSERT_TRUE(m_doc.undo());
    EXPECT_TRUE(m_doc.isModified());
    EXPECT_GE(told, 10) << "the state handler missed changes";
}

TEST_F(HistoryTest, OneBatchIsOneStepAndOnlyTheOutermostNamesIt)
{
    {
        CFinoraDoc::ChangeBatch outer(m_doc, "внешна");
        {
            CFinoraDoc::ChangeBatch inner(m_doc, "вътрешна");
            inner.setLabel("друга");
            m_doc.addCategory("A", 0);
        }
        m_doc.addCategory("B", 0);
        // A refused change inside adds nothing.
        m_doc.addCategory("B", 0);
    }
    EXPECT_EQ(m_doc.history().undoCount(), 1u);
    EXPECT_EQ(m_doc.history().undoLabel(), "внешна");
    EXPECT_EQ(m_changes.size(), 1u);
    ASSERT_TRUE(m_doc.undo());
    EXPECT_TRUE(m_doc.ledger().categories.empty());
    EXPECT_EQ(m_doc.ledger().counters.nextCategoryId, 0);

    // A batch that changes nothing is no step: the step undone can still be done again.
    {
        CFinoraDoc::ChangeBatch nothing(m_doc, "нищо");
    }
    EXPECT_TRUE(m_doc.history().canRedo());
}

TEST_F(HistoryTest, KeepsTheLastStepsUpToItsLimitAndNothingAcrossANewLedger)
{
    for (int i = 0; i < 130; ++i) {
        m_doc.addCategory(std::to_string(i), 0);
    }
    EXPECT_EQ(m_doc.history().undoCount(), 100u);
    while (m_doc.undo()) {
    }
    EXPECT_EQ(m_doc.ledger().categories.size(), 30u);
    EXPECT_EQ(m_doc.ledger().counters.nextCategoryId, 30);

    m_doc.replaceLedger(generateLedger(50, 1));
    EXPECT_FALSE(m_doc.history().canUndo());
    EXPECT_FALSE(m_doc.history().canRedo());
    m_doc.deleteAllOperations();
    m_doc.clear();
    EXPECT_FALSE(m_doc.history().canUndo());

    // Without a limit nothing is kept.
    CFinoraDoc plain(m_clock);
    plain.addCategory("A", 0);
    EXPECT_FALSE(plain.history().canUndo());
    EXPECT_FALSE(plain.undo());
}

TEST_F(HistoryTest, StepsAreNamedForTheMenu)
{
    m_doc.replaceLedger(generateLedger(200, 4));
    OperationsList list(m_doc, m_settings, m_prompter);
    resetCriteria(list.criteria(), m_doc, m_clock.now());
    list.refresh();
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
        list.setSelected(row, row < 120);
    }
    ASSERT_TRUE(list.deleteSelected());
    EXPECT_EQ(undoMenuText(m_doc), "&Отмени: изтриване на 120 записа");
    EXPECT_EQ(redoMenuText(m_doc), "&Възстанови");
    m_doc.undo();
    EXPECT_EQ(undoMenuText(m_doc), "&Отмени");
    EXPECT_EQ(redoMenuText(m_doc), "&Възстанови: изтриване на 120 записа");

    list.refresh();
    bool one = false;
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
        const bool unpaid = list.cellText(row, kColPaid) == w("не");
        list.setSelected(row, unpaid && !one);
        one = one || unpaid;
    }
    ASSERT_TRUE(one);
    list.setSelectedPaid();
    EXPECT_EQ(m_doc.history().undoLabel(), "отбелязване на 1 запис като изплатени");

    m_doc.addCurrency("R&D");
    EXPECT_EQ(undoMenuText(m_doc), "&Отмени: нова валута „R&&D“");
    m_doc.addCategory(w("Пътувания"), 0);
    EXPECT_EQ(m_doc.history().undoLabel(), "нова категория „Пътувания“");
    list.refresh();
    list.deleteAll();
    EXPECT_EQ(m_doc.history().undoLabel(), "изтриване на 200 записа");
    const std::string other = serializeLedger(generateLedger(30, 9));
    importLedger(m_doc, other, m_prompter);
    EXPECT_EQ(m_doc.history().undoLabel(), "импортиране на 30 записа");
}

TEST_F(HistoryTest, UndoIsRefusedWhileTheLedgerIsLocked)
{
    m_doc.addCategory("A", 0);
    const auto password = [](bool) { return std::optional<std::string>("pw"); };
    ASSERT_TRUE(permanentProtectionCommand(m_doc, m_prompter, password));
    ASSERT_TRUE(m_doc.isLocked());
    EXPECT_EQ(m_doc.history().undoLabel(), "задаване на защита с парола");
    m_prompter.clear();
    EXPECT_FALSE(undoCommand(m_doc, m_prompter));
    EXPECT_FALSE(redoCommand(m_doc, m_prompter));
    ASSERT_EQ(m_prompter.messages().size(), 2u);
    EXPECT_EQ(m_prompter.messages()[0].text, kLockedText);
    EXPECT_EQ(m_prompter.messages()[0].caption, kLockedCaption);
    EXPECT_TRUE(m_doc.isLocked());
    EXPECT_EQ(m_doc.history().undoCount(), 2u);

    // Unlocked for the session, the protection itself can be taken back, and set again.
    ASSERT_TRUE(temporaryUnlockCommand(m_doc, m_prompter, password));
    ASSERT_TRUE(undoCommand(m_doc, m_prompter));
    EXPECT_TRUE(m_doc.lockText().empty());
    ASSERT_TRUE(redoCommand(m_doc, m_prompter));
    EXPECT_FALSE(m_doc.lockText().empty());

    // Removing it is a step too.
    ASSERT_TRUE(permanentProtectionCommand(m_doc, m_prompter, password));
    EXPECT_TRUE(m_doc.lockText().empty());
    EXPECT_EQ(m_doc.history().undoLabel(), "премахване на защитата с парола");
    ASSERT_TRUE(undoCommand(m_doc, m_prompter));
    EXPECT_FALSE(m_doc.lockText().empty());
}
