#pragma once

#include <string>
#include <string_view>

namespace finora {

// A text from outside (UTF-8) as a ledger can keep it (Windows-1251).
struct StoredText {
    std::string bytes;   // Windows-1251
    std::string dropped; // UTF-8: each character that could not be kept, once, in order
};

// Letters Windows-1251 lacks become their plain Latin letters (é → e, ß → ss, ő → o, ł → l);
// anything else it cannot hold, and any byte that is not UTF-8, is dropped and named.
StoredText toStoredText(std::string_view utf8);

} // namespace finora
