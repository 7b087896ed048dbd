#include "gui/dialogs/amount_filter_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace finora {

AmountFilterDialog::AmountFilterDialog(Prompter& prompter, MainMoney money, QWidget* parent)
    : QDialog(parent), m_prompter(prompter), m_amount(new QLineEdit(this)),
      m_tolerance(new QLineEdit(QStringLiteral("0"), this)),
      m_alsoBgl(new QCheckBox(money == MainMoney::Euro ? tr("търси и в равностойността в евро")
                                                       : tr("търси и в левовата равностойност"),
                              this))
{
    setWindowTitle(tr("филтриране по сума"));
    m_amount->setObjectName(QStringLiteral("amount"));
    m_tolerance->setObjectName(QStringLiteral("tolerance"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Cancel)->setText(tr("отказ"));
    connect(buttons, &QDialogButtonBox::accepted, this, &AmountFilterDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &AmountFilterDialog::reject);
    auto* layout = new QFormLayout(this);
    layout->addRow(tr("суми в размер на:"), m_amount);
    layout->addRow(tr("толеранс ±"), m_tolerance);
    layout->addRow(m_alsoBgl);
    layout->addRow(buttons);
}

void AmountFilterDialog::accept()
{
    if (readAmountFilter(m_amount->text().toStdString(), m_tolerance->text().toStdString(),
                         m_alsoBgl->isChecked(), m_prompter, m_request)) {
        QDialog::accept();
    }
}

} // namespace finora
