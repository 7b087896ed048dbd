#pragma once

#include "core/model/euro.h"
#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/settings/settings.h"

namespace finora {

// Chooses how figures kept in leva are shown. Whoever turns the euro on for a ledger that has no
// "EUR" currency is offered to add it, as one step the user can undo; a locked ledger is not
// offered anything. True when the ledger changed.
bool chooseMainMoney(CFinoraDoc& doc, Settings& settings, Prompter& prompter, MainMoney money);

inline constexpr const char* kAddEuroText =
    "В този документ няма валута EUR.\nЖелаете ли да бъде добавена, за да въвеждате плащанията "
    "си в евро?";
inline constexpr const char* kAddEuroCaption = "Суми в евро";

} // namespace finora
