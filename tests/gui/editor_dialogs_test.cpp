// The editors' dialogs, opened from the real main window by their keys and menus and driven with
// the keyboard and the mouse.
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
    // The rate last used, as an earlier session left it.
    Settings(m_store).setLastFixing("EUR", 1.95583);
    const QStringList suggestLast = {
        QStringLiteral("Настройки"),
        QStringLiteral("Автоматично предлагай последния използван курс")};
    const QStringList askForRate = {
        QStringLiteral("Настройки"),
        QStringLiteral("Питай ме за потвърждение при всяка нова операция")};
    user::chooseMenu(m_frame.get(), suggestLast);
    user::chooseMenu(m_frame.get(), askForRate);
    EXPECT_TRUE(user::lookAtMenu(m_frame.get(), suggestLast)->isChecked());
    EXPECT_FALSE(user::lookAtMenu(m_frame.get(), askForRate)->isChecked());
    const std::size_t before = doc().operationCount();
    const std::int32_t master = doc().ledger().counters.nextMasterId + 1;

    user::ExpectDialog editor([&](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("нова операция"));
        EXPECT_EQ(user::child<QLabel>(d, "category")->text(), QStringLiteral("изберете категория"));
        auto* amount = user::child<QLineEdit>(d, "amount");
        auto* currency = user::child<QComboBox>(d, "currency");
        auto* rate = user::child<QLineEdit>(d, "rate");
        auto* value = user::child<QLineEdit>(d, "value");
        auto* total = user::child<QLineEdit>(d, "total");
        auto* list = user::child<QTreeWidget>(d, "payments");
        user::type(user::child<QLineEdit>(d, "description"), QStringLiteral("Почивка в Гърция"));
        // The category from the chooser, by a double click in its tree.
        user::ExpectDialog chooser([](QDialog* c) {
            auto* tree = user::child<QTreeWidget>(c, "categoryTree");
            QTreeWidgetItem* item = tree->topLevelItem(0);
            EXPECT_FALSE(user::button(c, QStringLiteral("избери"))->isEnabled());
            user::doubleClickItem(tree, item);
            EXPECT_EQ(user::child<QLabel>(c, "chosen")->text(), item->text(0));
            user::click(user::button(c, QStringLiteral("избери")));
        });
        user::click(user::button(d, QStringLiteral("...")));
        chooser.verify();
        EXPECT_NE(user::child<QLabel>(d, "category")->text(), QStringLiteral("изберете категория"));

        user::retype(amount, QStringLiteral("100"));
        // The tab key goes from the amount to the currency, as the fields stand.
        user::press(d, Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), currency);
        user::click(user::button(d, QStringLiteral("добави/промени")));
        user::retype(amount, QStringLiteral("50"));
        user::pickFromList(currency, QStringLiteral("EUR"));
        EXPECT_EQ(rate->text(), QStringLiteral("1.955830")); // suggested
        EXPECT_EQ(value->text(), QStringLiteral("97.79"));
        user::click(user::button(d, QStringLiteral("добави/промени")));
        user::retype(amount, QStringLiteral("20"));
        user::pickFromList(currency, QStringLiteral("USD"));
        user::retype(rate, QStringLiteral("1.8"));
        user::press(d, Qt::Key_Tab);
        EXPECT_EQ(value->text(), QStringLiteral("36.00"));
        user::click(user::button(d, QStringLiteral("добави/промени")));
        ASSERT_EQ(list->topLevelItemCount(), 3);
        EXPECT_EQ(total->text(), QStringLiteral("233.79 "));

        // Change the first payment (now at the bottom) to 120 BGL.
        user::clickItem(list, list->topLevelItem(2));
        user::click(user::button(d, QStringLiteral("редакция")));
        EXPECT_EQ(amount->text(), QStringLiteral("100.00"));
        user::retype(amount, QStringLiteral("120"));
        user::click(user::button(d, QStringLiteral("добави/промени")));
        EXPECT_EQ(list->topLevelItem(2)->text(1), QStringLiteral("120.00"));
        // Delete the USD payment; it never reaches the ledger.
        user::clickItem(list, list->topLevelItem(0));
        user::click(user::button(d, QStringLiteral("изтрий")));
        ASSERT_EQ(list->topLevelItemCount(), 2);
        EXPECT_EQ(total->text(), QStringLiteral("217.79 "));
        user::click(user::button(d, QStringLiteral("съхрани")));
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();

    EXPECT_EQ(doc().operationCount(), before + 2);
    std::vector<Operation> saved;
    for (const Operation& op : doc().ledger().operations) {
        if (op.masterId() == master) {
            saved.push_back(op);
        }
    }
    ASSERT_EQ(saved.size(), 2u);
    EXPECT_EQ(saved[0].amount(), 120.0);
    EXPECT_EQ(saved[0].currencyId(), 0);
    EXPECT_EQ(saved[1].amount(), 50.0);
    EXPECT_EQ(saved[1].currencyId(), doc().currencyId("EUR"));
    EXPECT_EQ(saved[1].amountBgl(), 97.79);
    EXPECT_EQ(cp1251::toUtf8(saved[0].description()), "Почивка в Гърция");
    // The list shows them at once, newest on top.
    EXPECT_EQ(cell(0, 0), QString::number(saved[1].id()));

    // A double click on the stored operation opens it again with both payments.
    user::ExpectDialog again([](QDialog* d) {
        EXPECT_EQ(user::child<QTreeWidget>(d, "payments")->topLevelItemCount(), 2);
        EXPECT_FALSE(user::button(d, QStringLiteral("съхрани и добави нова"))->isVisible());
        EXPECT_EQ(user::child<QLineEdit>(d, "description")->text(),
                  QStringLiteral("Почивка в Гърция"));
        QTest::keyClick(d, Qt::Key_Escape);
    });
    user::doubleClickIndex(table(), table()->model()->index(0, 3));
    again.verify();
}

