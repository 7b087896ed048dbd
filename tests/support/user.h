#pragma once

// Widget tests that act as a user does: keys and clicks on the real widgets, menus opened with
// the mouse, and modal dialogs that must come when expected (and must not when not).
#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>

namespace finora::test::user {

// Shows the window and makes it the active one, as the window under a user's hands is; keyboard
// shortcuts only reach an active window.
inline void bringUp(QWidget* window)
{
    window->show();
    QApplication::setActiveWindow(window);
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window)) << window->windowTitle().toStdString();
}

// The window a user works in is the active one. Offscreen there is no window manager to hand
// the activation back when a dialog closes, so every action here makes sure of it first (unless
// a modal dialog above the window has it, as it would). When a window that is no dialog closes
// (the help), nothing at all is left active, so the window system is asked as well.
inline void activate(QWidget* widget)
{
    QWidget* window = widget->window();
    QWidget* modal = QApplication::activeModalWidget();
    const bool inactive = QApplication::activeWindow() != window || !QGuiApplication::focusWindow();
    if (inactive && (!modal || modal == window)) {
        QApplication::setActiveWindow(window);
        window->activateWindow();
        (void)QTest::qWaitForWindowActive(window);
    }
}

// A key press where the keyboard focus is in `window` (or the window itself).
inline void press(QWidget* window, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    activate(window);
    QWidget* target = window->focusWidget() ? window->focusWidget() : window;
    QTest::keyClick(target, static_cast<Qt::Key>(key), modifiers);
}

// A letter key that QTest's own table does not know (Cyrillic), with the text it types; Alt and
// the letter reach the field whose label underlines it.
inline void pressLetter(QWidget* window, QChar letter,
                        Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    activate(window);
    QWidget* target = window->focusWidget() ? window->focusWidget() : window;
    const auto key = static_cast<Qt::Key>(letter.toUpper().unicode());
    QTest::sendKeyEvent(QTest::Click, target, key, QString(letter), modifiers);
}

// What a menu or a button shows, without the accelerator's '&'.
inline QString shown(QString text)
{
    return text.remove(QLatin1Char('&'));
}

// The item of a menu (or the menu bar) that shows `text`, separators aside.
inline QAction* itemShowing(const QWidget* menu, const QString& text)
{
    for (QAction* a : menu->actions()) {
        if (!a->isSeparator() && shown(a->text()) == text) {
            return a;
        }
    }
    return nullptr;
}

struct OpenedMenu {
    QMenu* menu = nullptr;   // the deepest menu open
    QAction* item = nullptr; // the last item of the path, in `menu`
};

// Opens the menu bar's menu and every submenu along `path` with the mouse and leaves them open
// for a look; texts compare without their '&'. A missing item is a failure and an empty answer.
inline OpenedMenu openMenus(QMainWindow* window, const QStringList& path)
{
    if (path.isEmpty()) {
        ADD_FAILURE() << "no menu named";
        return {};
    }
    activate(window);
    QMenuBar* bar = window->menuBar();
    QAction* top = itemShowing(bar, path.front());
    if (!top || !top->menu()) {
        ADD_FAILURE() << "no menu " << path.front().toStdString();
        return {};
    }
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(top).center());
    OpenedMenu opened{top->menu(), top};
    if (!QTest::qWaitFor([&] { return opened.menu->isVisible(); }, 1000)) {
        ADD_FAILURE() << path.front().toStdString() << " did not open";
        return {};
    }
    for (qsizetype i = 1; i < path.size(); ++i) {
        opened.item = itemShowing(opened.menu, path.at(i));
        if (!opened.item) {
            ADD_FAILURE() << "no item " << path.at(i).toStdString();
            return {};
        }
        QMenu* sub = opened.item->menu();
        if (sub && opened.item->isEnabled() && i + 1 < path.size()) {
            QTest::mouseClick(opened.menu, Qt::LeftButton, {},
                              opened.menu->actionGeometry(opened.item).center());
            if (!QTest::qWaitFor([&] { return sub->isVisible(); }, 1000)) {
                ADD_FAILURE() << path.at(i).toStdString() << " did not open";
                return {};
            }
            opened.menu = sub;
        } else if (i + 1 < path.size()) {
            ADD_FAILURE() << path.at(i).toStdString() << " opens nothing";
            return {};
        }
    }
    return opened;
}

