// The editors' dialogs, opened from the real main window and driven end to end offscreen.
#include "app/help_window.h"
#include "app/main_frame.h"
#include "demo/ledger_generator.h"
#include "model/recording_prompter.h"
#include "settings/memory_settings_store.h"
#include "support/dialog_driver.h"
#include "support/scripted_host.h"
#include "text/cp1251.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace finora;
using test::answerNextDialog;
using test::click;
using test::typeInto;
using test::buttonWithText;

namespace {

class EditorDialogsTest : public ::testing::Test {
protected:
    EditorDialogsTest()
    {
        m_frame = std::make_unique<CMainFrame>(m_store, m_prompter, m_host, m_clock);
        Ledger l = generateLedger(200, 5);
        m_frame->document().replaceLedger(std::move(l));
        m_frame->view().resetFilter();
    }

    CFinoraDoc& doc() { return m_frame->document(); }

    template <class T = QLineEdit>
    static T* child(QWidget* parent, const char* name)
    {
        T* found = parent->findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    static void chooseCurrency(QDialog* d, const QString& name)
    {
        auto* combo = child<QComboBox>(d, "currency");
        const int index = combo->findText(name);
        ASSERT_GE(index, 0);
        combo->setCurrentIndex(index);
        Q_EMIT combo->activated(index);
    }

    static void selectOnly(QTreeWidget* list, int row)
    {
        list->clearSelection();
        list->topLevelItem(row)->setSelected(true);
    }

    static QTreeWidgetItem* itemNamed(QTreeWidget* tree, const QString& text)
    {
        const QList<QTreeWidgetItem*> found = tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive, 0);
        return found.isEmpty() ? nullptr : found.first();
    }

