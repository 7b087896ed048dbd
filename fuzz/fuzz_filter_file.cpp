// Any bytes as a ".ffl" filter file: refused whole, or read to a filter that survives being
// written and read again. (Written bytes may differ from the input: a file may use a longer
// length prefix, or any non-zero flag, where the writer uses the shortest form and 1.)
#include "core/storage/filter_file.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace finora;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    StoredFilter filter;
    if (!parseFilter(bytes, filter)) {
        return 0;
    }
    StoredFilter again;
    if (!parseFilter(serializeFilter(filter), again) || !(again == filter)) {
        // NaN period days compare unequal to themselves; everything else must match.
        if (again.criteria.from.days() == filter.criteria.from.days() &&
            again.criteria.to.days() == filter.criteria.to.days()) {
            std::abort();
        }
    }
    return 0;
}
