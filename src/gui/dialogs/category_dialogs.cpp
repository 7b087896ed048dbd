#include "gui/dialogs/category_dialogs.h"

#include "core/editors/search_editor.h"
#include "gui/common/dialog_buttons.h"
#include "gui/common/editor_widgets.h"
#include "gui/common/window_layout.h"

#include <QCheckBox>
#include <QContextMenuEvent>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QSizeGrip>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace finora {
namespace {

QTreeWidget* makeCategoryTree(QWidget* parent, const CFinoraDoc& doc)
{
    auto* tree = new QTreeWidget(parent);
    tree->setHeaderHidden(true);
    tree->setObjectName(QStringLiteral("categoryTree"));
    fillCategoryTree(tree, doc);
    return tree;
}

QGroupBox* framed(const QString& title, QWidget* content, QWidget* parent)
{
    auto* box = new QGroupBox(title, parent);
    content->setAccessibleName(title);
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(content);
    return box;
}

} // namespace

// --- the chooser

CategoryChooserDialog::CategoryChooserDialog(const CFinoraDoc& doc, std::int32_t current,
                                             QWidget* parent)
    : QDialog(parent), m_chooser(doc, current), m_chosen(new QLabel(this)),
      m_tree(makeCategoryTree(this, doc))
{
    setWindowTitle(tr("Избор на категория"));
    m_chosen->setObjectName(QStringLiteral("chosen"));
    m_chosen->setFrameShape(QFrame::StyledPanel);
    auto* buttons = makeDialogButtons(this, tr("избери"));
    m_ok = static_cast<QPushButton*>(buttons->buttons().at(0));
    m_ok->setIcon(style()->standardIcon(QStyle::SP_DialogApplyButton));
    if (QTreeWidgetItem* item = findCategoryItem(m_tree, current)) {
        m_tree->setCurrentItem(item);
    }
    onCategoryChosen(m_tree, this, [this](std::int32_t id) {
        m_chooser.choose(id);
        showChoice();
    });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(framed(tr("избраната категория е:"), m_chosen, this));
    layout->addWidget(framed(tr("списък на категориите (кликнете 2 пъти за избор)"), m_tree, this),
                      1);
    layout->addWidget(buttons);
    setSizeGripEnabled(true);
    setMinimumSize(300, 320);
    resize(380, 460);
    keepWindowGeometry(this, "categoryChooser");
    showChoice();
}

void CategoryChooserDialog::showChoice()
{
    m_chosen->setText(qt(m_chooser.chosenText()));
    m_ok->setEnabled(m_chooser.canChoose());
}

// --- the category dialog

CategoryDialog::CategoryDialog(CFinoraDoc& doc, Prompter& prompter, CategoryEditor::Mode mode,
                               std::int32_t id, QWidget* parent)
    : QDialog(parent), m_editor(doc, prompter, mode, id), m_prompter(prompter),
      m_name(new QLineEdit(this)), m_isSub(new QCheckBox(tr("подкатегория на:"), this)),
      m_parent(new QLabel(this)), m_tree(makeCategoryTree(this, doc))
{
    setWindowTitle(QString::fromStdString(m_editor.title()));
    m_name->setText(qt(m_editor.name()));
    m_parent->setObjectName(QStringLiteral("parent"));
    m_parent->setFrameShape(QFrame::StyledPanel);
    connect(m_isSub, &QCheckBox::toggled, this, [this](bool on) {
        m_editor.setSubcategory(on);
        showParent();
    });
    onCategoryChosen(m_tree, this, [this](std::int32_t id) {
        m_editor.chooseParent(id);
        showParent();
    });

    auto* buttons = makeDialogButtons(this, tr("&създай"));
    buttons->buttons().at(0)->setIcon(style()->standardIcon(QStyle::SP_DialogApplyButton));
    buttons->buttons().at(1)->setIcon(style()->standardIcon(QStyle::SP_DialogCancelButton));
    auto* layout = new QGridLayout(this);
    layout->addWidget(captionFor(tr("впишете наименование на категорията:"), m_name, this), 0, 0, 1,
                      2);
    layout->addWidget(m_name, 1, 0, 1, 2);
    layout->addWidget(m_isSub, 2, 0);
    layout->addWidget(m_parent, 2, 1);
    layout->addWidget(
        captionFor(tr("изберете родителска категория (с двойно кликване):"), m_tree, this), 3, 0, 1,
        2);
    layout->addWidget(m_tree, 4, 0, 1, 2);
    layout->addWidget(buttons, 5, 0, 1, 2);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(4, 1);
    setSizeGripEnabled(true);
    setMinimumSize(360, 360);
    resize(440, 460);
    keepWindowGeometry(this, "category");
    m_isSub->setChecked(m_editor.isSubcategory());
    showParent();
}