    MemorySettingsStore m_store;
    FixedClock m_clock{DateTime::fromParts(2026, 11, 21, 9)};
    test::ScriptedHost m_host;
    RecordingPrompter m_prompter{Answer::Yes};
    std::unique_ptr<CMainFrame> m_frame;
};

TEST_F(EditorDialogsTest, AThreePaymentOperationIsEnteredChangedAndTrimmedBeforeTheSave)
{
    Settings settings(m_store);
    settings.setValue(IntSetting::FixingSuggestMode, 1);
    settings.setValue(IntSetting::AskForFixingSuggestion, 0);
    settings.setLastFixing("EUR", 1.95583);
    const std::size_t before = doc().operationCount();
    const std::int32_t master = doc().ledger().counters.nextMasterId + 1;
    bool ran = false;

    answerNextDialog([&](QDialog* d) {
        ran = true;
        EXPECT_EQ(d->windowTitle(), QStringLiteral("нова операция"));
        EXPECT_EQ(child<QLabel>(d, "category")->text(), QStringLiteral("изберете категория"));
        // The tab key goes from the amount to the currency, as the fields stand.
        EXPECT_EQ(child(d, "amount")->nextInFocusChain(), child<QComboBox>(d, "currency"));
        child(d, "description")->setText(QStringLiteral("Почивка в Гърция"));
        // The category from the chooser, by a double click in its tree.
        answerNextDialog([&](QDialog* chooser) {
            auto* tree = child<QTreeWidget>(chooser, "categoryTree");
            QTreeWidgetItem* item = tree->topLevelItem(0);
            EXPECT_FALSE(buttonWithText(chooser, QStringLiteral("избери"))->isEnabled());
            Q_EMIT tree->itemDoubleClicked(item, 0);
            EXPECT_EQ(child<QLabel>(chooser, "chosen")->text(), item->text(0));
            click(chooser, QStringLiteral("избери"));
        });
        click(d, QStringLiteral("..."));
        EXPECT_NE(child<QLabel>(d, "category")->text(), QStringLiteral("изберете категория"));

        typeInto(child(d, "amount"), QStringLiteral("100"));
        click(d, QStringLiteral("&добави/промени"));
        typeInto(child(d, "amount"), QStringLiteral("50"));
        chooseCurrency(d, QStringLiteral("EUR"));
        EXPECT_EQ(child(d, "rate")->text(), QStringLiteral("1.955830")); // suggested
        EXPECT_EQ(child(d, "value")->text(), QStringLiteral("97.79"));
        click(d, QStringLiteral("&добави/промени"));
        typeInto(child(d, "amount"), QStringLiteral("20"));
        chooseCurrency(d, QStringLiteral("USD"));
        typeInto(child(d, "rate"), QStringLiteral("1.8"));
        EXPECT_EQ(child(d, "value")->text(), QStringLiteral("36.00"));
        click(d, QStringLiteral("&добави/промени"));
        auto* list = child<QTreeWidget>(d, "payments");
        ASSERT_EQ(list->topLevelItemCount(), 3);
        EXPECT_EQ(child(d, "total")->text(), QStringLiteral("233.79 "));

        // Change the first payment (now at the bottom) to 120 BGL.
        selectOnly(list, 2);
        click(d, QStringLiteral("р&едакция"));
        EXPECT_EQ(child(d, "amount")->text(), QStringLiteral("100.00"));
        typeInto(child(d, "amount"), QStringLiteral("120"));
        click(d, QStringLiteral("&добави/промени"));
        EXPECT_EQ(list->topLevelItem(2)->text(1), QStringLiteral("120.00"));
        // Delete the USD payment; it never reaches the ledger.
        selectOnly(list, 0);
        click(d, QStringLiteral("из&трий"));
        ASSERT_EQ(list->topLevelItemCount(), 2);
        EXPECT_EQ(child(d, "total")->text(), QStringLiteral("217.79 "));
        click(d, QStringLiteral("&съхрани"));
    });
    m_frame->action("actionAddRecord")->trigger();
    ASSERT_TRUE(ran);

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
    EXPECT_EQ(m_frame->view().list().rowId(0), saved[1].id());

    // Opening the stored operation again shows both payments, the edited one selected.
    m_frame->view().list().setSelected(0, true);
    ran = false;
    answerNextDialog([&](QDialog* d) {
        ran = true;
        auto* list = child<QTreeWidget>(d, "payments");
        EXPECT_EQ(list->topLevelItemCount(), 2);
        EXPECT_FALSE(buttonWithText(d, QStringLiteral("съхрани и добави &нова"))->isVisible());
        EXPECT_EQ(child(d, "description")->text(), QStringLiteral("Почивка в Гърция"));
        d->reject();
    });
    m_frame->action("actionEditRecord")->trigger();
    EXPECT_TRUE(ran);
}

TEST_F(EditorDialogsTest, EditorsAreRefusedOnALockedLedger)
{
    doc().setLock("тайна");
    for (const char* name : {"actionAddRecord", "actionAddInCategory", "actionCurrencyCash", "actionCategories"}) {
        m_prompter.clear();
        m_frame->action(name)->trigger(); // a dialog opening here would block the test
        ASSERT_EQ(m_prompter.messages().size(), 1u) << name;
        EXPECT_EQ(m_prompter.messages().back().caption, "Заключен");
    }
}

TEST_F(EditorDialogsTest, CategoriesAreCreatedMovedAndDeleted)
{
    bool ran = false;
    answerNextDialog([&](QDialog* d) {
        ran = true;
        EXPECT_EQ(d->windowTitle(), QStringLiteral("категории"));
        auto* tree = child<QTreeWidget>(d, "categoryTree");
        auto* list = child<QTreeWidget>(d, "categoryList");
        const int rows = list->topLevelItemCount();
        EXPECT_FALSE(buttonWithText(d, QStringLiteral("&промяна"))->isEnabled());

        answerNextDialog([](QDialog* c) {
            c->findChild<QLineEdit*>()->setText(QStringLiteral("Градина"));
            click(c, QStringLiteral("&създай"));
        });
        click(d, QStringLiteral("&нова категория"));
        EXPECT_EQ(list->topLevelItemCount(), rows + 1);
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("Градина"));
        QTreeWidgetItem* garden = itemNamed(tree, QStringLiteral("Градина"));
        ASSERT_NE(garden, nullptr);
        EXPECT_EQ(garden->parent(), nullptr);

        // Below the first top-level category, chosen by a double click in the parent tree.
        tree->setCurrentItem(garden);
        const QString parentName = tree->topLevelItem(0)->text(0);
        answerNextDialog([&](QDialog* c) {
            EXPECT_EQ(c->windowTitle(), QStringLiteral("Промяна на категория"));
            auto* parents = child<QTreeWidget>(c, "categoryTree");
            EXPECT_FALSE(parents->isEnabled());
            buttonWithText(c, QStringLiteral("подкатегория на:"))->click();
            EXPECT_TRUE(parents->isEnabled());
            Q_EMIT parents->itemDoubleClicked(parents->topLevelItem(0), 0);
            EXPECT_EQ(child<QLabel>(c, "parent")->text(), parentName);
            click(c, QStringLiteral("&създай"));
        });
        click(d, QStringLiteral("&промяна"));
        garden = itemNamed(tree, QStringLiteral("Градина"));
        ASSERT_NE(garden, nullptr);
        ASSERT_NE(garden->parent(), nullptr);
        EXPECT_EQ(garden->parent()->text(0), parentName);

        // A category with records stays; the new one goes.
        tree->setCurrentItem(tree->topLevelItem(0));
        click(d, QStringLiteral("&изтрий"));
        EXPECT_EQ(m_prompter.messages().back().caption, "Отказ");
        tree->setCurrentItem(garden);
        click(d, QStringLiteral("&изтрий"));
        EXPECT_EQ(itemNamed(tree, QStringLiteral("Градина")), nullptr);
        click(d, QStringLiteral("изхо&д"));
    });
    m_frame->action("actionCategories")->trigger();
    ASSERT_TRUE(ran);
    const auto* added = doc().ledger().categories.findIf(
        [](const Category& c) { return cp1251::toUtf8(c.name()) == "Градина"; });
    EXPECT_EQ(added, nullptr);
    EXPECT_TRUE(doc().isModified());
}

