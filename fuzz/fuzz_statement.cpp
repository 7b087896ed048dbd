// Any bytes as a bank statement of one format (FINORA_FUZZ_FORMAT): the reader gives entries or
// an error, and every entry it gives has a real date and UTF-8 texts.
#include "core/statements/statement_reader.h"
#include "core/statements/statement_text.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace finora;

namespace {

void check(const Result<Statement, StatementReadError>& read)
{
    if (!read.ok()) {
        return;
    }
    for (const StatementEntry& e : read.value().entries) {
        const bool texts =
            statement_text::isValidUtf8(e.counterparty) &&
            statement_text::isValidUtf8(e.remittance) && statement_text::isValidUtf8(e.reference) &&
            statement_text::isValidUtf8(e.notes) && statement_text::isValidUtf8(e.currency);
        if (!statement_text::isValidDate(e.year, e.month, e.day) || !texts) {
            std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    StatementReadOptions options;
    options.format = StatementFormat::FINORA_FUZZ_FORMAT;
    check(readStatement(bytes, options));
    if (options.format == StatementFormat::Qif) {
        options.dateOrder = DateOrder::Mdy;
        check(readStatement(bytes, options));
    }
    if (options.format == StatementFormat::Csv) {
        // What the guess makes of the bytes must read them, or say where it cannot.
        options.csvLayout = guessCsvLayout(bytes);
        check(readStatement(bytes, options));
    }
    return 0;
}
