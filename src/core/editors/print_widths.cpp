#include "core/editors/print_widths.h"

#include "core/editors/search_editor.h"
#include "core/model/number_text.h"

#include <cmath>

namespace finora {

PrintWidthTexts printWidthTexts(const Settings& settings)
{
    PrintWidthTexts texts;
    for (std::size_t i = 0; i < kPrintWidthFields.size(); ++i) {
        texts[i] = shortestText(settings.value(kPrintWidthFields[i].key) / 10.0);
    }
    return texts;
}

bool savePrintWidths(const PrintWidthTexts& texts, Settings& settings, Prompter& prompter)
{
    std::array<int, kPrintWidthFields.size()> widths{};
    for (std::size_t i = 0; i < kPrintWidthFields.size(); ++i) {
        double mm = 0.0;
        if (!readNumberField(texts[i], mm)) {
            prompter.error(std::string("Моля, въведете число в полето \"") +
                               kPrintWidthFields[i].label + "\".",
                           "Невалидна стойност");
            return false;
        }
        // Beyond a metre and a half nothing fits on any paper (and the tenths must fit the
        // stored integer): such a number is a typing slip, and it is named as one.
        if (std::fabs(mm) > kMaxPrintWidthMm) {
            prompter.error(std::string("Ширината в полето \"") + kPrintWidthFields[i].label +
                               "\" не може да бъде повече от 1500 мм.",
                           "Невалидна стойност");
            return false;
        }
        widths[i] = static_cast<int>(std::trunc(mm * 10.0));
    }
    for (std::size_t i = 0; i < kPrintWidthFields.size(); ++i) {
        settings.setValue(kPrintWidthFields[i].key, widths[i]);
    }
    return true;
}

} // namespace finora
