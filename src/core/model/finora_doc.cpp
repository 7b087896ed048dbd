#include "core/model/finora_doc.h"

#include "core/text/cp1251.h"
#include "core/text/password_digest.h"

#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace finora {
namespace {

const std::string kMainCurrency{kMainCurrencyName};
const std::string kNoText;

// Names of categories and currencies in the names of steps (UTF-8).
std::string quoted(const std::string& name)
{
    return "„" + cp1251::toUtf8(name) + "“";
}

// Removes the first record with the id; a step that records keeps it, with its place.
template <class T>
void removeFirstInto(RecordList<T>& list, ListChanges<T>* changes, std::int32_t id)
{
    if (changes) {
        changes->removed(*list.takeFirst(id));
    } else {
        list.removeFirst(id);
    }
}

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
    const Currency* c =
        m_ledger.currencies.findIf([&](const Currency& x) { return x.name() == name; });
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
    ChangeBatch step(*this);
    nameStep([&] { return "нова категория " + quoted(name); });
    const std::int32_t id = nextId(m_ledger.counters.nextCategoryId);
    const auto key = m_ledger.categories.append(Category(id, std::move(name), parentId));
    if (recording()) {
        m_step.categories.added(id, key);
    }
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
    ChangeBatch step(*this);
    nameStep([&] { return "промяна на категория " + quoted(category->name()); });
    if (recording()) {
        m_step.categories.modified(id, m_ledger.categories.keyOf(*category), *category);
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
    ChangeBatch step(*this);
    nameStep([&] { return "изтриване на категория " + quoted(categoryName(id)); });
    removeFirstInto(m_ledger.categories, recording() ? &m_step.categories : nullptr, id);
    changed();
    return true;
}

bool CFinoraDoc::addCurrency(std::string name)
{
    if (m_ledger.currencies.findIf([&](const Currency& c) { return c.name() == name; })) {
        return false;
    }
    ChangeBatch step(*this);
    nameStep([&] { return "нова валута " + quoted(name); });
    const std::int32_t id = nextId(m_ledger.counters.nextCurrencyId);
    const auto key = m_ledger.currencies.append(Currency(id, std::move(name)));
    if (recording()) {
        m_step.currencies.added(id, key);
    }
    changed();
    return true;
}

bool CFinoraDoc::renameCurrency(std::int32_t id, std::string name)
{
    Currency* currency = m_ledger.currencies.findMutable(id);
    if (!currency || m_ledger.currencies.findIf(
                         [&](const Currency& c) { return c.id() != id && c.name() == name; })) {
        return false;
    }
    ChangeBatch step(*this);
    nameStep([&] { return "преименуване на валута " + quoted(currency->name()); });
    if (recording()) {
        m_step.currencies.modified(id, m_ledger.currencies.keyOf(*currency), *currency);
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
    ChangeBatch step(*this);
    nameStep([&] { return "изтриване на валута " + quoted(currencyName(id)); });
    removeFirstInto(m_ledger.currencies, recording() ? &m_step.currencies : nullptr, id);
    changed();
    return true;
}

bool CFinoraDoc::addOperation(const Operation& f)
{
    ChangeBatch step(*this);
    nameStep([] { return std::string("нова операция"); });
    const std::int32_t id = nextId(m_ledger.counters.nextOperationId);
    const auto key = m_ledger.operations.append(
        Operation(id, f.date(), f.description(), f.type(), f.categoryId(), f.amount(),
                  f.currencyId(), f.amountBgl(), f.notes(), m_clock.now(), f.paid(), f.masterId()));
    if (recording()) {
        m_step.operations.added(id, key);
    }
    ++m_recordsRevision;
    if (!m_observers.empty()) {
        notify(nullptr, m_ledger.operations.findByKey(id, key));
    }
    changed();
    return true;
}

bool CFinoraDoc::changeOperation(const Operation& f)
{
    Operation* op = m_ledger.operations.findMutable(f.id());
    if (!op) {
        return false;
    }
    ChangeBatch step(*this);
    nameStep([] { return std::string("промяна на операция"); });
    if (recording()) {
        m_step.operations.modified(op->id(), m_ledger.operations.keyOf(*op), *op);
    }
    const Operation before = m_observers.empty() ? Operation() : *op;
    op->set(f.date(), f.description(), f.type(), f.categoryId(), f.amount(), f.currencyId(),
            f.amountBgl(), f.notes(), m_clock.now(), f.paid(), f.masterId());
    if (!m_observers.empty()) {
        notify(&before, op);
    }
    changed();
    return true;
}

bool CFinoraDoc::deleteOperation(std::int32_t id)
{
    if (!m_ledger.operations.find(id)) {
        return false;
    }
    ChangeBatch step(*this);
    nameStep([] { return "изтриване на " + recordsText(1); });
    notify(m_ledger.operations.find(id), nullptr);
    removeFirstInto(m_ledger.operations, recording() ? &m_step.operations : nullptr, id);
    ++m_recordsRevision;
    changed();
    return true;
}

void CFinoraDoc::deleteAllOperations()
{
    ChangeBatch step(*this);
    nameStep([&] { return "изтриване на " + recordsText(m_ledger.operations.size()); });
    if (recording()) {
        // The step keeps the list itself: undoing puts it back as it was, with nothing copied.
        m_step.operations.replaced(std::exchange(m_ledger.operations, RecordList<Operation>()));
    } else {
        m_ledger.operations.clear();
    }
    ++m_recordsRevision;
    notify(nullptr, nullptr);
    changed(ChangeKind::DeleteAll);
}

bool CFinoraDoc::markPaid(std::int32_t id)
{
    Operation* op = m_ledger.operations.findMutable(id);
    if (!op) {
        return false;
    }
    ChangeBatch step(*this);
    nameStep([] { return "отбелязване на " + recordsText(1) + " като изплатен"; });
    if (recording()) {
        m_step.operations.modified(id, m_ledger.operations.keyOf(*op), *op);
    }
    const Operation before = m_observers.empty() ? Operation() : *op;
    op->setPaid(1);
    op->setLastModified(m_clock.now());
    if (!m_observers.empty()) {
        notify(&before, op);
    }
    changed();
    return true;
}

std::int32_t CFinoraDoc::newMasterId()
{
    return nextId(m_ledger.counters.nextMasterId);
}

void CFinoraDoc::setLock(std::string_view password)
{
    ChangeBatch step(*this);
    nameStep([] { return std::string("задаване на защита с парола"); });
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
        ChangeBatch step(*this);
        nameStep([] { return std::string("премахване на защитата с парола"); });
        m_ledger.lockText.clear();
        changed();
    }
    return true;
}

void CFinoraDoc::setModified(bool modified)
{
    m_modified = modified;
    if (!modified) {
        m_savedAt = m_history.position();
    }
    tellState();
}

void CFinoraDoc::tellState()
{
    if (m_onState) {
        m_onState();
    }
}

void CFinoraDoc::clear()
{
    m_ledger = Ledger();
    m_companion.clear();
    m_history.clear();
    m_step = HistoryStep();
    ++m_recordsRevision;
    notify(nullptr, nullptr);
}

void CFinoraDoc::replaceLedger(Ledger ledger)
{
    m_ledger = std::move(ledger);
    m_companion.clear();
    m_history.clear();
    m_step = HistoryStep();
    ++m_recordsRevision;
    notify(nullptr, nullptr);
}

void CFinoraDoc::setRules(std::vector<CategoryRule> rules, std::string label)
{
    ChangeBatch step(*this, std::move(label));
    if (recording()) {
        if (!m_step.rules) {
            m_step.rules.emplace(m_companion.rules, rules);
        } else {
            m_step.rules->second = rules;
        }
    }
    m_companion.rules = std::move(rules);
    changed();
}

void CFinoraDoc::addObserver(OperationObserver* observer) const
{
    m_observers.push_back(observer);
}

void CFinoraDoc::removeObserver(OperationObserver* observer) const
{
    std::erase(m_observers, observer);
}

void CFinoraDoc::notify(const Operation* before, const Operation* after) const
{
    for (OperationObserver* observer : m_observers) {
        if (before && after) {
            observer->operationChanged(*before, *after);
        } else if (after) {
            observer->operationAdded(*after);
        } else if (before) {
            observer->operationRemoved(*before);
        } else {
            observer->operationsReset();
        }
    }
}

bool CFinoraDoc::undo()
{
    return takeStep(true);
}

bool CFinoraDoc::redo()
{
    return takeStep(false);
}

bool CFinoraDoc::takeStep(bool undo)
{
    if (!(undo ? m_history.canUndo() : m_history.canRedo()) || m_batchDepth > 0) {
        return false;
    }
    HistoryStep step = undo ? m_history.takeUndo() : m_history.takeRedo();
    applyStep(step, undo);
    undo ? m_history.undone(std::move(step)) : m_history.redone(std::move(step));
    changed();
    m_modified = m_history.position() != m_savedAt;
    tellState();
    return true;
}

void CFinoraDoc::applyStep(HistoryStep& step, bool undo)
{
    const auto tell = [this](const Operation* before, const Operation* after) {
        notify(before, after);
    };
    if (undo) {
        step.operations.undo(m_ledger.operations, tell);
        step.categories.undo(m_ledger.categories);
        step.currencies.undo(m_ledger.currencies);
    } else {
        step.currencies.redo(m_ledger.currencies);
        step.categories.redo(m_ledger.categories);
        step.operations.redo(m_ledger.operations, tell);
    }
    // The step keeps the counters it does not leave, so one swap serves both ways.
    if (step.counters) {
        std::swap(*step.counters, m_ledger.counters);
    }
    if (step.rules) {
        m_companion.rules = undo ? step.rules->first : step.rules->second;
    }
    if (step.lock) {
        const LockState& lock = undo ? step.lock->first : step.lock->second;
        m_ledger.lockText = lock.text;
        m_unlocked = lock.unlocked;
    }
    ++m_recordsRevision;
}

void CFinoraDoc::openStep()
{
    m_step = HistoryStep();
    m_stepCounters = m_ledger.counters;
    m_stepLock = LockState{m_ledger.lockText, m_unlocked};
}

void CFinoraDoc::closeStep()
{
    if (m_ledger.counters != m_stepCounters) {
        m_step.counters = m_stepCounters;
    }
    if (m_ledger.lockText != m_stepLock.text || m_unlocked != m_stepLock.unlocked) {
        m_step.lock.emplace(std::move(m_stepLock), LockState{m_ledger.lockText, m_unlocked});
    }
    if (!m_step.empty()) {
        m_history.record(std::move(m_step));
    }
    m_step = HistoryStep();
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
    tellState();
}

CFinoraDoc::ChangeBatch::ChangeBatch(CFinoraDoc& doc, std::string label)
    : m_doc(doc), m_outermost(doc.m_batchDepth == 0)
{
    if (++m_doc.m_batchDepth == 1 && m_doc.m_history.limit() > 0) {
        m_doc.openStep();
        m_doc.m_step.label = std::move(label);
    }
}

void CFinoraDoc::ChangeBatch::setLabel(std::string label)
{
    if (m_outermost && m_doc.recording()) {
        m_doc.m_step.label = std::move(label);
    }
}

CFinoraDoc::ChangeBatch::~ChangeBatch()
{
    if (--m_doc.m_batchDepth != 0) {
        return;
    }
    if (m_doc.m_history.limit() > 0) {
        m_doc.closeStep();
    }
    if (m_doc.m_changePending) {
        m_doc.m_changePending = false;
        m_doc.changed(m_doc.m_pendingKind);
    }
}

} // namespace finora
