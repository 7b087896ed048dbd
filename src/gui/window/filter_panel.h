#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/query/filter_criteria.h"
#include "core/settings/settings.h"

#include <QWidget>
#include <functional>
#include <optional>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QPushButton;
class QRadioButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace finora {

// The controls above the list that edit the filter criteria; every change asks the view to
// refresh at once.
class FilterPanel final : public QWidget {
public:
    FilterPanel(CFinoraDoc& doc, Settings& settings, Prompter& prompter, FilterCriteria& criteria,
                QWidget* parent = nullptr);

    // Called after every change of the criteria.
    void setOnChanged(std::function<void()> handler) { m_onChanged = std::move(handler); }
    // Shows the criteria and rebuilds the category tree and the currency list from the ledger.
    void showCriteria();
    // Shows the criteria only: the tree and what is selected in it stay.
    void showValues();
    // "Добави тази категория към списъка на избраните ..." (F2).
    void addTreeCategory();
    // The category selected in the tree, if any.
    std::optional<std::int32_t> treeCategory() const;
    // A double click on a category when the option says it makes a new operation there.
    void setOnAddInCategory(std::function<void()> handler)
    {
        m_onAddInCategory = std::move(handler);
    }
    void loadFilter();
    // A filter file's criteria into the panel, and the list refreshed; an unreadable file says so.
    void loadFilterFrom(const QString& path);
    void saveFilter();

    static constexpr const char* kNoCategoryText =
        "Не сте избрали категория от списъка на категориите!";
    static constexpr const char* kNoCategoryCaption = "Липсва селекция";
    static constexpr const char* kFilterFileFilter =
        "Филтри на Finora (*.ffl);;Всички файлове (*.*)";

    // The panel's last stop of the tab key, after which the list comes.
    QWidget* lastInTabOrder() const { return m_lastInTabOrder; }

private:
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
    std::function<void()> m_onChanged;
    std::function<void()> m_onAddInCategory;
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
    QWidget* m_lastInTabOrder = nullptr;
};

} // namespace finora
