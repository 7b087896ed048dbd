#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/settings/settings.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace finora {

// Columns of the payments list.
enum PaymentColumn : int {
    kPayRecordId = 0, // the stored record's id; empty for a payment added in this dialog
    kPayAmount,
    kPayCurrency,
    kPayValue,
    kPayRate, // shown only: the record keeps amount and value, and the rate is their quotient
    kPayPaid,
    kPayKey,
    kPaymentColumnCount
};

// What happens to a row's record on save. Stored and new rows are two parallel families so a
// row's history needs no other flag.
enum class RowState : std::int32_t {
    New = 0,
    NewChanged = 1,
    StoredChanged = 2,
    StoredDeleted = 3,
    NewDeleted = 4,
    StoredUnchanged = 5,
    NotSet = 6,
};

struct RowTracking {
    std::int32_t key = 0;
    RowState state = RowState::NotSet;
    std::int32_t recordId = 0;
};

// One row of the payments list. Its texts are the working copy: on save the amounts are read
// back from them, so the ledger gets exactly what the list shows.
struct PaymentRow {
    std::array<std::string, kPaymentColumnCount> cells; // Windows-1251
    bool selected = false;
};

// The entry field being typed in: only that one drives the live recomputation.
enum class EntryField { None, Amount, Value, Rate };

// The state and rules of "нова операция": the operation's own fields, the payment being
// entered, the payments list and the tracking list that turns it into record changes on save.
// The dialog shows what this holds and forwards what the user does.
class OperationEditor {
public:
    struct Opening {
        std::int32_t editedId = 0;         // 0 or less: a new operation
        std::int32_t masterId = 0;         // of the edited record
        std::int32_t initialCategory = -1; // preselected for a new operation; -1: none
    };

    OperationEditor(CFinoraDoc& doc, Settings& settings, Prompter& prompter, DateTime today,
                    Opening opening);

    // --- the operation
    bool isNew() const { return m_editedId < 1; }
    DateTime date() const { return m_date; }
    void setDate(DateTime date) { m_date = date; }
    int typeIndex() const { return m_typeIndex; } // 0 income, 1 expense
    void setTypeIndex(int index) { m_typeIndex = index == 0 ? 0 : 1; }
    const std::string& description() const { return m_description; }
    void setDescription(std::string text) { m_description = std::move(text); }
    const std::string& notes() const { return m_notes; }
    void setNotes(std::string text) { m_notes = std::move(text); }
    std::int32_t categoryId() const { return m_categoryId; }
    // The category's name, or "изберете категория" while none is chosen (Windows-1251).
    const std::string& categoryText() const { return m_categoryText; }
    // What the category chooser handed back; an empty text keeps the current choice.
    void chooseCategory(std::int32_t id, const std::string& text);
    std::int32_t masterId() const { return m_masterId; }

    // --- the payment being entered (texts as the fields show them)
    const std::string& amountText() const { return m_amountText; }
    const std::string& rateText() const { return m_rateText; }
    const std::string& valueText() const { return m_valueText; }
    const std::string& currency() const { return m_currency; }
    bool paid() const { return m_paid; }
    void setPaid(bool paid) { m_paid = paid; }
    // Read-only rate and value, for the main currency.
    bool rateAndValueReadOnly() const { return m_readOnlyRate; }
    bool valueEnabled() const { return m_valueEnabled; }
    std::int32_t entryRecordId() const { return m_entryRecordId; }
    std::int32_t entryRowKey() const { return m_entryRowKey; }
    // The currency names of the combo: the main currency, then the ledger's in ledger order.
    const std::vector<std::string>& currencies() const { return m_currencies; }

    void focusIn(EntryField field);
    void focusOut(EntryField field);
    // A field's text must be empty or wholly a number (a decimal comma is fine): false, after
    // saying so, for anything else, which would otherwise read as some other number.
    bool checkField(EntryField field);
    static std::string notANumberText(EntryField field);
    // A text typed (or set) in a field; recomputes the other two when that field has the focus.
    void setText(EntryField field, std::string text);
    // The currency rule, with the rate suggestion for a new payment in a foreign currency.
    void selectCurrency(const std::string& name);
    // The drop-down closed: the value field follows the main currency.
    void currencyListClosed();

