#include "core/storage/byte_reader.h"

#include "core/text/cp1251.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace finora {
namespace {

constexpr std::size_t kChunk = 1 << 20;

} // namespace

ByteReader::ByteReader(std::string_view bytes)
    : m_pos(bytes.data()), m_end(bytes.data() + bytes.size())
{}

ByteReader::ByteReader(ByteSource& source, std::uint64_t totalSize)
    : m_source(&source), m_sourceRemaining(totalSize)
{
    m_buffer.resize(static_cast<std::size_t>(std::min<std::uint64_t>(totalSize, kChunk)));
    m_pos = m_end = m_buffer.data();
}

std::size_t ByteReader::readFromSource(char* out, std::size_t size)
{
    // A source may hand out less than asked before its end (a pipe, a network share): read on
    // until it has given everything or nothing more comes.
    std::size_t total = 0;
    while (total < size) {
        const std::size_t got = m_source->read(out + total, size - total);
        if (got == 0) {
            m_sourceRemaining = 0; // the file ended before its size said
            return total;
        }
        total += got;
    }
    m_sourceRemaining -= total;
    return total;
}

bool ByteReader::ensure(std::size_t size)
{
    if (m_failed) {
        return false;
    }
    if (available() >= size) {
        return true;
    }
    if (!m_source || size > m_buffer.size() || remaining() < size) {
        return fail();
    }
    const std::size_t kept = available();
    std::memmove(m_buffer.data(), m_pos, kept);
    const auto wanted = static_cast<std::size_t>(
        std::min<std::uint64_t>(m_buffer.size() - kept, m_sourceRemaining));
    const std::size_t got = readFromSource(m_buffer.data() + kept, wanted);
    m_pos = m_buffer.data();
    m_end = m_pos + kept + got;
    return available() >= size || fail();
}

bool ByteReader::readBytes(char* out, std::size_t size)
{
    if (m_failed || remaining() < size) {
        return fail();
    }
    const std::size_t fromBuffer = std::min(size, available());
    std::memcpy(out, m_pos, fromBuffer);
    m_pos += fromBuffer;
    size -= fromBuffer;
    out += fromBuffer;
    // Only when streaming: the rest comes straight from the source.
    return size == 0 || readFromSource(out, size) == size || fail();
}

bool ByteReader::readUInt8(std::uint8_t& value)
{
    if (!ensure(1)) {
        return false;
    }
    value = static_cast<std::uint8_t>(*m_pos++);
    return true;
}

bool ByteReader::readUInt16(std::uint16_t& value)
{
    if (!ensure(2)) {
        return false;
    }
    value = load<std::uint16_t>();
    return true;
}

bool ByteReader::readUInt32(std::uint32_t& value)
{
    if (!ensure(4)) {
        return false;
    }
    value = load<std::uint32_t>();
    return true;
}

bool ByteReader::readDateTime(DateTime& value)
{
    std::int32_t status = 0;
    double days = 0.0;
    if (!readInt32(status) || !readDouble(days)) {
        return false;
    }
    value = DateTime(days, status);
    return true;
}

bool ByteReader::readLength(std::uint64_t& length, bool& wide)
{
    std::uint8_t b = 0;
    if (!readUInt8(b)) {
        return false;
    }
    if (b < 0xFF) {
        length = b;
        return true;
    }
    std::uint16_t w = 0;
    if (!readUInt16(w)) {
        return false;
    }
    if (w == 0xFFFE) {
        if (wide) { // the marker once; twice is not a string
            return fail();
        }
        wide = true;
        return readLength(length, wide);
    }
    if (w < 0xFFFF) {
        length = w;
        return true;
    }
    std::uint32_t d = 0;
    if (!readUInt32(d)) {
        return false;
    }
    length = d;
    return true;
}

bool ByteReader::readString(std::string& value)
{
    std::uint64_t length = 0;
    bool wide = false;
    if (!readLength(length, wide)) {
        return false;
    }
    const std::uint64_t bytes = wide ? length * 2 : length;
    if (bytes > remaining()) {
        return fail();
    }
    if (!wide) {
        value.resize(static_cast<std::size_t>(bytes));
        return readBytes(value.data(), value.size());
    }
    std::string raw(static_cast<std::size_t>(bytes), '\0');
    if (!readBytes(raw.data(), raw.size())) {
        return false;
    }
    std::u16string text(static_cast<std::size_t>(length), u'\0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = static_cast<char16_t>(static_cast<unsigned char>(raw[2 * i]) |
                                        (static_cast<unsigned char>(raw[2 * i + 1]) << 8));
    }
    value = cp1251::fromUtf16(text);
    return true;
}

} // namespace finora
