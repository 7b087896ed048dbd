// What a screen reader finds: every control the keyboard reaches, in the main window and in
// every dialog, has a name.
#include "support/desktop_session.h"
#include "support/user.h"

#include <QAccessible>
#include <QAccessibleInterface>
#include <algorithm>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

// The focusable objects under `node` that have no name, walked as assistive software walks
// them; "..." or "?" says nothing read aloud. The items of a list, a tree or a table are named by
// their data, not checked here.
void collectUnnamed(QAccessibleInterface* node, const QString& where, QStringList& unnamed)
{
    for (int i = 0; i < node->childCount(); ++i) {
        QAccessibleInterface* child = node->child(i);
        if (!child || child->state().invisible) {
            continue;
        }
        const QAccessible::Role role = child->role();
        const QString name = child->text(QAccessible::Name);
        if (child->state().focusable &&
            std::none_of(name.begin(), name.end(), [](QChar c) { return c.isLetter(); })) {
            QObject* object = child->object();
            unnamed << QStringLiteral("%1: %2 %3")
                           .arg(where,
                                object ? QString::fromLatin1(object->metaObject()->className())
                                       : QString::number(role),
                                object ? object->objectName() : QString());
        }
        if (role != QAccessible::Table && role != QAccessible::Tree && role != QAccessible::List &&
            role != QAccessible::ComboBox && role != QAccessible::SpinBox) {
            collectUnnamed(child, where, unnamed);
        }
    }
}

QStringList unnamedIn(QWidget* window)
{
    QStringList unnamed;
    collectUnnamed(QAccessible::queryAccessibleInterface(window), window->windowTitle(), unnamed);
    return unnamed;
}

TEST_F(DesktopSession, EveryControlTheKeyboardReachesHasAName)
{
    openGenerated(QStringLiteral("имена.fnr"), 30, 4);
    QStringList unnamed = unnamedIn(m_frame.get());
    const auto walk = [&unnamed](QDialog* d) {
        unnamed << unnamedIn(d);
        d->reject();
    };
    // The operation editor, and the category chooser it opens.
    user::ExpectDialog editor([&](QDialog* d) {
        user::ExpectDialog chooser(walk);
        user::click(user::button(d, QStringLiteral("...")));
        chooser.verify();
        walk(d);
    });
    user::press(m_frame.get(), Qt::Key_F8);
    editor.verify();
    // The categories, and the dialog of a new one.
    user::ExpectDialog categories([&](QDialog* d) {
        user::ExpectDialog category(walk);
        user::click(user::button(d, QStringLiteral("нова категория")));
        category.verify();
        walk(d);
    });
    user::press(m_frame.get(), Qt::Key_F2, Qt::ControlModifier);
    categories.verify();

    const std::pair<int, Qt::KeyboardModifiers> keys[] = {
        {Qt::Key_F3, Qt::NoModifier},      // search
        {Qt::Key_F3, Qt::ShiftModifier},   // the amount filter
        {Qt::Key_F1, Qt::ControlModifier}, // currency cash
    };
    for (const auto& [key, modifiers] : keys) {
        user::ExpectDialog dialog(walk);
        user::press(m_frame.get(), key, modifiers);
        dialog.verify();
    }
    const QStringList menus[] = {
        {QStringLiteral("Файл"), QStringLiteral("Настройка на полетата за печат ...")},
        {QStringLiteral("Данни"),
         QStringLiteral("Диаграма за приходите и разходите през годината ...")},
        {QStringLiteral("Настройки"), QStringLiteral("Задаване на постоянна защита")},
        {QStringLiteral("Настройки"), QStringLiteral("Създавай резервни копия в директория ...")},
        {QStringLiteral("Помощ"), QStringLiteral("Съвет на деня")},
    };
    for (const QStringList& path : menus) {
        user::ExpectDialog dialog(walk);
        user::chooseMenu(m_frame.get(), path);
        dialog.verify();
    }
    EXPECT_TRUE(unnamed.isEmpty()) << unnamed.join(QStringLiteral("\n")).toStdString();
}

} // namespace