// Escape until no menu is open, as a user leaves menus they only looked at.
inline void closeMenus()
{
    for (int i = 0; i < 8 && QApplication::activePopupWidget(); ++i) {
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    }
}

// The item at the end of `path` as the open menu shows it (its text, whether it is enabled or
// checked), the menus closed again afterwards; null when it is missing.
inline QAction* lookAtMenu(QMainWindow* window, const QStringList& path)
{
    const OpenedMenu opened = openMenus(window, path);
    closeMenus();
    return opened.item;
}

// What the menu at the end of `path` lists, in order, separators aside.
inline QStringList menuTexts(QMainWindow* window, const QStringList& path)
{
    QStringList texts;
    const OpenedMenu opened = openMenus(window, path);
    if (opened.item && opened.item->menu()) {
        QMenu* menu = opened.item->menu();
        if (path.size() > 1) { // a submenu opens at a click on its item
            QTest::mouseClick(opened.menu, Qt::LeftButton, {},
                              opened.menu->actionGeometry(opened.item).center());
            (void)QTest::qWaitFor([&] { return menu->isVisible(); }, 1000);
        }
        for (QAction* a : menu->actions()) {
            if (!a->isSeparator()) {
                texts << shown(a->text());
            }
        }
    }
    closeMenus();
    return texts;
}

// Opens the menus along `path` with the mouse and clicks the last item; a path of a menu bar's
// menu alone opens it and leaves it open. Fails the test when an item is missing or disabled.
inline void chooseMenu(QMainWindow* window, const QStringList& path)
{
    const OpenedMenu opened = openMenus(window, path);
    ASSERT_NE(opened.item, nullptr);
    if (path.size() == 1) {
        return;
    }
    ASSERT_TRUE(opened.item->isEnabled()) << path.back().toStdString() << " is disabled";
    QTest::mouseClick(opened.menu, Qt::LeftButton, {},
                      opened.menu->actionGeometry(opened.item).center());
}

// The button of `parent` that shows `text` (compared without the '&'), or null.
inline QAbstractButton* button(QWidget* parent, const QString& text)
{
    for (QAbstractButton* b : parent->findChildren<QAbstractButton*>()) {
        if (shown(b->text()) == text) {
            return b;
        }
    }
    return nullptr;
}

// Types `text` into the widget key by key, Cyrillic included (QTest::keyClicks passes only
// Latin-1 on).
inline void type(QWidget* widget, const QString& text)
{
    activate(widget);
    for (const QChar c : text) {
        const auto key = static_cast<Qt::Key>(c.isLetter() ? c.toUpper().unicode() : c.unicode());
        QTest::sendKeyEvent(QTest::Click, widget, key, QString(c), Qt::NoModifier);
    }
}

// Clicks into a line edit, selects what it holds and types over it, as a user replaces a field.
inline void retype(QLineEdit* edit, const QString& text)
{
    ASSERT_NE(edit, nullptr);
    activate(edit);
    QTest::mouseClick(edit, Qt::LeftButton);
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    type(edit, text);
}

// A double click as the mouse makes one: a click, then the second press that the system reports
// as a double click.
inline void doubleClick(QWidget* widget, QPoint at)
{
    activate(widget);
    QTest::mouseClick(widget, Qt::LeftButton, {}, at);
    QTest::mouseDClick(widget, Qt::LeftButton, {}, at);
}

// A click on what the button shows: a check box or a radio button laid out wider than its text
// takes a click on the text or its box only.
inline void click(QAbstractButton* button)
{
    ASSERT_NE(button, nullptr);
    ASSERT_TRUE(button->isVisible() && button->isEnabled()) << button->text().toStdString();
    activate(button);
    const int shownWidth = std::min(button->width(), button->sizeHint().width());
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(shownWidth / 2, button->height() / 2));
}

