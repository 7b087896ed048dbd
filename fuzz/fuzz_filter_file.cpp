// Any bytes as a ".ffl" filter file: refused whole, or read to a filter that writes back to the
// same bytes.
#include "storage/filter_file.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace finora;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    StoredFilter filter;
    if (parseFilter(bytes, filter) && serializeFilter(filter) != bytes) {
        std::abort();
    }
    return 0;
}
