#include "editors/search_editor.h"

namespace finora {

SearchEditor::SearchEditor(Prompter& prompter, std::string lastText, bool lastCaseSensitive)
    : m_prompter(prompter)
{
    // Only the text and the case choice carry over; every other option starts cleared.
    m_request.text = std::move(lastText);
    m_request.caseSensitive = lastCaseSensitive;
    m_request.inDescription = false;
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
        m_prompter.error("Съчетанието на тази опция с операция OR е несъвместимо!", "Невалиден избор");
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

} // namespace finora
