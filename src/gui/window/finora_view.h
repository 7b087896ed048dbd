#pragma once

#include "core/query/operations_list.h"
#include "gui/window/filter_panel.h"
#include "gui/window/operations_table_model.h"

#include <QWidget>

class QLabel;
class QMenu;
class QTableView;

namespace finora {

// The main view: the operations list and its three totals.
class CFinoraView final : public QWidget {
    Q_OBJECT

public:
    CFinoraView(CFinoraDoc& doc, Settings& settings, Prompter& prompter, QWidget* parent = nullptr);

    OperationsList& list() { return m_list; }
    QTableView* table() { return m_table; }
    FilterPanel& filterPanel() { return *m_panel; }

    // Rebuilds the list from the ledger and the criteria ("&Опресни", F5).
    void refresh();
    // Back to "без филтър" and refresh.
    void resetFilter();
    // Runs a command that changes the list's rows, keeping the table in step.
    template <class Command> bool changeRows(Command command)
    {
        m_model.beginChange();
        const bool done = command();
        m_model.endChange();
        showListState();
        return done;
    }
    void applyColumnVisibility();

    // Opens at the mouse on a right click anywhere in the view that has no menu of its own.
    void setContextMenu(QMenu* menu) { m_contextMenu = menu; }

Q_SIGNALS:
    // After every change of the rows, the selection or the totals.
    void listChanged();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void showListState();
    void takeSelectionFromTable();

    CFinoraDoc& m_doc;
    Settings& m_settings;
    OperationsList m_list;
    OperationsTableModel m_model;
    FilterPanel* m_panel;
    QWidget* m_panelArea = nullptr;
    QTableView* m_table;
    QMenu* m_contextMenu = nullptr;
    QLabel* m_income;
    QLabel* m_expense;
    QLabel* m_balance;
    bool m_syncing = false;
};

} // namespace finora
