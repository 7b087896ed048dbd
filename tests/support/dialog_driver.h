#pragma once

// Helpers that drive real dialogs offscreen: answer the next modal dialog, find controls by
// their texts, and type as a user does.
#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFocusEvent>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>

namespace finora::test {

// Runs `fill` on the modal dialog that the next action opens. With FINORA_SHOTS_DIR set, a
// picture of the dialog at its opening size is saved there first, to look at what the user sees.
inline void answerNextDialog(std::function<void(QDialog*)> fill)
{
    QTimer::singleShot(0, [fill] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        const QString shots = qEnvironmentVariable("FINORA_SHOTS_DIR");
        if (!shots.isEmpty()) {
            dialog->grab().save(shots + QLatin1Char('/') + dialog->windowTitle() + QStringLiteral(".png"));
        }
        fill(dialog);
    });
}

// The button (push button, check box or radio button) with exactly this text, or null.
template <class Button = QAbstractButton>
Button* buttonWithText(QWidget* parent, const QString& text)
{
    for (Button* b : parent->findChildren<Button*>()) {
        if (b->text() == text) {
            return b;
        }
    }
    return nullptr;
}

inline void click(QWidget* parent, const QString& text)
{
    QAbstractButton* b = buttonWithText(parent, text);
    ASSERT_NE(b, nullptr) << text.toStdString();
    ASSERT_TRUE(b->isEnabled()) << text.toStdString();
    b->click();
}

// Focus in, the text, focus out: what the editors see when a user types into a field.
inline void typeInto(QLineEdit* edit, const QString& text)
{
    QFocusEvent in(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(edit, &in);
    edit->setText(text);
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(edit, &out);
}

// One key press a character, as typed on a keyboard. (QTest::keyClicks sends Latin-1 only, so
// Cyrillic letters would arrive as nothing.)
inline void typeKeys(QWidget* widget, const QString& text)
{
    for (const QChar c : text) {
        QTest::sendKeyEvent(QTest::Click, widget, Qt::Key_unknown, QString(c), Qt::NoModifier);
    }
}

} // namespace finora::test
