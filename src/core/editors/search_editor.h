#pragma once

#include "core/model/number_text.h"
#include "core/model/prompter.h"
#include "core/query/operations_list.h"

#include <optional>
#include <string_view>

namespace finora {

// The rules of the search dialog: OR and the exact phrase exclude each other, and at least one
// field must be searched. The dialog shows `request()` and forwards every change here.
class SearchEditor {
public:
    SearchEditor(Prompter& prompter, std::string lastText, bool lastCaseSensitive);

    const SearchRequest& request() const { return m_request; }
    // Text as typed (UTF-8): refused, with a message naming the characters, when Windows-1251
    // cannot hold it.
    bool setTypedText(std::string_view utf8);
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

// Typed text (UTF-8) as Windows-1251, or a message naming what cannot be stored.
std::optional<std::string> typedText(std::string_view utf8, Prompter& prompter);

// What the "филтриране по сума" dialog returns.
struct AmountFilterRequest {
    double amount = 0.0;
    double tolerance = 0.0;
    bool alsoBgl = false;
};
// Reads the two number fields; a decimal comma is taken as a point. False, after saying which
// field is wrong, for anything that is not a number.
bool readAmountFilter(std::string_view amount, std::string_view tolerance, bool alsoBgl,
                      Prompter& prompter, AmountFilterRequest& request);

} // namespace finora