TEST_F(EditorDialogsTest, EditorsAreRefusedOnALockedLedger)
{
    protectWith(QStringLiteral("тайна"));
    const std::pair<int, Qt::KeyboardModifiers> keys[] = {
        {Qt::Key_F8, Qt::NoModifier},      // a new operation
        {Qt::Key_F7, Qt::NoModifier},      // a new operation in the chosen category
        {Qt::Key_F1, Qt::ControlModifier}, // currency cash
        {Qt::Key_F2, Qt::ControlModifier}, // the categories
    };
    for (const auto& [key, modifiers] : keys) {
        m_prompter.clear();
        user::press(m_frame.get(), key, modifiers); // a dialog opening here fails the test
        ASSERT_EQ(m_prompter.messages().size(), 1u) << key;
        EXPECT_EQ(m_prompter.messages().back().caption, "Заключен");
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }
}

TEST_F(EditorDialogsTest, CategoriesAreCreatedMovedAndDeleted)
{
    user::ExpectDialog categories([&](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("категории"));
        auto* tree = user::child<QTreeWidget>(d, "categoryTree");
        auto* list = user::child<QTreeWidget>(d, "categoryList");
        const int rows = list->topLevelItemCount();
        EXPECT_FALSE(user::button(d, QStringLiteral("промяна"))->isEnabled());

        user::ExpectDialog name([](QDialog* c) {
            user::type(c->findChild<QLineEdit*>(), QStringLiteral("Градина"));
            user::click(user::button(c, QStringLiteral("създай")));
        });
        user::click(user::button(d, QStringLiteral("нова категория")));
        name.verify();
        EXPECT_EQ(list->topLevelItemCount(), rows + 1);
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("Градина"));
        QTreeWidgetItem* garden = itemNamed(tree, QStringLiteral("Градина"));
        ASSERT_NE(garden, nullptr);
        EXPECT_EQ(garden->parent(), nullptr);

        // Below the first top-level category, chosen by a double click in the parent tree.
        user::clickItem(tree, garden);
        EXPECT_TRUE(user::button(d, QStringLiteral("промяна"))->isEnabled());
        const QString parentName = tree->topLevelItem(0)->text(0);
        user::ExpectDialog change([&](QDialog* c) {
            EXPECT_EQ(c->windowTitle(), QStringLiteral("Промяна на категория"));
            auto* parents = user::child<QTreeWidget>(c, "categoryTree");
            EXPECT_FALSE(parents->isEnabled());
            user::click(user::button(c, QStringLiteral("подкатегория на:")));
            EXPECT_TRUE(parents->isEnabled());
            user::doubleClickItem(parents, parents->topLevelItem(0));
            EXPECT_EQ(user::child<QLabel>(c, "parent")->text(), parentName);
            user::click(user::button(c, QStringLiteral("създай")));
        });
        user::click(user::button(d, QStringLiteral("промяна")));
        change.verify();
        garden = itemNamed(tree, QStringLiteral("Градина"));
        ASSERT_NE(garden, nullptr);
        ASSERT_NE(garden->parent(), nullptr);
        EXPECT_EQ(garden->parent()->text(0), parentName);

        // A category with records stays; the new one goes.
        user::clickItem(tree, tree->topLevelItem(0));
        user::click(user::button(d, QStringLiteral("изтрий")));
        EXPECT_EQ(m_prompter.messages().back().caption, "Отказ");
        EXPECT_NE(itemNamed(tree, parentName), nullptr);
        user::clickItem(tree, itemNamed(tree, QStringLiteral("Градина")));
        user::click(user::button(d, QStringLiteral("изтрий")));
        EXPECT_EQ(itemNamed(tree, QStringLiteral("Градина")), nullptr);
        user::click(user::button(d, QStringLiteral("изход")));
    });
    user::press(m_frame.get(), Qt::Key_F2, Qt::ControlModifier);
    categories.verify();
    const auto* added = doc().ledger().categories.findIf(
        [](const Category& c) { return cp1251::toUtf8(c.name()) == "Градина"; });
    EXPECT_EQ(added, nullptr);
    EXPECT_TRUE(m_frame->isWindowModified());
}

