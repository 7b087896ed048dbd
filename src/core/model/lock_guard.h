#pragma once

#include "core/model/finora_doc.h"
#include "core/model/prompter.h"

namespace finora {

inline constexpr const char* kLockedText =
    "Този документ е защитен с парола. Натиснете F12, за да го отключите!";
inline constexpr const char* kLockedCaption = "Заключен";

inline constexpr const char* kReadOnlyText =
    "Този документ е отворен само за четене, защото друга програма го държи отворен, и не може "
    "да бъде променян.\n\nЗа да работите с него, затворете го в другата програма и го отворете "
    "отново, или го запишете под друго име.";
inline constexpr const char* kReadOnlyCaption = "Само за четене";

// True, after telling the user, when the ledger was opened read-only: a change is refused when
// it is asked for, not when the work is done and saved.
inline bool refuseWhenReadOnly(const CFinoraDoc& doc, Prompter& prompter)
{
    if (!doc.isReadOnly()) {
        return false;
    }
    prompter.error(kReadOnlyText, kReadOnlyCaption);
    return true;
}

// The one test every command that changes the ledger or opens its editors makes first: true,
// after telling the user, when the ledger is read-only or locked.
inline bool refuseWhenLocked(const CFinoraDoc& doc, Prompter& prompter)
{
    if (refuseWhenReadOnly(doc, prompter)) {
        return true;
    }
    if (!doc.isLocked()) {
        return false;
    }
    prompter.error(kLockedText, kLockedCaption);
    return true;
}

} // namespace finora
