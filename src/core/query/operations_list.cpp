#include "core/query/operations_list.h"

#include "core/model/lock_guard.h"
#include "core/model/number_text.h"
#include "core/query/filter_matcher.h"
#include "core/text/case_fold.h"
#include "core/text/cp1251.h"

#include <algorithm>

namespace finora {
namespace {

const std::string kIncomeMark = cp1251::fromUtf8OrThrow("П");
const std::string kExpenseMark = cp1251::fromUtf8OrThrow("Р");
const std::string kYes = cp1251::fromUtf8OrThrow("да");
const std::string kNo = cp1251::fromUtf8OrThrow("не");
const std::string kParentSeparator = " :: ";

bool contains(std::string_view haystack, std::string_view needle)
{
    return haystack.find(needle) != std::string_view::npos;
}

std::vector<std::string> splitWords(std::string_view text)
{
    std::vector<std::string> words;
    std::size_t pos = 0;
    while (pos < text.size()) {
        const std::size_t end = std::min(text.find(' ', pos), text.size());
        if (end > pos) {
            words.emplace_back(text.substr(pos, end - pos));
        }
        pos = end + 1;
    }
    return words;
}

} // namespace

const std::array<ListColumnSpec, kListColumnCount>& listColumns()
{
    static const std::array<ListColumnSpec, kListColumnCount> columns = {{
        {"#", ColumnAlignment::Left, 0, -1},
        {"master_op_id", ColumnAlignment::Left, 0, -1},
        {"дата", ColumnAlignment::Left, 75, static_cast<int>(Column::Date)},
        {"описание", ColumnAlignment::Left, 250, static_cast<int>(Column::Descr)},
        {"тип", ColumnAlignment::Centre, 40, static_cast<int>(Column::Type)},
        {"категория", ColumnAlignment::Left, 150, static_cast<int>(Column::Category)},
        {"сума", ColumnAlignment::Right, 80, static_cast<int>(Column::Sum)},
        {"валута", ColumnAlignment::Centre, 50, static_cast<int>(Column::Currency)},
        {"сума в BGL", ColumnAlignment::Right, 80, static_cast<int>(Column::SumBGL)},
        {"забележки", ColumnAlignment::Left, 250, static_cast<int>(Column::Notes)},
        {"последна модификация", ColumnAlignment::Left, 150,
         static_cast<int>(Column::LastModified)},
        {"изплатено", ColumnAlignment::Centre, 80, static_cast<int>(Column::Payed)},
        {"сума в EUR", ColumnAlignment::Right, 80, static_cast<int>(Column::SumBGL)},
    }};
    return columns;
}

int listColumnCount(MainMoney money)
{
    return money == MainMoney::Both ? kListColumnCount : kColAmountEuro;
}

const char* listColumnHeader(int column, MainMoney money)
{
    if (column == kColAmountBgl && money == MainMoney::Euro) {
        return listColumns()[kColAmountEuro].header;
    }
    return listColumns()[static_cast<std::size_t>(column)].header;
}

int columnWidth(int column, const Settings& settings)
{
    const ListColumnSpec& spec = listColumns()[static_cast<std::size_t>(column)];
    if (spec.visibilityKey < 0 || column >= listColumnCount(settings.mainMoney())) {
        return 0;
    }
    return settings.columnShown(static_cast<Column>(spec.visibilityKey)) ? spec.width : 0;
}

namespace {

// A total labelled in the main currency is a lev figure and is shown as the money mode says.
std::string totalText(const ListTotals& t, double value)
{
    return t.label == kMainCurrencyName ? t.money.totalText(value)
                                        : amountWithCurrencyText(value, t.label);
}

} // namespace

std::string ListTotals::incomeText() const
{
    return totalText(*this, income);
}

std::string ListTotals::expenseText() const
{
    return totalText(*this, expense);
}

std::string ListTotals::balanceText() const
{
    return totalText(*this, income - expense);
}

OperationsList::OperationsList(CFinoraDoc& doc, Settings& settings, Prompter& prompter)
    : m_doc(doc), m_settings(settings), m_prompter(prompter)
{
    m_criteria.currency = allCurrenciesItem();
}

void OperationsList::startTotals()
{
    m_totals.income = 0.0;
    m_totals.expense = 0.0;
    m_totals.label =
        m_criteria.allCurrencies() ? std::string(kMainCurrencyName) : m_criteria.currency;
    m_totals.money = MainMoneyView(m_settings.mainMoney());
}

void OperationsList::refresh()
{
    m_rows.clear();
    m_current = -1;
    m_revision = m_doc.recordsRevision();
    if (m_doc.isLocked()) {
        return;
    }
    startTotals();
    const bool allCurrencies = m_criteria.allCurrencies();
    const FilterMatcher matcher(m_criteria, m_doc,
                                m_settings.isOn(IntSetting::ShowDataForSubCategories));
    for (const Operation& op : m_doc.ledger().operations) {
        if (!matcher.matches(op)) {
            continue;
        }
        const double value = allCurrencies ? op.amountBgl() : op.amount();
        (op.type() == kIncome ? m_totals.income : m_totals.expense) += value;
        m_rows.push_back(Row{&op});
    }
    // Every row went in at the top: the list shows the ledger's order reversed.
    std::reverse(m_rows.begin(), m_rows.end());
    if (!m_rows.empty()) {
        m_current = static_cast<std::ptrdiff_t>(m_rows.size()) - 1;
        m_rows.back().selected = true;
    }
}

std::string OperationsList::cellText(std::size_t row, int column) const
{
    return cellText(m_rows[row], column);
}

std::string OperationsList::cellText(const Row& r, int column) const
{
    const Operation& op = *r.op;
    switch (column) {
    case kColNumber:
        return idText(op.id());
    case kColMaster:
        return idText(op.masterId());
    case kColDate:
        return op.date().paddedDateText();
    case kColDescription:
        return op.description();
    case kColType:
        return op.type() == kIncome    ? kIncomeMark
               : op.type() == kExpense ? kExpenseMark
                                       : std::string();
    case kColCategory: {
        const std::int32_t parent = m_doc.categoryParent(op.categoryId());
        if (parent == 0) {
            return m_doc.categoryName(op.categoryId());
        }
        return m_doc.categoryName(parent) + kParentSeparator + m_doc.categoryName(op.categoryId());
    }
    case kColAmount:
        return amountText(op.amount());
    case kColCurrency:
        return m_doc.currencyName(op.currencyId());
    case kColAmountBgl:
        return money().text(op.amountBgl());
    case kColAmountEuro:
        return amountText(levsToEuro(op.amountBgl()));
    case kColNotes:
        return op.notes();
    case kColLastModified:
        return op.lastModified().dateTimeText();
    case kColPaid:
        return r.paidShown || op.paid() == 1 ? kYes : kNo;
    default:
        return {};
    }
}

void OperationsList::selectAll()
{
    for (Row& r : m_rows) {
        r.selected = true;
    }
}

std::size_t OperationsList::selectedCount() const
{
    return static_cast<std::size_t>(
        std::count_if(m_rows.begin(), m_rows.end(), [](const Row& r) { return r.selected; }));
}

std::string OperationsList::searchText(const Row& row, int column, bool fold) const
{
    std::string text = cellText(row, column);
    return fold ? foldCase(text) : text;
}

bool OperationsList::rowMatches(const Row& row, const SearchRequest& request,
                                const std::vector<std::string>& words) const
{
    const bool fold = !request.caseSensitive;
    if (request.exactPhrase) {
        // A required quirk: AND, exact and case-insensitive read the BGL amount for "notes" and
        // the amount for "currency".
        const bool quirk = request.mode == SearchRequest::And && fold;
        const int notesColumn = quirk ? kColAmountBgl : kColNotes;
        const int currencyColumn = quirk ? kColAmount : kColCurrency;
        bool found = false;
        if (request.inDescription) {
            found = found || contains(searchText(row, kColDescription, fold), request.text);
        }
        if (request.inNotes) {
            found = found || contains(searchText(row, notesColumn, fold), request.text);
        }
        if (request.inCurrency) {
            found = found || contains(searchText(row, currencyColumn, fold), request.text);
        }
        return request.mode == SearchRequest::Not ? !found : found;
    }

    std::string text;
    const auto append = [&](int column) {
        if (!text.empty()) {
            text += ' ';
        }
        text += searchText(row, column, fold);
    };
    if (request.inDescription) {
        append(kColDescription);
    }
    if (request.inNotes) {
        append(kColNotes);
    }
    if (request.inCurrency) {
        append(kColCurrency);
    }
    const auto found = static_cast<std::size_t>(std::count_if(
        words.begin(), words.end(), [&](const std::string& w) { return contains(text, w); }));
    switch (request.mode) {
    case SearchRequest::Or:
        return found > 0;
    case SearchRequest::Not:
        return found == 0;
    default:
        return found == words.size();
    }
}

void OperationsList::search(const SearchRequest& original)
{
    m_lastSearchText = original.text;
    m_lastSearchCaseSensitive = original.caseSensitive;
    SearchRequest request = original;
    if (!request.caseSensitive) {
        request.text = foldCase(request.text);
    }
    const std::vector<std::string> words = splitWords(request.text);

    std::vector<Row> kept;
    kept.reserve(m_rows.size());
    for (Row& row : m_rows) {
        row.selected = false;
        const bool match = rowMatches(row, request, words);
        if (match && !request.showOnlyMatching) {
            row.selected = true;
        }
        if (match || !request.showOnlyMatching) {
            kept.push_back(row);
        }
    }
    m_rows = std::move(kept);
    m_current =
        m_rows.empty()
            ? -1
            : std::min<std::ptrdiff_t>(m_current, static_cast<std::ptrdiff_t>(m_rows.size()) - 1);
    totalsFromRows();
    m_prompter.inform(kSearchDoneText);
}

void OperationsList::totalsFromRows()
{
    startTotals();
    const bool allCurrencies = m_criteria.allCurrencies();
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        // The lev texts even in euro mode: the euro total is the lev total divided once.
        const Operation& op = *m_rows[i].op;
        const double value = parseNumber(amountText(allCurrencies ? op.amountBgl() : op.amount()));
        (cellText(i, kColType) == kIncomeMark ? m_totals.income : m_totals.expense) += value;
    }
}

