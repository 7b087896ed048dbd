// The program used from the keyboard alone, as a new user tried it: every step here is a key.
#include "core/text/cp1251.h"
#include "gui/common/editor_widgets.h"
#include "gui/common/help_window.h"
#include "support/desktop_session.h"
#include "support/user.h"

#include <QLabel>
#include <QPointer>
#include <QRadioButton>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

class KeyboardTest : public DesktopSession {
protected:
    void SetUp() override { openGenerated(QStringLiteral("клавиши.fnr"), 50, 9); }
    static QWidget* focused() { return QApplication::focusWidget(); }
};

TEST_F(KeyboardTest, AnOperationIsMadeWithKeysAlone)
{
    std::int32_t chosen = 0;
    user::ExpectDialog editor([&](QDialog* d) {
        user::type(d->findChild<QLineEdit*>(QStringLiteral("description")), QStringLiteral("Ключ"));
        // In the category chooser the arrows move, Space chooses, Enter chooses and closes.
        user::ExpectDialog chooser([&](QDialog* c) {
            auto* tree = user::child<QTreeWidget>(c, "categoryTree");
            tree->setFocus();
            QTest::keyClick(tree, Qt::Key_Home);
            QTest::keyClick(tree, Qt::Key_Down);
            const std::string before = user::child<QLabel>(c, "chosen")->text().toStdString();
            QTest::keyClick(tree, Qt::Key_Space);
            EXPECT_NE(user::child<QLabel>(c, "chosen")->text().toStdString(), before)
                << "Space chose nothing";
            QTest::keyClick(tree, Qt::Key_Down);
            chosen = categoryIdOf(tree->currentItem()).value_or(0);
            QTest::keyClick(tree, Qt::Key_Return);
            EXPECT_FALSE(c->isVisible()) << "Enter did not close the chooser";
        });
        user::click(user::button(d, QStringLiteral("...")));
        chooser.verify();
        // Enter in a filled payment line adds it and keeps the editor open; Enter again saves.
        auto* amount = d->findChild<QLineEdit*>(QStringLiteral("amount"));
        user::retype(amount, QStringLiteral("12"));
        QTest::keyClick(amount, Qt::Key_Return);
        EXPECT_TRUE(d->isVisible()) << "Enter saved before adding the payment";
        EXPECT_EQ(d->findChild<QTreeWidget*>(QStringLiteral("payments"))->topLevelItemCount(), 1);
        user::press(d, Qt::Key_Return);
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();
    EXPECT_TRUE(m_prompter.messages().empty()) << m_prompter.messages().front().text;
    ASSERT_EQ(m_frame->document().operationCount(), 51u);
    const auto& made =
        *std::find_if(m_frame->document().ledger().operations.begin(),
                      m_frame->document().ledger().operations.end(),
                      [](const Operation& o) { return cp1251::toUtf8(o.description()) == "Ключ"; });
    EXPECT_NE(chosen, 0);
    EXPECT_EQ(made.categoryId(), chosen);
}

TEST_F(KeyboardTest, DeleteInTheListDeletesTheSelectedRowsAfterAskingAndNowhereElse)
{
    user::clickIndex(table(), table()->model()->index(0, 3));
    m_prompter.queue(Answer::No);
    QTest::keyClick(table(), Qt::Key_Delete);
    ASSERT_EQ(m_prompter.messages().size(), 1u) << "Delete asked nothing";
    EXPECT_EQ(shownRows(), 50);
    QTest::keyClick(table(), Qt::Key_Delete);
    EXPECT_EQ(m_frame->document().operationCount(), 49u);
    // In the filter panel's category tree the key deletes no operation.
    auto* tree = user::child<QTreeWidget>(&m_frame->view().filterPanel(), "categoryTree");
    user::clickIndex(table(), table()->model()->index(0, 3));
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Delete);
    EXPECT_EQ(m_frame->document().operationCount(), 49u);
}

TEST_F(KeyboardTest, UndoBackToTheOpenedLedgerClearsTheModifiedMarkAndTheItemsFollow)
{
    QAction* undo = m_frame->findChild<QAction*>(QStringLiteral("actionUndo"));
    QAction* redo = m_frame->findChild<QAction*>(QStringLiteral("actionRedo"));
    EXPECT_FALSE(undo->isEnabled());
    user::clickIndex(table(), table()->model()->index(0, 3));
    QTest::keyClick(table(), Qt::Key_Delete);
    // No menu was opened: the items follow the history by themselves.
    EXPECT_TRUE(m_frame->isWindowModified());
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_TRUE(user::shown(undo->text()).contains(QStringLiteral("изтриване")))
        << undo->text().toStdString();
    user::press(m_frame.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(m_frame->isWindowModified());
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_TRUE(redo->isEnabled());
    user::press(m_frame.get(), Qt::Key_Y, Qt::ControlModifier);
    EXPECT_TRUE(m_frame->isWindowModified());
}

TEST_F(KeyboardTest, TabInTheSearchFollowsTheScreenAndEscapeClosesTheHelp)
{
    QStringList walked;
    user::ExpectDialog search([&](QDialog* d) {
        d->findChild<QLineEdit*>(QStringLiteral("searchText"))->setFocus();
        for (int i = 0; i < 2; ++i) {
            user::press(d, Qt::Key_Tab);
            walked << (qobject_cast<QRadioButton*>(focused())
                           ? QStringLiteral("mode")
                           : user::shown(qobject_cast<QAbstractButton*>(focused())->text()));
        }
        user::press(d, Qt::Key_Escape);
    });
    user::press(m_frame.get(), Qt::Key_F3);
    search.verify();
    EXPECT_EQ(walked.join(QLatin1Char(',')).toStdString(), "mode,търси същата фраза");

    user::press(m_frame.get(), Qt::Key_F1);
    const QPointer<HelpWindow> help = helpWindowOf(m_frame.get());
    ASSERT_NE(help, nullptr);
    user::bringUp(help);
    user::press(help, Qt::Key_Escape);
    EXPECT_TRUE(help.isNull() || !help->isVisible());
}

} // namespace