TEST_F(EditorDialogsTest, CurrenciesAreAddedRenamedAndDeleted)
{
    bool ran = false;
    answerNextDialog([&](QDialog* d) {
        ran = true;
        EXPECT_EQ(d->windowTitle(), QStringLiteral("валутна каса"));
        auto* list = child<QTreeWidget>(d, "cashList");
        EXPECT_EQ(list->topLevelItemCount(), 4);
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("BGL"));

        answerNextDialog([](QDialog* n) {
            EXPECT_EQ(n->windowTitle(), QStringLiteral("Нова валута"));
            auto* edit = n->findChild<QLineEdit*>();
            EXPECT_FALSE(buttonWithText(n, QStringLiteral("&съхрани"))->isEnabled());
            edit->setText(QStringLiteral("chf"));
            EXPECT_EQ(edit->text(), QStringLiteral("CHF"));
            click(n, QStringLiteral("&съхрани"));
        });
        click(d, QStringLiteral("&нова валута"));
        ASSERT_EQ(list->topLevelItemCount(), 5);
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("CHF"));
        EXPECT_EQ(list->topLevelItem(0)->text(4), QStringLiteral("n/a"));

        selectOnly(list, 0);
        answerNextDialog([](QDialog* n) {
            EXPECT_EQ(n->windowTitle(), QStringLiteral("Промяна"));
            n->findChild<QLineEdit*>()->setText(QStringLiteral("чшф"));
            click(n, QStringLiteral("&съхрани"));
        });
        click(d, QStringLiteral("&промяна"));
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("ЧШФ"));

        // Sorting by the record count puts the unused currency first.
        Q_EMIT list->header()->sectionClicked(5);
        EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("ЧШФ"));

        selectOnly(list, 0);
        click(d, QStringLiteral("&изтриване"));
        EXPECT_EQ(list->topLevelItemCount(), 4);
        click(d, QStringLiteral("&затвори"));
    });
    m_frame->action("actionCurrencyCash")->trigger();
    ASSERT_TRUE(ran);
    EXPECT_EQ(doc().currencyId(cp1251::fromUtf8OrThrow("ЧШФ")), -1);
    EXPECT_EQ(doc().ledger().counters.nextCurrencyId, 4);
}

TEST_F(EditorDialogsTest, HelpOpensAtItsTopics)
{
    m_frame->action("actionHelp")->trigger();
    HelpWindow* help = helpWindowOf(m_frame.get());
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    EXPECT_EQ(help->currentTopic(), QStringLiteral("index.htm"));
    help->showTopic(QStringLiteral("help.chm::/no_such_page.htm"));
    EXPECT_EQ(help->currentTopic(), QStringLiteral("index.htm"));
    // Every topic the program names has its own page, and every link between pages leads somewhere.
    for (const char* topic : {"efective.htm", "help.chm::/ops_elem.htm", "case_elem.htm", "cat_elem.htm",
                              "filters.htm", "report.htm", "safety.htm"}) {
        help->showTopic(QString::fromLatin1(topic));
        EXPECT_EQ(help->currentTopic(), QString::fromLatin1(topic).section(QLatin1Char('/'), -1)) << topic;
    }
    const QRegularExpression link(QStringLiteral("href=\"([^\"]+)\""));
    for (const QString& page : QDir(QStringLiteral(":/help")).entryList({QStringLiteral("*.htm")})) {
        QFile file(QStringLiteral(":/help/") + page);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString html = QString::fromUtf8(file.readAll());
        EXPECT_TRUE(html.contains(QStringLiteral("<h1>"))) << page.toStdString();
        for (auto it = link.globalMatch(html); it.hasNext();) {
            const QString target = it.next().captured(1);
            EXPECT_TRUE(QFile::exists(QStringLiteral(":/help/") + target)) << page.toStdString() << " -> " << target.toStdString();
        }
    }
    help->close();
}

} // namespace

namespace {

TEST_F(EditorDialogsTest, ResizableDialogsReopenAtTheSizeTheyWereLeftAt)
{
    QSize left;
    answerNextDialog([&](QDialog* d) {
        EXPECT_TRUE(d->isSizeGripEnabled());
        EXPECT_GT(d->minimumWidth(), 0);
        d->resize(d->width() + 90, d->height() + 40);
        left = d->size();
        d->accept();
    });
    m_frame->action("actionCurrencyCash")->trigger();
    EXPECT_FALSE(m_store.readText("WindowPositions", "currencyCash", "").empty());
    QSize reopened;
    answerNextDialog([&](QDialog* d) {
        reopened = d->size();
        d->accept();
    });
    m_frame->action("actionCurrencyCash")->trigger();
    EXPECT_EQ(reopened, left);
}

} // namespace
