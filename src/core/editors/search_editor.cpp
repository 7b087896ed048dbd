#include "core/editors/search_editor.h"

#include "core/text/cp1251.h"

#include <charconv>
#include <cmath>

namespace finora {

SearchEditor::SearchEditor(Prompter& prompter, std::string lastText, bool lastCaseSensitive)
    : m_prompter(prompter)
{
    // Only the text and the case choice carry over; every other option starts cleared.
    m_request.text = std::move(lastText);
    m_request.caseSensitive = lastCaseSensitive;
    m_request.inDescription = false;
}

bool SearchEditor::setTypedText(std::string_view utf8)
{
    auto text = typedText(utf8, m_prompter);
    if (!text) {
        return false;
    }
    m_request.text = std::move(*text);
    return true;
}

void SearchEditor::chooseMode(int mode)
{
    if (mode == SearchRequest::Or && m_request.exactPhrase) {
        const Answer answer = m_prompter.askYesNo(
            "В режим на търсене OR, опцията \"търси същата фраза\" е неприложима. Желаете ли да "
            "бъде деактивирана?",
            "Изберете", MessageIcon::Question);
        if (answer != Answer::Yes) {
            return;
        }
        m_request.exactPhrase = false;
    }
    m_request.mode = mode;
}

void SearchEditor::setExactPhrase(bool on)
{
    if (m_request.mode == SearchRequest::Or) {
        m_prompter.error("Съчетанието на тази опция с операция OR е несъвместимо!",
                         "Невалиден избор");
        return;
    }
    m_request.exactPhrase = on;
}

void SearchEditor::setFields(bool description, bool notes, bool currency)
{
    m_request.inDescription = description;
    m_request.inNotes = notes;
    m_request.inCurrency = currency;
}

bool SearchEditor::accept()
{
    if (!m_request.inDescription && !m_request.inNotes && !m_request.inCurrency) {
        m_prompter.error("Задължително е да изберете търсене в поне едно от трите възможни полета!",
                         "Липсва избор");
        return false;
    }
    return true;
}

bool acceptPassword(bool lockMode, std::string_view password, std::string_view repetition,
                    Prompter& prompter)
{
    if (lockMode && password != repetition) {
        prompter.error("Двете пароли не съвпадат", "Грешка");
        return false;
    }
    return true;
}

std::optional<std::string> typedText(std::string_view utf8, Prompter& prompter)
{
    std::string out;
    cp1251::EncodeError error;
    if (!cp1251::fromUtf8(utf8, out, &error)) {
        prompter.error(error.message(), "Невалиден текст");
        return std::nullopt;
    }
    return out;
}

bool readAmountFilter(std::string_view amount, std::string_view tolerance, bool alsoBgl,
                      Prompter& prompter, AmountFilterRequest& request)
{
    AmountFilterRequest r;
    r.alsoBgl = alsoBgl;
    if (!readNumberField(amount, r.amount)) {
        prompter.error("В полето \"суми в размер на:\" трябва да има число, например 12.50.",
                       "Невалидна стойност");
        return false;
    }
    if (!readNumberField(tolerance, r.tolerance)) {
        prompter.error("В полето \"толеранс ±\" трябва да има число, например 0.50.",
                       "Невалидна стойност");
        return false;
    }
    request = r;
    return true;
}

} // namespace finora
