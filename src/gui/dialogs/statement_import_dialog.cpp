#include "gui/dialogs/statement_import_dialog.h"

#include "core/importing/import_categories.h"
#include "core/model/number_text.h"
#include "gui/common/editor_widgets.h"
#include "gui/dialogs/category_dialogs.h"
#include "gui/dialogs/csv_layout_panel.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace finora {

namespace {

enum TableColumn {
    DateColumn,
    DescriptionColumn,
    AmountColumn,
    CurrencyColumn,
    CategoryColumn,
    StateColumn
};

constexpr const char* kTableHeaders[] = {
    QT_TRANSLATE_NOOP("finora::StatementImportDialog", "Дата"),
    QT_TRANSLATE_NOOP("finora::StatementImportDialog", "Описание"),
    QT_TRANSLATE_NOOP("finora::StatementImportDialog", "Сума"),
    QT_TRANSLATE_NOOP("finora::StatementImportDialog", "Валута"),
    QT_TRANSLATE_NOOP("finora::StatementImportDialog", "Категория"),
    QT_TRANSLATE_NOOP("finora::StatementImportDialog", "Състояние"),
};

constexpr const char* kDateOrders[] = {
    QT_TRANSLATE_NOOP("finora::StatementImportDialog", "ден, месец, година"),
    QT_TRANSLATE_NOOP("finora::StatementImportDialog", "месец, ден, година"),
    QT_TRANSLATE_NOOP("finora::StatementImportDialog", "година, месец, ден"),
};

QString signedAmount(std::int32_t type, std::int64_t cents)
{
    const double amount = static_cast<double>(type == kExpense ? -cents : cents) / 100.0;
    return QString::fromStdString(amountText(amount));
}

// A rate as typed: a decimal comma or point; nothing for a field that holds no positive number.
std::optional<double> typedRate(const QString& text)
{
    bool ok = false;
    const double rate = QString(text).replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
    return ok && rate > 0 ? std::optional<double>(rate) : std::nullopt;
}

} // namespace

