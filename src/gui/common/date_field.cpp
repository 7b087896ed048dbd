#include "gui/common/date_field.h"

#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionComboBox>

namespace finora {

DateField::DateField(QWidget* parent) : QDateEdit(parent)
{
    setCalendarPopup(true);
    setDisplayFormat(QStringLiteral("dd-MM-yyyy"));
    // Every day a ledger can hold; Qt's own floor (1752) would move an older date up to it and
    // hide the entries before it.
    setDateRange(QDate(100, 1, 1), QDate(9999, 12, 31));
}

void DateField::keyPressEvent(QKeyEvent* event)
{
    const bool opensList =
        event->key() == Qt::Key_F4 ||
        (event->key() == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier));
    if (!opensList) {
        QDateEdit::keyPressEvent(event);
        return;
    }
    // The calendar opens from a press on the arrow; the edit draws itself as a combo box then.
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.editable = true;
    option.frame = true;
    option.subControls = QStyle::SC_All;
    const QPoint arrow =
        style()
            ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, this)
            .center();
    QMouseEvent press(QEvent::MouseButtonPress, arrow, mapToGlobal(arrow), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    mousePressEvent(&press);
    event->accept();
}

bool DateField::focusNextPrevChild(bool next)
{
    return QWidget::focusNextPrevChild(next); // not from day to month to year
}

} // namespace finora
