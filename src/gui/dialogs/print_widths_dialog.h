#pragma once

#include "core/editors/print_widths.h"

#include <QDialog>

class QLineEdit;

namespace finora {

// "Настро&йка на полетата за печат ...": seven widths in millimetres.
class PrintWidthsDialog final : public QDialog {
    Q_OBJECT

public:
    PrintWidthsDialog(Settings& settings, Prompter& prompter, QWidget* parent = nullptr);
    void accept() override;

private:
    Settings& m_settings;
    Prompter& m_prompter;
    std::array<QLineEdit*, kPrintWidthFields.size()> m_fields{};
};

} // namespace finora