TEST_F(EditorDialogsTest, CurrenciesAreAddedRenamedAndDeleted)
{
    user::ExpectDialog cash([&](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("валутна каса"));
        auto* list = user::child<QTreeWidget>(d, "cashList");
        EXPECT_EQ(list->topLevelItemCount(), 4);
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("BGL"));

        user::ExpectDialog added([](QDialog* n) {
            EXPECT_EQ(n->windowTitle(), QStringLiteral("Нова валута"));
            auto* edit = n->findChild<QLineEdit*>();
            EXPECT_FALSE(user::button(n, QStringLiteral("съхрани"))->isEnabled());
            user::type(edit, QStringLiteral("chf"));
            EXPECT_EQ(edit->text(), QStringLiteral("CHF"));
            user::click(user::button(n, QStringLiteral("съхрани")));
        });
        user::click(user::button(d, QStringLiteral("нова валута")));
        added.verify();
        ASSERT_EQ(list->topLevelItemCount(), 5);
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("CHF"));
        EXPECT_EQ(list->topLevelItem(0)->text(4), QStringLiteral("n/a"));

        user::clickItem(list, list->topLevelItem(0));
        user::ExpectDialog renamed([](QDialog* n) {
            EXPECT_EQ(n->windowTitle(), QStringLiteral("Промяна"));
            user::retype(n->findChild<QLineEdit*>(), QStringLiteral("чшф"));
            user::click(user::button(n, QStringLiteral("съхрани")));
        });
        user::click(user::button(d, QStringLiteral("промяна")));
        renamed.verify();
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("ЧШФ"));

        // Sorting by the record count puts the unused currency first.
        user::clickHeader(list->header(), 5);
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("ЧШФ"));

        user::clickItem(list, list->topLevelItem(0));
        user::click(user::button(d, QStringLiteral("изтриване")));
        EXPECT_EQ(list->topLevelItemCount(), 4);
        user::click(user::button(d, QStringLiteral("затвори")));
    });
    user::press(m_frame.get(), Qt::Key_F1, Qt::ControlModifier);
    cash.verify();
    EXPECT_EQ(doc().currencyId(cp1251::fromUtf8OrThrow("ЧШФ")), -1);
    EXPECT_EQ(doc().ledger().counters.nextCurrencyId, 4);
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
