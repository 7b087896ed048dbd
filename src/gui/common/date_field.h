#pragma once

#include <QDateEdit>

namespace finora {

// A date in the program's "dd-MM-yyyy" form with a calendar to pick from. F4 and Alt+Down open
// the calendar as they open any drop-down list: Qt's date edit opens it for the mouse only. Tab
// leaves the field as it leaves any other; typing a day fills it and moves on to the month.
class DateField final : public QDateEdit {
    Q_OBJECT

public:
    explicit DateField(QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
};

} // namespace finora
