#pragma once

#include "core/query/filter_criteria.h"
#include "core/storage/file_io.h"

#include <string>
#include <string_view>

namespace finora {

// What a ".ffl" file holds: the criteria and the include-subcategories choice.
struct StoredFilter {
    FilterCriteria criteria;
    bool includeSubcategories = false;

    bool operator==(const StoredFilter&) const = default;
};

// Layout, in the ledger file's encodings: the text "Finora filter", a layout number (1), the
// period from and to, the type choice and the number of category ids; then, as every filter
// file ends, the category ids, include-subcategories, the currency text and the paid state.
std::string serializeFilter(const StoredFilter& filter);
// False, with `filter` untouched, for bytes that are not a whole filter file.
bool parseFilter(std::string_view bytes, StoredFilter& filter);

bool saveFilterFile(std::string_view utf8Path, const StoredFilter& filter,
                    FileError* error = nullptr);

enum class FilterLoad { Ok, CannotOpen, NotAFilter };
FilterLoad loadFilterFile(std::string_view utf8Path, StoredFilter& filter,
                          FileError* error = nullptr);

// The sentence the user reads when a load fails (UTF-8).
std::string filterLoadMessage(FilterLoad result, std::string_view utf8Path, FileError error);

} // namespace finora
