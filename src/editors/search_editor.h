#pragma once

#include "model/prompter.h"
#include "query/operations_list.h"

namespace finora {

// The rules of the search dialog: OR and the exact phrase exclude each other, and at least one
// field must be searched. The dialog shows `request()` and forwards every change here.
class SearchEditor {
public:
    SearchEditor(Prompter& prompter, std::string lastText, bool lastCaseSensitive);

    const SearchRequest& request() const { return m_request; }
    void setText(std::string text) { m_request.text = std::move(text); }
    // Choosing OR with the exact phrase on asks to turn the phrase off; No keeps the old mode.
    void chooseMode(int mode);
    // Refused with a message while the mode is OR.
    void setExactPhrase(bool on);
    void setFields(bool description, bool notes, bool currency);
    void setCaseSensitive(bool on) { m_request.caseSensitive = on; }
    void setShowOnlyMatching(bool on) { m_request.showOnlyMatching = on; }
    // "търси": false, after saying why, when no field is chosen.
    bool accept();

private:
    Prompter& m_prompter;
    SearchRequest m_request;
};

// The password dialog's one rule: in lock mode both fields must agree.
bool acceptPassword(bool lockMode, std::string_view password, std::string_view repetition,
                    Prompter& prompter);

} // namespace finora
