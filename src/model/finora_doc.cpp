#include "model/finora_doc.h"

#include "lock/password_digest.h"

#include <unordered_map>
#include <unordered_set>

namespace finora {
namespace {

const std::string kMainCurrency = "BGL";
const std::string kNoText;

// Counters come from files as they stand; stepping past the largest id must not be undefined.
std::int32_t nextId(std::int32_t& counter)
{
    counter = static_cast<std::int32_t>(static_cast<std::uint32_t>(counter) + 1U);
    return counter;
}

} // namespace

CFinoraDoc::CFinoraDoc(const Clock& clock) : m_clock(clock) {}

std::string CFinoraDoc::currencyName(std::int32_t id) const
{
    if (id == 0 || id == -1) {
        return kMainCurrency;
    }
    const Currency* c = m_ledger.currencies.find(id);
    return c ? c->name() : std::string();
}

std::int32_t CFinoraDoc::currencyId(std::string_view name) const
{
    if (name == kMainCurrency) {
        return 0;
    }
    const Currency* c = m_ledger.currencies.findIf([&](const Currency& x) { return x.name() == name; });
    return c ? c->id() : -1;
}

const std::string& CFinoraDoc::categoryName(std::int32_t id) const
{
    const Category* c = m_ledger.categories.find(id);
    return c ? c->name() : kNoText;
}

std::int32_t CFinoraDoc::categoryParent(std::int32_t id) const
{
    const Category* c = m_ledger.categories.find(id);
    return c ? c->parentId() : 0;
}

bool CFinoraDoc::hasSubcategories(std::int32_t id) const
{
    return m_ledger.categories.findIf([id](const Category& c) { return c.parentId() == id; }) !=
           nullptr;
}

bool CFinoraDoc::isDescendant(std::int32_t category, std::int32_t ancestor) const
{
    // A hand-made file may hold a cycle; no walk can be longer than the list without one.
    std::int32_t current = category;
    for (std::size_t steps = 0; steps <= m_ledger.categories.size(); ++steps) {
        const Category* c = m_ledger.categories.find(current);
        if (!c) {
            return false;
        }
        if (c->parentId() == ancestor) {
            return true;
        }
        if (c->parentId() == 0) {
            return false;
        }
        current = c->parentId();
    }
    return false;
}

std::vector<std::int32_t> CFinoraDoc::descendants(const std::vector<std::int32_t>& ancestors) const
{
    // Lookups see the first record of an id, so only first records hang in the tree.
    const auto& list = m_ledger.categories;
    std::unordered_map<std::int32_t, std::vector<std::int32_t>> children;
    for (const Category& c : list) {
        if (list.find(c.id()) == &c) {
            children[c.parentId()].push_back(c.id());
        }
    }
    std::vector<std::int32_t> found;
    std::unordered_set<std::int32_t> seen;
    std::vector<std::int32_t> pending(ancestors.begin(), ancestors.end());
    while (!pending.empty()) {
        const std::int32_t parent = pending.back();
        pending.pop_back();
        const auto kids = children.find(parent);
        if (kids == children.end()) {
            continue;
        }
        for (const std::int32_t kid : kids->second) {
            if (seen.insert(kid).second) {
                found.push_back(kid);
                pending.push_back(kid);
            }
        }
    }
    return found;
}

Operation CFinoraDoc::operation(std::int32_t id) const
{
    const Operation* op = m_ledger.operations.find(id);
    return op ? *op : Operation();
}

bool CFinoraDoc::addCategory(std::string name, std::int32_t parentId)
{
    const bool taken = m_ledger.categories.findIf([&](const Category& c) {
        return c.parentId() == parentId && c.name() == name;
    }) != nullptr;
    if (taken) {
        return false;
    }
    const std::int32_t id = nextId(m_ledger.counters.nextCategoryId);
    m_ledger.categories.append(Category(id, std::move(name), parentId));
    changed();
    return true;
}

bool CFinoraDoc::changeCategory(std::int32_t id, std::string name, std::int32_t parentId)
{
    Category* category = m_ledger.categories.findMutable(id);
    if (!category) {
        return false;
    }
    const bool taken = m_ledger.categories.findIf([&](const Category& c) {
        return c.id() != id && c.parentId() == parentId && c.name() == name;
    }) != nullptr;
    if (taken) {
        return false;
    }
    *category = Category(id, std::move(name), parentId);
    changed();
    return true;
}

bool CFinoraDoc::deleteCategory(std::int32_t id)
{
    if (!m_ledger.categories.find(id) || hasSubcategories(id) ||
        m_ledger.operations.findIf([id](const Operation& op) { return op.categoryId() == id; })) {
        return false;
    }
    m_ledger.categories.removeFirst(id);
    changed();
    return true;
}

bool CFinoraDoc::addCurrency(std::string name)
{
    if (m_ledger.currencies.findIf([&](const Currency& c) { return c.name() == name; })) {
        return false;
    }
    const std::int32_t id = nextId(m_ledger.counters.nextCurrencyId);
    m_ledger.currencies.append(Currency(id, std::move(name)));
    changed();
    return true;
}

bool CFinoraDoc::renameCurrency(std::int32_t id, std::string name)
{
    Currency* currency = m_ledger.currencies.findMutable(id);
    if (!currency || m_ledger.currencies.findIf([&](const Currency& c) {
            return c.id() != id && c.name() == name;
        })) {
        return false;
    }
    *currency = Currency(id, std::move(name));
    changed();
    return true;
}

bool CFinoraDoc::deleteCurrency(std::int32_t id)
{
    if (!m_ledger.currencies.find(id) ||
        m_ledger.operations.findIf([id](const Operation& op) { return op.currencyId() == id; })) {
        return false;
    }
    m_ledger.currencies.removeFirst(id);
    changed();
    return true;
}

bool CFinoraDoc::addOperation(const Operation& f)
{
    const std::int32_t id = nextId(m_ledger.counters.nextOperationId);
    m_ledger.operations.append(Operation(id, f.date(), f.description(), f.type(), f.categoryId(),
                                         f.amount(), f.currencyId(), f.amountBgl(), f.notes(),
                                         m_clock.now(), f.paid(), f.masterId()));
    ++m_recordsRevision;
    changed();
    return true;
}

bool CFinoraDoc::changeOperation(const Operation& f)
{
    Operation* op = m_ledger.operations.findMutable(f.id());
    if (!op) {
        return false;
    }
    op->set(f.date(), f.description(), f.type(), f.categoryId(), f.amount(), f.currencyId(),
            f.amountBgl(), f.notes(), m_clock.now(), f.paid(), f.masterId());
    changed();
    return true;
}

bool CFinoraDoc::deleteOperation(std::int32_t id)
{
    if (!m_ledger.operations.removeFirst(id)) {
        return false;
    }
    ++m_recordsRevision;
    changed();
    return true;
}

void CFinoraDoc::deleteAllOperations()
{
    m_ledger.operations.clear();
    ++m_recordsRevision;
    changed(ChangeKind::DeleteAll);
}

bool CFinoraDoc::markPaid(std::int32_t id)
{
    Operation* op = m_ledger.operations.findMutable(id);
    if (!op) {
        return false;
    }
    op->setPaid(1);
    op->setLastModified(m_clock.now());
    changed();
    return true;
}

std::int32_t CFinoraDoc::newMasterId()
{
    return nextId(m_ledger.counters.nextMasterId);
}

void CFinoraDoc::setLock(std::string_view password)
{
    m_ledger.lockText = passwordDigest(password);
    changed();
}

bool CFinoraDoc::checkLock(std::string_view password, LockCheck mode)
{
    if (passwordDigest(password) != m_ledger.lockText) {
        return false;
    }
    if (mode == LockCheck::TemporaryUnlock) {
        m_unlocked = 1;
    } else {
        m_ledger.lockText.clear();
        changed();
    }
    return true;
}

void CFinoraDoc::clear()
{
    m_ledger = Ledger();
    ++m_recordsRevision;
}

void CFinoraDoc::replaceLedger(Ledger ledger)
{
    m_ledger = std::move(ledger);
    ++m_recordsRevision;
}

void CFinoraDoc::changed(ChangeKind kind)
{
    m_modified = true;
    if (m_batchDepth > 0) {
        // Deleting everything saves through the ordinary save command; that wins in a batch.
        if (!m_changePending || kind == ChangeKind::DeleteAll) {
            m_pendingKind = kind;
        }
        m_changePending = true;
        return;
    }
    if (m_onChange) {
        m_onChange(kind);
    }
}

CFinoraDoc::ChangeBatch::~ChangeBatch()
{
    if (--m_doc.m_batchDepth == 0 && m_doc.m_changePending) {
        m_doc.m_changePending = false;
        m_doc.changed(m_doc.m_pendingKind);
    }
}

} // namespace finora
