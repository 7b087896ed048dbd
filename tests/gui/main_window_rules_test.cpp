// The main window's menus and commands as a user reaches them: the settings' submenus, the
// filter file commands, the lock keeping the user's filter, Ctrl+D leaving the tree alone, the
// edit menu on a right click anywhere, and the pages a print asks for.
#include "gui/dialogs/category_dialogs.h"
#include "gui/window/report_printer.h"
#include "support/desktop_session.h"
#include "support/rendered_output.h"
#include "support/user.h"

#include <QContextMenuEvent>
#include <QDateEdit>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

class MainWindowRules : public DesktopSession {
protected:
    MainWindowRules() { openGenerated(QStringLiteral("правила.fnr"), 300, 7); }

    QAction* item(const char* name)
    {
        return m_frame->findChild<QAction*>(QString::fromLatin1(name));
    }
    // The check marks a user sees in a submenu of "Настройки".
    QStringList checkedIn(const char* menuName)
    {
        auto* menu = m_frame->findChild<QMenu*>(QString::fromLatin1(menuName));
        user::chooseMenu(m_frame.get(), {QStringLiteral("Настройки")});
        if (QWidget* open = QApplication::activePopupWidget()) {
            QTest::keyClick(open, Qt::Key_Escape);
        }
        QStringList checked;
        for (QAction* a : menu->actions()) {
            if (a->isChecked()) {
                checked << user::shown(a->text());
            }
        }
        return checked;
    }
    QTreeWidget* tree() { return m_frame->findChild<QTreeWidget*>(QStringLiteral("categoryTree")); }
    void pickInTree(int row)
    {
        QTreeWidgetItem* it = tree()->topLevelItem(row);
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                          tree()->visualItemRect(it).center());
    }
    int chosenInTree()
    {
        QTreeWidgetItem* it = tree()->currentItem();
        return it && it->isSelected() ? tree()->indexOfTopLevelItem(it) : -1;
    }
};

TEST_F(MainWindowRules, TheNewOperationTypeAndTheDoubleClickChoiceAreSubmenusCheckedByTheSetting)
{
    EXPECT_EQ(checkedIn("menuOpType"), QStringList{QStringLiteral("Последната извършена")});
    // Both keys unset: a double click adds to the chosen list, and that item says so.
    EXPECT_EQ(checkedIn("menuDoubleClick"),
              QStringList{QStringLiteral("Добавяй категорията в списъка на избраните категории")});

    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Настройки"), QStringLiteral("Тип на новата операция"),
                      QStringLiteral("Разход")});
    EXPECT_EQ(m_store.readInt("Settings", "OpType", -1), 1);
    EXPECT_EQ(checkedIn("menuOpType"), QStringList{QStringLiteral("Разход")});
    user::ExpectDialog editor([](QDialog* d) {
        QStringList checked;
        for (QAbstractButton* b : d->findChildren<QAbstractButton*>()) {
            if (b->isCheckable() && b->isChecked()) {
                checked << b->text();
            }
        }
        EXPECT_TRUE(checked.contains(QStringLiteral("разход")))
            << checked.join(QLatin1Char(',')).toStdString();
        QTest::keyClick(d, Qt::Key_Escape);
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();

    user::chooseMenu(m_frame.get(), {QStringLiteral("Настройки"),
                                     QStringLiteral("При двойно кликване на категория ..."),
                                     QStringLiteral("Създавай нова операция в тази категория")});
    EXPECT_EQ(m_store.readInt("Settings", "AddOnDblClick", -1), 1);
    EXPECT_EQ(m_store.readInt("Settings", "FilterOnDblClick", -1), 0);
    EXPECT_EQ(checkedIn("menuDoubleClick"),
              QStringList{QStringLiteral("Създавай нова операция в тази категория")});
    // A double click on a category of the panel's tree now opens the editor there.
    auto* tree = user::child<QTreeWidget>(m_frame.get(), "categoryTree");
    QTreeWidgetItem* leaf = nullptr;
    for (QTreeWidgetItemIterator it(tree); *it && !leaf; ++it) {
        leaf = (*it)->childCount() == 0 ? *it : nullptr;
    }
    ASSERT_NE(leaf, nullptr);
    user::ExpectDialog inCategory([](QDialog* d) { QTest::keyClick(d, Qt::Key_Escape); });
    user::doubleClickItem(tree, leaf);
    inCategory.verify();
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Настройки"),
                      QStringLiteral("При двойно кликване на категория ..."),
                      QStringLiteral("Добавяй категорията в списъка на избраните категории")});
    EXPECT_EQ(m_store.readInt("Settings", "AddOnDblClick", -1), 0);
    EXPECT_EQ(checkedIn("menuDoubleClick"),
              QStringList{QStringLiteral("Добавяй категорията в списъка на избраните категории")});
}

