#pragma once

#include "core/companion/companion.h"
#include "core/model/clock.h"
#include "core/model/history.h"
#include "core/model/ledger.h"
#include "core/model/operation_observer.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace finora {

// What a successful change asks of the auto-save that follows it: deleting all operations goes
// through the ordinary save command, every other change through the auto-save routine.
enum class ChangeKind { Ordinary, DeleteAll };

// The one open ledger and the only code that changes it. Lookups keep "first match in list
// order" semantics; changes return false and leave everything as it was when refused, so the
// caller picks the message.
class CFinoraDoc {
public:
    using ChangeHandler = std::function<void(ChangeKind)>;

    explicit CFinoraDoc(const Clock& clock);

    const Ledger& ledger() const { return m_ledger; }
    // What the ledger keeps beside its file. It changes only with a change of the ledger (an
    // import adds to both in one command), so the ledger's modified flag and save cover it.
    const Companion& companion() const { return m_companion; }
    Companion& companion() { return m_companion; }
    const Clock& clock() const { return m_clock; }

    // --- lookups
    // "BGL" for 0 and -1, the first currency's name, or an empty text.
    std::string currencyName(std::int32_t id) const;
    // 0 for exactly "BGL", the first currency of that exact name, or -1.
    std::int32_t currencyId(std::string_view name) const;
    const std::string& categoryName(std::int32_t id) const;
    std::int32_t categoryParent(std::int32_t id) const;
    bool hasSubcategories(std::int32_t id) const;
    // Walks up from `category`: true when some category on the way has `ancestor` as parent.
    bool isDescendant(std::int32_t category, std::int32_t ancestor) const;
    // Every category below any of `ancestors`, at any depth, each once: the categories for which
    // isDescendant holds with one of them, found in one pass over the list however deep the
    // tree is, and safe on a hand-made cycle.
    std::vector<std::int32_t> descendants(const std::vector<std::int32_t>& ancestors) const;
    // A copy of the first operation with the id, or an empty record with id 0.
    Operation operation(std::int32_t id) const;
    std::size_t operationCount() const { return m_ledger.operations.size(); }
    // Room for this many operations: until then adding moves no record in memory.
    void reserveOperations(std::size_t count)
    {
        m_ledger.operations.reserve(count);
        ++m_recordsRevision;
    }
    // Changes whenever an operation record may have moved or gone (added, deleted, emptied,
    // replaced): whoever keeps pointers to records knows by it that they are no longer good.
    std::uint64_t recordsRevision() const { return m_recordsRevision; }

    // --- changes
    bool addCategory(std::string name, std::int32_t parentId);
    bool changeCategory(std::int32_t id, std::string name, std::int32_t parentId);
    bool deleteCategory(std::int32_t id);
    bool addCurrency(std::string name);
    bool renameCurrency(std::int32_t id, std::string name);
    bool deleteCurrency(std::int32_t id);
    // The id of `fields` is ignored: the new record takes NextOperationId + 1.
    bool addOperation(const Operation& fields);
    // Replaces every field but the id of the first operation with fields.id().
    bool changeOperation(const Operation& fields);
    bool deleteOperation(std::int32_t id);
    void deleteAllOperations();
    bool markPaid(std::int32_t id);
    // Hands out NextMasterId + 1; that alone does not mark the document modified. Call it within
    // the batch of the command that uses the id, so that undoing the command takes it back.
    std::int32_t newMasterId();

    // --- the history of changes, for undo and redo while the ledger is open
    // Keeps the last `steps` commands; 0, the default, keeps none and records nothing.
    void setHistoryLimit(std::size_t steps) { m_history.setLimit(steps); }
    const History& history() const { return m_history; }
    // Takes back the last command, or does again the last one taken back; false when there is
    // none. Either is a change of its own: the document is marked modified and the handler told.
    // The caller tests the lock.
    bool undo();
    bool redo();

    // --- document state
    bool isModified() const { return m_modified; }
    // Unmodified is the state a save or an open left: undoing or redoing back to it clears the
    // mark again.
    void setModified(bool modified);
    const std::string& path() const { return m_path; }
    void setPath(std::string path) { m_path = std::move(path); }
    // Opened while another program holds the file: every change is refused as it is asked for.
    bool isReadOnly() const { return m_readOnly; }
    void setReadOnly(bool readOnly) { m_readOnly = readOnly; }

