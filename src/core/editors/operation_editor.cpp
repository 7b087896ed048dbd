#include "core/editors/operation_editor.h"

#include "core/model/choice_lists.h"
#include "core/model/euro.h"
#include "core/model/number_text.h"
#include "core/reports/rate_suggestion.h"
#include "core/text/cp1251.h"

#include <algorithm>
#include <utility>

namespace finora {
namespace {

const std::string kYes = cp1251::fromUtf8OrThrow("ДА");
const std::string kNo = cp1251::fromUtf8OrThrow("НЕ");
const std::string kChooseCategory = cp1251::fromUtf8OrThrow(OperationEditor::kChooseCategoryText);

// The fields' own forms: rate and value have fixed decimals, the amount is shown as typed.
std::string fieldText(EntryField field, double value)
{
    switch (field) {
    case EntryField::Rate:
        return finora::rateText(value);
    case EntryField::Value:
        return finora::amountText(value);
    default:
        return shortestText(value);
    }
}

std::int32_t parseId(const std::string& text)
{
    return static_cast<std::int32_t>(parseNumber(text));
}

} // namespace

OperationEditor::OperationEditor(CFinoraDoc& doc, Settings& settings, Prompter& prompter,
                                 DateTime today, Opening opening)
    : m_doc(doc), m_settings(settings), m_prompter(prompter), m_editedId(opening.editedId),
      m_date(today), m_masterId(opening.masterId), m_amountText("0"), m_rateText("0"),
      m_valueText(finora::amountText(0.0)), m_currency(doc.currencyName(0))
{
    m_currencies = currencyNames(doc);
    // Whoever has chosen to see money in euro pays in euro: a new operation starts with it.
    const std::string euro(kEuroName);
    if (isNew() && m_settings.mainMoney() != MainMoney::Levs && doc.currencyId(euro) > 0) {
        m_currency = euro;
    }
    applyCurrencyRule();
    if (isNew()) {
        const int opType = m_settings.value(IntSetting::OpType);
        m_typeIndex =
            opType == 0 || opType == 1 ? opType : m_settings.value(IntSetting::LastOpType);
        if (opening.initialCategory >= 0) {
            m_categoryId = opening.initialCategory;
            m_categoryText = m_doc.categoryName(m_categoryId);
        }
    } else {
        openStored(opening.editedId);
    }
    refreshCategoryText();
}

void OperationEditor::openStored(std::int32_t editedId)
{
    const auto takeFields = [this](const Operation& op) {
        m_date = op.date();
        m_description = op.description();
        m_notes = op.notes();
        m_typeIndex = op.type() == kIncome ? 0 : 1;
        m_categoryId = op.categoryId();
        m_categoryText = m_doc.categoryName(m_categoryId);
    };
    if (m_masterId == 0) {
        const Operation op = m_doc.operation(editedId);
        takeFields(op);
        addStoredRow(op);
    } else {
        bool first = true;
        for (const Operation& op : m_doc.ledger().operations) {
            if (op.masterId() != m_masterId) {
                continue;
            }
            if (first) {
                takeFields(op);
                first = false;
            }
            addStoredRow(op);
        }
    }
    const std::string edited = idText(editedId);
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].cells[kPayRecordId] == edited) {
            m_rows[i].selected = true;
            m_initialRow = static_cast<int>(i);
            break;
        }
    }
}

void OperationEditor::addStoredRow(const Operation& op)
{
    PaymentRow row;
    row.cells[kPayRecordId] = idText(op.id());
    row.cells[kPayAmount] = finora::amountText(op.amount());
    row.cells[kPayCurrency] = m_doc.currencyName(op.currencyId());
    row.cells[kPayValue] = finora::amountText(op.amountBgl());
    // The rate the record implies; a payment of no amount implies none.
    row.cells[kPayRate] = finora::rateText(op.amount() != 0.0 ? op.amountBgl() / op.amount() : 0.0);
    row.cells[kPayPaid] = op.paid() == 1 ? kYes : kNo;
    row.cells[kPayKey] = idText(++m_keyCounter);
    m_rows.insert(m_rows.begin(), std::move(row));
    m_tracking.push_back({m_keyCounter, RowState::StoredUnchanged, op.id()});
}

void OperationEditor::chooseCategory(std::int32_t id, const std::string& text)
{
    if (text.empty()) {
        return;
    }
    m_categoryId = id;
    m_categoryText = text;
    refreshCategoryText();
}

void OperationEditor::refreshCategoryText()
{
    if (m_categoryId < 1) {
        m_categoryText = kChooseCategory;
    }
}

