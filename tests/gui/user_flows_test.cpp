// What a first-time user meets in the dialogs, tried with the keyboard and the mouse on the real
// widgets: each test here failed on the code before its fix.
#include "core/text/cp1251.h"
#include "support/desktop_session.h"
#include "support/user.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QTableView>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

class UserFlowTest : public DesktopSession {
protected:
    UserFlowTest() { openGenerated(QStringLiteral("дом.fnr"), 500, 3); }

    // The rows the list marks, and the rows whose description has `word` (any case).
    int markedRows() { return static_cast<int>(m_frame->view().list().selectedCount()); }
    int rowsDescribedWith(const QString& word)
    {
        int n = 0;
        for (int r = 0; r < table()->model()->rowCount(); ++r) {
            n += cell(r, 3).contains(word, Qt::CaseInsensitive) ? 1 : 0;
        }
        return n;
    }
};

} // namespace

TEST_F(UserFlowTest, TheSearchDialogSearchesForWhatWasTypedWhateverOptionIsClickedAfterwards)
{
    const QString word = QStringLiteral("пазар");
    ASSERT_GT(rowsDescribedWith(word), 0);
    user::ExpectDialog search([&](QDialog* d) {
        auto* text = d->findChild<QLineEdit*>();
        user::retype(text, word);
        user::click(user::button(d, QStringLiteral("NOT")));
        user::click(user::button(d, QStringLiteral("описание")));
        EXPECT_EQ(text->text(), word); // the field keeps what was typed
        QTest::keyClick(text, Qt::Key_Return);
    });
    user::press(m_frame.get(), Qt::Key_F3);
    search.verify();
    EXPECT_EQ(markedRows(), table()->model()->rowCount() - rowsDescribedWith(word));
    // The next search starts from the last text, which the user may type over.
    user::ExpectDialog again([&](QDialog* d) {
        EXPECT_EQ(d->findChild<QLineEdit*>()->text(), word);
        QTest::keyClick(d, Qt::Key_Escape);
    });
    user::press(m_frame.get(), Qt::Key_F3);
}

TEST_F(UserFlowTest, AnAmountWithADecimalCommaIsStoredAsTypedAndAWordIsRefusedAtTheField)
{
    const std::size_t before = m_frame->document().operationCount();
    user::ExpectDialog editor([&](QDialog* d) {
        user::type(d->findChild<QLineEdit*>(QStringLiteral("description")),
                   QStringLiteral("Тетрадки"));
        chooseFirstCategory(d);

        auto* amount = d->findChild<QLineEdit*>(QStringLiteral("amount"));
        // A word is refused as the user leaves the field, and the field takes the focus back.
        user::retype(amount, QStringLiteral("много"));
        user::press(amount, Qt::Key_Tab);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !m_prompter.messages().empty(); }, 1000));
        EXPECT_EQ(lastMessage().icon, MessageIcon::Error);
        EXPECT_TRUE(QTest::qWaitFor([&] { return amount->hasFocus(); }, 1000));

        user::retype(amount, QStringLiteral("45,60"));
        user::press(amount, Qt::Key_Tab);
        EXPECT_EQ(d->findChild<QLineEdit*>(QStringLiteral("value"))->text(),
                  QStringLiteral("45.60"));
        user::click(user::button(d, QStringLiteral("добави/промени")));
        auto* payments = d->findChild<QTreeWidget*>(QStringLiteral("payments"));
        ASSERT_EQ(payments->topLevelItemCount(), 1);
        EXPECT_EQ(payments->topLevelItem(0)->text(1), QStringLiteral("45.60"));
        EXPECT_EQ(m_prompter.messages().size(), 1u);
        user::click(user::button(d, QStringLiteral("съхрани")));
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();
    ASSERT_EQ(m_frame->document().operationCount(), before + 1);
    const Operation& saved = *m_frame->document().ledger().operations.rbegin();
    EXPECT_EQ(saved.amount(), 45.6);
    EXPECT_EQ(saved.amountBgl(), 45.6);

    // The amount filter reads the comma the same way, and says which field holds no number.
    user::click(user::button(m_frame.get(), QStringLiteral("без филтър")));
    user::ExpectDialog filter([&](QDialog* d) {
        user::retype(d->findChild<QLineEdit*>(QStringLiteral("amount")), QStringLiteral("45,60"));
        user::retype(d->findChild<QLineEdit*>(QStringLiteral("tolerance")), QStringLiteral("нула"));
        m_prompter.clear();
        QTest::keyClick(d, Qt::Key_Return);
        EXPECT_EQ(m_prompter.messages().size(), 1u);
        EXPECT_TRUE(d->isVisible());
        user::retype(d->findChild<QLineEdit*>(QStringLiteral("tolerance")),
                     QStringLiteral("0,001"));
        QTest::keyClick(d, Qt::Key_Return);
    });
    user::press(m_frame.get(), Qt::Key_F3, Qt::ShiftModifier);
    filter.verify();
    ASSERT_GE(table()->model()->rowCount(), 1);
    for (int r = 0; r < table()->model()->rowCount(); ++r) {
        EXPECT_EQ(cell(r, 6), QStringLiteral("45.60"));
    }
}

