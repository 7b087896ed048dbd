#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"

namespace finora {

inline constexpr const char* kLockedText =
    "Този документ е защитен с парола. Натиснете F12, за да го отключите!";
inline constexpr const char* kLockedCaption = "Заключен";

// The one test every command that changes the ledger or opens its editors makes first: true,
// after telling the user, when the ledger is locked.
inline bool refuseWhenLocked(const CFinoraDoc& doc, Prompter& prompter)
{
    if (!doc.isLocked()) {
        return false;
    }
    prompter.error(kLockedText, kLockedCaption);
    return true;
}

} // namespace finora
