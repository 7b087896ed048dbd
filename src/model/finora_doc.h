#pragma once

#include "model/clock.h"
#include "model/ledger.h"

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
    // Hands out NextMasterId + 1; that alone does not mark the document modified.
    std::int32_t newMasterId();

    // --- document state
    bool isModified() const { return m_modified; }
    void setModified(bool modified) { m_modified = modified; }
    const std::string& path() const { return m_path; }
    void setPath(std::string path) { m_path = std::move(path); }

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

    // Back to an empty ledger: no records, counters 0, no lock text. The unlocked flag stays.
    void clear();
    // Takes a ledger read from a file; the document is not marked modified.
    void replaceLedger(Ledger ledger);

    // Called after every successful change, once the document is marked modified.
    void setChangeHandler(ChangeHandler handler) { m_onChange = std::move(handler); }

    // While one lives, changes are collected and the handler hears of them once, when the last
    // batch ends: deleting a thousand rows with auto-save on then writes the file once, not a
    // thousand times. The file ends up the same.
    class ChangeBatch {
    public:
        explicit ChangeBatch(CFinoraDoc& doc) : m_doc(doc) { ++m_doc.m_batchDepth; }
        ~ChangeBatch();
        ChangeBatch(const ChangeBatch&) = delete;
        ChangeBatch& operator=(const ChangeBatch&) = delete;

    private:
        CFinoraDoc& m_doc;
    };

private:
    void changed(ChangeKind kind = ChangeKind::Ordinary);

    const Clock& m_clock;
    Ledger m_ledger;
    std::string m_path;
    bool m_modified = false;
    std::uint64_t m_recordsRevision = 0;
    std::int32_t m_unlocked = 0;
    ChangeHandler m_onChange;
    int m_batchDepth = 0;
    bool m_changePending = false;
    ChangeKind m_pendingKind = ChangeKind::Ordinary;
};

} // namespace finora
