#pragma once

#include "core/editors/search_editor.h"

#include <QDialog>

class QButtonGroup;
class QCheckBox;
class QLineEdit;

namespace finora {

// "Търсене": shows the editor's request and forwards every change to it.
class SearchDialog final : public QDialog {
    Q_OBJECT

public:
    SearchDialog(SearchEditor& editor, QWidget* parent = nullptr);
    void accept() override;

private:
    void showRequest();

    SearchEditor& m_editor;
    QLineEdit* m_text;
    QButtonGroup* m_mode;
    QCheckBox* m_exact;
    QCheckBox* m_description;
    QCheckBox* m_currency;
    QCheckBox* m_notes;
    QCheckBox* m_case;
    QCheckBox* m_only;
};

} // namespace finora
