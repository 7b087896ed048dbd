#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"

#include <functional>
#include <optional>
#include <string>

namespace finora {

// Asks for a password (Windows-1251): lock mode wants it twice. nullopt when cancelled.
using PasswordAsker = std::function<std::optional<std::string>(bool lockMode)>;

// "Временно отключване" (F12). True when the list must be refilled.
bool temporaryUnlockCommand(CFinoraDoc& doc, Prompter& prompter, const PasswordAsker& ask);
// "Наложи постоянно заключване": sets a protection, or removes the one there is.
bool permanentProtectionCommand(CFinoraDoc& doc, Prompter& prompter, const PasswordAsker& ask);
// The menu texts of the two commands as they read now (UTF-8).
std::string temporaryUnlockMenuText(const CFinoraDoc& doc);
std::string permanentProtectionMenuText(const CFinoraDoc& doc);
// Said when a protected ledger has been opened.
void tellProtected(Prompter& prompter);

} // namespace finora
