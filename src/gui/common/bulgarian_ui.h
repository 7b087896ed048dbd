#pragma once

class QCoreApplication;

namespace finora {

// Qt's own texts (file dialogs, standard buttons, the calendar) in Bulgarian like the rest of
// the program, and Bulgarian month and day names wherever Qt formats a date. Returns whether
// Qt's translation was found; without it Qt's parts stay in English and nothing else changes.
bool useBulgarian(QCoreApplication& app);

} // namespace finora
