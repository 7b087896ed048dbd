#pragma once

#include "core/editors/operation_editor.h"

#include <QDialog>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QGridLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidget;

namespace finora {

// "нова операция": shows what the editor holds and forwards what the user does. The three
// number fields report focus changes, because the one being typed in drives the others.
class OperationDialog final : public QDialog {
    Q_OBJECT

public:
    OperationDialog(CFinoraDoc& doc, Settings& settings, Prompter& prompter,
                    OperationEditor::Opening opening, QWidget* parent = nullptr);

    ~OperationDialog() override;

    OperationEditor& editor() { return m_editor; }
    void accept() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setUpFields();
    void makeButtons();
    void setToolTips();
    QGridLayout* makeOperationFields();
    QGroupBox* makePaymentBox();
    void layOut();
    void connectFields();
    void connectPayments();
    void showEntry();
    void showRows();
    void showState();
    bool takeTexts();
    void saveWith(bool addAnother);
    EntryField fieldOf(QObject* edit) const;
    // Leaving a number field that holds no number: said, and the user is taken back to it.
    void refuseNotANumber(QLineEdit* edit, EntryField field);

    CFinoraDoc& m_doc;
    Prompter& m_prompter;
    OperationEditor m_editor;
    bool m_showing = false;

    QDateEdit* m_date;
    QRadioButton* m_income;
    QRadioButton* m_expense;
    QButtonGroup* m_types = nullptr;
    QLineEdit* m_description;
    QLabel* m_category;
    QLineEdit* m_notes;
    QLineEdit* m_amount;
    QComboBox* m_currency;
    QLineEdit* m_rate;
    QLineEdit* m_value;
    QCheckBox* m_paid;
    QPushButton* m_addChange;
    QTreeWidget* m_list;
    QPushButton* m_edit;
    QPushButton* m_delete;
    QPushButton* m_deleteAll;
    QLineEdit* m_total;
    QPushButton* m_saveAndNew;
    QPushButton* m_chooseCategory = nullptr;
    QPushButton* m_clear = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_cancel = nullptr;
};

} // namespace finora
