// Any bytes as a ledger to import into a small ledger: whatever they hold, the import either
// refuses them or adds and skips operations so that every one is accounted for.
#include "core/demo/ledger_generator.h"
#include "core/model/finora_doc.h"
#include "core/model/recording_prompter.h"
#include "core/storage/byte_reader.h"
#include "core/storage/ledger_format.h"
#include "core/storage/ledger_import.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace finora;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Ledger base = generateLedger(40, 11);
    static const FixedClock clock(DateTime::fromParts(2026, 1, 2, 3, 4, 5));
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);

    CFinoraDoc doc(clock);
    Ledger start;
    const std::string baseBytes = serializeLedger(base);
    ByteReader reader(baseBytes);
    readLedger(reader, start, [](double) { return true; });
    doc.replaceLedger(std::move(start));
    const std::size_t before = doc.operationCount();

    RecordingPrompter prompter;
    const ImportResult r = importLedger(doc, bytes, prompter);
    if (r.status == ImportResult::Status::Imported) {
        Ledger other;
        ByteReader otherReader(bytes);
        readLedger(otherReader, other, [](double) { return true; });
        if (static_cast<std::size_t>(r.added + r.skipped) != other.operations.size() ||
            doc.operationCount() != before + static_cast<std::size_t>(r.added)) {
            std::abort();
        }
    } else if (doc.operationCount() != before) {
        std::abort();
    }
    return 0;
}
