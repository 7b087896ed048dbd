// The same bytes read through the streaming path the program uses for files, with a source that
// hands them out in awkward pieces; it must agree with reading them from one buffer.
#include "core/storage/byte_reader.h"
#include "core/storage/ledger_format.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace finora;

namespace {

class PieceSource final : public ByteSource {
public:
    PieceSource(const char* data, std::size_t size) : m_data(data), m_size(size) {}
    std::size_t read(char* buffer, std::size_t size) override
    {
        // Never more than 7 bytes at once: every refill path gets exercised.
        const std::size_t n = std::min({size, m_size - m_pos, std::size_t{7}});
        std::memcpy(buffer, m_data + m_pos, n);
        m_pos += n;
        return n;
    }

private:
    const char* m_data;
    std::size_t m_size;
    std::size_t m_pos = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto* bytes = reinterpret_cast<const char*>(data);
    Ledger whole;
    ByteReader wholeReader(std::string_view(bytes, size));
    const auto a = readLedger(wholeReader, whole, [](double) { return true; });

    PieceSource source(bytes, size);
    Ledger pieces;
    ByteReader pieceReader(source, size);
    const auto b = readLedger(pieceReader, pieces, [](double) { return true; });

    if (a.status != b.status || serializeLedger(whole) != serializeLedger(pieces)) {
        std::abort();
    }
    return 0;
}
