#include "gui/common/qt_prompter.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <utility>

namespace finora {

Answer QtPrompter::show(const Message& message)
{
    QMessageBox box(m_parent);
    box.setWindowTitle(QString::fromStdString(message.caption));
    box.setText(QString::fromStdString(message.text));
    switch (message.icon) {
    case MessageIcon::Information:
        box.setIcon(QMessageBox::Information);
        break;
    case MessageIcon::Warning:
        box.setIcon(QMessageBox::Warning);
        break;
    case MessageIcon::Error:
        box.setIcon(QMessageBox::Critical);
        break;
    case MessageIcon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case MessageIcon::Program:
        box.setIconPixmap(QApplication::windowIcon().pixmap(64, 64));
        break;
    case MessageIcon::None:
        break;
    }
    switch (message.buttons) {
    case MessageButtons::Ok:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    case MessageButtons::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    case MessageButtons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    }
    // The buttons speak Bulgarian whatever translations the system has.
    for (auto [button, text] : {std::pair{QMessageBox::Yes, QT_TR_NOOP("&Да")},
                                std::pair{QMessageBox::No, QT_TR_NOOP("&Не")},
                                std::pair{QMessageBox::Cancel, QT_TR_NOOP("&Отказ")}}) {
        if (QAbstractButton* b = box.button(button)) {
            b->setText(tr(text));
        }
    }
    if (message.defaultButton) {
        switch (*message.defaultButton) {
        case Answer::Yes:
            box.setDefaultButton(QMessageBox::Yes);
            break;
        case Answer::No:
            box.setDefaultButton(QMessageBox::No);
            break;
        case Answer::Cancel:
            box.setDefaultButton(QMessageBox::Cancel);
            break;
        case Answer::Ok:
            box.setDefaultButton(QMessageBox::Ok);
            break;
        }
    }
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        return message.buttons == MessageButtons::Ok ? Answer::Ok : Answer::Cancel;
    }
}

} // namespace finora
