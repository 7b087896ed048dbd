#pragma once

#include "core/editors/category_editors.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTreeWidget;

namespace finora {

// Picks one category from the tree by a double click.
class CategoryChooserDialog final : public QDialog {
    Q_OBJECT

public:
    CategoryChooserDialog(const CFinoraDoc& doc, std::int32_t current, QWidget* parent = nullptr);
    const CategoryChooser& chooser() const { return m_chooser; }

private:
    void showChoice();

    CategoryChooser m_chooser;
    QLabel* m_chosen;
    QTreeWidget* m_tree;
    QPushButton* m_ok;
};

// A new category, or a new name and parent for one.
class CategoryDialog final : public QDialog {
    Q_OBJECT

public:
    CategoryDialog(CFinoraDoc& doc, Prompter& prompter, CategoryEditor::Mode mode, std::int32_t id,
                   QWidget* parent = nullptr);
    void accept() override;

private:
    void showParent();

    CategoryEditor m_editor;
    Prompter& m_prompter;
    QLineEdit* m_name;
    QCheckBox* m_isSub;
    QLabel* m_parent;
    QTreeWidget* m_tree;
};

// "категории": the tree of all categories, the list beside it, and their commands. In
// selection mode a double click hands the category back.
class CategoryTreeDialog final : public QDialog {
    Q_OBJECT

public:
    CategoryTreeDialog(CFinoraDoc& doc, Prompter& prompter, bool selectionMode = false,
                       QWidget* parent = nullptr);
    // Selection mode: the category double-clicked, 0 for none.
    std::int32_t chosenId() const { return m_chosenId; }
    void rebuild();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::optional<std::int32_t> selectedId() const;
    void updateButtons();
    void openCategoryDialog(CategoryEditor::Mode mode);
    void deleteSelected();
    void showListRowOf(std::int32_t id);

    CFinoraDoc& m_doc;
    Prompter& m_prompter;
    bool m_selectionMode;
    std::int32_t m_chosenId = 0;
    QTreeWidget* m_tree;
    QTreeWidget* m_list;
    QPushButton* m_change;
    QPushButton* m_delete;
    QMenu* m_menu;
};

} // namespace finora