void CategoryDialog::showParent()
{
    m_parent->setText(qt(m_editor.parentText()));
    m_tree->setEnabled(m_isSub->isChecked());
}

void CategoryDialog::accept()
{
    const auto name = typedText(m_name->text().toStdString(), m_prompter);
    if (!name) {
        m_name->setFocus();
        return;
    }
    m_editor.setName(*name);
    if (m_editor.save()) {
        QDialog::accept();
    }
}

// --- the tree editor

CategoryTreeDialog::CategoryTreeDialog(CFinoraDoc& doc, Prompter& prompter, bool selectionMode,
                                       QWidget* parent)
    : QDialog(parent), m_doc(doc), m_prompter(prompter), m_selectionMode(selectionMode),
      m_tree(new QTreeWidget(this)),
      m_list(makeReportList(
          this, {{QStringLiteral("#"), 0}, {tr("категория"), 180}, {tr("подкатегория на"), 160}})),
      m_change(new QPushButton(tr("&промяна"), this)),
      m_delete(new QPushButton(tr("&изтрий"), this)), m_menu(new QMenu(this))
{
    setWindowTitle(QString::fromUtf8(kCategoriesTitle));
    m_tree->setHeaderHidden(true);
    m_tree->setObjectName(QStringLiteral("categoryTree"));
    m_list->setObjectName(QStringLiteral("categoryList"));
    m_list->setAccessibleName(tr("категории и подкатегории"));
    auto* add = new QPushButton(tr("&нова категория"), this);
    auto* refresh = new QPushButton(tr("&опресни"), this);
    auto* exit = new QPushButton(tr("изхо&д"), this);
    add->setToolTip(tr("създаване на нова категория ..."));
    m_change->setToolTip(tr("промяна на избраната категория ..."));
    m_delete->setToolTip(tr("изтриване на избраната категория ..."));
    refresh->setToolTip(tr("опресняване на данните..."));
    exit->setToolTip(tr("изход ..."));
    for (QPushButton* b : {add, m_change, m_delete, refresh, exit}) {
        b->setAutoDefault(false);
    }

    connect(add, &QPushButton::clicked, this,
            [this] { openCategoryDialog(CategoryEditor::Mode::New); });
    connect(m_change, &QPushButton::clicked, this,
            [this] { openCategoryDialog(CategoryEditor::Mode::Change); });
    connect(m_delete, &QPushButton::clicked, this, [this] { deleteSelected(); });
    connect(refresh, &QPushButton::clicked, this, [this] { rebuild(); });
    connect(exit, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_tree, &QTreeWidget::itemSelectionChanged, this, [this] {
        updateButtons();
        if (const auto id = selectedId()) {
            showListRowOf(*id);
        }
    });
    // Below the items as on them: Qt reports a double click only on an item, so the viewport's
    // own double click is taken here.
    m_tree->viewport()->installEventFilter(this);

    m_menu->addAction(tr("&Нова категория ..."), this,
                      [this] { openCategoryDialog(CategoryEditor::Mode::New); });
    QAction* change = m_menu->addAction(
        tr("&Промяна ..."), this, [this] { openCategoryDialog(CategoryEditor::Mode::Change); });
    QAction* remove = m_menu->addAction(tr("&Изтрий"), this, [this] { deleteSelected(); });
    m_menu->addAction(tr("&Опресни"), this, [this] { rebuild(); });
    m_menu->addSeparator();
    m_menu->addAction(tr("И&зход"), this, &QDialog::reject);
    connect(m_menu, &QMenu::aboutToShow, this, [this, change, remove] {
        change->setEnabled(selectedId().has_value());
        remove->setEnabled(selectedId().has_value());
    });

    auto* buttons = new QVBoxLayout;
    for (QPushButton* b : {add, m_change, m_delete, refresh}) {
        buttons->addWidget(b);
    }
    buttons->addStretch();
    buttons->addWidget(makeHelpButton(this, "cat_elem.htm"), 0, Qt::AlignRight);
    buttons->addWidget(exit);
    auto* lists = new QHBoxLayout;
    lists->addWidget(framed(tr("списък на дефинираните категории"), m_tree, this), 1);
    lists->addWidget(m_list, 1);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(lists, 1);
    layout->addLayout(buttons);
    setSizeGripEnabled(true);
    setMinimumSize(560, 360);
    resize(760, 480);
    keepWindowGeometry(this, "categories");
    rebuild();
}

