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
#include <QKeyEvent>
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
    Q_OBJECT

public:
    using QComboBox::QComboBox;

    void hidePopup() override
    {
        const bool wasOpen = view() && view()->isVisible();
        QComboBox::hidePopup();
        if (wasOpen) {
            // The list closes before it hands over the item chosen in it: the rule must see the
            // new choice.
            QTimer::singleShot(0, this, &CurrencyCombo::listClosed);
        }
    }

Q_SIGNALS:
    void listClosed();
};

bool isEnterKey(const QKeyEvent& key)
{
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

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
      m_income(new QRadioButton(tr("приход"), this)),
      m_expense(new QRadioButton(tr("разход"), this)), m_description(new QLineEdit(this)),
      m_category(new QLabel(this)), m_notes(new QLineEdit(this)), m_amount(new QLineEdit(this)),
      m_currency(new CurrencyCombo(this)), m_rate(new QLineEdit(this)),
      m_value(new QLineEdit(this)), m_paid(new QCheckBox(tr("изплатено?"), this)),
      m_addChange(new QPushButton(tr("&добави/промени"), this)),
      m_list(makeReportList(this, {{QStringLiteral("#"), 0},
                                   {tr("сума"), 70, Qt::AlignRight},
                                   {tr("валута"), 50, Qt::AlignCenter},
                                   {tr("сума в BGL"), 80, Qt::AlignRight},
                                   {tr("курс"), 70, Qt::AlignRight},
                                   {tr("платено"), 55, Qt::AlignCenter},
                                   {QStringLiteral("inner_id"), 0, Qt::AlignCenter}})),
      m_edit(new QPushButton(tr("р&едакция"), this)),
      m_delete(new QPushButton(tr("из&трий"), this)),
      m_deleteAll(new QPushButton(tr("изтрий вси&чки"), this)), m_total(new QLineEdit(this)),
      m_saveAndNew(new QPushButton(tr("съхрани и добави &нова"), this))
{
    setWindowTitle(QString::fromUtf8(OperationEditor::kTitle));
    setObjectName(QStringLiteral("operationDialog"));
    setUpFields();
    makeButtons();
    setToolTips();
    layOut();
    connectFields();
    connectPayments();

    showRows();
    showEntry();
    if (m_editor.initialRow() >= 0) {
        m_list->setFocus();
    } else {
        m_description->setFocus();
    }
}

void OperationDialog::setUpFields()
{
    m_date->setDate(toQDate(m_editor.date()));
    (m_editor.typeIndex() == 0 ? m_income : m_expense)->setChecked(true);
    m_types = new QButtonGroup(this);
    m_types->addButton(m_income, 0);
    m_types->addButton(m_expense, 1);
    tabStopOnChosen(m_types);
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
    m_list->setAccessibleName(tr("плащания"));
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
}

void OperationDialog::makeButtons()
{
    m_chooseCategory = new QPushButton(QStringLiteral("..."), this);
    m_chooseCategory->setObjectName(QStringLiteral("chooseCategory"));
    m_chooseCategory->setAccessibleName(tr("избор на категория"));
    m_chooseCategory->setMaximumWidth(
        m_chooseCategory->fontMetrics().horizontalAdvance(QStringLiteral("....")) + 20);
    m_clear = new QPushButton(tr("изчи&сти"), this);
    m_addChange->setIcon(style()->standardIcon(QStyle::SP_ArrowDown));
    m_clear->setIcon(style()->standardIcon(QStyle::SP_DialogResetButton));
    m_save = new QPushButton(tr("&съхрани"), this);
    m_cancel = new QPushButton(tr("отказ"), this);
    m_save->setDefault(true);
    for (QPushButton* b : {m_addChange, m_clear, m_edit, m_delete, m_deleteAll, m_saveAndNew,
                           m_cancel, m_chooseCategory}) {
        b->setAutoDefault(false);
    }
    m_saveAndNew->setVisible(m_editor.isNew());
}

void OperationDialog::setToolTips()
{
    const std::pair<QWidget*, const char*> tips[] = {
        {m_edit, QT_TR_NOOP("редакция на маркираното плащане ...")},
        {m_delete, QT_TR_NOOP("изтриване на маркираното плащане ...")},
        {m_deleteAll, QT_TR_NOOP("изтриване на всички плащания по тази операция...")},
        {m_clear, QT_TR_NOOP("изчиства данните за добавяното/променяното в момента плащане по "
                             "тази операция ...")},
        {m_addChange, QT_TR_NOOP("добава/променя плащане по текущата операция ...")},
        {m_paid, QT_TR_NOOP("указва, дали е извършено това плащане по операцията ...")},
        {m_total, QT_TR_NOOP("крайната сума в лева на всички плащания по текущата операция ...")},
        {m_rate, QT_TR_NOOP("можете да укажете курс, по който е придобита валутата (ако "
                            "плащането не е в лева)")},
        {m_value, QT_TR_NOOP("вместо да задавате курс, можете да укажете стойността на валутата "
                             "в лева (ако плащането не е в лева)")},
        {m_chooseCategory, QT_TR_NOOP("изберете категория, с която ще асоциирате операцията ...")},
        {m_list, QT_TR_NOOP("Списък на плащанията по тази операция. Кликнете 2 пъти определен "
                            "запис, за да го промените...")},
        {m_save, QT_TR_NOOP("съхранява операцията ...")},
        {m_cancel, QT_TR_NOOP("отказва операцията ...")},
        {m_saveAndNew, QT_TR_NOOP("съхранява операцията и добавя нова...")},
        {m_date, QT_TR_NOOP("Укажете дата за тази операция ...")},
        {m_income, QT_TR_NOOP("Укажете тип за тази операция: приход или разход ...")},
        {m_expense, QT_TR_NOOP("Укажете тип за тази операция: приход или разход ...")},
        {m_description, QT_TR_NOOP("Укажете кратко описание за текущата операция тук ...")},
        {m_amount, QT_TR_NOOP("Укажете сумата по това плащане ...")},
        {m_currency, QT_TR_NOOP("Ако не е в ЛЕВА, изберете валутата, в която е сумата по това "
                                "плащане ...")},
        {m_notes, QT_TR_NOOP("Ако имате някакви забележки, включете ги тук ...")},
    };
    for (const auto& [widget, tip] : tips) {
        widget->setToolTip(tr(tip));
    }
}

QGridLayout* OperationDialog::makeOperationFields()
{
    auto* top = new QGridLayout;
    top->addWidget(captionFor(tr("дата:"), m_date, this), 0, 0);
    auto* dateRow = new QHBoxLayout;
    dateRow->addWidget(m_date);
    dateRow->addSpacing(16);
    dateRow->addWidget(m_income);
    dateRow->addWidget(m_expense);
    dateRow->addStretch();
    top->addLayout(dateRow, 0, 1, 1, 2);
    top->addWidget(captionFor(tr("кратко описание:"), m_description, this), 1, 0);
    top->addWidget(m_description, 1, 1, 1, 2);
    top->addWidget(new QLabel(tr("избрана категория:"), this), 2, 0);
    top->addWidget(m_category, 2, 1);
    top->addWidget(m_chooseCategory, 2, 2);
    top->addWidget(captionFor(tr("забележка:"), m_notes, this), 3, 0);
    top->addWidget(m_notes, 3, 1, 1, 2);
    top->setColumnStretch(1, 1);
    return top;
}

QGroupBox* OperationDialog::makePaymentBox()
{
    auto* payment = new QGroupBox(tr("плащане"), this);
    auto* entry = new QGridLayout(payment);
    entry->addWidget(captionFor(tr("сума:"), m_amount, this), 0, 0);
    entry->addWidget(m_amount, 1, 0);
    entry->addWidget(captionFor(tr("валута:"), m_currency, this), 0, 1);
    entry->addWidget(m_currency, 1, 1);
    entry->addWidget(captionFor(tr("курс на валута:"), m_rate, this), 0, 2);
    entry->addWidget(m_rate, 1, 2);
    entry->addWidget(captionFor(tr("стойност в лв:"), m_value, this), 0, 3);
    entry->addWidget(m_value, 1, 3);
    entry->addWidget(m_paid, 1, 4);
    auto* entryButtons = new QHBoxLayout;
    entryButtons->addStretch();
    entryButtons->addWidget(m_addChange);
    entryButtons->addWidget(m_clear);
    entry->addLayout(entryButtons, 2, 0, 1, 5);
    return payment;
}

void OperationDialog::layOut()
{
    QGridLayout* top = makeOperationFields();
    QGroupBox* payment = makePaymentBox();
    auto* rowButtons = new QHBoxLayout;
    rowButtons->addWidget(m_edit);
    rowButtons->addWidget(m_delete);
    rowButtons->addWidget(m_deleteAll);
    rowButtons->addStretch();
    rowButtons->addWidget(captionFor(tr("ОБЩО BGL"), m_total, this));
    rowButtons->addWidget(m_total);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(makeHelpButton(this, "help.chm::/ops_elem.htm"));
    buttons->addStretch();
    buttons->addWidget(m_save);
    buttons->addWidget(m_saveAndNew);
    buttons->addWidget(m_cancel);

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
    QWidget* order[] = {m_date,   m_income,    m_expense,  m_description, m_chooseCategory,
                        m_notes,  m_amount,    m_currency, m_rate,        m_value,
                        m_paid,   m_addChange, m_clear,    m_list,        m_edit,
                        m_delete, m_deleteAll, m_save,     m_saveAndNew,  m_cancel};
    for (std::size_t i = 1; i < std::size(order); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }
}

void OperationDialog::connectFields()
{
    connect(m_date, &QDateEdit::dateChanged, this,
            [this](const QDate& d) { m_editor.setDate(fromQDate(d)); });
    connect(m_types, &QButtonGroup::idClicked, this, [this](int id) { m_editor.setTypeIndex(id); });
    connect(m_chooseCategory, &QPushButton::clicked, this, [this] {
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
    connect(static_cast<CurrencyCombo*>(m_currency), &CurrencyCombo::listClosed, this, [this] {
        m_editor.currencyListClosed();
        showEntry();
    });
    connect(m_paid, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_showing) {
            m_editor.setPaid(on);
        }
    });
}

void OperationDialog::connectPayments()
{
    connect(m_addChange, &QPushButton::clicked, this, [this] {
        if (m_editor.addOrChange()) {
            showRows();
            m_amount->setFocus();
        }
    });
    connect(m_clear, &QPushButton::clicked, this, [this] {
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
    connect(m_save, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_saveAndNew, &QPushButton::clicked, this, [this] { saveWith(true); });
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
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
    if (field != EntryField::None && event->type() == QEvent::KeyPress &&
        isEnterKey(*static_cast<QKeyEvent*>(event)) && !m_amount->text().isEmpty()) {
        // Enter in a filled payment line adds that payment, as "добави/промени" does (the
        // focus leaves the field first, as for a click); Enter on the empty line saves.
        m_addChange->setFocus();
        if (m_addChange->hasFocus()) {
            m_addChange->click();
        }
        return true;
    }
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

#include "operation_dialog.moc"