    // --- the password lock
    const std::string& lockText() const { return m_ledger.lockText; }
    bool isUnlocked() const { return m_unlocked != 0; }
    void setUnlocked(bool unlocked) { m_unlocked = unlocked ? 1 : 0; }
    // Protected and not unlocked for this session.
    bool isLocked() const { return !m_ledger.lockText.empty() && m_unlocked == 0; }
    // Keeps the digest of `password`: a change of the document like any other, so it is marked
    // modified, auto-saved with `AutoSave` on, and asked about on closing.
    void setLock(std::string_view password);
    enum class LockCheck { TemporaryUnlock, RemoveProtection };
    // On a matching password: unlock until the document is closed, or remove the protection for
    // good (a change, so it is auto-saved). A wrong password changes nothing.
    bool checkLock(std::string_view password, LockCheck mode);

    // Replaces the categorisation rules the companion keeps: a change of the ledger, one step of
    // the history named by `label` (UTF-8).
    void setRules(std::vector<CategoryRule> rules, std::string label);

    // Back to an empty ledger: no records, counters 0, no lock text, no companion data, no
    // history. The unlocked flag stays.
    void clear();
    // Takes a ledger read from a file, with no companion data yet; the document is not marked
    // modified and has no history.
    void replaceLedger(Ledger ledger);

    // Called after every successful change, once the document is marked modified.
    void setChangeHandler(ChangeHandler handler) { m_onChange = std::move(handler); }
    // Told of every operation record as it changes; the observer outlives its registration.
    // Observing changes nothing of the document, so a reader may observe.
    void addObserver(OperationObserver* observer) const;
    void removeObserver(OperationObserver* observer) const;
    // Called whenever what undo and redo offer, or the modified mark, may have changed.
    void setStateHandler(std::function<void()> handler) { m_onState = std::move(handler); }

    // While one lives, changes are collected and the handler hears of them once, when the last
    // batch ends: deleting a thousand rows with auto-save on then writes the file once, not a
    // thousand times. The file ends up the same. The outermost batch is one step of the history,
    // named by `label`; a change made outside any batch is a step of its own.
    class ChangeBatch {
    public:
        explicit ChangeBatch(CFinoraDoc& doc, std::string label = {});
        ~ChangeBatch();
        ChangeBatch(const ChangeBatch&) = delete;
        ChangeBatch& operator=(const ChangeBatch&) = delete;
        // Names the step when what it did is known only at the end (UTF-8). Ignored inside an
        // outer batch, which names the step itself.
        void setLabel(std::string label);

    private:
        CFinoraDoc& m_doc;
        bool m_outermost;
    };

private:
    void changed(ChangeKind kind = ChangeKind::Ordinary);
    void tellState();
    // True while a step is open and the history keeps steps.
    bool recording() const { return m_batchDepth > 0 && m_history.limit() > 0; }
    // Names the open step after its first change unless the command named it.
    template <class MakeLabel> void nameStep(MakeLabel makeLabel)
    {
        if (recording() && m_step.label.empty()) {
            m_step.label = makeLabel();
        }
    }
    void openStep();
    void closeStep();
    bool takeStep(bool undo);
    void applyStep(HistoryStep& step, bool undo);
    // Before and after of one operation record: added (no before), removed (no after), or the
    // whole list replaced (neither).
    void notify(const Operation* before, const Operation* after) const;

    const Clock& m_clock;
    Ledger m_ledger;
    Companion m_companion;
    std::string m_path;
    bool m_modified = false;
    std::uint64_t m_recordsRevision = 0;
    std::int32_t m_unlocked = 0;
    bool m_readOnly = false;
    ChangeHandler m_onChange;
    mutable std::vector<OperationObserver*> m_observers;
    std::function<void()> m_onState;
    std::optional<std::uint64_t> m_savedAt; // the history's position when last unmodified
    int m_batchDepth = 0;
    bool m_changePending = false;
    ChangeKind m_pendingKind = ChangeKind::Ordinary;
    History m_history;
    // The step being recorded, and the counters and lock as they were when it began.
    HistoryStep m_step;
    LedgerCounters m_stepCounters;
    LockState m_stepLock;
};

} // namespace finora
