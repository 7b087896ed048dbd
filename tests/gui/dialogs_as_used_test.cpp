// The dialogs no other test goes through as a user does: each opened from the main window by its
// key or menu, filled in with keys and clicks, closed with its button or key, and its outcome read
// back from the window, the settings or the file.
#include "core/editors/print_widths.h"
#include "core/reports/print_layout.h"
#include "core/text/cp1251.h"
#include "support/desktop_session.h"
#include "support/rendered_output.h"
#include "support/user.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <gtest/gtest.h>
#include <optional>

using namespace finora;
using namespace finora::test;

namespace {

class DialogsAsUsed : public DesktopSession {
protected:
    DialogsAsUsed() { openGenerated(QStringLiteral("дом.fnr"), 200, 9); }

    // A password dialog answered with `password` and Enter, after the menu item or key that opens
    // it.
    static std::function<void(QDialog*)> typePassword(const QString& password)
    {
        return [password](QDialog* d) {
            for (QLineEdit* field : d->findChildren<QLineEdit*>()) {
                if (field->isEnabled()) {
                    user::type(field, password);
                }
            }
            QTest::keyClick(d, Qt::Key_Return);
        };
    }
};

TEST_F(DialogsAsUsed, TheProtectionGoesOnlyWithItsPassword)
{
    protectWith(QStringLiteral("тайна"));
    user::press(m_frame.get(), Qt::Key_S, Qt::ControlModifier);
    ASSERT_FALSE(ledgerOnDisk().lockText.empty());
    ASSERT_EQ(shownRows(), 0);

    // A wrong password at F12 is said, and the list stays empty; Escape says nothing.
    {
        user::ExpectDialog unlock(typePassword(QStringLiteral("друга")));
        user::press(m_frame.get(), Qt::Key_F12);
    }
    EXPECT_EQ(lastMessage().caption, "Грешна парола");
    EXPECT_EQ(shownRows(), 0);
    m_prompter.clear();
    {
        user::ExpectDialog unlock([](QDialog* d) { QTest::keyClick(d, Qt::Key_Escape); });
        user::press(m_frame.get(), Qt::Key_F12);
    }
    EXPECT_TRUE(m_prompter.messages().empty());
    EXPECT_EQ(shownRows(), 0);
    {
        user::ExpectDialog unlock([](QDialog* d) {
            const auto fields = d->findChildren<QLineEdit*>();
            ASSERT_EQ(fields.size(), 2);
            EXPECT_FALSE(fields.at(1)->isEnabled()); // once is enough to unlock
            typePassword(QStringLiteral("тайна"))(d);
        });
        user::press(m_frame.get(), Qt::Key_F12);
    }
    EXPECT_FALSE(m_frame->document().isLocked());
    EXPECT_EQ(shownRows(), 200);

    // The protection itself goes with the right password only, typed once.
    const QStringList remove = settingsMenu("Премахване на постоянната защита");
    {
        user::ExpectDialog wrong(typePassword(QStringLiteral("друга")));
        user::chooseMenu(m_frame.get(), remove);
    }
    EXPECT_EQ(lastMessage().caption, "Грешна парола");
    {
        user::ExpectDialog right([](QDialog* d) {
            user::type(d->findChildren<QLineEdit*>().at(0), QStringLiteral("тайна"));
            user::click(user::button(d, QStringLiteral("OK")));
        });
        user::chooseMenu(m_frame.get(), remove);
    }
    EXPECT_EQ(shownRows(), 200);
    EXPECT_NE(user::lookAtMenu(m_frame.get(), settingsMenu("Задаване на постоянна защита")),
              nullptr);
    EXPECT_FALSE(user::lookAtMenu(m_frame.get(), settingsMenu("Заключи"))->isEnabled());
    user::press(m_frame.get(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(ledgerOnDisk().lockText.empty());
}

// The field of the print widths dialog under the frame titled `label`.
QLineEdit* widthField(QDialog* d, const char* label)
{
    for (QGroupBox* frame : d->findChildren<QGroupBox*>()) {
        if (frame->title() == QString::fromUtf8(label)) {
            return frame->findChild<QLineEdit*>();
        }
    }
    ADD_FAILURE() << "no field " << label;
    return nullptr;
}

TEST_F(DialogsAsUsed, PrintWidthsAreTypedInMillimetresAndAWordIsRefused)
{
    const QStringList widths = {QStringLiteral("Файл"),
                                QStringLiteral("Настройка на полетата за печат ...")};
    Settings settings(m_store);
    const QString description = QString::number(settings.value(IntSetting::DescrWidth) / 10);
    {
        user::ExpectDialog first([&](QDialog* d) {
            EXPECT_EQ(widthField(d, "описание")->text(), description);
            user::retype(widthField(d, "описание"), QStringLiteral("55,5"));
            user::retype(widthField(d, "сума"), QStringLiteral("много"));
            user::click(user::button(d, QStringLiteral("Съхрани")));
            EXPECT_EQ(lastMessage().icon, MessageIcon::Error);
            EXPECT_TRUE(d->isVisible());
            user::retype(widthField(d, "сума"), QStringLiteral("20"));
            QTest::keyClick(widthField(d, "сума"), Qt::Key_Return);
        });
        user::chooseMenu(m_frame.get(), widths);
    }
    EXPECT_EQ(settings.value(IntSetting::DescrWidth), 555);
    EXPECT_EQ(settings.value(IntSetting::SumWidth), 200);
    {
        // Shown again as stored; Escape leaves them so.
        user::ExpectDialog again([](QDialog* d) {
            EXPECT_EQ(widthField(d, "описание")->text(), QStringLiteral("55.5"));
            EXPECT_EQ(widthField(d, "сума")->text(), QStringLiteral("20"));
            user::retype(widthField(d, "описание"), QStringLiteral("1"));
            QTest::keyClick(d, Qt::Key_Escape);
        });
        user::chooseMenu(m_frame.get(), widths);
    }
    EXPECT_EQ(settings.value(IntSetting::DescrWidth), 555);
}

TEST_F(DialogsAsUsed, ThePageSetupTurnsThePreviewedReportAndThePreviewShowsEveryPage)
{
    {
        user::ExpectDialog setup([](QDialog* d) {
            auto* landscape = user::child<QRadioButton>(d, "landscape");
            ASSERT_NE(landscape, nullptr);
            user::click(landscape);
            EXPECT_TRUE(landscape->isChecked());
            user::click(d->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok));
        });
        user::chooseMenu(m_frame.get(),
                         {QStringLiteral("Файл"), QStringLiteral("Настройка на печата ...")});
    }
    QPageLayout::Orientation shown = QPageLayout::Portrait;
    int pages = -1;
    {
        user::ExpectDialog preview([&](QDialog* d) {
            shown = d->findChild<QPrintPreviewWidget*>()->orientation();
            pages = d->findChild<QPrintPreviewWidget*>()->pageCount();
            QTest::keyClick(d, Qt::Key_Escape);
        });
        user::chooseMenu(m_frame.get(), {QStringLiteral("Файл"),
                                         QStringLiteral("Предпечатен изглед на справката ...")});
    }
    EXPECT_EQ(shown, QPageLayout::Landscape);
    // Every page the layout plans for the list lying on its side.
    EXPECT_EQ(pages, planReport(static_cast<std::size_t>(shownRows()), 0, false, true).maxPage);
}

TEST_F(DialogsAsUsed, CtrlPPrintsTheReportToAFile)
{
    const QString pdf = m_dir.filePath(QStringLiteral("отпечатана.pdf"));
    {
        user::ExpectDialog print([&](QDialog* d) {
            auto* file = user::child<QLineEdit>(d, "filename");
            ASSERT_NE(file, nullptr);
            ASSERT_TRUE(file->isEnabled()) << "no printing to a file";
            user::retype(file, pdf);
            user::click(d->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok));
        });
        user::press(m_frame.get(), Qt::Key_P, Qt::ControlModifier);
    }
    const QString text = pdfText(pdf);
    EXPECT_TRUE(text.contains(QStringLiteral("СПРАВКА ЗА ПРИХОДИТЕ И РАЗХОДИТЕ ОТ")))
        << text.left(400).toStdString();
    EXPECT_TRUE(text.contains(cell(0, 3))) << cell(0, 3).toStdString();
}

TEST_F(DialogsAsUsed, AFilterIsSavedByThePanelAndLoadedByTheMenuThroughTheFileDialogs)
{
    auto* type = user::child<QComboBox>(m_frame.get(), "typeFilter");
    user::pickFromList(type, QStringLiteral("разходи"));
    const int expenses = shownRows();
    ASSERT_GT(expenses, 0);
    ASSERT_LT(expenses, 200);
    const QString filter = m_dir.filePath(QStringLiteral("разходи.ffl"));
    {
        user::ExpectDialog saveAs([&](QDialog* d) { user::answerFileDialog(d, filter); });
        user::click(user::button(m_frame.get(), QStringLiteral("запиши")));
    }
    user::click(user::button(m_frame.get(), QStringLiteral("без филтър")));
    EXPECT_EQ(type->currentText(), QStringLiteral("приходи и разходи"));
    EXPECT_EQ(shownRows(), 200);
    {
        user::ExpectDialog open([&](QDialog* d) { user::answerFileDialog(d, filter); });
        user::chooseMenu(m_frame.get(), {QStringLiteral("Файл"),
                                         QStringLiteral("Зареждане на филтър от файл ...")});
    }
    EXPECT_EQ(type->currentText(), QStringLiteral("разходи"));
    EXPECT_EQ(shownRows(), expenses);
    for (int r = 0; r < shownRows(); ++r) {
        EXPECT_EQ(cell(r, kColType), QStringLiteral("Р"));
    }
}

// A category of the filter panel's tree that has none below it.
QTreeWidgetItem* firstLeaf(QTreeWidget* tree)
{
    for (QTreeWidgetItemIterator it(tree); *it; ++it) {
        if ((*it)->childCount() == 0) {
            return *it;
        }
    }
    return nullptr;
}

TEST_F(DialogsAsUsed, F7OpensTheEditorInTheChosenCategoryAndSaveAndNewOpensTheNextOneThere)
{
    auto* tree = user::child<QTreeWidget>(m_frame.get(), "categoryTree");
    QTreeWidgetItem* leaf = firstLeaf(tree);
    ASSERT_NE(leaf, nullptr);
    user::clickItem(tree, leaf);
    const std::size_t before = m_frame->document().operationCount();
    std::optional<user::ExpectDialog> next;
    QString nextCategory;
    QString nextDescription;
    user::ExpectDialog first([&](QDialog* d) {
        EXPECT_TRUE(user::child<QLabel>(d, "category")->text().contains(leaf->text(0)))
            << user::child<QLabel>(d, "category")->text().toStdString();
        user::type(user::child<QLineEdit>(d, "description"), QStringLiteral("Хляб"));
        user::retype(user::child<QLineEdit>(d, "amount"), QStringLiteral("2,40"));
        user::click(user::button(d, QStringLiteral("добави/промени")));
        next.emplace([&](QDialog* n) {
            nextCategory = user::child<QLabel>(n, "category")->text();
            nextDescription = user::child<QLineEdit>(n, "description")->text();
            EXPECT_EQ(user::child<QTreeWidget>(n, "payments")->topLevelItemCount(), 0);
            QTest::keyClick(n, Qt::Key_Escape);
        });
        user::click(user::button(d, QStringLiteral("съхрани и добави нова")));
    });
    user::press(m_frame.get(), Qt::Key_F7);
    first.verify();
    ASSERT_TRUE(next.has_value());
    next->verify();
    EXPECT_TRUE(nextCategory.contains(leaf->text(0))) << nextCategory.toStdString();
    EXPECT_EQ(nextDescription, QString());
    EXPECT_EQ(m_frame->document().operationCount(), before + 1);
    EXPECT_EQ(cell(0, kColDescription), QStringLiteral("Хляб"));
    EXPECT_EQ(cell(0, kColAmount), QStringLiteral("2.40"));
    EXPECT_TRUE(cell(0, kColCategory).endsWith(leaf->text(0)))
        << cell(0, kColCategory).toStdString();
}

TEST_F(DialogsAsUsed, TheTypeOfANewOperationIsChosenWithTheArrowKeys)
{
    bool openedAsIncome = false;
    user::ExpectDialog editor([&](QDialog* d) {
        auto* income = qobject_cast<QRadioButton*>(user::button(d, QStringLiteral("приход")));
        auto* expense = qobject_cast<QRadioButton*>(user::button(d, QStringLiteral("разход")));
        ASSERT_TRUE(income && expense);
        user::type(user::child<QLineEdit>(d, "description"), QStringLiteral("Бонус"));
        chooseFirstCategory(d);
        // Back from the description, Shift+Tab lands on the type chosen; the arrow chooses the
        // other one.
        QTest::mouseClick(user::child<QLineEdit>(d, "description"), Qt::LeftButton);
        user::press(d, Qt::Key_Backtab, Qt::ShiftModifier);
        auto* focused = qobject_cast<QRadioButton*>(QApplication::focusWidget());
        ASSERT_TRUE(focused == income || focused == expense);
        EXPECT_TRUE(focused->isChecked())
            << focused->text().toStdString() << " has the focus but is not chosen";
        openedAsIncome = income->isChecked();
        user::press(d, openedAsIncome ? Qt::Key_Right : Qt::Key_Left);
        EXPECT_NE(income->isChecked(), openedAsIncome);
        user::retype(user::child<QLineEdit>(d, "amount"), QStringLiteral("300"));
        user::click(user::button(d, QStringLiteral("добави/промени")));
        user::click(user::button(d, QStringLiteral("съхрани")));
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();
    const Operation& saved = *m_frame->document().ledger().operations.rbegin();
    EXPECT_EQ(cp1251::toUtf8(saved.description()), "Бонус");
    EXPECT_EQ(cell(0, kColDescription), QStringLiteral("Бонус"));
    // The other type than the editor opened with.
    EXPECT_EQ(cell(0, kColType), openedAsIncome ? QStringLiteral("Р") : QStringLiteral("П"));
}

TEST_F(DialogsAsUsed, ShiftTabReachesThePaidChoiceMadeAndTheArrowsChangeIt)
{
    const auto radio = [this](const char* text) {
        return qobject_cast<QRadioButton*>(user::button(m_frame.get(), QString::fromUtf8(text)));
    };
    // Back from the button after the choice.
    user::click(user::button(m_frame.get(), QStringLiteral("без филтър")));
    user::press(m_frame.get(), Qt::Key_Backtab, Qt::ShiftModifier);
    ASSERT_EQ(QApplication::focusWidget(), radio("всички операции"));
    user::press(m_frame.get(), Qt::Key_Down);
    EXPECT_TRUE(radio("само платените")->isChecked());
    ASSERT_GT(shownRows(), 0);
    ASSERT_LT(shownRows(), 200);
    for (int r = 0; r < shownRows(); ++r) {
        EXPECT_EQ(cell(r, kColPaid), QStringLiteral("да"));
    }
    user::press(m_frame.get(), Qt::Key_Down);
    EXPECT_TRUE(radio("само неплатените")->isChecked());
    ASSERT_GT(shownRows(), 0);
    for (int r = 0; r < shownRows(); ++r) {
        EXPECT_EQ(cell(r, kColPaid), QStringLiteral("не"));
    }
}

TEST_F(DialogsAsUsed, AChosenCategoryLeavesTheFilterByADoubleClickAfterAQuestionOrByItsButton)
{
    auto* tree = user::child<QTreeWidget>(m_frame.get(), "categoryTree");
    auto* chosen = user::child<QTreeWidget>(m_frame.get(), "selectedCategories");
    QTreeWidgetItem* leaf = firstLeaf(tree);
    user::clickItem(tree, leaf);
    user::press(m_frame.get(), Qt::Key_F2);
    ASSERT_EQ(chosen->topLevelItemCount(), 1);
    const int narrowed = shownRows();
    ASSERT_LT(narrowed, 200);

    m_prompter.queue(Answer::No);
    user::doubleClickItem(chosen, chosen->topLevelItem(0));
    EXPECT_EQ(lastMessage().caption, "Потвърдете");
    EXPECT_EQ(chosen->topLevelItemCount(), 1);
    EXPECT_EQ(shownRows(), narrowed);
    user::doubleClickItem(chosen, chosen->topLevelItem(0));
    EXPECT_EQ(chosen->topLevelItemCount(), 0);
    EXPECT_EQ(shownRows(), 200);

    user::clickItem(tree, leaf);
    user::press(m_frame.get(), Qt::Key_F2);
    QAbstractButton* remove = user::button(m_frame.get(), QStringLiteral("премахни"));
    EXPECT_FALSE(remove->isEnabled());
    user::clickItem(chosen, chosen->topLevelItem(0));
    user::click(remove);
    EXPECT_EQ(chosen->topLevelItemCount(), 0);
    EXPECT_EQ(shownRows(), 200);
}

} // namespace
