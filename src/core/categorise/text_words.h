#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace finora {

// The words a categoriser looks at in a Windows-1251 text: runs of letters (Latin or Cyrillic),
// case-folded, each once, in order of first appearance. A run that holds a digit (a card or
// terminal number, a date, "POS1234") is no word: it says nothing of what was bought. Neither is
// a single letter.
std::vector<std::string> textWords(std::string_view text);
// The same, appended to `words` where not in it already; `words` keeps its room between calls.
void appendTextWords(std::string_view text, std::vector<std::string>& words);

} // namespace finora
