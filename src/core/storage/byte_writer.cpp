#include "core/storage/byte_writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace finora {
namespace {

template <class T> T toLittleEndian(T value)
{
    if constexpr (std::endian::native == std::endian::big) {
        auto bytes = std::bit_cast<std::array<unsigned char, sizeof(T)>>(value);
        std::reverse(bytes.begin(), bytes.end());
        return std::bit_cast<T>(bytes);
    }
    return value;
}

} // namespace

void ByteWriter::writeUInt16(std::uint16_t value)
{
    value = toLittleEndian(value);
    writeRaw(&value, sizeof value);
}

void ByteWriter::writeUInt32(std::uint32_t value)
{
    value = toLittleEndian(value);
    writeRaw(&value, sizeof value);
}

void ByteWriter::writeInt32(std::int32_t value)
{
    writeUInt32(static_cast<std::uint32_t>(value));
}

void ByteWriter::writeDouble(double value)
{
    const auto bits = toLittleEndian(std::bit_cast<std::uint64_t>(value));
    writeRaw(&bits, sizeof bits);
}

void ByteWriter::writeDateTime(const DateTime& value)
{
    writeInt32(value.status());
    writeDouble(value.days());
}

void ByteWriter::writeString(std::string_view text)
{
    const std::size_t n = text.size();
    if (n < 0xFF) {
        m_bytes += static_cast<char>(n);
    } else if (n < 0xFFFE) {
        m_bytes += '\xFF';
        writeUInt16(static_cast<std::uint16_t>(n));
    } else {
        m_bytes += '\xFF';
        writeUInt16(0xFFFF);
        writeUInt32(static_cast<std::uint32_t>(n));
    }
    m_bytes.append(text);
}

std::size_t ByteWriter::stringSize(std::string_view text)
{
    const std::size_t n = text.size();
    return n + (n < 0xFF ? 1 : n < 0xFFFE ? 3 : 7);
}

} // namespace finora
