#pragma once

class QDialog;
class QDialogButtonBox;
class QString;

namespace finora {

// The button row of our dialogs: an accepting default button with the given text, and "отказ".
QDialogButtonBox* makeDialogButtons(QDialog* dialog, const QString& acceptText);

} // namespace finora
