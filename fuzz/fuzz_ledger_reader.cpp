// Any bytes as a ledger file: the reader must fail cleanly or give a ledger that writes back
// and reads again to the same bytes.
#include "core/storage/byte_reader.h"
#include "core/storage/ledger_format.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace finora;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    Ledger ledger;
    ByteReader reader(bytes);
    const ReadResult result = readLedger(reader, ledger, [](double) { return true; });
    if (result.status != ReadStatus::Ok) {
        if (!ledger.operations.empty() || !ledger.categories.empty() ||
            !ledger.currencies.empty()) {
            std::abort();
        }
        return 0;
    }
    const std::string written = serializeLedger(ledger);
    Ledger again;
    ByteReader second(written);
    if (readLedger(second, again, [](double) { return false; }).status != ReadStatus::Ok ||
        serializeLedger(again) != written) {
        std::abort();
    }
    return 0;
}
