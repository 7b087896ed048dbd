// Any bytes as a ledger's companion file: refused whole, or read to data that is written and
// read back to the same data.
#include "core/companion/companion_file.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace finora;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    Companion companion;
    if (readCompanion(bytes, companion).status != CompanionReadResult::Status::Ok) {
        if (!companion.empty()) {
            std::abort();
        }
        return 0;
    }
    Companion again;
    if (readCompanion(serializeCompanion(companion), again).status !=
            CompanionReadResult::Status::Ok ||
        !(again == companion)) {
        std::abort();
    }
    return 0;
}
