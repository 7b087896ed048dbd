#pragma once

#include "core/model/choice_lists.h"
#include "core/model/finora_doc.h"

#include <QDate>
#include <QString>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>

class QButtonGroup;
class QDialog;
class QLabel;
class QPushButton;
class QScrollArea;
class QTreeWidget;
class QTreeWidgetItem;
class QWidget;

namespace finora {

// Ledger texts are Windows-1251; widgets show Unicode.
QString qt(const std::string& cp1251Text);
QDate toQDate(const DateTime& dt);
DateTime fromQDate(const QDate& d);

// The category id an item of a category tree carries.
inline constexpr int kCategoryIdRole = 0x0100; // Qt::UserRole
std::optional<std::int32_t> categoryIdOf(const QTreeWidgetItem* item);
// The ledger's categories as a tree widget shows them: children below their parents, siblings
// in `order`, everything expanded. Below a depth no person builds, the rest of a chain is shown
// at that depth: a hand-made file nested a hundred thousand deep stays a usable list.
void fillCategoryTree(QTreeWidget* tree, const CFinoraDoc& doc,
                      SiblingOrder order = SiblingOrder::Ledger);
inline constexpr int kMaxShownCategoryDepth = 32;
// The item that carries the id, if the tree shows it.
QTreeWidgetItem* findCategoryItem(QTreeWidget* tree, std::int32_t id);
// `choose` gets the category of the tree's item that a double click, Enter or Space picks, as
// any list is used from the keyboard. Enter then goes on to the dialog's default button.
void onCategoryChosen(QTreeWidget* tree, QObject* context,
                      const std::function<void(std::int32_t)>& choose);

// A report-style list: full-row selection, grid-like alternate rows, no tree decoration. A
// width of 0 hides the column.
struct ReportColumn {
    QString header;
    int width;
    Qt::Alignment alignment = Qt::AlignLeft;
};
QTreeWidget* makeReportList(QWidget* parent, std::initializer_list<ReportColumn> columns);

// `content` as it is where there is room, scrolled where there is not (a small screen, a large
// scale): its minimum size no longer sets the window's.
QScrollArea* scrollWhenSmall(QWidget* content, QWidget* parent);

// A label that names `field`: its underlined letter moves the focus there and assistive software
// reads it as the field's name.
QLabel* captionFor(const QString& text, QWidget* field, QWidget* parent);

// "?": opens the dialog's help topic.
QPushButton* makeHelpButton(QWidget* parent, const char* topic);

// The chosen button of an exclusive group is the group's one tab stop, whichever way the focus
// comes: Shift+Tab lands on the choice as Tab does, and the arrow keys change it from there.
void tabStopOnChosen(QButtonGroup* group);

} // namespace finora
