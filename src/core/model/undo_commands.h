#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"

#include <cstddef>
#include <string>

namespace finora {

// How many commands the desktop program can take back.
inline constexpr std::size_t kUndoSteps = 100;

// "&Отмени" and "&Възстанови": refused with the lock message while the ledger is locked, like
// every other change. True when the ledger changed and the views must be refilled.
bool undoCommand(CFinoraDoc& doc, Prompter& prompter);
bool redoCommand(CFinoraDoc& doc, Prompter& prompter);

// The menu texts as they read now, naming the step ("&Отмени: изтриване на 120 записа"); the
// step's name is escaped so that no '&' in it becomes an accelerator (UTF-8).
std::string undoMenuText(const CFinoraDoc& doc);
std::string redoMenuText(const CFinoraDoc& doc);

} // namespace finora