TEST_F(MainWindowRules, ProtectingTheLedgerKeepsTheFilterAndTheTreeAndTodayLeavesTheTreeAlone)
{
    pickInTree(1);
    user::press(m_frame.get(), Qt::Key_F2); // one category chosen
    ASSERT_EQ(chosenInTree(), 1);

    // Ctrl+D sets the period only: the category picked in the tree stays picked, and F7
    // still makes an entry in it.
    user::press(m_frame.get(), Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(m_frame->findChild<QDateEdit*>(QStringLiteral("periodFrom"))->text(),
              QStringLiteral("01-11-2026"));
    EXPECT_EQ(chosenInTree(), 1);
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Настройки"),
                      QStringLiteral("Включвай и подкатегориите при избор на категория")});
    EXPECT_EQ(chosenInTree(), 1);
    user::ExpectDialog editor([&](QDialog* d) {
        EXPECT_EQ(d->findChild<QLabel*>(QStringLiteral("category"))->text(),
                  tree()->topLevelItem(1)->text(0));
        QTest::keyClick(d, Qt::Key_Escape);
    });
    user::press(m_frame.get(), Qt::Key_F7);
    editor.verify();

    // Back to the chosen category over the whole period, then a protection and its removal.
    auto* from = m_frame->findChild<QDateEdit*>(QStringLiteral("periodFrom"));
    user::click(user::button(m_frame.get(), QStringLiteral("без филтър")));
    pickInTree(1);
    user::press(m_frame.get(), Qt::Key_F2);
    const QString period = from->text();
    const std::size_t shown = m_frame->view().list().rowCount();
    ASSERT_GT(shown, 0u);
    user::ExpectDialog set([](QDialog* d) {
        for (QLineEdit* field : d->findChildren<QLineEdit*>()) {
            user::type(field, QStringLiteral("таен"));
        }
        QTest::keyClick(d, Qt::Key_Return);
    });
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Настройки"), QStringLiteral("Задаване на постоянна защита")});
    set.verify();
    EXPECT_EQ(m_frame->view().list().rowCount(), 0u); // locked
    user::ExpectDialog remove([](QDialog* d) {
        user::type(d->findChild<QLineEdit*>(), QStringLiteral("таен"));
        QTest::keyClick(d, Qt::Key_Return);
    });
    user::chooseMenu(m_frame.get(), {QStringLiteral("Настройки"),
                                     QStringLiteral("Премахване на постоянната защита")});
    remove.verify();
    EXPECT_EQ(m_frame->view().list().rowCount(), shown) << "the filter was reset";
    EXPECT_EQ(from->text(), period);
    auto* selected = m_frame->findChild<QTreeWidget*>(QStringLiteral("selectedCategories"));
    EXPECT_EQ(selected->topLevelItemCount(), 1);
    EXPECT_EQ(chosenInTree(), 1);
}

TEST_F(MainWindowRules, ARightClickAnywhereInTheViewOpensTheEditMenu)
{
    QStringList opened;
    QWidget* places[] = {m_frame->view().table()->viewport(), tree()->viewport(),
                         m_frame->findChild<QLabel*>(QStringLiteral("balance")),
                         m_frame->findChild<QWidget*>(QStringLiteral("filterPanel"))};
    for (QWidget* place : places) {
        ASSERT_NE(place, nullptr);
        bool shown = false;
        QTimer::singleShot(50, [&] {
            auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (popup) {
                shown = popup->actions().contains(item("actionAddRecord")) &&
                        popup->actions().contains(item("actionSearch"));
                popup->close();
            }
        });
        const QPoint at = place->rect().center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, place->mapToGlobal(at));
        QApplication::sendEvent(place, &event);
        EXPECT_TRUE(QTest::qWaitFor([&] { return shown; }, 1000))
            << place->metaObject()->className();
    }
}

