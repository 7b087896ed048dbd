#include "core/editors/currency_cash_editor.h"

#include "core/model/number_text.h"
#include "core/text/case_fold.h"

#include <algorithm>

namespace finora {

CurrencyCashEditor::CurrencyCashEditor(CFinoraDoc& doc, const Settings& settings,
                                       Prompter& prompter)
    : m_doc(doc), m_prompter(prompter), m_rows(cashRows(doc, settings))
{}

bool CurrencyCashEditor::isMain(const std::string& name) const
{
    return name == m_doc.currencyName(0);
}

void CurrencyCashEditor::sortBy(int column)
{
    if (column < 0 || column >= static_cast<int>(kCashColumnCount)) {
        return;
    }
    m_ascending = column == m_sortColumn ? !m_ascending : true;
    m_sortColumn = column;
    sortRows();
}

void CurrencyCashEditor::sortRows()
{
    if (m_sortColumn < 0) {
        return;
    }
    const auto c = static_cast<std::size_t>(m_sortColumn);
    const bool byText = m_sortColumn == 1;
    // "n/a" reads as 0, as the list has always sorted it.
    const auto less = [&](const CashRow& a, const CashRow& b) {
        if (byText) {
            return foldCase(a[c]) < foldCase(b[c]);
        }
        return parseNumber(a[c]) < parseNumber(b[c]);
    };
    if (m_ascending) {
        std::stable_sort(m_rows.begin(), m_rows.end(), less);
    } else {
        std::stable_sort(m_rows.begin(), m_rows.end(),
                         [&](const CashRow& a, const CashRow& b) { return less(b, a); });
    }
}

bool CurrencyCashEditor::add(const NameAsker& askName)
{
    const auto name = askName({});
    if (!name) {
        return false;
    }
    if (isMain(*name)) {
        m_prompter.error(kReservedNameText, kErrorCaption);
        return false;
    }
    if (!m_doc.addCurrency(*name)) {
        m_prompter.error(kDuplicateText, kErrorCaption);
        return false;
    }
    // Figures of a currency nobody has used yet; they are summarised when the window reopens.
    m_rows.insert(m_rows.begin(),
                  CashRow{idText(m_doc.currencyId(*name)), *name, "0", "0", "n/a", "0", "0", "0"});
    return true;
}

bool CurrencyCashEditor::rename(std::size_t row, const NameAsker& askName)
{
    if (row >= m_rows.size()) {
        return false;
    }
    CashRow& r = m_rows[row];
    if (isMain(r[1])) {
        m_prompter.error(kMainRenameText, kErrorCaption);
        return false;
    }
    const auto name = askName(r[1]);
    if (!name) {
        return false;
    }
    // Renaming to the main currency's name is a duplicate, not a reserved name: it already exists.
    if (isMain(*name) ||
        !m_doc.renameCurrency(static_cast<std::int32_t>(parseNumber(r[0])), *name)) {
        m_prompter.error(kDuplicateText, kErrorCaption);
        return false;
    }
    r[1] = *name;
    return true;
}

bool CurrencyCashEditor::remove(std::size_t row)
{
    if (row >= m_rows.size()) {
        return false;
    }
    // The question comes first, whatever the currency.
    if (m_prompter.askYesNo(kDeleteQuestion, "Потвърдете!", MessageIcon::Question) != Answer::Yes) {
        return false;
    }
    if (isMain(m_rows[row][1])) {
        m_prompter.error(kMainDeleteText, kRefusedCaption);
        return false;
    }
    if (!m_doc.deleteCurrency(static_cast<std::int32_t>(parseNumber(m_rows[row][0])))) {
        m_prompter.error(kInUseText, kRefusedCaption);
        return false;
    }
    m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(row));
    return true;
}

std::string currencyNameFromTyped(const std::string& typed)
{
    return upperCase(typed);
}

} // namespace finora