bool OperationEditor::isMainCurrency() const
{
    return m_currency == m_doc.currencyName(0);
}

const std::string* OperationEditor::textOf(EntryField field) const
{
    switch (field) {
    case EntryField::Amount:
        return &m_amountText;
    case EntryField::Rate:
        return &m_rateText;
    case EntryField::Value:
        return &m_valueText;
    default:
        return nullptr;
    }
}

std::string* OperationEditor::textOf(EntryField field)
{
    return const_cast<std::string*>(std::as_const(*this).textOf(field));
}

double OperationEditor::number(EntryField field) const
{
    const std::string* text = textOf(field);
    if (!text) {
        return 0.0;
    }
    // A decimal comma is a decimal point here, never the end of the number; while a number is
    // half typed ("12e") the leading part counts, as everywhere else.
    double value = 0.0;
    return readNumberField(*text, value) ? value : parseNumber(*text);
}

std::string OperationEditor::notANumberText(EntryField field)
{
    const char* label = field == EntryField::Rate    ? "курс на валута:"
                        : field == EntryField::Value ? "стойност в лв:"
                                                     : "сума:";
    return std::string("В полето \"") + label + "\" трябва да има число, например 45,60.";
}

bool OperationEditor::checkField(EntryField field)
{
    const std::string* text = textOf(field);
    double value = 0.0;
    if (!text || text->find_first_not_of(" \t") == std::string::npos ||
        readNumberField(*text, value)) {
        return true;
    }
    m_prompter.error(notANumberText(field), kNotANumberCaption);
    return false;
}

void OperationEditor::setNumber(EntryField field, double value)
{
    if (std::string* text = textOf(field)) {
        *text = fieldText(field, value);
    }
}

void OperationEditor::focusIn(EntryField field)
{
    m_focus = field;
    if (number(field) == 0.0) {
        setText(field, {}); // the user types over nothing
    }
}

void OperationEditor::focusOut(EntryField field)
{
    if (m_focus == field) {
        m_focus = EntryField::None;
    }
    if (const std::string* text = textOf(field); text && text->empty()) {
        setNumber(field, 0.0);
    }
    if (field == EntryField::Amount) {
        const double amount = number(EntryField::Amount);
        if (isMainCurrency()) {
            setNumber(EntryField::Value, amount);
        } else if (number(EntryField::Rate) > 0.0) {
            setNumber(EntryField::Value, amount * number(EntryField::Rate));
        }
    }
}

void OperationEditor::setText(EntryField field, std::string text)
{
    std::string* own = textOf(field);
    if (!own) {
        return;
    }
    *own = std::move(text);
    if (m_focus != field) {
        return; // a text rewritten by the recomputation drives nothing
    }
    const double amount = number(EntryField::Amount);
    switch (field) {
    case EntryField::Amount:
        if (const auto fixed = newPaymentLegalRate()) {
            setNumber(EntryField::Rate, *fixed);
            setNumber(EntryField::Value, amount * *fixed);
        } else if (isMainCurrency() || m_entryRecordId <= 0) {
            // A new foreign payment starts again from rate 1 whenever its amount changes: the
            // rate is suggested when the currency is picked, after the amount.
            setNumber(EntryField::Rate, 1.0);
            setNumber(EntryField::Value, amount);
        } else {
            setNumber(EntryField::Value, amount * number(EntryField::Rate));
        }
        break;
    case EntryField::Rate:
        setNumber(EntryField::Value, amount * number(EntryField::Rate));
        break;
    case EntryField::Value:
        if (amount != 0.0) {
            setNumber(EntryField::Rate, number(EntryField::Value) / amount);
        }
        break;
    default:
        break;
    }
}

void OperationEditor::selectCurrency(const std::string& name)
{
    m_currency = name;
    applyCurrencyRule();
}

void OperationEditor::currencyListClosed()
{
    m_valueEnabled = !isMainCurrency();
    if (isMainCurrency()) {
        setNumber(EntryField::Value, number(EntryField::Amount));
    }
}

std::optional<double> OperationEditor::newPaymentLegalRate() const
{
    return m_entryRecordId < 1 ? legalRate(m_currency, m_date) : std::nullopt;
}