TEST_F(UserFlowTest, SettingAProtectionIsAChangeThatClosingAsksAbout)
{
    user::ExpectDialog password([](QDialog* d) {
        const auto fields = d->findChildren<QLineEdit*>();
        ASSERT_EQ(fields.size(), 2);
        user::type(fields[0], QStringLiteral("тайна"));
        user::type(fields[1], QStringLiteral("тайна"));
        QTest::keyClick(fields[1], Qt::Key_Return);
    });
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Настройки"), QStringLiteral("Задаване на постоянна защита")});
    password.verify();
    EXPECT_TRUE(m_frame->isWindowModified());
    EXPECT_EQ(table()->model()->rowCount(), 0);

    // Closing asks; Cancel keeps the window, Yes saves the protection into the file.
    const QStringList exit = {QStringLiteral("Файл"), QStringLiteral("Изход")};
    m_prompter.queue(Answer::Cancel);
    user::chooseMenu(m_frame.get(), exit);
    EXPECT_TRUE(m_frame->isVisible());
    EXPECT_EQ(lastMessage().text, DocumentStorage::kSaveChangesText);
    m_prompter.queue(Answer::Yes);
    user::chooseMenu(m_frame.get(), exit);
    EXPECT_FALSE(m_frame->isVisible());
    EXPECT_FALSE(ledgerOnDisk().lockText.empty());
}

TEST_F(UserFlowTest, TheCurrencyRulesRunOnAChangeOfCurrencyAndOnTheListClosing)
{
    m_store.writeInt("Settings", "FixingSuggestMode", 2); // the averaged rate
    user::ExpectDialog editor([&](QDialog* d) {
        auto* amount = d->findChild<QLineEdit*>(QStringLiteral("amount"));
        auto* rate = d->findChild<QLineEdit*>(QStringLiteral("rate"));
        auto* value = d->findChild<QLineEdit*>(QStringLiteral("value"));
        auto* currency = d->findChild<QComboBox*>(QStringLiteral("currency"));
        user::retype(amount, QStringLiteral("100"));
        user::press(amount, Qt::Key_Tab);

        user::pickFromList(currency, QStringLiteral("EUR"));
        const QString suggested = rate->text();
        EXPECT_NE(suggested, QStringLiteral("1.000000"));
        EXPECT_TRUE(value->isEnabled()); // the list closed on a foreign currency
        // The user types a rate of their own; picking EUR again must not suggest over it.
        user::retype(rate, QStringLiteral("2,5"));
        user::press(rate, Qt::Key_Tab);
        EXPECT_EQ(value->text(), QStringLiteral("250.00"));
        user::pickFromList(currency, QStringLiteral("EUR"));
        EXPECT_EQ(rate->text(), QStringLiteral("2,5"));
        EXPECT_EQ(value->text(), QStringLiteral("250.00"));

        // The list closing on BGL disables the value; a choice made with the arrow keys, with
        // no list opened, runs the currency rule but leaves the value field as it was.
        user::pickFromList(currency, QStringLiteral("BGL"));
        EXPECT_FALSE(value->isEnabled());
        EXPECT_EQ(rate->text(), QStringLiteral("1.000000"));
        currency->setFocus();
        QTest::keyClick(currency, Qt::Key_Down);
        ASSERT_NE(currency->currentText(), QStringLiteral("BGL"));
        EXPECT_FALSE(currency->view()->isVisible());
        EXPECT_FALSE(rate->isReadOnly()); // the currency rule ran
        EXPECT_FALSE(value->isEnabled()); // the list-closed rule did not
        QTest::keyClick(d, Qt::Key_Escape);
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();
}
