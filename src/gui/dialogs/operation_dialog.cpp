#include "gui/dialogs/operation_dialog.h"

#include "core/editors/search_editor.h"
#include "gui/common/date_field.h"
#include "gui/common/editor_widgets.h"
#include "gui/common/window_layout.h"
#include "gui/dialogs/category_dialogs.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <functional>

namespace finora {
namespace {

// The currency list tells when it closes: the value field follows the main currency then, and
// only then.
class CurrencyCombo final : public QComboBox {
public:
    using QComboBox::QComboBox;
    std::function<void()> onListClosed;

    void hidePopup() override
    {
        const bool wasOpen = view() && view()->isVisible();
        QComboBox::hidePopup();
        if (wasOpen && onListClosed) {
            // The list closes before it hands over the item chosen in it: the rule must see the
            // new choice.
            QTimer::singleShot(0, this, [this] {
                if (onListClosed) {
                    onListClosed();
                }
            });
        }
    }
};

void setTextKeepingCursor(QLineEdit* edit, const QString& text)
{
    if (edit->text() != text) {
        edit->setText(text);
    }
}

} // namespace

OperationDialog::OperationDialog(CFinoraDoc& doc, Settings& settings, Prompter& prompter,
                                 OperationEditor::Opening opening, QWidget* parent)
    : QDialog(parent), m_doc(doc), m_prompter(prompter),
      m_editor(doc, settings, prompter, doc.clock().now(), opening), m_date(new DateField(this)),
      m_income(new QRadioButton(QStringLiteral("приход"), this)),
      m_expense(new QRadioButton(QStringLiteral("разход"), this)),
      m_description(new QLineEdit(this)), m_category(new QLabel(this)),
      m_notes(new QLineEdit(this)), m_amount(new QLineEdit(this)),
      m_currency(new CurrencyCombo(this)), m_rate(new QLineEdit(this)),
      m_value(new QLineEdit(this)), m_paid(new QCheckBox(QStringLiteral("изплатено?"), this)),
      m_addChange(new QPushButton(QStringLiteral("&добави/промени"), this)),
      m_list(makeReportList(this, {{"#", 0},
                                   {"сума", 70, Qt::AlignRight},
                                   {"валута", 50, Qt::AlignCenter},
                                   {"сума в BGL", 80, Qt::AlignRight},
                                   {"курс", 70, Qt::AlignRight},
                                   {"платено", 55, Qt::AlignCenter},
                                   {"inner_id", 0, Qt::AlignCenter}})),
      m_edit(new QPushButton(QStringLiteral("р&едакция"), this)),
      m_delete(new QPushButton(QStringLiteral("из&трий"), this)),
      m_deleteAll(new QPushButton(QStringLiteral("изтрий вси&чки"), this)),
      m_total(new QLineEdit(this)),
      m_saveAndNew(new QPushButton(QStringLiteral("съхрани и добави &нова"), this))
{
    setWindowTitle(QString::fromUtf8(OperationEditor::kTitle));
    setObjectName(QStringLiteral("operationDialog"));
    m_date->setDate(toQDate(m_editor.date()));
    (m_editor.typeIndex() == 0 ? m_income : m_expense)->setChecked(true);
    auto* types = new QButtonGroup(this);
    types->addButton(m_income, 0);
    types->addButton(m_expense, 1);
    tabStopOnChosen(types);
    m_description->setText(qt(m_editor.description()));
    m_notes->setText(qt(m_editor.notes()));
    m_category->setObjectName(QStringLiteral("category"));
    m_category->setFrameShape(QFrame::StyledPanel);
    m_category->setMinimumWidth(200);
    for (const std::string& name : m_editor.currencies()) {
        m_currency->addItem(qt(name));
    }
    m_total->setReadOnly(true);
    m_total->setAlignment(Qt::AlignRight);
    m_total->setObjectName(QStringLiteral("total"));
    m_list->setObjectName(QStringLiteral("payments"));
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_amount->setObjectName(QStringLiteral("amount"));
    m_rate->setObjectName(QStringLiteral("rate"));
    m_value->setObjectName(QStringLiteral("value"));
    m_description->setObjectName(QStringLiteral("description"));
    m_notes->setObjectName(QStringLiteral("notes"));
    m_currency->setObjectName(QStringLiteral("currency"));
    for (QLineEdit* edit : {m_amount, m_rate, m_value}) {
        edit->setAlignment(Qt::AlignRight);
        edit->installEventFilter(this);
    }
    auto* chooseCategory = new QPushButton(QStringLiteral("..."), this);
    chooseCategory->setObjectName(QStringLiteral("chooseCategory"));
    chooseCategory->setMaximumWidth(
        chooseCategory->fontMetrics().horizontalAdvance(QStringLiteral("....")) + 20);
    auto* clear = new QPushButton(QStringLiteral("изчи&сти"), this);
    m_addChange->setIcon(style()->standardIcon(QStyle::SP_ArrowDown));
    clear->setIcon(style()->standardIcon(QStyle::SP_DialogResetButton));
    auto* save = new QPushButton(QStringLiteral("&съхрани"), this);
    auto* cancel = new QPushButton(QStringLiteral("отказ"), this);
    m_cancel = cancel;
    save->setDefault(true);
    for (QPushButton* b : {m_addChange, clear, m_edit, m_delete, m_deleteAll, m_saveAndNew, cancel,
                           chooseCategory}) {
        b->setAutoDefault(false);
    }
    m_saveAndNew->setVisible(m_editor.isNew());

    const std::pair<QWidget*, const char*> tips[] = {
        {m_edit, "редакция на маркираното плащане ..."},
        {m_delete, "изтриване на маркираното плащане ..."},
        {m_deleteAll, "изтриване на всички плащания по тази операция..."},
        {clear,
         "изчиства данните за добавяното/променяното в момента плащане по тази операция ..."},
        {m_addChange, "добава/променя плащане по текущата операция ..."},
        {m_paid, "указва, дали е извършено това плащане по операцията ..."},
        {m_total, "крайната сума в лева на всички плащания по текущата операция ..."},
        {m_rate,
         "можете да укажете курс, по който е придобита валутата (ако плащането не е в лева)"},
        {m_value, "вместо да задавате курс, можете да укажете стойността на валутата в лева (ако "
                  "плащането не е в лева)"},
        {chooseCategory, "изберете категория, с която ще асоциирате операцията ..."},
        {m_list, "Списък на плащанията по тази операция. Кликнете 2 пъти определен запис, за да го "
                 "промените..."},
        {save, "съхранява операцията ..."},
        {cancel, "отказва операцията ..."},
        {m_saveAndNew, "съхранява операцията и добавя нова..."},
        {m_date, "Укажете дата за тази операция ..."},
        {m_income, "Укажете тип за тази операция: приход или разход ..."},
        {m_expense, "Укажете тип за тази операция: приход или разход ..."},
        {m_description, "Укажете кратко описание за текущата операция тук ..."},
        {m_amount, "Укажете сумата по това плащане ..."},
        {m_currency, "Ако не е в ЛЕВА, изберете валутата, в която е сумата по това плащане ..."},
        {m_notes, "Ако имате някакви забележки, включете ги тук ..."},
    };
    for (const auto& [widget, tip] : tips) {
        widget->setToolTip(QString::fromUtf8(tip));
    }

    // --- layout, in the order the tab key follows
    auto* top = new QGridLayout;
    top->addWidget(new QLabel(QStringLiteral("дата:"), this), 0, 0);
    auto* dateRow = new QHBoxLayout;
    dateRow->addWidget(m_date);
    dateRow->addSpacing(16);
    dateRow->addWidget(m_income);
    dateRow->addWidget(m_expense);
    dateRow->addStretch();
    top->addLayout(dateRow, 0, 1, 1, 2);
    top->addWidget(new QLabel(QStringLiteral("кратко описание:"), this), 1, 0);
    top->addWidget(m_description, 1, 1, 1, 2);
    top->addWidget(new QLabel(QStringLiteral("избрана категория:"), this), 2, 0);
    top->addWidget(m_category, 2, 1);
    top->addWidget(chooseCategory, 2, 2);
    top->addWidget(new QLabel(QStringLiteral("забележка:"), this), 3, 0);
    top->addWidget(m_notes, 3, 1, 1, 2);
    top->setColumnStretch(1, 1);

    auto* payment = new QGroupBox(QStringLiteral("плащане"), this);
    auto* entry = new QGridLayout(payment);
    entry->addWidget(new QLabel(QStringLiteral("сума:"), this), 0, 0);
    entry->addWidget(m_amount, 1, 0);
    entry->addWidget(new QLabel(QStringLiteral("валута:"), this), 0, 1);
    entry->addWidget(m_currency, 1, 1);
    entry->addWidget(new QLabel(QStringLiteral("курс на валута:"), this), 0, 2);
    entry->addWidget(m_rate, 1, 2);
    entry->addWidget(new QLabel(QStringLiteral("стойност в лв:"), this), 0, 3);
    entry->addWidget(m_value, 1, 3);
    entry->addWidget(m_paid, 1, 4);
    auto* entryButtons = new QHBoxLayout;
    entryButtons->addStretch();
    entryButtons->addWidget(m_addChange);
    entryButtons->addWidget(clear);
    entry->addLayout(entryButtons, 2, 0, 1, 5);

    auto* rowButtons = new QHBoxLayout;
    rowButtons->addWidget(m_edit);
    rowButtons->addWidget(m_delete);
    rowButtons->addWidget(m_deleteAll);
    rowButtons->addStretch();
    rowButtons->addWidget(new QLabel(QStringLiteral("ОБЩО BGL"), this));
    rowButtons->addWidget(m_total);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(makeHelpButton(this, "help.chm::/ops_elem.htm"));
    buttons->addStretch();
    buttons->addWidget(save);
    buttons->addWidget(m_saveAndNew);
    buttons->addWidget(cancel);

    // The fields scroll on a small screen; the buttons that end the dialog stay in sight.
    auto* fields = new QWidget(this);
    auto* fieldsLayout = new QVBoxLayout(fields);
    fieldsLayout->setContentsMargins(0, 0, 0, 0);
    fieldsLayout->addLayout(top);
    fieldsLayout->addWidget(payment);
    fieldsLayout->addWidget(m_list, 1);
    fieldsLayout->addLayout(rowButtons);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(scrollWhenSmall(fields, this), 1);
    layout->addLayout(buttons);
    setSizeGripEnabled(true);
    setMinimumSize(480, 300);
    resize(640, 560);
    keepWindowGeometry(this, "operation");

    // The tab key follows the layout, top to bottom and left to right.
    QWidget* order[] = {m_date,   m_income,    m_expense,  m_description, chooseCategory,
                        m_notes,  m_amount,    m_currency, m_rate,        m_value,
                        m_paid,   m_addChange, clear,      m_list,        m_edit,
                        m_delete, m_deleteAll, save,       m_saveAndNew,  cancel};
    for (std::size_t i = 1; i < std::size(order); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }

    // --- what the user does, forwarded
    connect(m_date, &QDateEdit::dateChanged, this,
            [this](const QDate& d) { m_editor.setDate(fromQDate(d)); });
    connect(types, &QButtonGroup::idClicked, this, [this](int id) { m_editor.setTypeIndex(id); });
    connect(chooseCategory, &QPushButton::clicked, this, [this] {
        CategoryChooserDialog chooser(m_doc, m_editor.categoryId(), this);
        if (chooser.exec() == QDialog::Accepted) {
            m_editor.chooseCategory(chooser.chooser().chosenId(), chooser.chooser().chosenName());
            showState();
        }
    });
    for (QLineEdit* edit : {m_amount, m_rate, m_value}) {
        connect(edit, &QLineEdit::textChanged, this, [this, edit](const QString& text) {
            if (m_showing) {
                return;
            }
            m_editor.setText(fieldOf(edit), text.toStdString());
            showEntry();
        });
    }
    // The currency rule runs when the choice changes, not when the same currency is picked again
    // (which would suggest a rate over one the user typed).
    connect(m_currency, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (m_showing || index < 0) {
            return;
        }
        m_editor.selectCurrency(m_editor.currencies().at(static_cast<std::size_t>(index)));
        showEntry();
    });
    static_cast<CurrencyCombo*>(m_currency)->onListClosed = [this] {
        m_editor.currencyListClosed();
        showEntry();
    };
    connect(m_paid, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_showing) {
            m_editor.setPaid(on);
        }
    });
    connect(m_addChange, &QPushButton::clicked, this, [this] {
        if (m_editor.addOrChange()) {
            showRows();
            m_amount->setFocus();
        }
    });
    connect(clear, &QPushButton::clicked, this, [this] {
        m_editor.clearEntry();
        showEntry();
    });
    const auto load = [this] {
        m_editor.loadSelected();
        showEntry();
    };
    connect(m_edit, &QPushButton::clicked, this, load);
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, load);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, [this] {
        if (m_showing) {
            return;
        }
        std::vector<int> rows;
        for (QTreeWidgetItem* item : m_list->selectedItems()) {
            rows.push_back(m_list->indexOfTopLevelItem(item));
        }
        m_editor.setSelected(rows);
        showState();
    });
    connect(m_delete, &QPushButton::clicked, this, [this] {
        if (m_editor.deleteSelected()) {
            showRows();
        }
    });
    connect(m_deleteAll, &QPushButton::clicked, this, [this] {
        if (m_editor.deleteAll()) {
            showRows();
        }
    });
    connect(save, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_saveAndNew, &QPushButton::clicked, this, [this] { saveWith(true); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    showRows();
    showEntry();
    if (m_editor.initialRow() >= 0) {
        m_list->setFocus();
    } else {
        m_description->setFocus();
    }
}

OperationDialog::~OperationDialog()
{
    // The fields outlive the editor while the base class deletes them: no focus news after this.
    for (QLineEdit* edit : {m_amount, m_rate, m_value}) {
        edit->removeEventFilter(this);
    }
}

EntryField OperationDialog::fieldOf(QObject* edit) const
{
    if (edit == m_amount) {
        return EntryField::Amount;
    }
    if (edit == m_rate) {
        return EntryField::Rate;
    }
    if (edit == m_value) {
        return EntryField::Value;
    }
    return EntryField::None;
}

bool OperationDialog::eventFilter(QObject* watched, QEvent* event)
{
    const EntryField field = fieldOf(watched);
    if (field != EntryField::None &&
        (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)) {
        if (event->type() == QEvent::FocusIn) {
            m_editor.focusIn(field);
        } else {
            m_editor.focusOut(field);
            refuseNotANumber(static_cast<QLineEdit*>(watched), field);
        }
        showEntry();
    }
    return QDialog::eventFilter(watched, event);
}

void OperationDialog::refuseNotANumber(QLineEdit* edit, EntryField field)
{
    // Leaving for "отказ" (or closing) needs no correct number; the focus has already moved on
    // when this is told, so the widget that took it says where the user went.
    const QWidget* next = QApplication::focusWidget();
    if (!next || next == m_cancel || !isVisible()) {
        return;
    }
    // After the focus change is done: a message box in the middle of one would fight it.
    QTimer::singleShot(0, this, [this, edit, field] {
        if (!m_editor.checkField(field)) {
            edit->setFocus(Qt::OtherFocusReason);
            edit->selectAll();
        }
    });
}

void OperationDialog::showEntry()
{
    m_showing = true;
    setTextKeepingCursor(m_amount, QString::fromStdString(m_editor.amountText()));
    setTextKeepingCursor(m_rate, QString::fromStdString(m_editor.rateText()));
    setTextKeepingCursor(m_value, QString::fromStdString(m_editor.valueText()));
    m_rate->setReadOnly(m_editor.rateAndValueReadOnly());
    m_value->setReadOnly(m_editor.rateAndValueReadOnly());
    m_value->setEnabled(m_editor.valueEnabled());
    m_currency->setCurrentText(qt(m_editor.currency()));
    m_paid->setChecked(m_editor.paid());
    m_showing = false;
    showState();
}

void OperationDialog::showRows()
{
    m_showing = true;
    m_list->clear();
    QList<QTreeWidgetItem*> items;
    for (const PaymentRow& row : m_editor.rows()) {
        auto* item = new QTreeWidgetItem;
        for (int c = 0; c < kPaymentColumnCount; ++c) {
            item->setText(c, qt(row.cells[static_cast<std::size_t>(c)]));
            item->setTextAlignment(c,
                                   Qt::Alignment::fromInt(m_list->headerItem()->textAlignment(c)));
        }
        items.append(item);
    }
    m_list->addTopLevelItems(items);
    for (std::size_t i = 0; i < m_editor.rows().size(); ++i) {
        if (m_editor.rows()[i].selected) {
            m_list->topLevelItem(static_cast<int>(i))->setSelected(true);
        }
    }
    m_showing = false;
    showEntry();
}

void OperationDialog::showState()
{
    m_category->setText(qt(m_editor.categoryText()));
    m_total->setText(QString::fromStdString(m_editor.totalText()));
    m_edit->setEnabled(m_editor.canEditRow());
    m_delete->setEnabled(m_editor.canEditRow());
    m_deleteAll->setEnabled(m_editor.canDeleteAll());
}

bool OperationDialog::takeTexts()
{
    const auto description = typedText(m_description->text().toStdString(), m_prompter);
    if (!description) {
        m_description->setFocus();
        return false;
    }
    const auto notes = typedText(m_notes->text().toStdString(), m_prompter);
    if (!notes) {
        m_notes->setFocus();
        return false;
    }
    m_editor.setDescription(*description);
    m_editor.setNotes(*notes);
    return true;
}

void OperationDialog::saveWith(bool addAnother)
{
    if (!takeTexts()) {
        return;
    }
    if (addAnother ? m_editor.saveAndAddNew() : m_editor.save()) {
        QDialog::accept();
    }
}

void OperationDialog::accept()
{
    saveWith(false);
}

} // namespace finora
