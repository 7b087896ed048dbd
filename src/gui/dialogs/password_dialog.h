#pragma once

#include "core/model/prompter.h"

#include <QDialog>
#include <optional>
#include <string>

class QLineEdit;

namespace finora {

// "Заключване" (a new password, typed twice) or "Отключване" (the password, once).
class PasswordDialog final : public QDialog {
    Q_OBJECT

public:
    PasswordDialog(bool lockMode, Prompter& prompter, QWidget* parent = nullptr);
    void accept() override;
    // The password in Windows-1251, after OK.
    const std::string& password() const { return m_password; }

    // Runs the dialog; nullopt when cancelled.
    static std::optional<std::string> ask(bool lockMode, Prompter& prompter, QWidget* parent);

private:
    bool m_lockMode;
    Prompter& m_prompter;
    QLineEdit* m_first;
    QLineEdit* m_second;
    std::string m_password;
};

} // namespace finora
