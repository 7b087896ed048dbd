#pragma once

#include "core/model/prompter.h"
#include "core/settings/settings.h"

#include <array>
#include <string>

namespace finora {

// "Настройка на полетата в отпечатаните справки": the printed columns' widths, shown in
// millimetres and kept in tenths of a millimetre.
struct PrintWidthField {
    const char* label; // UTF-8
    IntSetting key;
};
inline constexpr std::array<PrintWidthField, 7> kPrintWidthFields = {{
    {"дата", IntSetting::DateWidth},
    {"категория", IntSetting::CatWidth},
    {"тип", IntSetting::TypeWidth},
    {"сума", IntSetting::SumWidth},
    {"валута", IntSetting::CurrWidth},
    {"сума BGL", IntSetting::SumBGLWidth},
    {"описание", IntSetting::DescrWidth},
}};

inline constexpr double kMaxPrintWidthMm = 1500.0;

using PrintWidthTexts = std::array<std::string, kPrintWidthFields.size()>;

// Each stored width ÷ 10, as the fields show it: "17", "8.5".
PrintWidthTexts printWidthTexts(const Settings& settings);
// "Съхрани": every field must be a number of at most kMaxPrintWidthMm either way, each refusal
// with its own message; each is stored × 10, truncated. Nothing is written when one is refused.
bool savePrintWidths(const PrintWidthTexts& texts, Settings& settings, Prompter& prompter);

inline constexpr const char* kPrintWidthsTitle = "Настройка на полетата в отпечатаните справки";

} // namespace finora