void OperationsList::filterByAmount(double amount, double tolerance, bool alsoBgl)
{
    if (m_rows.empty()) {
        return;
    }
    const double low = amount - tolerance;
    const double high = amount + tolerance;
    // The values compared are the two-decimal texts the list shows, not the stored amounts.
    std::erase_if(m_rows, [&](const Row& row) {
        const double s = parseNumber(amountText(row.op->amount()));
        if (low <= s && s <= high) {
            return false;
        }
        if (alsoBgl) {
            const double b = parseNumber(money().text(row.op->amountBgl()));
            return !(low <= b && b <= high);
        }
        return true;
    });
    m_current =
        m_rows.empty()
            ? -1
            : std::min<std::ptrdiff_t>(m_current, static_cast<std::ptrdiff_t>(m_rows.size()) - 1);
}

bool OperationsList::confirmDeletion()
{
    return m_prompter.askYesNo(kDeleteQuestion, kConfirmCaption, MessageIcon::Warning) ==
           Answer::Yes;
}

bool OperationsList::deleteAll()
{
    if (refuseWhenLocked(m_doc, m_prompter) || !confirmDeletion()) {
        return false;
    }
    m_doc.deleteAllOperations();
    refresh();
    return true;
}

void OperationsList::deleteRows(bool selectedOnly)
{
    // The ids first: deleting changes the ledger the rows point into.
    std::vector<std::int32_t> ids;
    ids.reserve(m_rows.size());
    for (const Row& r : m_rows) {
        if (!selectedOnly || r.selected) {
            ids.push_back(r.op->id());
        }
    }
    {
        CFinoraDoc::ChangeBatch batch(m_doc);
        std::size_t deleted = 0;
        for (std::int32_t id : ids) {
            deleted += m_doc.deleteOperation(id) ? 1 : 0;
        }
        batch.setLabel("изтриване на " + recordsText(deleted));
    }
    refresh();
}

bool OperationsList::deleteShown()
{
    if (refuseWhenLocked(m_doc, m_prompter) || !confirmDeletion()) {
        return false;
    }
    deleteRows(false);
    return true;
}

bool OperationsList::deleteSelected()
{
    if (refuseWhenLocked(m_doc, m_prompter) || !confirmDeletion()) {
        return false;
    }
    deleteRows(true);
    return true;
}

bool OperationsList::setSelectedPaid()
{
    // Deliberately no lock test: the rows of a locked ledger are empty anyway.
    if (m_prompter.askYesNo(kPaidQuestion, kConfirmCaption, MessageIcon::Question) != Answer::Yes) {
        return false;
    }
    std::vector<std::pair<std::size_t, std::int32_t>> toMark;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].selected && cellText(i, kColPaid) == kNo) {
            toMark.emplace_back(i, m_rows[i].op->id());
        }
    }
    {
        CFinoraDoc::ChangeBatch batch(m_doc, "отбелязване на " + recordsText(toMark.size()) +
                                                 " като изплатени");
        for (const auto& [row, id] : toMark) {
            m_doc.markPaid(id);
            m_rows[row].paidShown = true;
        }
    }
    return true;
}

} // namespace finora