void OperationEditor::applyCurrencyRule()
{
    if (isMainCurrency()) {
        m_readOnlyRate = true;
        setNumber(EntryField::Rate, 1.0);
        setNumber(EntryField::Value, number(EntryField::Amount));
        return;
    }
    // Whether the value field is enabled is the list-closed rule's alone.
    m_readOnlyRate = false;
    if (const auto fixed = newPaymentLegalRate()) {
        // The euro's rate is the law's, not a guess from past exchanges; the user may still
        // type another.
        setNumber(EntryField::Rate, *fixed);
        setNumber(EntryField::Value, number(EntryField::Amount) * *fixed);
    } else if (m_entryRecordId < 1) {
        if (const auto s = suggestRate(m_doc, m_settings, m_prompter, number(EntryField::Amount),
                                       m_currency)) {
            setNumber(EntryField::Rate, s->rate);
            setNumber(EntryField::Value, s->value);
        }
    }
}

void OperationEditor::setSelected(const std::vector<int>& rows)
{
    for (PaymentRow& row : m_rows) {
        row.selected = false;
    }
    for (int r : rows) {
        if (r >= 0 && static_cast<std::size_t>(r) < m_rows.size()) {
            m_rows[static_cast<std::size_t>(r)].selected = true;
        }
    }
}

std::string OperationEditor::totalText() const
{
    double total = 0.0;
    for (const PaymentRow& row : m_rows) {
        total += parseNumber(row.cells[kPayValue]);
    }
    return finora::amountText(total) + ' ';
}

bool OperationEditor::canEditRow() const
{
    return std::any_of(m_rows.begin(), m_rows.end(),
                       [](const PaymentRow& r) { return r.selected; });
}

PaymentRow* OperationEditor::rowWithKey(std::int32_t key)
{
    const std::string text = idText(key);
    const auto it = std::find_if(m_rows.begin(), m_rows.end(),
                                 [&](const PaymentRow& r) { return r.cells[kPayKey] == text; });
    return it == m_rows.end() ? nullptr : &*it;
}

RowTracking* OperationEditor::trackingOf(const PaymentRow& row)
{
    const std::int32_t key = parseId(row.cells[kPayKey]);
    const auto it = std::find_if(m_tracking.begin(), m_tracking.end(),
                                 [key](const RowTracking& t) { return t.key == key; });
    return it == m_tracking.end() ? nullptr : &*it;
}

bool OperationEditor::addOrChange()
{
    for (const EntryField field : {EntryField::Amount, EntryField::Rate, EntryField::Value}) {
        if (!checkField(field)) {
            return false;
        }
    }
    const double amount = number(EntryField::Amount);
    if (!(amount > 0.0)) {
        m_prompter.error(kNoAmountText, kMissingCaption);
        return false;
    }
    const double rate = number(EntryField::Rate);
    const std::int32_t currencyId = m_doc.currencyId(m_currency);
    if (currencyId > 0) {
        rememberLastRate(m_doc, m_settings, currencyId, rate);
    }
    const auto fill = [&](PaymentRow& row) {
        row.cells[kPayAmount] = finora::amountText(amount);
        row.cells[kPayCurrency] = m_currency;
        row.cells[kPayValue] = finora::amountText(number(EntryField::Value));
        row.cells[kPayRate] = finora::rateText(rate);
        row.cells[kPayPaid] = m_paid ? kYes : kNo;
    };
    if (m_entryRowKey < 1) {
        PaymentRow row;
        fill(row);
        row.cells[kPayKey] = idText(++m_keyCounter);
        m_rows.insert(m_rows.begin(), std::move(row));
        m_tracking.push_back({m_keyCounter, RowState::New, 0});
    } else {
        if (PaymentRow* row = rowWithKey(m_entryRowKey)) {
            fill(*row);
        }
        for (RowTracking& t : m_tracking) {
            if (t.key != m_entryRowKey) {
                continue;
            }
            if (t.state == RowState::New) {
                t.state = RowState::NewChanged;
            } else if (t.state == RowState::StoredUnchanged) {
                t.state = RowState::StoredChanged;
            }
        }
    }
    clearEntry();
    return true;
}

void OperationEditor::loadSelected()
{
    const auto it =
        std::find_if(m_rows.begin(), m_rows.end(), [](const PaymentRow& r) { return r.selected; });
    if (it == m_rows.end()) {
        return;
    }
    const PaymentRow row = *it;
    m_entryRecordId = parseId(row.cells[kPayRecordId]);
    m_amountText = row.cells[kPayAmount];
    m_valueText = row.cells[kPayValue];
    m_rateText = row.cells[kPayRate];
    m_paid = row.cells[kPayPaid] == kYes;
    m_currency = row.cells[kPayCurrency];
    applyCurrencyRule();
    m_entryRowKey = parseId(row.cells[kPayKey]);
}

