#pragma once

#include "core/model/result.h"
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

// Why a filter file was not loaded: it could not be read (the system's reason in `error`), or
// what it holds is no filter.
enum class FilterLoad { CannotOpen, NotAFilter };
struct FilterLoadError {
    FilterLoad kind = FilterLoad::CannotOpen;
    FileError error = FileError::None;
};
Result<StoredFilter, FilterLoadError> loadFilterFile(std::string_view utf8Path);

// The sentence the user reads when a load fails (UTF-8).
std::string filterLoadMessage(const FilterLoadError& failure, std::string_view utf8Path);

} // namespace finora
