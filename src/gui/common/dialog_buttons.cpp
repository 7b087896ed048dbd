#include "gui/common/dialog_buttons.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

namespace finora {

QDialogButtonBox* makeDialogButtons(QDialog* dialog, const QString& acceptText)
{
    auto* buttons = new QDialogButtonBox(dialog);
    buttons->addButton(acceptText, QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(QCoreApplication::translate("finora::DialogButtons", "отказ"),
                       QDialogButtonBox::RejectRole);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

} // namespace finora
