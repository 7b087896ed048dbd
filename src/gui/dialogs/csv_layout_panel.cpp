#include "gui/dialogs/csv_layout_panel.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QSpinBox>

namespace finora {

namespace {

using statement_text::Encoding;

struct Choice {
    const char* text;
    int value;
};

constexpr Choice kEncodings[] = {{"UTF-8", static_cast<int>(Encoding::Utf8)},
                                 {"Windows-1251", static_cast<int>(Encoding::Windows1251)},
                                 {"Windows-1252", static_cast<int>(Encoding::Windows1252)},
                                 {"ISO-8859-1", static_cast<int>(Encoding::Latin1)}};
constexpr Choice kSeparators[] = {
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "точка и запетая ;"), ';'},
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "запетая ,"), ','},
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "табулация"), '\t'},
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "вертикална черта |"), '|'}};
constexpr Choice kDecimalMarks[] = {{QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "запетая ,"), ','},
                                    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "точка ."), '.'}};
constexpr const char* kDateFormats[] = {"dd.MM.yyyy", "d.M.yyyy",   "dd.MM.yy",  "yyyy-MM-dd",
                                        "dd/MM/yyyy", "MM/dd/yyyy", "dd-MM-yyyy"};

struct ColumnField {
    const char* label;
    const char* objectName;
};
constexpr ColumnField kColumnFields[] = {
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "Дата:"), "dateColumn"},
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "Наредител / получател:"), "payeeColumn"},
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "Основание:"), "descriptionColumn"},
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "Бележки:"), "notesColumn"},
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "Валута:"), "currencyColumn"},
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "Сума със знак:"), "amountColumn"},
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "Дебит:"), "debitColumn"},
    {QT_TRANSLATE_NOOP("finora::CsvLayoutPanel", "Кредит:"), "creditColumn"},
};

template <std::size_t N>
QComboBox* choices(QWidget* parent, const Choice (&list)[N], bool translate)
{
    auto* combo = new QComboBox(parent);
    for (const Choice& choice : list) {
        combo->addItem(translate ? CsvLayoutPanel::tr(choice.text) : QString::fromUtf8(choice.text),
                       choice.value);
    }
    return combo;
}

void select(QComboBox* combo, int value)
{
    const int index = combo->findData(value);
    if (index >= 0) {
        combo->setCurrentIndex(index);
    }
}

} // namespace

std::optional<CsvColumn> CsvLayout::*CsvLayoutPanel::member(Column column)
{
    constexpr std::optional<CsvColumn> CsvLayout::*kMembers[] = {
        &CsvLayout::dateColumn,  &CsvLayout::payeeColumn,    &CsvLayout::descriptionColumn,
        &CsvLayout::notesColumn, &CsvLayout::currencyColumn, &CsvLayout::amountColumn,
        &CsvLayout::debitColumn, &CsvLayout::creditColumn};
    return kMembers[column];
}

CsvLayoutPanel::CsvLayoutPanel(QWidget* parent) : QGroupBox(tr("Формат на файла CSV"), parent)
{
    setObjectName(QStringLiteral("csvLayout"));
    buildFields();
    connectFields();
}

void CsvLayoutPanel::buildFields()
{
    m_encoding = choices(this, kEncodings, false);
    m_separator = choices(this, kSeparators, true);
    m_decimalMark = choices(this, kDecimalMarks, true);
    m_dateFormat = new QComboBox(this);
    m_dateFormat->setEditable(true);
    for (const char* format : kDateFormats) {
        m_dateFormat->addItem(QString::fromLatin1(format));
    }
    m_headerLine = new QSpinBox(this);
    m_headerLine->setRange(0, 99);
    m_headerLine->setSpecialValueText(tr("няма"));
    m_encoding->setObjectName(QStringLiteral("encoding"));
    m_separator->setObjectName(QStringLiteral("separator"));
    m_decimalMark->setObjectName(QStringLiteral("decimalMark"));
    m_dateFormat->setObjectName(QStringLiteral("dateFormat"));
    m_headerLine->setObjectName(QStringLiteral("headerLine"));

    auto* file = new QFormLayout;
    file->addRow(tr("Кодиране:"), m_encoding);
    file->addRow(tr("Разделител:"), m_separator);
    file->addRow(tr("Десетичен знак:"), m_decimalMark);
    file->addRow(tr("Формат на датата:"), m_dateFormat);
    file->addRow(tr("Ред на заглавията:"), m_headerLine);
    auto* columns = new QFormLayout;
    for (int c = 0; c < Count; ++c) {
        m_columns[c] = new QComboBox(this);
        m_columns[c]->setObjectName(QString::fromLatin1(kColumnFields[c].objectName));
        m_columns[c]->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        columns->addRow(tr(kColumnFields[c].label), m_columns[c]);
    }
    auto* grid = new QGridLayout(this);
    grid->addLayout(file, 0, 0, Qt::AlignTop);
    grid->addLayout(columns, 0, 1, Qt::AlignTop);
    grid->setColumnStretch(1, 1);
}

