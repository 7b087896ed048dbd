// Any bytes as a CSV layout file: refused, or read into a layout that is written back and read
// again to the same layout.
#include "core/statements/csv_layout.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace finora;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto layout = readCsvLayoutJson(bytes);
    if (!layout.ok()) {
        return 0;
    }
    const auto again = readCsvLayoutJson(writeCsvLayoutJson(layout.value()));
    if (!again.ok() || !(again.value() == layout.value())) {
        std::abort();
    }
    return 0;
}
