// The smaller things a first-time user meets: where Tab goes, Qt's own texts in Bulgarian, the
// title of a new ledger, windows that fit a small screen, a long report that can be stopped, and
// a saved operation that the filter hides.
#include "gui/window/qt_document_host.h"
#include "gui/window/report_printer.h"
#include "support/desktop_session.h"
#include "support/user.h"

#include <QCalendarWidget>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPrintPreviewWidget>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

class FirstUseTest : public DesktopSession {
protected:
    void start(int operations) { openGenerated(QStringLiteral("първи.fnr"), operations, 5); }
    QWidget* focused() { return QApplication::focusWidget(); }
    // Where the keyboard focus is, as a test reads it: the object's name or the text it shows.
    static QString nameOf(QWidget* w)
    {
        if (!w) {
            return QStringLiteral("(nothing)");
        }
        if (auto* b = qobject_cast<QAbstractButton*>(w)) {
            return user::shown(b->text());
        }
        return w->objectName().isEmpty() ? QString::fromLatin1(w->metaObject()->className())
                                         : w->objectName();
    }
};

TEST_F(FirstUseTest, TabWalksThePanelInItsOrderAndLeavesTheListInOneStep)
{
    start(200);
    // Alt and the underlined letter of "от:" reach the first date.
    user::pressLetter(m_frame.get(), QChar(0x0442) /* т */, Qt::AltModifier);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return nameOf(focused()) == QStringLiteral("periodFrom"); }, 1000))
        << nameOf(focused()).toStdString();
    QWidget* from = focused();

    QStringList walked;
    for (int i = 0; i < 14 && focused() != table(); ++i) {
        user::press(m_frame.get(), Qt::Key_Tab);
        walked << nameOf(focused());
    }
    // The second date, the currency, one stop for the paid choice, the panel's buttons, the
    // tree, the chosen categories and their switch (the buttons that act on a choice are off
    // with nothing chosen), then the list.
    const QStringList expected = {QStringLiteral("periodTo"),
                                  QStringLiteral("currencyFilter"),
                                  QStringLiteral("всички операции"),
                                  QStringLiteral("без филтър"),
                                  QStringLiteral("зареди"),
                                  QStringLiteral("запиши"),
                                  QStringLiteral("categoryTree"),
                                  QStringLiteral("selectedCategories"),
                                  QStringLiteral("включи и подкатегориите"),
                                  QStringLiteral("operationsList")};
    EXPECT_EQ(walked, expected) << walked.join(QStringLiteral(" → ")).toStdString();

    // In the list the arrows move the row; one Tab leaves it, whatever the number of cells.
    QTest::keyClick(table(), Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClick(table(), Qt::Key_Down);
    QTest::keyClick(table(), Qt::Key_Down);
    EXPECT_EQ(table()->currentIndex().row(), 2);
    user::press(m_frame.get(), Qt::Key_Tab);
    EXPECT_NE(focused(), table());
    // Shift+Tab from the first field of the panel goes back, not into a cell of the list.
    from->setFocus();
    user::press(m_frame.get(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_NE(focused(), from);
}

TEST_F(FirstUseTest, QtsOwnTextsAndTheCalendarAreBulgarian)
{
    start(20);
    // The calendar of the editor's date: the month by name, in Bulgarian.
    user::ExpectDialog editor([&](QDialog* d) {
        auto* date = d->findChild<QDateEdit*>();
        EXPECT_EQ(date->text(), QStringLiteral("01-11-2026"));
        QTest::mouseClick(date, Qt::LeftButton, {}, QPoint(8, date->height() / 2));
        ASSERT_EQ(QApplication::focusWidget(), date);
        user::press(d, Qt::Key_F4);
        QCalendarWidget* calendar = date->calendarWidget();
        ASSERT_TRUE(QTest::qWaitFor([&] { return calendar->isVisible(); }, 1000))
            << "the calendar did not open";
        auto* month = calendar->findChild<QToolButton*>(QStringLiteral("qt_calendar_monthbutton"));
        ASSERT_NE(month, nullptr);
        EXPECT_EQ(month->text().toLower(), QStringLiteral("ноември"));
        QTest::keyClick(calendar, Qt::Key_Escape);
        QTest::keyClick(d, Qt::Key_Escape);
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();

    // The program's own file dialog: its buttons read as the rest of the program.
    QtDocumentHost host(m_frame.get());
    QStringList buttons;
    user::ExpectDialog files([&](QDialog* d) {
        for (QAbstractButton* b : d->findChildren<QDialogButtonBox*>().value(0)->buttons()) {
            buttons << user::shown(b->text());
        }
        d->reject();
    });
    (void)host.chooseOpenPath("Отваряне", {});
    files.verify();
    EXPECT_TRUE(buttons.contains(QStringLiteral("Отказ")))
        << buttons.join(QLatin1Char(',')).toStdString();
    EXPECT_FALSE(buttons.contains(QStringLiteral("Cancel")));
}

TEST_F(FirstUseTest, ANewLedgerIsUntitledAndItsSearchButtonIsOffWithTheMenuItem)
{
    start(20);
    // The title a person sees: "[*]" is where the modified mark goes, not text.
    const auto shownTitle = [&] {
        return m_frame->windowTitle().replace(QStringLiteral("[*]"), QString());
    };
    auto* search =
        m_frame->findChild<QToolBar*>(QStringLiteral("toolbar"))
            ->widgetForAction(m_frame->findChild<QAction*>(QStringLiteral("actionSearch")));
    ASSERT_NE(search, nullptr);
    EXPECT_TRUE(search->isEnabled());
    user::press(m_frame.get(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(shownTitle(), QStringLiteral("Без име - Finora"));
    EXPECT_FALSE(m_frame->isWindowModified());
    EXPECT_FALSE(search->isEnabled()) << "the toolbar offers a search of an empty list";
    // Nothing opens either from the key.
    user::NoDialog none;
    user::press(m_frame.get(), Qt::Key_F3);
}

// 1280×800 at a scale of 2 leaves 640×400 for windows, less a title bar and a panel.
constexpr QSize kSmallScreen{640, 360};

QSize smallestSize(QWidget* w)
{
    return w->minimumSize().expandedTo(w->minimumSizeHint());
}

TEST_F(FirstUseTest, TheMainWindowAndTheEditorsFitASmallScreenAtDoubleScale)
{
    start(20);
    const QSize main = smallestSize(m_frame.get());
    EXPECT_LE(main.width(), kSmallScreen.width()) << main.width();
    EXPECT_LE(main.height(), kSmallScreen.height()) << main.height();

    QStringList tooBig;
    const auto measure = [&](QDialog* d) {
        const QSize s = smallestSize(d);
        if (s.width() > kSmallScreen.width() || s.height() > kSmallScreen.height()) {
            tooBig
                << QStringLiteral("%1 %2×%3").arg(d->windowTitle()).arg(s.width()).arg(s.height());
        }
        d->reject();
    };
    const std::pair<int, Qt::KeyboardModifiers> keys[] = {
        {Qt::Key_F8, Qt::NoModifier},      // the operation editor
        {Qt::Key_F3, Qt::NoModifier},      // search
        {Qt::Key_F3, Qt::ShiftModifier},   // the amount filter
        {Qt::Key_F1, Qt::ControlModifier}, // currency cash
        {Qt::Key_F2, Qt::ControlModifier}, // the categories
    };
    for (const auto& [key, modifiers] : keys) {
        user::ExpectDialog dialog(measure);
        user::press(m_frame.get(), key, modifiers);
        dialog.verify();
    }
    user::ExpectDialog chart(measure);
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Данни"),
                      QStringLiteral("Диаграма за приходите и разходите през годината ...")});
    chart.verify();
    EXPECT_TRUE(tooBig.isEmpty()) << tooBig.join(QStringLiteral("; ")).toStdString();

    // At that size the list still shows a screenful of rows, not two.
    m_frame->resize(kSmallScreen);
    QApplication::processEvents();
    EXPECT_GE(table()->viewport()->height(), 5 * table()->verticalHeader()->defaultSectionSize())
        << table()->viewport()->height();
}

TEST_F(FirstUseTest, ALongReportShowsItsProgressAndStopsWhenCancelled)
{
    start(20000);
    // The preview and the PDF alike: a progress that can be stopped, a busy cursor meanwhile.
    const QString pdf = m_dir.filePath(QStringLiteral("справка.pdf"));
    const QStringList commands[] = {
        {QStringLiteral("Файл"), QStringLiteral("Предпечатен изглед на справката ...")},
        {QStringLiteral("Файл"), QStringLiteral("Запиши справката като PDF ...")}};
    for (const QStringList& command : commands) {
        SCOPED_TRACE(command.back().toStdString());
        const bool toPdf = command.back().contains(QStringLiteral("PDF"));
        m_host.exportPaths = {pdf.toStdString()};
        m_prompter.clear();
        int planned = 0;
        std::optional<user::ExpectDialog> preview;
        user::ExpectDialog progress([&](QDialog* d) {
            auto* bar = qobject_cast<QProgressDialog*>(d);
            ASSERT_NE(bar, nullptr) << d->windowTitle().toStdString();
            EXPECT_TRUE(d->findChild<QLabel*>()->text().startsWith(
                QString::fromUtf8(ReportPrinter::kPreparingText)));
            EXPECT_EQ(QGuiApplication::overrideCursor() ? QGuiApplication::overrideCursor()->shape()
                                                        : Qt::ArrowCursor,
                      Qt::WaitCursor);
            planned = bar->maximum();
            if (!toPdf) {
                preview.emplace([&](QDialog* p) {
                    // The pages laid out before the stop are shown, and the title says so.
                    const int shown = p->findChild<QPrintPreviewWidget*>()->pageCount();
                    EXPECT_GT(shown, 0);
                    EXPECT_LT(shown, planned);
                    EXPECT_TRUE(p->windowTitle().contains(QStringLiteral("непълен")));
                    EXPECT_TRUE(p->windowTitle().contains(QString::number(planned)));
                    QTest::keyClick(p, Qt::Key_Escape);
                });
            }
            user::click(user::button(d, QStringLiteral("Отказ")));
        });
        user::chooseMenu(m_frame.get(), command);
        progress.verify();
        if (preview) {
            preview->verify();
        }
        EXPECT_GT(planned, 100);
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        // A stopped PDF leaves no file and no complaint.
        EXPECT_TRUE(QDir(m_dir.path()).entryList({QStringLiteral("справка*")}).isEmpty());
        EXPECT_TRUE(m_prompter.messages().empty());
    }
}

TEST_F(FirstUseTest, AnOperationSavedOutsideTheShownPeriodIsToldInTheStatusBar)
{
    start(200);
    const std::size_t shownBefore = m_frame->view().list().rowCount();
    user::ExpectDialog editor([&](QDialog* d) {
        user::type(d->findChild<QLineEdit*>(QStringLiteral("description")),
                   QStringLiteral("Стара сметка"));
        chooseFirstCategory(d);
        // A year long before the shown period, typed day by day into the date.
        // Back from the description past the type choice into the date, whose year that selects.
        auto* date = d->findChild<QDateEdit*>();
        QTest::mouseClick(d->findChild<QLineEdit*>(QStringLiteral("description")), Qt::LeftButton);
        user::press(d, Qt::Key_Backtab, Qt::ShiftModifier);
        user::press(d, Qt::Key_Backtab, Qt::ShiftModifier);
        ASSERT_EQ(QApplication::focusWidget(), date);
        QTest::keyClicks(date, QStringLiteral("1990"));
        EXPECT_EQ(date->text(), QStringLiteral("01-11-1990"));
        user::retype(d->findChild<QLineEdit*>(QStringLiteral("amount")), QStringLiteral("12"));
        user::click(user::button(d, QStringLiteral("добави/промени")));
        user::click(user::button(d, QStringLiteral("съхрани")));
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();
    EXPECT_EQ(m_frame->document().operationCount(), 201u);
    EXPECT_EQ(m_frame->view().list().rowCount(), shownBefore);
    const QString said = m_frame->statusBar()->currentMessage();
    EXPECT_TRUE(said.contains(QStringLiteral("201"))) << said.toStdString();
    EXPECT_TRUE(said.contains(QString::number(201 - shownBefore))) << said.toStdString();

    // Once the hint has gone, the idle text is back.
    m_frame->statusBar()->clearMessage();
    EXPECT_EQ(m_frame->statusBar()->currentMessage(), QString::fromUtf8(CMainFrame::kIdleText));
}

} // namespace
