#include "core/lock/lock_commands.h"

namespace finora {
namespace {

// Asks for the ledger's password and checks it in `mode`; a wrong one is said, a cancel is not.
bool askAndCheck(CFinoraDoc& doc, Prompter& prompter, const PasswordAsker& ask,
                 CFinoraDoc::LockCheck mode)
{
    const auto password = ask(false);
    if (!password) {
        return false;
    }
    if (!doc.checkLock(*password, mode)) {
        prompter.error("Указаната парола не е валидна за този документ!", "Грешна парола");
        return false;
    }
    return true;
}

} // namespace

bool temporaryUnlockCommand(CFinoraDoc& doc, Prompter& prompter, const PasswordAsker& ask)
{
    if (!doc.isLocked()) {
        // Only reachable when the disabled command is sent anyway.
        doc.setUnlocked(false);
        prompter.inform("Документът беше заключен отново.", "Заключен!");
        return true;
    }
    if (!askAndCheck(doc, prompter, ask, CFinoraDoc::LockCheck::TemporaryUnlock)) {
        return false;
    }
    prompter.inform("Документът е временно отключен.", "Временно достъпен!");
    return true;
}

bool permanentProtectionCommand(CFinoraDoc& doc, Prompter& prompter, const PasswordAsker& ask)
{
    if (doc.lockText().empty()) {
        const auto password = ask(true);
        if (!password) {
            return false;
        }
        {
            CFinoraDoc::ChangeBatch step(doc);
            doc.setLock(*password);
            doc.setUnlocked(false); // locked at once
        }
        prompter.inform("Документът е заключен. Запишете го, за да съхраните защитата!", "Успех");
        return true;
    }
    if (!askAndCheck(doc, prompter, ask, CFinoraDoc::LockCheck::RemoveProtection)) {
        return false;
    }
    prompter.inform("Документът вече не е защитен с парола.", "Постоянно достъпен!");
    return true;
}

std::string temporaryUnlockMenuText(const CFinoraDoc& doc)
{
    return doc.isLocked() ? "Временно откл&ючване\tF12" : "&Заключи\tF12";
}

std::string permanentProtectionMenuText(const CFinoraDoc& doc)
{
    return doc.lockText().empty() ? "Задаване на постоянна защита"
                                  : "Премахване на постоянната защита";
}

void tellProtected(Prompter& prompter)
{
    prompter.inform("Този документ е защитен с парола. Изберете \"Отключване\" от менюто "
                    "\"Настройки\", за да го отключите.",
                    "Защита");
}

} // namespace finora
