#pragma once

#include "core/editors/search_editor.h"
#include "core/model/euro.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;

namespace finora {

// "филтриране по сума": an amount, a tolerance and whether to look at the BGL value too.
class AmountFilterDialog final : public QDialog {
    Q_OBJECT

public:
    // In euro mode the main-currency value compared is the euro one, and the box says so.
    AmountFilterDialog(Prompter& prompter, MainMoney money, QWidget* parent = nullptr);
    void accept() override;
    const AmountFilterRequest& request() const { return m_request; }

private:
    Prompter& m_prompter;
    QLineEdit* m_amount;
    QLineEdit* m_tolerance;
    QCheckBox* m_alsoBgl;
    AmountFilterRequest m_request;
};

} // namespace finora
