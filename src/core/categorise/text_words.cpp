#include "core/categorise/text_words.h"

#include "core/text/case_fold.h"

#include <algorithm>

namespace finora {
namespace {

bool isLetter(unsigned char byte)
{
    return foldCase(byte) != byte || upperCase(byte) != byte;
}

bool isDigit(unsigned char byte)
{
    return byte >= '0' && byte <= '9';
}

} // namespace

std::vector<std::string> textWords(std::string_view text)
{
    std::vector<std::string> words;
    appendTextWords(text, words);
    return words;
}

void appendTextWords(std::string_view text, std::vector<std::string>& words)
{
    std::size_t i = 0;
    while (i < text.size()) {
        const auto at = [&](std::size_t n) { return static_cast<unsigned char>(text[n]); };
        if (!isLetter(at(i)) && !isDigit(at(i))) {
            ++i;
            continue;
        }
        const std::size_t start = i;
        bool digits = false;
        while (i < text.size() && (isLetter(at(i)) || isDigit(at(i)))) {
            digits = digits || isDigit(at(i));
            ++i;
        }
        if (digits || i - start < 2) {
            continue;
        }
        std::string word = foldCase(text.substr(start, i - start));
        if (std::find(words.begin(), words.end(), word) == words.end()) {
            words.push_back(std::move(word));
        }
    }
}

} // namespace finora
