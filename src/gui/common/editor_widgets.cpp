#include "gui/common/editor_widgets.h"

#include "core/model/choice_lists.h"
#include "core/text/cp1251.h"
#include "gui/common/help_window.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCoreApplication>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QTreeWidget>
#include <algorithm>
#include <vector>

namespace finora {

static_assert(kCategoryIdRole == Qt::UserRole);

QString qt(const std::string& cp1251Text)
{
    return QString::fromStdString(cp1251::toUtf8(cp1251Text));
}

QDate toQDate(const DateTime& dt)
{
    DateTimeParts p;
    return dt.toParts(p) ? QDate(p.year, p.month, p.day) : QDate::currentDate();
}

DateTime fromQDate(const QDate& d)
{
    return DateTime::fromParts(d.year(), d.month(), d.day());
}

std::optional<std::int32_t> categoryIdOf(const QTreeWidgetItem* item)
{
    if (!item) {
        return std::nullopt;
    }
    return item->data(0, kCategoryIdRole).toInt();
}

void fillCategoryTree(QTreeWidget* tree, const CFinoraDoc& doc, SiblingOrder order)
{
    tree->clear();
    std::vector<QTreeWidgetItem*> path; // the last item placed at each depth
    QList<QTreeWidgetItem*> tops;
    for (const CategoryNode& node : categoryTree(doc, order)) {
        auto* item = new QTreeWidgetItem({qt(*node.name)});
        item->setData(0, kCategoryIdRole, node.id);
        // Qt lays out, sorts and deletes tree items recursively.
        const auto depth = static_cast<std::size_t>(std::min(node.depth, kMaxShownCategoryDepth));
        path.resize(depth);
        if (depth == 0) {
            tops.append(item);
        } else {
            path.back()->addChild(item);
        }
        path.push_back(item);
    }
    tree->addTopLevelItems(tops);
    tree->expandAll();
}

QTreeWidgetItem* findCategoryItem(QTreeWidget* tree, std::int32_t id)
{
    for (QTreeWidgetItemIterator it(tree); *it; ++it) {
        if ((*it)->data(0, kCategoryIdRole).toInt() == id) {
            return *it;
        }
    }
    return nullptr;
}

void onCategoryChosen(QTreeWidget* tree, QObject* context,
                      const std::function<void(std::int32_t)>& choose)
{
    const auto chooseItem = [choose](const QTreeWidgetItem* item) {
        if (const auto id = categoryIdOf(item)) {
            choose(*id);
        }
    };
    // Activation is a double click, or Enter on the current item.
    QObject::connect(tree, &QTreeWidget::itemActivated, context,
                     [chooseItem](const QTreeWidgetItem* item) { chooseItem(item); });
    auto* space =
        new QShortcut(QKeySequence(Qt::Key_Space), tree, nullptr, nullptr, Qt::WidgetShortcut);
    QObject::connect(space, &QShortcut::activated, context,
                     [tree, chooseItem] { chooseItem(tree->currentItem()); });
}

QTreeWidget* makeReportList(QWidget* parent, std::initializer_list<ReportColumn> columns)
{
    auto* list = new QTreeWidget(parent);
    list->setRootIsDecorated(false);
    list->setAlternatingRowColors(true);
    list->setSelectionBehavior(QAbstractItemView::SelectRows);
    list->setUniformRowHeights(true);
    list->setColumnCount(static_cast<int>(columns.size()));
    QStringList headers;
    for (const ReportColumn& c : columns) {
        headers << c.header;
    }
    list->setHeaderLabels(headers);
    int i = 0;
    for (const ReportColumn& c : columns) {
        list->headerItem()->setTextAlignment(i, c.alignment);
        if (c.width == 0) {
            list->hideColumn(i);
        } else {
            // Never narrower than its header: a clipped Bulgarian caption reads as another word.
            const int header = list->fontMetrics().horizontalAdvance(c.header) + 20;
            list->setColumnWidth(i, std::max(c.width, header));
        }
        ++i;
    }
    list->header()->setStretchLastSection(true);
    return list;
}

QPushButton* makeHelpButton(QWidget* parent, const char* topic)
{
    auto* button = new QPushButton(QStringLiteral("?"), parent);
    button->setAutoDefault(false);
    button->setAccessibleName(QCoreApplication::translate("finora", "помощ"));
    button->setToolTip(QCoreApplication::translate("finora", "помощ"));
    button->setMaximumWidth(button->fontMetrics().horizontalAdvance(QStringLiteral("??")) + 24);
    QObject::connect(button, &QPushButton::clicked, button,
                     [parent, topic] { showHelp(parent, QString::fromLatin1(topic)); });
    return button;
}

void tabStopOnChosen(QButtonGroup* group)
{
    // Qt leaves the tab stop on the button focused last, at first any of them; from one not
    // chosen the arrows move the focus but not the choice.
    const auto follow = [group] {
        for (QAbstractButton* b : group->buttons()) {
            b->setFocusPolicy(b->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
        }
    };
    QObject::connect(group, &QButtonGroup::buttonToggled, group, follow);
    follow();
}

QLabel* captionFor(const QString& text, QWidget* field, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setBuddy(field);
    // Item views take their name from their own property only.
    if (field->accessibleName().isEmpty()) {
        field->setAccessibleName(QString(text).remove(QLatin1Char('&')).remove(QLatin1Char(':')));
    }
    return label;
}

QScrollArea* scrollWhenSmall(QWidget* content, QWidget* parent)
{
    auto* area = new QScrollArea(parent);
    // No tab stop of its own: the focus goes to the fields, and the area scrolls to show them.
    area->setFocusPolicy(Qt::NoFocus);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(content);
    return area;
}

} // namespace finora
