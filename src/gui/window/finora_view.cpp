#include "gui/window/finora_view.h"

#include "core/text/cp1251.h"
#include "gui/common/editor_widgets.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QScrollArea>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

namespace finora {

CFinoraView::CFinoraView(CFinoraDoc& doc, Settings& settings, Prompter& prompter, QWidget* parent)
    : QWidget(parent), m_doc(doc), m_settings(settings), m_list(doc, settings, prompter),
      m_model(m_list, this),
      m_panel(new FilterPanel(doc, settings, prompter, m_list.criteria(), this)),
      m_table(new QTableView(this)), m_income(new QLabel(this)), m_expense(new QLabel(this)),
      m_balance(new QLabel(this))
{
    m_table->setObjectName(QStringLiteral("operationsList"));
    m_table->setModel(&m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    // Tab leaves the list, as it leaves any other field; the arrows move within it.
    m_table->setTabKeyNavigation(false);
    m_table->setSortingEnabled(false);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 6);
    m_table->horizontalHeader()->setHighlightSections(false);
    // In dual mode the euro column stands beside the lev one, as prices did in the shops.
    m_table->horizontalHeader()->moveSection(kColAmountEuro, kColAmountBgl + 1);
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { takeSelectionFromTable(); });

    auto* totals = new QHBoxLayout;
    for (auto [label, caption, name] : {std::tuple{m_income, tr("приходи:"), "income"},
                                        std::tuple{m_expense, tr("разходи:"), "expense"},
                                        std::tuple{m_balance, tr("баланс:"), "balance"}}) {
        label->setObjectName(QString::fromLatin1(name));
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        totals->addWidget(new QLabel(caption, this));
        totals->addWidget(label);
        totals->addSpacing(24);
    }
    totals->addStretch();

    connect(m_panel, &FilterPanel::criteriaChanged, this, &CFinoraView::refresh);

    auto* layout = new QVBoxLayout(this);
    QScrollArea* panelArea = scrollWhenSmall(m_panel, this);
    // No taller than the panel wants: the space left over is the list's.
    panelArea->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    layout->addWidget(panelArea);
    layout->addWidget(m_table, 1);
    layout->addLayout(totals);
    setTabOrder(m_panel->lastInTabOrder(), m_table);
    applyColumnVisibility();
}

void CFinoraView::applyColumnVisibility()
{
    // The fixed widths were made for a small dialog font whose characters average 5.5 pixels;
    // scaled to the font in use, a date or an amount still fits its column.
    const double scale = std::max(1.0, m_table->fontMetrics().averageCharWidth() / 5.5);
    for (int c = 0; c < kListColumnCount; ++c) {
        const int width = columnWidth(c, m_settings);
        m_table->setColumnHidden(c, width == 0);
        if (width > 0) {
            m_table->setColumnWidth(c, static_cast<int>(width * scale));
        }
    }
    // The main-currency column names the currency the money mode shows.
    Q_EMIT m_model.headerDataChanged(Qt::Horizontal, 0, kListColumnCount - 1);
}

void CFinoraView::refresh()
{
    changeRows([this] {
        m_list.refresh();
        return true;
    });
}

void CFinoraView::contextMenuEvent(QContextMenuEvent* event)
{
    if (!m_contextMenu) {
        event->ignore();
        return;
    }
    m_contextMenu->exec(event->globalPos());
}

void CFinoraView::resetFilter()
{
    resetCriteria(m_list.criteria(), m_doc, m_doc.clock().now());
    m_panel->showCriteria();
    refresh();
}

void CFinoraView::showListState()
{
    const ListTotals& t = m_list.totals();
    m_income->setText(qt(t.incomeText()));
    m_expense->setText(qt(t.expenseText()));
    m_balance->setText(qt(t.balanceText()));

    m_syncing = true;
    QItemSelection selection;
    for (std::size_t r = 0; r < m_list.rowCount(); ++r) {
        if (m_list.isSelected(r)) {
            const int row = static_cast<int>(r);
            selection.select(m_model.index(row, 0), m_model.index(row, kListColumnCount - 1));
        }
    }
    m_table->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (m_list.currentRow() >= 0) {
        const QModelIndex current = m_model.index(static_cast<int>(m_list.currentRow()), kColDate);
        m_table->selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
        m_table->scrollTo(current);
    }
    m_syncing = false;
    Q_EMIT listChanged();
}

void CFinoraView::takeSelectionFromTable()
{
    if (m_syncing) {
        return;
    }
    for (std::size_t r = 0; r < m_list.rowCount(); ++r) {
        m_list.setSelected(r, false);
    }
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    for (const QModelIndex& index : rows) {
        m_list.setSelected(static_cast<std::size_t>(index.row()), true);
    }
    Q_EMIT listChanged();
}

} // namespace finora
