#include "gui/dialogs/currency_cash_dialog.h"

#include "core/editors/search_editor.h"
#include "core/text/cp1251.h"
#include "gui/common/dialog_buttons.h"
#include "gui/common/editor_widgets.h"
#include "gui/common/window_layout.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace finora {
namespace {

// The cash list's column headers come from the core's report.
QString cashHeader(const Settings& settings, std::size_t column)
{
    return QString::fromUtf8(cashColumnHeaders(settings.mainMoney()).at(column));
}

} // namespace

CurrencyNameDialog::CurrencyNameDialog(const std::string& current, Prompter& prompter,
                                       QWidget* parent)
    : QDialog(parent), m_prompter(prompter), m_edit(new QLineEdit(qt(current), this))
{
    setWindowTitle(current.empty() ? tr("Нова валута") : tr("Промяна"));
    m_edit->setAlignment(Qt::AlignCenter);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(tr("&съхрани"), QDialogButtonBox::AcceptRole);
    ok->setDefault(true);
    buttons->addButton(tr("&отказ"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_edit, &QLineEdit::textChanged, this, [this, ok](const QString& text) {
        ok->setEnabled(!text.isEmpty());
        // Capitals as the user types; the cursor stays where it was.
        const QString upper = text.toUpper();
        if (upper != text) {
            const int cursor = m_edit->cursorPosition();
            m_edit->setText(upper);
            m_edit->setCursorPosition(cursor);
        }
    });
    ok->setEnabled(!current.empty());
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("укажете наименование:"), this));
    layout->addWidget(m_edit);
    layout->addWidget(buttons);
    setMinimumWidth(280);
}

void CurrencyNameDialog::accept()
{
    const auto typed = typedText(m_edit->text().toStdString(), m_prompter);
    if (!typed) {
        m_edit->setFocus();
        return;
    }
    // Capitals again in the ledger's own alphabet, whatever the widget made of the text.
    m_name = currencyNameFromTyped(*typed);
    QDialog::accept();
}

CurrencyCashDialog::CurrencyCashDialog(CFinoraDoc& doc, const Settings& settings,
                                       Prompter& prompter, QWidget* parent)
    : QDialog(parent), m_editor(doc, settings, prompter), m_prompter(prompter),
      m_list(makeReportList(this, {{cashHeader(settings, 0), 0},
                                   {cashHeader(settings, 1), 80},
                                   {cashHeader(settings, 2), 100, Qt::AlignRight},
                                   {cashHeader(settings, 3), 120, Qt::AlignRight},
                                   {cashHeader(settings, 4), 70, Qt::AlignRight},
                                   {cashHeader(settings, 5), 80, Qt::AlignRight},
                                   {cashHeader(settings, 6), 80, Qt::AlignRight},
                                   {cashHeader(settings, 7), 80, Qt::AlignRight}})),
      m_change(new QPushButton(tr("&промяна"), this)),
      m_delete(new QPushButton(tr("&изтриване"), this))
{
    setWindowTitle(QString::fromUtf8(CurrencyCashEditor::kTitle));
    m_list->setObjectName(QStringLiteral("cashList"));
    m_list->setToolTip(tr("кликнете 2 пъти върху запис, за да го редактирате ..."));
    m_list->header()->setSectionsClickable(true);
    m_list->header()->setSortIndicatorShown(true);
    connect(m_list->header(), &QHeaderView::sectionClicked, this, [this](int column) {
        m_editor.sortBy(column);
        m_list->header()->setSortIndicator(column, m_editor.sortAscending() ? Qt::AscendingOrder
                                                                            : Qt::DescendingOrder);
        fill();
    });

    auto* add = new QPushButton(tr("&нова валута"), this);
    auto* close = new QPushButton(tr("&затвори"), this);
    add->setToolTip(tr("дефиниране на нова валута ..."));
    m_change->setToolTip(tr("промяна на маркирания запис ..."));
    m_delete->setToolTip(tr("изтриване на маркираната валута ..."));
    close->setToolTip(tr("изход ..."));
    for (QPushButton* b : {add, m_change, m_delete, close}) {
        b->setAutoDefault(false);
    }
    connect(add, &QPushButton::clicked, this, [this] {
        if (m_editor.add(nameAsker())) {
            fill();
        }
    });
    connect(m_change, &QPushButton::clicked, this, [this] { rename(); });
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, [this] { rename(); });
    connect(m_delete, &QPushButton::clicked, this, [this] {
        const int row = selectedRow();
        if (row >= 0 && m_editor.remove(static_cast<std::size_t>(row))) {
            fill();
        }
    });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, [this] { updateButtons(); });

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(m_change);
    buttons->addWidget(m_delete);
    buttons->addStretch();
    buttons->addWidget(makeHelpButton(this, "case_elem.htm"));
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list, 1);
    layout->addLayout(buttons);
    setSizeGripEnabled(true);
    setMinimumSize(520, 260);
    resize(780, 380);
    keepWindowGeometry(this, "currencyCash");
    fill();
}

CurrencyCashEditor::NameAsker CurrencyCashDialog::nameAsker()
{
    return [this](const std::string& current) -> std::optional<std::string> {
        CurrencyNameDialog dialog(current, m_prompter, this);
        if (dialog.exec() != QDialog::Accepted) {
            return std::nullopt;
        }
        return dialog.name();
    };
}

void CurrencyCashDialog::fill()
{
    // The selection follows the currency, not the row number: after a sort, an addition or a
    // deletion the same currency stays chosen, and a deleted one leaves nothing chosen.
    const int selected = selectedRow();
    const QString selectedId = selected >= 0 ? m_list->topLevelItem(selected)->text(0) : QString();
    m_list->clear();
    QList<QTreeWidgetItem*> items;
    for (const CashRow& row : m_editor.rows()) {
        auto* item = new QTreeWidgetItem;
        for (int c = 0; c < static_cast<int>(kCashColumnCount); ++c) {
            item->setText(c, qt(row[static_cast<std::size_t>(c)]));
            item->setTextAlignment(c, c < 2 ? Qt::AlignLeft : Qt::AlignRight);
        }
        items.append(item);
    }
    m_list->addTopLevelItems(items);
    QTreeWidgetItem* same = nullptr;
    for (QTreeWidgetItem* item : items) {
        if (!selectedId.isEmpty() && item->text(0) == selectedId) {
            same = item;
        }
    }
    m_list->setCurrentItem(same);
    if (!same) {
        m_list->clearSelection();
    }
    updateButtons();
}

int CurrencyCashDialog::selectedRow() const
{
    const QList<QTreeWidgetItem*> selected = m_list->selectedItems();
    return selected.isEmpty() ? -1 : m_list->indexOfTopLevelItem(selected.first());
}

void CurrencyCashDialog::updateButtons()
{
    const bool any = selectedRow() >= 0;
    m_change->setEnabled(any);
    m_delete->setEnabled(any);
}

void CurrencyCashDialog::rename()
{
    const int row = selectedRow();
    if (row >= 0 && m_editor.rename(static_cast<std::size_t>(row), nameAsker())) {
        fill();
    }
}

} // namespace finora
