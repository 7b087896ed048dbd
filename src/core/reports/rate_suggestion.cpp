#include "core/reports/rate_suggestion.h"

#include "core/model/number_text.h"
#include "core/reports/currency_cash.h"
#include "core/text/cp1251.h"

namespace finora {

std::optional<RateAndValue> suggestRate(const CFinoraDoc& doc, const Settings& settings,
                                        Prompter& prompter, double amount,
                                        std::string_view currencyName)
{
    const int mode = settings.value(IntSetting::FixingSuggestMode);
    if (mode == 0) {
        return std::nullopt;
    }
    const std::int32_t currency = doc.currencyId(currencyName);
    if (currency == 0) {
        return std::nullopt;
    }
    const CurrencySummary summary = summariseCurrency(doc, settings, currency);
    const double suggested = mode == 1 ? summary.lastUsedRate : summary.averagedRate;
    if (!(suggested > 0.0)) { // zero, negative or undefined
        return std::nullopt;
    }
    Answer answer = Answer::Yes;
    if (settings.value(IntSetting::AskForFixingSuggestion) == 1) {
        const std::string name = cp1251::toUtf8(currencyName);
        const std::string text =
            mode == 1 ? "Желаете ли да приложите последния използван курс за валутата " + name +
                            "?\n\n(Yes) да, приложи последния използван курс\n(No) не, аз ще "
                            "въведа нов курс\n(Cancel) запази текущата стойност"
                      : "Желаете ли да приложите усреднен курс за валутата " + name +
                            "?\n\n(Yes) да, приложи усреднен курс\n(No) не, аз ще въведа нов "
                            "курс\n(Cancel) запази текущата стойност";
        answer = prompter.askYesNoCancel(text, kRateCaption, MessageIcon::Question);
    }
    switch (answer) {
    case Answer::Yes:
        // Rounded as the fields show them: six decimals for the rate, two for the value.
        return RateAndValue{parseNumber(rateText(suggested)),
                            parseNumber(amountText(amount * suggested))};
    case Answer::No:
        return RateAndValue{1.0, amount};
    default:
        return std::nullopt;
    }
}

void rememberLastRate(const CFinoraDoc& doc, Settings& settings, std::int32_t currencyId,
                      double rate)
{
    if (currencyId == 0) {
        return;
    }
    settings.setLastFixing(doc.currencyName(currencyId), rate);
}

} // namespace finora
