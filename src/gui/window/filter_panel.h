#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/query/filter_criteria.h"
#include "core/settings/settings.h"

#include <QWidget>
#include <optional>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QLayout;
class QPushButton;
class QRadioButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace finora {

// The controls above the list that edit the filter criteria; every change is told at once, for
// the view to refresh.
class FilterPanel final : public QWidget {
    Q_OBJECT

public:
    FilterPanel(CFinoraDoc& doc, Settings& settings, Prompter& prompter, FilterCriteria& criteria,
                QWidget* parent = nullptr);

    // Shows the criteria and rebuilds the category tree and the currency list from the ledger.
    void showCriteria();
    // Shows the criteria only: the tree and what is selected in it stay.
    void showValues();
    // "Добави тази категория към списъка на избраните ..." (F2).
    void addTreeCategory();
    // The category selected in the tree, if any.
    std::optional<std::int32_t> treeCategory() const;
    void loadFilter();
    // A filter file's criteria into the panel, and the list refreshed; an unreadable file says so.
    void loadFilterFrom(const QString& path);
    void saveFilter();

    static constexpr const char* kNoCategoryText =
        QT_TR_NOOP("Не сте избрали категория от списъка на категориите!");
    static constexpr const char* kNoCategoryCaption = QT_TR_NOOP("Липсва селекция");
    static constexpr const char* kFilterFileFilter =
        QT_TR_NOOP("Филтри на Finora (*.ffl);;Всички файлове (*.*)");

    // The panel's last stop of the tab key, after which the list comes.
    QWidget* lastInTabOrder() const { return m_lastInTabOrder; }

Q_SIGNALS:
    // After every change of the criteria.
    void criteriaChanged();
    // A double click on a category when the option says it makes a new operation there.
    void addInCategoryRequested();

private:
    void setUpControls();
    QLayout* makeCriteriaColumn();
    void layOut();
    void connectControls();
    void fillCategoryTree();
    void fillCurrencies();
    void fillSelected();
    void takeValues();
    void changed();
    void updateButtons();
    void removeSelected(bool ask);

    CFinoraDoc& m_doc;
    Settings& m_settings;
    Prompter& m_prompter;
    FilterCriteria& m_criteria;
    bool m_showing = false;

    QComboBox* m_type;
    QDateEdit* m_from;
    QDateEdit* m_to;
    QTreeWidget* m_tree;
    QTreeWidget* m_selected;
    QCheckBox* m_subcategories;
    QPushButton* m_remove;
    QPushButton* m_clear;
    QComboBox* m_currency;
    QRadioButton* m_paid[3];
    QButtonGroup* m_paidGroup = nullptr;
    QPushButton* m_reset = nullptr;
    QPushButton* m_load = nullptr;
    QPushButton* m_save = nullptr;
    QWidget* m_lastInTabOrder = nullptr;
};

} // namespace finora