TEST_F(MainWindowRules, APrintHonoursThePageRangeAndAnEmptyListMayBePrinted)
{
    QTemporaryDir dir;
    QPrinter& printer = m_frame->report().printer();
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(dir.filePath(QStringLiteral("страници.pdf")));
    printer.setPrintRange(QPrinter::PageRange);
    printer.setFromTo(2, 3);
    ASSERT_GT(m_frame->view().list().rowCount(), 150u); // four pages and more
    EXPECT_EQ(m_frame->report().paint(printer, false), 2);
    const QStringList pages =
        pdfText(printer.outputFileName()).split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    ASSERT_EQ(pages.size(), 2);
    EXPECT_TRUE(pages[0].contains(QStringLiteral("2/"))) << pages[0].right(80).toStdString();
    EXPECT_TRUE(pages[1].contains(QStringLiteral("3/")));

    // An empty list: the print command stays on (it prints no page).
    m_frame->view().list().criteria().paidState = 1;
    user::click(user::button(m_frame.get(), QStringLiteral("без филтър")));
    user::chooseMenu(m_frame.get(), {QStringLiteral("Редакция"),
                                     QStringLiteral("Изтрий всички визуализирани записи")});
    ASSERT_EQ(m_frame->view().list().rowCount(), 0u);
    user::chooseMenu(m_frame.get(), {QStringLiteral("Файл")});
    if (QWidget* open = QApplication::activePopupWidget()) {
        QTest::keyClick(open, Qt::Key_Escape);
    }
    EXPECT_TRUE(item("actionPrint")->isEnabled());
    EXPECT_TRUE(item("actionPrintPreview")->isEnabled());
    EXPECT_FALSE(item("actionExportPdf")->isEnabled());
}

} // namespace

namespace {

// Double clicks below the last category, where the tree has no item.
TEST(CategoryTreeEmptySpace, ADoubleClickThereChoosesNoneOrChangesTheSelectedCategory)
{
    FixedClock clock{DateTime::fromParts(2026, 11, 1, 12)};
    CFinoraDoc doc(clock);
    doc.addCategory("Food", 0);
    doc.addCategory("Rent", 0);
    RecordingPrompter prompter;
    const auto emptySpot = [](QTreeWidget* tree) {
        return QPoint(20, tree->viewport()->height() - 6);
    };

    CategoryTreeDialog chooser(doc, prompter, true);
    user::bringUp(&chooser);
    auto* tree = chooser.findChild<QTreeWidget*>(QStringLiteral("categoryTree"));
    ASSERT_NE(tree, nullptr);
    ASSERT_FALSE(tree->indexAt(emptySpot(tree)).isValid());
    user::doubleClick(tree->viewport(), emptySpot(tree));
    EXPECT_EQ(chooser.result(), QDialog::Accepted);
    EXPECT_EQ(chooser.chosenId(), 0);

    // In the editor a double click is "промяна": on a category it changes that one; below
    // them it leaves nothing selected, and "промяна" without a selection does nothing.
    CategoryTreeDialog editor(doc, prompter, false);
    user::bringUp(&editor);
    tree = editor.findChild<QTreeWidget*>(QStringLiteral("categoryTree"));
    QTreeWidgetItem* rent =
        tree->findItems(QStringLiteral("Rent"), Qt::MatchExactly | Qt::MatchRecursive).value(0);
    ASSERT_NE(rent, nullptr);
    user::ExpectDialog change([](QDialog* d) {
        auto* name = d->findChild<QLineEdit*>();
        ASSERT_NE(name, nullptr);
        EXPECT_EQ(name->text(), QStringLiteral("Rent"));
        QTest::keyClick(d, Qt::Key_Escape);
    });
    user::doubleClick(tree->viewport(), tree->visualItemRect(rent).center());
    change.verify();
    {
        user::NoDialog none;
        user::doubleClick(tree->viewport(), emptySpot(tree));
        QTest::qWait(100);
    }
    EXPECT_TRUE(tree->selectedItems().isEmpty());
    EXPECT_FALSE(user::button(&editor, QStringLiteral("промяна"))->isEnabled());
    EXPECT_TRUE(editor.isVisible());
}

} // namespace