// The widget of `parent` named `name`, or null with a failure.
template <class Widget = QWidget> Widget* child(const QObject* parent, const char* name)
{
    auto* found = parent->findChild<Widget*>(QString::fromLatin1(name));
    if (!found) {
        ADD_FAILURE() << "no " << name;
    }
    return found;
}

// A click, or a double click, on an item of a list, a table or a tree, scrolled into sight first
// as a user scrolls to it.
inline void clickIndex(QAbstractItemView* view, const QModelIndex& index,
                       Qt::KeyboardModifiers modifiers = {})
{
    ASSERT_TRUE(index.isValid());
    activate(view);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers,
                      view->visualRect(index).center());
}

inline void doubleClickIndex(QAbstractItemView* view, const QModelIndex& index)
{
    ASSERT_TRUE(index.isValid());
    view->scrollTo(index);
    doubleClick(view->viewport(), view->visualRect(index).center());
}

// The middle of the item's row: its first column may be a hidden one.
inline void clickItem(QTreeWidget* tree, QTreeWidgetItem* item,
                      Qt::KeyboardModifiers modifiers = {})
{
    ASSERT_NE(item, nullptr);
    activate(tree);
    tree->scrollToItem(item);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, modifiers,
                      tree->visualItemRect(item).center());
}

inline void doubleClickItem(QTreeWidget* tree, QTreeWidgetItem* item)
{
    ASSERT_NE(item, nullptr);
    tree->scrollToItem(item);
    doubleClick(tree->viewport(), tree->visualItemRect(item).center());
}

// A click on the header of a column, as a list is sorted.
inline void clickHeader(QHeaderView* header, int section)
{
    activate(header);
    QTest::mouseClick(
        header->viewport(), Qt::LeftButton, {},
        QPoint(header->sectionViewportPosition(section) + header->sectionSize(section) / 2,
               header->height() / 2));
}

// Opens the drop-down with the mouse and clicks the item, as a user picks from a list. (Offscreen
// the popup takes the click as marking the item but not its release as the choice, so Enter
// confirms it; both are the user's ways of choosing.)
inline void pickFromList(QComboBox* combo, const QString& text)
{
    ASSERT_NE(combo, nullptr);
    activate(combo);
    QTest::mouseClick(combo, Qt::LeftButton);
    QAbstractItemView* view = combo->view();
    ASSERT_TRUE(QTest::qWaitFor([&] { return view->isVisible(); }, 1000))
        << "the list did not open";
    const int row = combo->findText(text);
    ASSERT_GE(row, 0) << text.toStdString();
    const QModelIndex index = view->model()->index(row, 0);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
    ASSERT_EQ(view->currentIndex().row(), row);
    if (view->isVisible()) {
        QTest::keyClick(view, Qt::Key_Return);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return !view->isVisible(); }, 1000))
        << "the list did not close";
    QCoreApplication::processEvents(); // what follows the closing, before the user's next move
}

// Qt's own file dialog, as the program shows it offscreen: the whole path typed as the file's
// name, then Enter.
inline void answerFileDialog(QDialog* dialog, const QString& path)
{
    auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    ASSERT_NE(name, nullptr) << "not a file dialog: " << dialog->windowTitle().toStdString();
    retype(name, path);
    QTest::keyClick(name, Qt::Key_Return);
}

// Saves a picture of every visible window, named after the test and `why`. (While gtest reports
// a failure it holds the lock that current_test_info() takes, so a reporter passes the name.)
inline void saveShots(const QString& why, QString test = {})
{
    QString folder = qEnvironmentVariable("FINORA_SHOTS_DIR");
    if (folder.isEmpty()) {
        folder = QDir::temp().filePath(QStringLiteral("finora-failures"));
    }
    QDir().mkpath(folder);
    if (test.isEmpty()) {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        test = info ? QString::fromLatin1(info->name()) : QStringLiteral("test");
    }
    int n = 0;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->isVisible()) {
            const QString file = QStringLiteral("%1/%2-%3-%4.png").arg(folder, test, why).arg(n++);
            w->grab().save(file);
            std::cerr << "picture: " << file.toStdString() << '\n';
        }
    }
}

