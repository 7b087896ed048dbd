#include "core/editors/main_money_option.h"

namespace finora {

bool chooseMainMoney(CFinoraDoc& doc, Settings& settings, Prompter& prompter, MainMoney money)
{
    const bool wasLevs = settings.mainMoney() == MainMoney::Levs;
    settings.setValue(IntSetting::EuroDisplay, static_cast<int>(money));
    const std::string euro(kEuroName);
    if (!wasLevs || money == MainMoney::Levs || doc.isLocked() || doc.currencyId(euro) > 0) {
        return false;
    }
    if (prompter.askYesNo(kAddEuroText, kAddEuroCaption, MessageIcon::Question) != Answer::Yes) {
        return false;
    }
    return doc.addCurrency(euro);
}

} // namespace finora
