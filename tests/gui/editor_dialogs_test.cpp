// The editors' dialogs, opened from the real main window by their keys and menus and driven with
// the keyboard and the mouse.
#include "core/model/lock_guard.h"
#include "core/text/cp1251.h"
#include "gui/common/help_window.h"
#include "support/desktop_session.h"
#include "support/user.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QSizeGrip>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

class EditorDialogsTest : public DesktopSession {
protected:
    EditorDialogsTest()
    {
        m_clock.set(DateTime::fromParts(2026, 11, 21, 9));
        openGenerated(QStringLiteral("дом.fnr"), 200, 5);
    }

    CFinoraDoc& doc() { return m_frame->document(); }

    static QTreeWidgetItem* itemNamed(QTreeWidget* tree, const QString& text)
    {
        const QList<QTreeWidgetItem*> found =
            tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive, 0);
        return found.isEmpty() ? nullptr : found.first();
    }
};

TEST_F(EditorDialogsTest, AThreePaymentOperationIsEnteredChangedAndTrimmedBeforeTheSave)
{
    Settings(m_store).setLastFixing("EUR", 1.95583); // as an earlier session left it
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Настройки"),
                      QStringLiteral("Автоматично предлагай последния използван курс")});
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Настройки"),
                      QStringLiteral("Питай ме за потвърждение при всяка нова операция")});
    const std::size_t before = doc().operationCount();
    const std::int32_t master = doc().ledger().counters.nextMasterId + 1;

    user::ExpectDialog editor([&](QDialog* d) {
        auto* amount = user::child<QLineEdit>(d, "amount");
        auto* currency = user::child<QComboBox>(d, "currency");
        auto* list = user::child<QTreeWidget>(d, "payments");
        const auto add = [d] { user::click(user::button(d, QStringLiteral("добави/промени"))); };
        user::type(user::child<QLineEdit>(d, "description"), QStringLiteral("Почивка в Гърция"));
        chooseFirstCategory(d);

        user::retype(amount, QStringLiteral("100"));
        user::press(d, Qt::Key_Tab); // from the amount to the currency
        EXPECT_EQ(QApplication::focusWidget(), currency);
        add();
        user::retype(amount, QStringLiteral("50"));
        user::pickFromList(currency, QStringLiteral("EUR"));
        EXPECT_EQ(user::child<QLineEdit>(d, "rate")->text(), QStringLiteral("1.955830"));
        EXPECT_EQ(user::child<QLineEdit>(d, "value")->text(), QStringLiteral("97.79"));
        add();
        user::retype(amount, QStringLiteral("20"));
        user::pickFromList(currency, QStringLiteral("USD"));
        user::retype(user::child<QLineEdit>(d, "rate"), QStringLiteral("1.8"));
        add();
        ASSERT_EQ(list->topLevelItemCount(), 3);

        // The first payment (now at the bottom) becomes 120 BGL; the USD one is deleted.
        user::clickItem(list, list->topLevelItem(2));
        user::click(user::button(d, QStringLiteral("редакция")));
        EXPECT_EQ(amount->text(), QStringLiteral("100.00"));
        user::retype(amount, QStringLiteral("120"));
        add();
        user::clickItem(list, list->topLevelItem(0));
        user::click(user::button(d, QStringLiteral("изтрий")));
        EXPECT_EQ(user::child<QLineEdit>(d, "total")->text(), QStringLiteral("217.79 "));
        user::click(user::button(d, QStringLiteral("съхрани")));
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();

    ASSERT_EQ(doc().operationCount(), before + 2);
    std::vector<Operation> saved;
    for (const Operation& op : doc().ledger().operations) {
        if (op.masterId() == master) {
            saved.push_back(op);
        }
    }
    ASSERT_EQ(saved.size(), 2u);
    EXPECT_EQ(std::pair(saved[0].amount(), saved[0].currencyId()), std::pair(120.0, 0));
    EXPECT_EQ(std::pair(saved[1].amount(), saved[1].currencyId()),
              std::pair(50.0, doc().currencyId("EUR")));
    EXPECT_EQ(saved[1].amountBgl(), 97.79);
    EXPECT_EQ(cp1251::toUtf8(saved[0].description()), "Почивка в Гърция");
    EXPECT_EQ(cell(0, 0), QString::number(saved[1].id())); // newest on top, at once

    // A double click on the stored operation opens it again with both payments.
    user::ExpectDialog again([](QDialog* d) {
        EXPECT_EQ(user::child<QTreeWidget>(d, "payments")->topLevelItemCount(), 2);
        EXPECT_FALSE(user::button(d, QStringLiteral("съхрани и добави нова"))->isVisible());
        QTest::keyClick(d, Qt::Key_Escape);
    });
    user::doubleClickIndex(table(), table()->model()->index(0, 3));
    again.verify();
}

TEST_F(EditorDialogsTest, EveryEditorAndTheChartAreRefusedOnALockedLedger)
{
    protectWith(QStringLiteral("тайна"));
    struct Case {
        const char* what;
        std::function<void()> act;
    };
    const auto key = [this](int k, Qt::KeyboardModifiers m) {
        return [this, k, m] { user::press(m_frame.get(), k, m); };
    };
    const Case cases[] = {
        {"new operation", key(Qt::Key_F8, Qt::NoModifier)},
        {"new operation in the category", key(Qt::Key_F7, Qt::NoModifier)},
        {"currency cash", key(Qt::Key_F1, Qt::ControlModifier)},
        {"categories", key(Qt::Key_F2, Qt::ControlModifier)},
        {"undo", key(Qt::Key_Z, Qt::ControlModifier)},
        {"yearly chart",
         [this] {
             user::chooseMenu(
                 m_frame.get(),
                 {QStringLiteral("Данни"),
                  QStringLiteral("Диаграма за приходите и разходите през годината ...")});
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        m_prompter.clear();
        user::NoDialog none;
        c.act();
        ASSERT_EQ(m_prompter.messages().size(), 1u);
        EXPECT_EQ(m_prompter.messages().back().caption, kLockedCaption);
    }
}

TEST_F(EditorDialogsTest, CategoriesAreCreatedMovedAndDeleted)
{
    user::ExpectDialog categories([&](QDialog* d) {
        auto* tree = user::child<QTreeWidget>(d, "categoryTree");
        EXPECT_FALSE(user::button(d, QStringLiteral("промяна"))->isEnabled());
        user::ExpectDialog name([](QDialog* c) {
            user::type(c->findChild<QLineEdit*>(), QStringLiteral("Градина"));
            user::click(user::button(c, QStringLiteral("създай")));
        });
        user::click(user::button(d, QStringLiteral("нова категория")));
        name.verify();
        QTreeWidgetItem* garden = itemNamed(tree, QStringLiteral("Градина"));
        ASSERT_NE(garden, nullptr);
        EXPECT_EQ(garden->parent(), nullptr);

        // Below the first top-level category, chosen by a double click in the parent tree.
        user::clickItem(tree, garden);
        const QString parentName = tree->topLevelItem(0)->text(0);
        user::ExpectDialog change([&](QDialog* c) {
            auto* parents = user::child<QTreeWidget>(c, "categoryTree");
            EXPECT_FALSE(parents->isEnabled());
            user::click(user::button(c, QStringLiteral("подкатегория на:")));
            user::doubleClickItem(parents, parents->topLevelItem(0));
            EXPECT_EQ(user::child<QLabel>(c, "parent")->text(), parentName);
            user::click(user::button(c, QStringLiteral("създай")));
        });
        user::click(user::button(d, QStringLiteral("промяна")));
        change.verify();
        garden = itemNamed(tree, QStringLiteral("Градина"));
        ASSERT_TRUE(garden && garden->parent());
        EXPECT_EQ(garden->parent()->text(0), parentName);

        // A category with records stays (the core says why); the new one goes.
        user::clickItem(tree, tree->topLevelItem(0));
        user::click(user::button(d, QStringLiteral("изтрий")));
        EXPECT_NE(itemNamed(tree, parentName), nullptr);
        user::clickItem(tree, itemNamed(tree, QStringLiteral("Градина")));
        user::click(user::button(d, QStringLiteral("изтрий")));
        EXPECT_EQ(itemNamed(tree, QStringLiteral("Градина")), nullptr);
        user::click(user::button(d, QStringLiteral("изход")));
    });
    user::press(m_frame.get(), Qt::Key_F2, Qt::ControlModifier);
    categories.verify();
    EXPECT_EQ(doc().ledger().categories.findIf(
                  [](const Category& c) { return cp1251::toUtf8(c.name()) == "Градина"; }),
              nullptr);
    EXPECT_TRUE(m_frame->isWindowModified());
}

TEST_F(EditorDialogsTest, CurrenciesAreAddedRenamedAndDeletedAndTheChoiceFollowsTheSort)
{
    user::ExpectDialog cash([&](QDialog* d) {
        auto* list = user::child<QTreeWidget>(d, "cashList");
        const auto rowOf = [list](const QString& name) {
            for (int r = 0; r < list->topLevelItemCount(); ++r) {
                if (list->topLevelItem(r)->text(1) == name) {
                    return list->topLevelItem(r);
                }
            }
            return static_cast<QTreeWidgetItem*>(nullptr);
        };
        const auto chosen = [list] {
            const auto items = list->selectedItems();
            return items.size() == 1 ? items.front()->text(1) : QString();
        };
        user::ExpectDialog added([](QDialog* n) {
            EXPECT_FALSE(user::button(n, QStringLiteral("съхрани"))->isEnabled());
            user::type(n->findChild<QLineEdit*>(), QStringLiteral("chf"));
            QTest::keyClick(n->findChild<QLineEdit*>(), Qt::Key_Return);
        });
        user::click(user::button(d, QStringLiteral("нова валута")));
        added.verify();
        ASSERT_NE(rowOf(QStringLiteral("CHF")), nullptr); // typed in capitals

        user::clickItem(list, rowOf(QStringLiteral("CHF")));
        user::ExpectDialog renamed([](QDialog* n) {
            user::retype(n->findChild<QLineEdit*>(), QStringLiteral("чшф"));
            user::click(user::button(n, QStringLiteral("съхрани")));
        });
        user::click(user::button(d, QStringLiteral("промяна")));
        renamed.verify();
        ASSERT_NE(rowOf(QStringLiteral("ЧШФ")), nullptr);

        // Sorting by the record count puts the unused currency first; sorting by name moves
        // the chosen row, which stays chosen.
        user::clickHeader(list->header(), 5);
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("ЧШФ"));
        user::clickItem(list, rowOf(QStringLiteral("EUR")));
        for (int i = 0; i < 2; ++i) {
            user::clickHeader(list->header(), 1);
            EXPECT_EQ(chosen(), QStringLiteral("EUR")) << "after sort " << i;
        }
        user::clickItem(list, rowOf(QStringLiteral("ЧШФ")));
        user::click(user::button(d, QStringLiteral("изтриване")));
        EXPECT_EQ(rowOf(QStringLiteral("ЧШФ")), nullptr);
        EXPECT_EQ(chosen(), QString());
        EXPECT_FALSE(user::button(d, QStringLiteral("изтриване"))->isEnabled());
        EXPECT_FALSE(user::button(d, QStringLiteral("промяна"))->isEnabled());
        user::click(user::button(d, QStringLiteral("затвори")));
    });
    user::press(m_frame.get(), Qt::Key_F1, Qt::ControlModifier);
    cash.verify();
    EXPECT_EQ(doc().currencyId(cp1251::fromUtf8OrThrow("ЧШФ")), -1);
    EXPECT_GT(doc().currencyId("EUR"), 0);
}

// The help window's topic once it shows, or "" when none is open.
QString helpTopicOf(QWidget* owner)
{
    HelpWindow* help = helpWindowOf(owner);
    return help && help->isVisible() ? help->currentTopic() : QString();
}

TEST_F(EditorDialogsTest, HelpOpensAtItsTopics)
{
    user::press(m_frame.get(), Qt::Key_F1);
    QPointer<HelpWindow> help = helpWindowOf(m_frame.get());
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(helpTopicOf(m_frame.get()), QStringLiteral("index.htm"));
    user::chooseMenu(m_frame.get(), {QStringLiteral("Помощ"),
                                     QStringLiteral("По-ефективна работа с продукта ...")});
    EXPECT_EQ(helpTopicOf(m_frame.get()), QStringLiteral("efective.htm"));
    user::click(user::button(help, QStringLiteral("Съдържание")));
    EXPECT_EQ(helpTopicOf(m_frame.get()), QStringLiteral("index.htm"));
    user::click(user::button(help, QStringLiteral("< Назад")));
    EXPECT_EQ(helpTopicOf(m_frame.get()), QStringLiteral("efective.htm"));
    user::click(user::button(help, QStringLiteral("Затвори")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return help.isNull(); }, 1000)) << "the help window stayed";

    // The "?" of each editor opens its own page.
    const std::tuple<int, Qt::KeyboardModifiers, QString> editors[] = {
        {Qt::Key_F8, Qt::NoModifier, QStringLiteral("ops_elem.htm")},
        {Qt::Key_F1, Qt::ControlModifier, QStringLiteral("case_elem.htm")},
        {Qt::Key_F2, Qt::ControlModifier, QStringLiteral("cat_elem.htm")},
    };
    for (const auto& [key, modifiers, topic] : editors) {
        QString opened;
        user::ExpectDialog dialog([&opened](QDialog* d) {
            user::click(user::button(d, QStringLiteral("?")));
            opened = helpTopicOf(d);
            QTest::keyClick(d, Qt::Key_Escape);
        });
        user::press(m_frame.get(), key, modifiers);
        dialog.verify();
        EXPECT_EQ(opened, topic);
    }

    // The pages no button names are reached by links from the others, checked below; an unknown
    // topic falls back to the contents. Neither has a control of its own.
    user::press(m_frame.get(), Qt::Key_F1);
    help = helpWindowOf(m_frame.get());
    ASSERT_NE(help, nullptr);
    help->showTopic(QStringLiteral("help.chm::/no_such_page.htm"));
    EXPECT_EQ(help->currentTopic(), QStringLiteral("index.htm"));
    for (const char* topic : {"filters.htm", "report.htm", "safety.htm"}) {
        help->showTopic(QString::fromLatin1(topic));
        EXPECT_EQ(help->currentTopic(), QString::fromLatin1(topic)) << topic;
    }
    const QRegularExpression link(QStringLiteral("href=\"([^\"]+)\""));
    for (const QString& page :
         QDir(QStringLiteral(":/help")).entryList({QStringLiteral("*.htm")})) {
        QFile file(QStringLiteral(":/help/") + page);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString html = QString::fromUtf8(file.readAll());
        EXPECT_TRUE(html.contains(QStringLiteral("<h1>"))) << page.toStdString();
        for (auto it = link.globalMatch(html); it.hasNext();) {
            const QString target = it.next().captured(1);
            EXPECT_TRUE(QFile::exists(QStringLiteral(":/help/") + target))
                << page.toStdString() << " -> " << target.toStdString();
        }
    }
    user::click(user::button(help, QStringLiteral("Затвори")));
}

TEST_F(EditorDialogsTest, ResizableDialogsReopenAtTheSizeTheyWereLeftAt)
{
    QSize left;
    user::ExpectDialog first([&](QDialog* d) {
        auto* grip = d->findChild<QSizeGrip*>();
        ASSERT_NE(grip, nullptr);
        EXPECT_GT(d->minimumWidth(), 0);
        const QSize opened = d->size();
        // The corner dragged 90 pixels in and 40 down.
        const QPoint from = grip->rect().center();
        QTest::mousePress(grip, Qt::LeftButton, {}, from);
        QTest::mouseMove(grip, from + QPoint(-90, 40));
        QTest::mouseRelease(grip, Qt::LeftButton, {}, from + QPoint(-90, 40));
        left = d->size();
        EXPECT_EQ(left, opened + QSize(-90, 40));
        user::click(user::button(d, QStringLiteral("затвори")));
    });
    user::press(m_frame.get(), Qt::Key_F1, Qt::ControlModifier);
    first.verify();
    QSize reopened;
    user::ExpectDialog second([&](QDialog* d) {
        reopened = d->size();
        QTest::keyClick(d, Qt::Key_Escape);
    });
    user::press(m_frame.get(), Qt::Key_F1, Qt::ControlModifier);
    second.verify();
    EXPECT_EQ(reopened, left);
}

} // namespace
