#pragma once

#include "core/companion/category_rule.h"
#include "core/model/ledger.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace finora {

// "1 запис", "120 записа" (UTF-8), for the names of steps.
std::string recordsText(std::size_t count);

// What one step did to one list of the ledger, in order, so it can be done back and forth. It
// holds only the records that are out of the list at the moment (the removed ones while the step
// is done, the added ones while it is undone, the other version of each changed one), each with
// the key of its place, never a copy of the list.
template <class T> class ListChanges {
    using List = RecordList<T>;
    using Key = typename List::Key;

public:
    bool empty() const { return m_runs.empty(); }

    void added(std::int32_t id, Key key) { note(Kind::Added, id, key); }
    void removed(typename List::Taken taken)
    {
        note(Kind::Removed, taken.value.id(), taken.key).values.push_back(std::move(taken.value));
    }
    void modified(std::int32_t id, Key key, T before)
    {
        note(Kind::Modified, id, key).values.push_back(std::move(before));
    }
    // The whole list went (deleting every operation): it is kept as it was, not copied.
    void replaced(List whole)
    {
        Run run{Kind::Replaced, {}, {}, {}, std::make_unique<List>(std::move(whole))};
        m_runs.push_back(std::move(run));
    }

    // `notify(before, after)` hears of each record the step puts in (before null), takes out
    // (after null) or changes; both null when the whole list was swapped.
    template <class Notify> void undo(List& list, const Notify& notify)
    {
        for (auto run = m_runs.rbegin(); run != m_runs.rend(); ++run) {
            apply(list, *run, true, notify);
        }
    }
    template <class Notify> void redo(List& list, const Notify& notify)
    {
        for (Run& run : m_runs) {
            apply(list, run, false, notify);
        }
    }
    void undo(List& list) { undo(list, ignore); }
    void redo(List& list) { redo(list, ignore); }

private:
    enum class Kind { Added, Removed, Modified, Replaced };
    // Changes of one kind in a row: a delete of 100,000 rows is put back in one pass.
    struct Run {
        Kind kind;
        std::vector<std::int32_t> ids;
        std::vector<Key> keys;
        std::vector<T> values;
        std::unique_ptr<List> whole;
    };

    Run& note(Kind kind, std::int32_t id, Key key)
    {
        if (m_runs.empty() || m_runs.back().kind != kind) {
            m_runs.push_back(Run{kind, {}, {}, {}, nullptr});
        }
        Run& run = m_runs.back();
        run.ids.push_back(id);
        run.keys.push_back(key);
        return run;
    }

    static void ignore(const T*, const T*) {}

    template <class Notify> static void apply(List& list, Run& run, bool undo, const Notify& notify)
    {
        switch (run.kind) {
        case Kind::Added:
            undo ? takeOut(list, run, true, notify) : putBack(list, run, notify);
            break;
        case Kind::Removed:
            undo ? putBack(list, run, notify) : takeOut(list, run, false, notify);
            break;
        case Kind::Modified:
            for (std::size_t n = 0; n < run.ids.size(); ++n) {
                const std::size_t i = undo ? run.ids.size() - 1 - n : n;
                T* record = list.findByKey(run.ids[i], run.keys[i]);
                if (!record) {
                    throw std::logic_error("the history does not match the ledger");
                }
                std::swap(*record, run.values[i]);
                notify(&run.values[i], record);
            }
            break;
        case Kind::Replaced:
            std::swap(list, *run.whole);
            notify(nullptr, nullptr);
            break;
        }
    }

    template <class Notify>
    static void takeOut(List& list, Run& run, bool backwards, const Notify& notify)
    {
        run.values.resize(run.ids.size());
        for (std::size_t n = 0; n < run.ids.size(); ++n) {
            const std::size_t i = backwards ? run.ids.size() - 1 - n : n;
            auto taken = list.takeByKey(run.ids[i], run.keys[i]);
            if (!taken) {
                throw std::logic_error("the history does not match the ledger");
            }
            run.values[i] = std::move(taken->value);
            notify(&run.values[i], nullptr);
        }
    }

    template <class Notify> static void putBack(List& list, Run& run, const Notify& notify)
    {
        std::vector<T> values;
        values.swap(run.values);
        list.restore(run.keys, std::move(values));
        for (std::size_t i = 0; i < run.ids.size(); ++i) {
            if (const T* record = list.findByKey(run.ids[i], run.keys[i])) {
                notify(nullptr, record);
            }
        }
    }

    std::vector<Run> m_runs;
};

// The password lock as a step changes it: the digest, and whether this session unlocked it.
struct LockState {
    std::string text;
    std::int32_t unlocked = 0;
};

// One user-level command's changes to the ledger.
struct HistoryStep {
    std::string label; // what the command did, UTF-8: "изтриване на 120 записа"
    ListChanges<Currency> currencies;
    ListChanges<Category> categories;
    ListChanges<Operation> operations;
    // The other counters, for a step that changed them.
    std::optional<LedgerCounters> counters;
    // The lock before and after, for a step that changed it: done again, setting a protection
    // locks the ledger again, whatever unlocking came in between.
    std::optional<std::pair<LockState, LockState>> lock;
    // The categorisation rules before and after, for a step that changed them.
    std::optional<std::pair<std::vector<CategoryRule>, std::vector<CategoryRule>>> rules;
    // Given when recorded, never reused: which state of the ledger the step leads to.
    std::uint64_t serial = 0;

    bool empty() const
    {
        return currencies.empty() && categories.empty() && operations.empty() && !counters &&
               !lock && !rules;
    }
};

// The steps that can be undone, the latest last, and those undone that can be done again.
class History {
public:
    std::size_t limit() const { return m_limit; }
    // How many steps are kept; the oldest go first. 0 keeps none.
    void setLimit(std::size_t steps);

    // A new step: the steps undone before it can no longer be done again.
    void record(HistoryStep step);
    bool canUndo() const { return !m_undo.empty(); }
    bool canRedo() const { return !m_redo.empty(); }
    const std::string& undoLabel() const;
    const std::string& redoLabel() const;
    std::size_t undoCount() const { return m_undo.size(); }
    std::size_t redoCount() const { return m_redo.size(); }
    // The state the ledger is in, as the serial of the last step done (0 before any): equal
    // positions are equal ledgers.
    std::uint64_t position() const { return m_undo.empty() ? 0 : m_undo.back().serial; }

    // The step to undo or redo, out of the history; hand it back once applied.
    HistoryStep takeUndo();
    void undone(HistoryStep step) { m_redo.push_back(std::move(step)); }
    HistoryStep takeRedo();
    void redone(HistoryStep step) { m_undo.push_back(std::move(step)); }

    void clear();

private:
    std::size_t m_limit = 0;
    std::uint64_t m_lastSerial = 0;
    std::deque<HistoryStep> m_undo;
    std::vector<HistoryStep> m_redo;
};

} // namespace finora