std::optional<std::int32_t> CategoryTreeDialog::selectedId() const
{
    const QList<QTreeWidgetItem*> selected = m_tree->selectedItems();
    return selected.isEmpty() ? std::nullopt : categoryIdOf(selected.first());
}

void CategoryTreeDialog::rebuild()
{
    fillCategoryTree(m_tree, m_doc);
    m_list->clear();
    QList<QTreeWidgetItem*> rows;
    for (const CategoryListRow& r : categoryListRows(m_doc)) {
        rows.append(new QTreeWidgetItem({qt(r[0]), qt(r[1]), qt(r[2])}));
    }
    m_list->addTopLevelItems(rows);
    updateButtons();
}

void CategoryTreeDialog::updateButtons()
{
    const bool any = selectedId().has_value();
    m_change->setEnabled(any);
    m_delete->setEnabled(any);
}

void CategoryTreeDialog::showListRowOf(std::int32_t id)
{
    const QList<QTreeWidgetItem*> found =
        m_list->findItems(QString::number(id), Qt::MatchExactly, 0);
    if (!found.isEmpty()) {
        m_list->setCurrentItem(found.first());
        m_list->scrollToItem(found.first());
    }
}

bool CategoryTreeDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_tree->viewport() && event->type() == QEvent::MouseButtonDblClick &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        // The selected category, or none (0) in the selection mode; "промяна" otherwise.
        if (m_selectionMode) {
            m_chosenId = selectedId().value_or(0);
            accept();
        } else {
            openCategoryDialog(CategoryEditor::Mode::Change);
        }
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void CategoryTreeDialog::openCategoryDialog(CategoryEditor::Mode mode)
{
    const auto id = selectedId();
    if (mode == CategoryEditor::Mode::Change && !id) {
        return;
    }
    CategoryDialog dialog(m_doc, m_prompter, mode, mode == CategoryEditor::Mode::New ? -1 : *id,
                          this);
    if (dialog.exec() == QDialog::Accepted) {
        rebuild();
    }
}

void CategoryTreeDialog::deleteSelected()
{
    if (!deleteCategoryAsked(m_doc, m_prompter, selectedId())) {
        return;
    }
    // The list keeps the row until the next rebuild.
    delete m_tree->selectedItems().first();
    updateButtons();
}

void CategoryTreeDialog::contextMenuEvent(QContextMenuEvent* event)
{
    m_menu->exec(event->globalPos());
}

} // namespace finora
