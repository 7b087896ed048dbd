#pragma once

#include "core/editors/currency_cash_editor.h"

#include <QDialog>

class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace finora {

// Asks for a currency name: centred, in capitals as it is typed.
class CurrencyNameDialog final : public QDialog {
    Q_OBJECT

public:
    CurrencyNameDialog(const std::string& current, Prompter& prompter, QWidget* parent = nullptr);
    void accept() override;
    const std::string& name() const { return m_name; } // Windows-1251

private:
    Prompter& m_prompter;
    QLineEdit* m_edit;
    std::string m_name;
};

// "валутна каса": every currency with its cash summary, and the only place currencies are made,
// renamed and deleted.
class CurrencyCashDialog final : public QDialog {
    Q_OBJECT

public:
    CurrencyCashDialog(CFinoraDoc& doc, const Settings& settings, Prompter& prompter,
                       QWidget* parent = nullptr);

private:
    void fill();
    int selectedRow() const;
    void updateButtons();
    void rename();
    CurrencyCashEditor::NameAsker nameAsker();

    CurrencyCashEditor m_editor;
    Prompter& m_prompter;
    QTreeWidget* m_list;
    QPushButton* m_change;
    QPushButton* m_delete;
};

} // namespace finora