// The modal dialog that the next action must open: `answer` runs on it once it shows. The
// test fails if the action returns and no dialog came. Only a dialog other than the one in front
// when this was made counts: a click may let events run before its dialog opens.
class ExpectDialog {
public:
    explicit ExpectDialog(std::function<void(QDialog*)> answer) : m_state(std::make_shared<State>())
    {
        m_state->answer = std::move(answer);
        m_state->before = QApplication::activeModalWidget();
        m_state->timer.setInterval(5);
        std::weak_ptr<State> weak = m_state;
        QObject::connect(&m_state->timer, &QTimer::timeout, &m_state->timer, [weak] {
            auto state = weak.lock();
            if (!state) {
                return;
            }
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog || dialog == state->before) {
                if (++state->tries > 400) { // two seconds
                    state->timer.stop();
                    state->fired = true;
                }
                return;
            }
            state->timer.stop();
            state->fired = true;
            state->came = true;
            state->seen = dialog->windowTitle();
            // As a window manager does with a dialog that opens: keys and focus go to it.
            QApplication::setActiveWindow(dialog);
            (void)QTest::qWaitForWindowActive(dialog);
            state->answer(dialog);
        });
        m_state->timer.start();
    }
    ~ExpectDialog() { verify(); }
    ExpectDialog(const ExpectDialog&) = delete;
    ExpectDialog& operator=(const ExpectDialog&) = delete;

    // Fails the test unless the dialog came; safe to call more than once.
    void verify()
    {
        if (m_verified) {
            return;
        }
        m_verified = true;
        (void)QTest::qWaitFor([this] { return m_state->fired; }, 3000);
        m_state->timer.stop();
        if (!m_state->came) {
            saveShots(QStringLiteral("no-dialog"));
            ADD_FAILURE() << "the expected dialog did not appear";
        }
    }
    QString title() const { return m_state->seen; }

private:
    struct State {
        std::function<void(QDialog*)> answer;
        QPointer<QWidget> before;
        QTimer timer;
        int tries = 0;
        bool fired = false;
        bool came = false;
        QString seen;
    };
    std::shared_ptr<State> m_state;
    bool m_verified = false;
};

// Fails the test at once when a modal dialog opens while it lives, and rejects that dialog: a
// command that must open nothing is caught there and then, before the dialog's own loop returns.
class NoDialog : private QObject {
public:
    NoDialog() { QApplication::instance()->installEventFilter(this); }
    ~NoDialog() override { QApplication::instance()->removeEventFilter(this); }
    NoDialog(const NoDialog&) = delete;
    NoDialog& operator=(const NoDialog&) = delete;

private:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* dialog = qobject_cast<QDialog*>(watched);
        if (event->type() == QEvent::Show && dialog && dialog->isModal()) {
            ADD_FAILURE() << "a dialog opened where none should: "
                          << dialog->windowTitle().toStdString();
            QTimer::singleShot(0, dialog, &QDialog::reject);
        }
        return false;
    }
};

// Fails the test, with a picture, when a modal dialog stays open that nobody answers, and closes
// it, so an unexpected dialog is a failure rather than a test that hangs.
class DialogWatch {
public:
    DialogWatch()
    {
        m_timer.setInterval(500);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            QWidget* modal = QApplication::activeModalWidget();
            if (modal != m_last) {
                m_last = modal;
                m_ticks = 0;
                return;
            }
            if (modal && ++m_ticks >= 6) { // three seconds unanswered
                saveShots(QStringLiteral("unexpected-dialog"));
                ADD_FAILURE() << "an unexpected dialog stayed open: "
                              << modal->windowTitle().toStdString();
                if (auto* dialog = qobject_cast<QDialog*>(modal)) {
                    dialog->reject();
                } else {
                    modal->close();
                }
            }
        });
        m_timer.start();
    }

private:
    QTimer m_timer;
    QPointer<QWidget> m_last;
    int m_ticks = 0;
};

} // namespace finora::test::user
