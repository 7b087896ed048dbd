#pragma once

#include "core/tips/tip_file.h"

#include <QDialog>

class QCheckBox;
class QLabel;

namespace finora {

// "Съвет на деня".
class TipDialog final : public QDialog {
    Q_OBJECT

public:
    TipDialog(const QString& path, Settings& settings, Prompter& prompter,
              QWidget* parent = nullptr);
    void accept() override;
    void done(int result) override;
    QString tipText() const;

private:
    TipOfTheDay m_tips;
    QLabel* m_text;
    QCheckBox* m_show;
};

// tips.txt in the current folder, else beside the program, in its installed data folder or in
// the desktop's data folders;
// the current folder's name when none exists, so the dialog can say it is missing.
QString tipsFilePath();

} // namespace finora
