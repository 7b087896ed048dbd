#pragma once

#include "core/model/date_time.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace finora {

// Where a ByteReader gets more bytes from when it streams.
class ByteSource {
public:
    virtual ~ByteSource() = default;
    // Up to `size` bytes into `buffer`; 0 only at the end or on an error.
    virtual std::size_t read(char* buffer, std::size_t size) = 0;
};

class FileByteSource final : public ByteSource {
public:
    explicit FileByteSource(std::FILE* file) : m_file(file) {}
    std::size_t read(char* buffer, std::size_t size) override
    {
        return std::fread(buffer, 1, size, m_file);
    }

private:
    std::FILE* m_file;
};

// Little-endian decoder of the ledger's primitive items, safe on hostile input: every length is
// checked against the bytes that remain before anything is allocated, and the first failure
// sticks, so a caller may read on and check failed() once.
class ByteReader {
public:
    // Reads a buffer the caller keeps alive.
    explicit ByteReader(std::string_view bytes);
    // A temporary would be gone before the first read.
    explicit ByteReader(std::string&&) = delete;
    // Streams `totalSize` bytes from `source` through a small buffer, so that opening a large
    // file never holds all of its bytes at once.
    ByteReader(ByteSource& source, std::uint64_t totalSize);

    // The fixed-size reads take the fast path inline: they run a dozen times per record.
    bool readInt32(std::int32_t& value)
    {
        if (available() < 4 && !ensure(4)) {
            return false;
        }
        value = static_cast<std::int32_t>(load<std::uint32_t>());
        return true;
    }
    bool readDouble(double& value)
    {
        if (available() < 8 && !ensure(8)) {
            return false;
        }
        value = std::bit_cast<double>(load<std::uint64_t>());
        return true;
    }
    bool readDateTime(DateTime& value);
    // Windows-1251 text; the wide-text form (0xFF 0xFFFE, a length, UTF-16LE) is converted.
    bool readString(std::string& value);

    std::uint64_t remaining() const { return available() + m_sourceRemaining; }
    bool failed() const { return m_failed; }
    bool fail()
    {
        m_failed = true;
        return false;
    }

private:
    std::size_t available() const { return static_cast<std::size_t>(m_end - m_pos); }
    // Takes the next sizeof(T) bytes, which the caller has made sure are there, as little-endian.
    template <class T> T load()
    {
        T value;
        std::memcpy(&value, m_pos, sizeof value);
        m_pos += sizeof value;
        if constexpr (std::endian::native == std::endian::big) {
            value = byteSwap(value);
        }
        return value;
    }
    template <class T> static T byteSwap(T value)
    {
        auto bytes = std::bit_cast<std::array<unsigned char, sizeof(T)>>(value);
        std::reverse(bytes.begin(), bytes.end());
        return std::bit_cast<T>(bytes);
    }
    // True when `size` bytes (at most the buffer's capacity) are available, refilling as needed.
    bool ensure(std::size_t size);
    bool readBytes(char* out, std::size_t size);
    std::size_t readFromSource(char* out, std::size_t size);
    bool readUInt8(std::uint8_t& value);
    bool readUInt16(std::uint16_t& value);
    bool readUInt32(std::uint32_t& value);
    bool readLength(std::uint64_t& length, bool& wide);

    ByteSource* m_source = nullptr;
    std::uint64_t m_sourceRemaining = 0;
    std::vector<char> m_buffer;
    const char* m_pos = nullptr;
    const char* m_end = nullptr;
    bool m_failed = false;
};

} // namespace finora