void CsvLayoutPanel::connectFields()
{
    const auto report = [this] {
        if (!m_showing) {
            Q_EMIT changed();
        }
    };
    for (QComboBox* combo : {m_encoding, m_separator, m_decimalMark}) {
        connect(combo, &QComboBox::currentIndexChanged, this, report);
    }
    connect(m_dateFormat, &QComboBox::currentTextChanged, this, report);
    connect(m_headerLine, &QSpinBox::valueChanged, this, report);
    for (QComboBox* combo : m_columns) {
        connect(combo, &QComboBox::currentIndexChanged, this, report);
    }
}

int CsvLayoutPanel::numberOf(const std::optional<CsvColumn>& column) const
{
    if (!column || !column->present()) {
        return 0;
    }
    if (column->number > 0) {
        return column->number;
    }
    for (std::size_t i = 0; i < m_header.size(); ++i) {
        if (m_header[i] == column->name) {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

void CsvLayoutPanel::present(const CsvLayout& layout, const std::vector<std::string>& header)
{
    m_showing = true;
    m_base = layout;
    m_header = header;
    select(m_encoding, static_cast<int>(layout.encoding.value_or(Encoding::Utf8)));
    select(m_separator, layout.separator.value_or(';'));
    select(m_decimalMark, layout.decimalMark.value_or(','));
    m_dateFormat->setCurrentText(QString::fromStdString(layout.dateFormat.value_or("")));
    m_headerLine->setValue(layout.headerLine.value_or(0));
    for (int c = 0; c < Count; ++c) {
        fillColumn(m_columns[c], numberOf(layout.*member(static_cast<Column>(c))));
    }
    m_showing = false;
}

void CsvLayoutPanel::setHeader(const std::vector<std::string>& fields)
{
    m_showing = true;
    m_header = fields;
    for (QComboBox* combo : m_columns) {
        fillColumn(combo, combo->currentData().toInt());
    }
    m_showing = false;
}

// "—" for no such column, then each column by its header's name (or its number when the file
// has no header there).
void CsvLayoutPanel::fillColumn(QComboBox* combo, int chosen)
{
    combo->clear();
    combo->addItem(QStringLiteral("—"), 0);
    const int count = std::max<int>(static_cast<int>(m_header.size()), chosen);
    for (int i = 1; i <= count; ++i) {
        const std::size_t at = static_cast<std::size_t>(i - 1);
        const QString name =
            at < m_header.size() ? QString::fromStdString(m_header[at]).trimmed() : QString();
        combo->addItem(name.isEmpty() ? tr("колона %1").arg(i) : name, i);
    }
    select(combo, chosen);
}

CsvLayout CsvLayoutPanel::layout() const
{
    CsvLayout layout = m_base;
    layout.encoding = static_cast<Encoding>(m_encoding->currentData().toInt());
    layout.separator = static_cast<char>(m_separator->currentData().toInt());
    layout.decimalMark = static_cast<char>(m_decimalMark->currentData().toInt());
    layout.dateFormat = m_dateFormat->currentText().trimmed().toStdString();
    layout.headerLine = m_headerLine->value();
    for (int c = 0; c < Count; ++c) {
        const int number = m_columns[c]->currentData().toInt();
        layout.*member(static_cast<Column>(c)) = CsvColumn{{}, number};
    }
    return layout;
}

} // namespace finora