void OperationEditor::clearEntry()
{
    setNumber(EntryField::Amount, 0.0);
    setNumber(EntryField::Value, 0.0);
    setNumber(EntryField::Rate, 0.0);
    m_paid = true;
    m_entryRecordId = 0;
    m_entryRowKey = 0;
    m_currency = m_doc.currencyName(0);
    applyCurrencyRule();
}

void OperationEditor::retireRow(const PaymentRow& row)
{
    RowTracking* t = trackingOf(row);
    if (!t) {
        return;
    }
    if (t->state == RowState::New || t->state == RowState::NewChanged) {
        t->state = RowState::NewDeleted;
    } else if (t->state == RowState::StoredChanged || t->state == RowState::StoredUnchanged) {
        t->state = RowState::StoredDeleted;
    }
}

bool OperationEditor::deleteSelected()
{
    if (!canEditRow() || m_prompter.askYesNo(kDeleteSelectedText, kDeleteCaption,
                                             MessageIcon::Question) != Answer::Yes) {
        return false;
    }
    for (const PaymentRow& row : m_rows) {
        if (row.selected) {
            retireRow(row);
        }
    }
    std::erase_if(m_rows, [](const PaymentRow& r) { return r.selected; });
    return true;
}

bool OperationEditor::deleteAll()
{
    if (m_prompter.askYesNo(kDeleteAllText, kDeleteCaption, MessageIcon::Question) != Answer::Yes) {
        return false;
    }
    for (const PaymentRow& row : m_rows) {
        retireRow(row);
    }
    m_rows.clear();
    return true;
}

Operation OperationEditor::recordFrom(const PaymentRow* row, std::int32_t type) const
{
    std::int32_t currencyId = 0;
    double amount = 0.0;
    double value = 0.0;
    std::int32_t paid = 1;
    if (row) {
        currencyId = std::max(0, m_doc.currencyId(row->cells[kPayCurrency]));
        amount = parseNumber(row->cells[kPayAmount]);
        value = parseNumber(row->cells[kPayValue]);
        paid = row->cells[kPayPaid] == kYes ? 1 : 0;
    }
    // The document stamps the last-modified time.
    return Operation(0, m_date, m_description, type, m_categoryId, amount, currencyId, value,
                     m_notes, DateTime(), paid, m_masterId);
}

bool OperationEditor::save()
{
    if (m_description.empty()) {
        m_prompter.error(kNoDescriptionText, kMissingCaption);
        return false;
    }
    if (m_categoryId < 1) {
        m_prompter.error(kNoCategoryText, kMissingCaption);
        return false;
    }
    if (m_rows.empty()) {
        m_prompter.error(kNoPaymentText, kMissingCaption);
        return false;
    }
    if (m_entryRowKey > 0 && m_prompter.askYesNo(kPendingChangeText, kPendingChangeCaption,
                                                 MessageIcon::Warning) != Answer::Yes) {
        return false;
    }
    // One operation is one change: with auto-save on, the file is written once, and one undo
    // takes it back whole, the master id it drew included.
    CFinoraDoc::ChangeBatch batch(m_doc, isNew() ? "нова операция" : "промяна на операция");
    if (m_masterId != 0 && m_rows.size() == 1) {
        m_masterId = 0;
    } else if (m_masterId == 0 && m_rows.size() > 1) {
        m_masterId = m_doc.newMasterId();
    }

    const std::int32_t type = m_typeIndex + 1;
    for (const RowTracking& t : m_tracking) {
        switch (t.state) {
        case RowState::StoredDeleted:
            m_doc.deleteOperation(t.recordId);
            break;
        case RowState::New:
        case RowState::NewChanged:
            m_doc.addOperation(recordFrom(rowWithKey(t.key), type));
            break;
        case RowState::StoredChanged:
        case RowState::StoredUnchanged: {
            const Operation fields = recordFrom(rowWithKey(t.key), type);
            m_doc.changeOperation(Operation(t.recordId, fields.date(), fields.description(),
                                            fields.type(), fields.categoryId(), fields.amount(),
                                            fields.currencyId(), fields.amountBgl(), fields.notes(),
                                            DateTime(), fields.paid(), fields.masterId()));
            break;
        }
        default:
            break;
        }
    }
    m_settings.setValue(IntSetting::LastOpType, m_typeIndex);
    return true;
}

bool OperationEditor::saveAndAddNew()
{
    m_addAnother = m_entryRecordId < 1;
    if (!save()) {
        m_addAnother = false;
        return false;
    }
    return true;
}

} // namespace finora
