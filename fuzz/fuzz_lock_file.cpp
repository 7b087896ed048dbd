// Any bytes as a lock file beside a ledger: refused, or read to an owner whose text reads back
// to the same owner; its description for the user is always made.
#include "core/storage/ledger_lock.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace finora;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto owner = parseLockFile(bytes);
    if (!owner) {
        return 0;
    }
    if (owner->pid <= 0 || owner->token.empty() || parseLockFile(lockFileText(*owner)) != owner) {
        std::abort();
    }
    if (describeOwner(*owner).empty()) {
        std::abort();
    }
    return 0;
}
