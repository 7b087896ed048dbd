#include "gui/dialogs/print_widths_dialog.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace finora {

PrintWidthsDialog::PrintWidthsDialog(Settings& settings, Prompter& prompter, QWidget* parent)
    : QDialog(parent), m_settings(settings), m_prompter(prompter)
{
    setWindowTitle(QString::fromUtf8(kPrintWidthsTitle));
    auto* note = new QLabel(
        tr("моля, укажете широчина в милиметри за всяко поле от отпечатаните справки"), this);
    note->setWordWrap(true);
    auto* grid = new QGridLayout;
    const PrintWidthTexts texts = printWidthTexts(settings);
    for (std::size_t i = 0; i < kPrintWidthFields.size(); ++i) {
        auto* frame = new QGroupBox(QString::fromUtf8(kPrintWidthFields[i].label), this);
        auto* edit = new QLineEdit(QString::fromStdString(texts[i]), frame);
        edit->setAlignment(Qt::AlignRight);
        (new QVBoxLayout(frame))->addWidget(edit);
        m_fields[i] = edit;
        grid->addWidget(frame, static_cast<int>(i / 4), static_cast<int>(i % 4));
    }
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(tr("Съхрани"), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(tr("Отказ"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(note);
    layout->addLayout(grid);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void PrintWidthsDialog::accept()
{
    PrintWidthTexts texts;
    for (std::size_t i = 0; i < m_fields.size(); ++i) {
        texts[i] = m_fields[i]->text().toStdString();
    }
    if (savePrintWidths(texts, m_settings, m_prompter)) {
        QDialog::accept();
    }
}

} // namespace finora