    // --- the payments
    const std::vector<PaymentRow>& rows() const { return m_rows; }
    void setSelected(const std::vector<int>& rows);
    const std::vector<RowTracking>& tracking() const { return m_tracking; }
    std::string totalText() const; // "%.2f " of the list's values
    bool canEditRow() const;       // "редакция" and "изтрий"
    bool canDeleteAll() const { return !m_rows.empty(); }
    // The row selected when a stored operation opened, to give the list the focus; -1: none.
    int initialRow() const { return m_initialRow; }

    // "добава/променя": false, after telling the user, when there is no amount.
    bool addOrChange();
    // "редакция" or a double click: the first selected row into the entry fields.
    void loadSelected();
    void clearEntry();
    bool deleteSelected();
    bool deleteAll();

    // "съхрани": false leaves the dialog open with everything as it was typed.
    bool save();
    // "съхрани и добави нова": asks the caller for a fresh editor when this one saves a new
    // operation.
    bool saveAndAddNew();
    bool addAnother() const { return m_addAnother; }

    static constexpr const char* kTitle = "нова операция";
    static constexpr const char* kChooseCategoryText = "изберете категория";
    static constexpr const char* kMissingCaption = "Липсват данни";
    static constexpr const char* kNoAmountText = "Не сте указали сума.";
    static constexpr const char* kNoDescriptionText = "Моля, въведете описание на операцията.";
    static constexpr const char* kNoCategoryText = "Моля, изберете категория!";
    // The "e" of "eдно" is a Latin letter, as the program has always shown it.
    static constexpr const char* kNoPaymentText = "Моля, въведете поне eдно плащане по операцията!";
    static constexpr const char* kPendingChangeText =
        "Имате 1 плащане в режим на промяна, което не е било съхранено.\n"
        "Желаете ли да продължите въпреки това?";
    static constexpr const char* kPendingChangeCaption = "Потвърдете";
    static constexpr const char* kDeleteSelectedText =
        "Сигурни ли сте, че желаете да изтриете маркираните записи?";
    static constexpr const char* kDeleteAllText =
        "Сигурни ли сте, че желаете да изтриете всички записи?";
    static constexpr const char* kDeleteCaption = "Потвърдете!";
    static constexpr const char* kNotANumberCaption = "Невалидна стойност";

private:
    void openStored(std::int32_t editedId);
    void addStoredRow(const Operation& op);
    void applyCurrencyRule();
    // The euro's fixed rate for a payment being added on the operation's date, if it applies.
    std::optional<double> newPaymentLegalRate() const;
    bool isMainCurrency() const;
    const std::string* textOf(EntryField field) const;
    std::string* textOf(EntryField field);
    void setNumber(EntryField field, double value);
    double number(EntryField field) const;
    RowTracking* trackingOf(const PaymentRow& row);
    PaymentRow* rowWithKey(std::int32_t key);
    void retireRow(const PaymentRow& row);
    void refreshCategoryText();
    Operation recordFrom(const PaymentRow* row, std::int32_t type) const;

    CFinoraDoc& m_doc;
    Settings& m_settings;
    Prompter& m_prompter;
    std::int32_t m_editedId;

    DateTime m_date;
    int m_typeIndex = 0;
    std::string m_description;
    std::string m_notes;
    std::int32_t m_categoryId = 0;
    std::string m_categoryText;
    std::int32_t m_masterId = 0;

    std::string m_amountText;
    std::string m_rateText;
    std::string m_valueText;
    std::string m_currency;
    bool m_paid = true;
    bool m_readOnlyRate = true;
    bool m_valueEnabled = true;
    std::int32_t m_entryRecordId = 0;
    std::int32_t m_entryRowKey = 0;
    EntryField m_focus = EntryField::None;
    std::vector<std::string> m_currencies;

    std::vector<PaymentRow> m_rows; // top of the list first
    std::vector<RowTracking> m_tracking;
    std::int32_t m_keyCounter = 0;
    int m_initialRow = -1;
    bool m_addAnother = false;
};

} // namespace finora