StatementImportDialog::StatementImportDialog(const CFinoraDoc& doc,
                                             const LearnedCategories& learned,
                                             const Settings& settings, std::string bytes,
                                             const Statement& statement,
                                             const StatementReadOptions& options, QWidget* parent)
    : QDialog(parent), m_doc(doc), m_learned(learned), m_settings(settings),
      m_bytes(std::move(bytes)), m_statement(statement), m_readOptions(options)
{
    setWindowTitle(tr("Импортиране на банково извлечение"));
    m_table = new QTableWidget(0, std::size(kTableHeaders), this);
    m_table->setObjectName(QStringLiteral("statementLines"));
    QStringList headers;
    for (const char* header : kTableHeaders) {
        headers << tr(header);
    }
    m_table->setHorizontalHeaderLabels(headers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_error = new QLabel(this);
    m_error->setObjectName(QStringLiteral("readError"));
    m_error->setStyleSheet(QStringLiteral("color: #b00020"));
    m_error->setWordWrap(true);
    m_totals = new QLabel(this);
    m_totals->setObjectName(QStringLiteral("totals"));
    m_totals->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(this);
    m_import = buttons->addButton(tr("Импортирай"), QDialogButtonBox::AcceptRole);
    buttons->addButton(tr("Отказ"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildChoices());
    layout->addWidget(m_error);
    layout->addWidget(m_table, 1);
    layout->addWidget(m_totals);
    layout->addWidget(buttons);
    connectChoices();
    replan();
    resize(1000, 640);
}

StatementImportDialog::~StatementImportDialog() = default;

// The CSV layout for a CSV file, QIF's date order when its dates leave it open, the rates and
// the category for every line.
QWidget* StatementImportDialog::buildChoices()
{
    auto* choices = new QWidget(this);
    auto* column = new QVBoxLayout(choices);
    column->setContentsMargins(0, 0, 0, 0);
    if (m_statement.format == StatementFormat::Csv) {
        m_layout = new CsvLayoutPanel(choices);
        m_layout->present(m_readOptions.csvLayout,
                          csvHeaderFields(m_bytes, m_readOptions.csvLayout));
        column->addWidget(m_layout);
    }
    auto* form = new QFormLayout;
    if (m_statement.dateOrderAmbiguous) {
        m_dateOrder = new QComboBox(choices);
        m_dateOrder->setObjectName(QStringLiteral("dateOrder"));
        for (const char* order : kDateOrders) {
            m_dateOrder->addItem(tr(order));
        }
        m_dateOrder->setCurrentIndex(static_cast<int>(m_statement.dateOrder));
        form->addRow(tr("Датите във файла могат да се прочетат различно. Редът в тях е:"),
                     m_dateOrder);
    }
    auto* category = new QHBoxLayout;
    m_category = new QLabel(choices);
    m_category->setObjectName(QStringLiteral("category"));
    m_chooseCategory = new QPushButton(QStringLiteral("..."), choices);
    m_chooseCategory->setObjectName(QStringLiteral("chooseCategory"));
    category->addWidget(m_category, 1);
    category->addWidget(m_chooseCategory);
    form->addRow(tr("Категория за всички редове:"), category);
    m_rates = new QFormLayout;
    form->addRow(m_rates);
    column->addLayout(form);
    return choices;
}

void StatementImportDialog::connectChoices()
{
    if (m_layout) {
        connect(m_layout, &CsvLayoutPanel::changed, this, [this] {
            // A new header line brings other names for the columns.
            m_layout->setHeader(csvHeaderFields(m_bytes, m_layout->layout()));
            reread();
        });
    }
    if (m_dateOrder) {
        connect(m_dateOrder, &QComboBox::currentIndexChanged, this, [this](int index) {
            m_readOptions.dateOrder = static_cast<DateOrder>(index);
            reread();
        });
    }
    connect(m_chooseCategory, &QPushButton::clicked, this, &StatementImportDialog::chooseCategory);
    connect(m_table, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
        if (m_showing || item->column() != DateColumn) {
            return;
        }
        ImportLine& line = m_plan.lines.at(static_cast<std::size_t>(item->row()));
        const bool ticked = item->checkState() == Qt::Checked;
        if (ticked) {
            m_unticked.erase(line.entry);
        } else {
            m_unticked.insert(line.entry);
        }
        line.state = ticked ? LineState::New : LineState::Unchosen;
        m_showing = true;
        showLine(item->row(), line);
        m_showing = false;
        showTotals();
    });
}

void StatementImportDialog::chooseCategory()
{
    CategoryChooserDialog chooser(m_doc, m_options.category, this);
    if (chooser.exec() == QDialog::Accepted && chooser.chooser().chosenId() > 0) {
        m_options.category = chooser.chooser().chosenId();
        replan();
    }
}

void StatementImportDialog::reread()
{
    if (m_layout) {
        m_readOptions.csvLayout = m_layout->layout();
    }
    auto read = readStatement(m_bytes, m_readOptions);
    if (read) {
        m_statement = std::move(read.value());
        m_error->clear();
    } else {
        m_statement.entries.clear();
        m_error->setText(tr("Файлът не може да бъде прочетен: %1: %2")
                             .arg(QString::fromStdString(read.error().where),
                                  QString::fromStdString(read.error().reason)));
    }
    replan();
}

void StatementImportDialog::replan()
{
    m_plan = planStatementImport(m_doc, m_settings, m_statement.entries, m_options);
    if (m_options.category == 0) {
        categoriseImportPlan(m_doc, &m_learned, m_plan);
    }
    for (ImportLine& line : m_plan.lines) {
        if (line.state == LineState::New && m_unticked.count(line.entry) > 0) {
            line.state = LineState::Unchosen;
        }
    }
    addRateFields();
    m_category->setText(
        m_options.category > 0
            ? qt(m_doc.categoryName(m_options.category))
            : tr("нова категория „%1“").arg(qt(statementCategoryName(m_doc.clock().now()))));
    showPlan();
}

// A field for each foreign currency that has no rate; one stays once made, so the rate typed
// into it keeps its place while it is typed.
void StatementImportDialog::addRateFields()
{
    for (const std::string& code : m_plan.missingRates) {
        if (m_rateFields.count(code) > 0) {
            continue;
        }
        auto* field = new QLineEdit(this);
        field->setObjectName(QStringLiteral("rate_") + QString::fromStdString(code));
        m_rateFields[code] = field;
        m_rates->addRow(tr("Курс на %1 (лева за 1 %1):").arg(QString::fromStdString(code)), field);
        connect(field, &QLineEdit::textChanged, this, [this, code](const QString& text) {
            if (const auto rate = typedRate(text)) {
                m_options.rates[code] = *rate;
            } else {
                m_options.rates.erase(code);
            }
            replan();
        });
    }
}

void StatementImportDialog::showPlan()
{
    m_showing = true;
    m_table->setUpdatesEnabled(false);
    m_table->setRowCount(static_cast<int>(m_plan.lines.size()));
    for (std::size_t i = 0; i < m_plan.lines.size(); ++i) {
        showLine(static_cast<int>(i), m_plan.lines[i]);
    }
    m_table->resizeColumnsToContents();
    m_table->setUpdatesEnabled(true);
    m_showing = false;
    showTotals();
}

void StatementImportDialog::showLine(int row, const ImportLine& line)
{
    const auto set = [&](int column, const QString& text) {
        QTableWidgetItem* item = m_table->item(row, column);
        if (!item) {
            item = new QTableWidgetItem;
            m_table->setItem(row, column, item);
        }
        item->setText(text);
        return item;
    };
    QTableWidgetItem* date =
        set(DateColumn, toQDate(line.date).toString(QStringLiteral("dd.MM.yyyy")));
    const bool choosable = line.state == LineState::New || line.state == LineState::Unchosen;
    date->setFlags(choosable ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable
                             : Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    date->setCheckState(line.state == LineState::New ? Qt::Checked : Qt::Unchecked);
    set(DescriptionColumn, qt(line.description))->setToolTip(qt(line.notes));
    set(AmountColumn, signedAmount(line.type, line.amountCents))
        ->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    set(CurrencyColumn, qt(line.currency));
    const QString filedBy = line.categorySource == SuggestionSource::Rule ? tr(" (правило)")
                            : line.categorySource == SuggestionSource::Learned ? tr(" (научено)")
                                                                               : QString();
    set(CategoryColumn,
        line.category > 0 ? qt(m_doc.categoryName(line.category)) + filedBy : m_category->text());
    QString state;
    switch (line.state) {
    case LineState::New:
        state = tr("нова");
        break;
    case LineState::Duplicate:
        state = tr("вече е в документа");
        break;
    case LineState::NotAdded:
        state = tr("не се добавя: %1").arg(QString::fromStdString(line.reason));
        break;
    case LineState::Unchosen:
        state = tr("не е избрана");
        break;
    }
    if (!line.note.empty()) {
        state += QStringLiteral(" (") + QString::fromStdString(line.note) + QLatin1Char(')');
    }
    set(StateColumn, state);
}

void StatementImportDialog::showTotals()
{
    const std::size_t count = m_plan.count(LineState::New);
    QStringList sums;
    for (const auto& [currency, cents] : m_plan.totals()) {
        sums << QStringLiteral("%1 %2").arg(
            QString::fromStdString(amountText(static_cast<double>(cents) / 100.0)), qt(currency));
    }
    QString text = tr("Ще бъдат добавени %1 операции").arg(count);
    if (!sums.isEmpty()) {
        text += QStringLiteral(": ") + sums.join(QStringLiteral(", "));
    }
    text += tr("; вече в документа: %1; не се добавят: %2.")
                .arg(m_plan.count(LineState::Duplicate))
                .arg(m_plan.count(LineState::NotAdded));
    m_totals->setText(text);
    m_import->setEnabled(count > 0);
}

} // namespace finora
