#pragma once

#include "core/model/currency.h"
#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/query/filter_criteria.h"
#include "core/settings/settings.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace finora {

// The columns of the main list, in order; the last exists only while both currencies are shown.
enum ListColumn : int {
    kColNumber,
    kColMaster,
    kColDate,
    kColDescription,
    kColType,
    kColCategory,
    kColAmount,
    kColCurrency,
    kColAmountBgl,
    kColNotes,
    kColLastModified,
    kColPaid,
    kColAmountEuro, // only in dual mode, shown beside the lev column
    kListColumnCount
};

enum class ColumnAlignment { Left, Centre, Right };

struct ListColumnSpec {
    const char* header; // UTF-8
    ColumnAlignment alignment;
    int width;         // when shown
    int visibilityKey; // index into Column, or -1 for the hidden id columns
};

const std::array<ListColumnSpec, kListColumnCount>& listColumns();
// How many of the columns exist in a money mode: the euro column only in dual mode.
int listColumnCount(MainMoney money);
// The header as shown (UTF-8): the main-currency column names the currency it is shown in.
const char* listColumnHeader(int column, MainMoney money);
// The width a column gets now: 0 for the id columns, for columns the user has hidden and for
// the euro column outside dual mode.
int columnWidth(int column, const Settings& settings);

// What the search dialog asks for. The text is Windows-1251.
struct SearchRequest {
    enum Mode { And = 0, Or = 1, Not = 2 };
    std::string text;
    int mode = And;
    bool exactPhrase = false;
    bool inDescription = true;
    bool inNotes = false;
    bool inCurrency = false;
    bool caseSensitive = false;
    bool showOnlyMatching = false;
};

struct ListTotals {
    double income = 0.0;
    double expense = 0.0;
    std::string label{kMainCurrencyName}; // Windows-1251
    MainMoneyView money;                  // how totals labelled in the main currency are shown
    // "%.2f %s" texts, Windows-1251.
    std::string incomeText() const;
    std::string expenseText() const;
    std::string balanceText() const;
};

// The main window's list as the core sees it: the rows that passed the filter, newest entry of
// the ledger on top, their cell texts, selection, totals, and the commands that act on rows.
// Rows point at the ledger's records and are rebuilt by every refresh; any change of the ledger
// must be followed by a refresh before the rows are read again.
class OperationsList {
public:
    OperationsList(CFinoraDoc& doc, Settings& settings, Prompter& prompter);

    FilterCriteria& criteria() { return m_criteria; }
    const FilterCriteria& criteria() const { return m_criteria; }

    // Rebuilds the rows and the totals from the ledger and the criteria. A locked ledger leaves
    // the list empty and the totals as they were.
    void refresh();

    std::size_t rowCount() const { return m_rows.size(); }
    // False from the moment the ledger's records move (an entry added or deleted, the ledger
    // emptied or replaced) until the next refresh: the rows point at records that may be gone,
    // so a view must not read them, for instance when it repaints under a message box that a
    // command shows half way.
    bool isCurrent() const { return m_revision == m_doc.recordsRevision(); }
    // Windows-1251.
    std::string cellText(std::size_t row, int column) const;
    std::int32_t rowId(std::size_t row) const { return m_rows[row].op->id(); }
    bool isSelected(std::size_t row) const { return m_rows[row].selected; }
    void setSelected(std::size_t row, bool selected) { m_rows[row].selected = selected; }
    void selectAll();
    std::size_t selectedCount() const;
    // The row that holds the focus after a refresh, or -1.
    std::ptrdiff_t currentRow() const { return m_current; }

    const ListTotals& totals() const { return m_totals; }

    // Marks or keeps the matching rows, recomputes the totals from the rows and says so.
    void search(const SearchRequest& request);
    const std::string& lastSearchText() const { return m_lastSearchText; }
    bool lastSearchCaseSensitive() const { return m_lastSearchCaseSensitive; }
    // Keeps the rows whose amount (or, with alsoBgl, main-currency value as the list shows it)
    // text lies within amount ± tolerance. Totals stay as they are.
    void filterByAmount(double amount, double tolerance, bool alsoBgl);

    // The row commands, each with its confirmation; false when refused or declined.
    bool deleteAll();
    bool deleteShown();
    bool deleteSelected();
    bool setSelectedPaid();

    static constexpr const char* kDeleteQuestion =
        "Сигурни ли сте, че желаете да продължите с изтриването?";
    static constexpr const char* kPaidQuestion =
        "Сигурни ли сте, че желаете да установите тези операции като изплатени?";
    static constexpr const char* kConfirmCaption = "Потвърдете";
    static constexpr const char* kSearchDoneText =
        "Резултатите са филтрирани по зададения критерий.\nНатиснете F5 за опресняване,\nако "
        "желаете да се върнете към предишния\nнабор от записи.";

private:
    struct Row {
        const Operation* op;
        bool selected = false;
        bool paidShown = false; // "да" written into the cell by the set-paid command
    };

    std::string cellText(const Row& row, int column) const;
    MainMoneyView money() const { return m_totals.money; }
    bool confirmDeletion();
    void deleteRows(bool selectedOnly);
    bool rowMatches(const Row& row, const SearchRequest& request,
                    const std::vector<std::string>& words) const;
    std::string searchText(const Row& row, int column, bool fold) const;
    void totalsFromRows();
    void startTotals();

    CFinoraDoc& m_doc;
    Settings& m_settings;
    Prompter& m_prompter;
    FilterCriteria m_criteria;
    std::vector<Row> m_rows;
    std::ptrdiff_t m_current = -1;
    std::uint64_t m_revision = 0;
    ListTotals m_totals;
    std::string m_lastSearchText;
    bool m_lastSearchCaseSensitive = false;
};

} // namespace finora
