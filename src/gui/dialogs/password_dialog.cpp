#include "gui/dialogs/password_dialog.h"

#include "core/editors/search_editor.h"
#include "gui/common/dialog_buttons.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace finora {

PasswordDialog::PasswordDialog(bool lockMode, Prompter& prompter, QWidget* parent)
    : QDialog(parent), m_lockMode(lockMode), m_prompter(prompter), m_first(new QLineEdit(this)),
      m_second(new QLineEdit(this))
{
    setWindowTitle(lockMode ? tr("Заключване") : tr("Отключване"));
    m_first->setEchoMode(QLineEdit::Password);
    m_second->setEchoMode(QLineEdit::Password);
    m_second->setEnabled(lockMode);
    auto* buttons = makeDialogButtons(this, tr("OK"));
    auto* layout = new QFormLayout(this);
    layout->addRow(tr("укажете парола:"), m_first);
    layout->addRow(tr("повторете паролата:"), m_second);
    layout->addRow(buttons);
    setMinimumWidth(320);
}

void PasswordDialog::accept()
{
    const auto first = typedText(m_first->text().toStdString(), m_prompter);
    const auto second = m_lockMode ? typedText(m_second->text().toStdString(), m_prompter)
                                   : std::optional<std::string>(std::string());
    if (!first || !second || !acceptPassword(m_lockMode, *first, *second, m_prompter)) {
        return;
    }
    m_password = *first;
    QDialog::accept();
}

std::optional<std::string> PasswordDialog::ask(bool lockMode, Prompter& prompter, QWidget* parent)
{
    PasswordDialog dialog(lockMode, prompter, parent);
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return dialog.password();
}

} // namespace finora
