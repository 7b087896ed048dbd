#pragma once

#include "core/categorise/learned_categories.h"
#include "core/importing/statement_import.h"
#include "core/statements/statement_reader.h"

#include <QDialog>
#include <map>
#include <set>
#include <string>

class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

namespace finora {

class CsvLayoutPanel;

// Everything a bank statement would add, shown before anything is: each line as it will be
// stored and whether it is added, what is added in all, and the choices that change it (the CSV
// layout, QIF's date order, the rates of foreign currencies, the category).
class StatementImportDialog final : public QDialog {
    Q_OBJECT

public:
    // `statement` is the file read with `options` (for CSV, a layout with every key set).
    StatementImportDialog(const CFinoraDoc& doc, const LearnedCategories& learned,
                          const Settings& settings, std::string bytes, const Statement& statement,
                          const StatementReadOptions& options, QWidget* parent = nullptr);
    ~StatementImportDialog() override;

    // The lines as the user left them: unticked ones are not added.
    const ImportPlan& plan() const { return m_plan; }

private:
    QWidget* buildChoices();
    void connectChoices();
    // The file read again under the choices (the layout, the date order), then planned.
    void reread();
    void replan();
    void showPlan();
    void showLine(int row, const ImportLine& line);
    void showTotals();
    void addRateFields();
    void chooseCategory();

    const CFinoraDoc& m_doc;
    const LearnedCategories& m_learned; // what the ledger's filing suggests for each line
    const Settings& m_settings;
    std::string m_bytes;
    Statement m_statement;
    StatementReadOptions m_readOptions;
    StatementImportOptions m_options;
    ImportPlan m_plan;
    std::set<std::size_t> m_unticked; // entries the user left out
    bool m_showing = false;

    CsvLayoutPanel* m_layout = nullptr;
    QComboBox* m_dateOrder = nullptr;
    QFormLayout* m_rates = nullptr;
    std::map<std::string, QLineEdit*> m_rateFields;
    QLabel* m_category = nullptr;
    QPushButton* m_chooseCategory = nullptr;
    QLabel* m_error = nullptr;
    QTableWidget* m_table = nullptr;
    QLabel* m_totals = nullptr;
    QPushButton* m_import = nullptr;
};

} // namespace finora
