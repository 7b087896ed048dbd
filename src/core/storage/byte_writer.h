#pragma once

#include "core/model/date_time.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace finora {

// Little-endian encoder of the ledger's primitive items into one growing buffer.
class ByteWriter {
public:
    void reserve(std::size_t bytes) { m_bytes.reserve(bytes); }
    void writeInt32(std::int32_t value);
    void writeDouble(double value);
    void writeDateTime(const DateTime& value);
    // Length prefix: one byte below 255, then 0xFF + 16 bits up to 65533, else 0xFF 0xFFFF + 32
    // bits. 65534 takes the long form: its short form would be the wide-text marker 0xFFFE.
    void writeString(std::string_view text);

    static std::size_t stringSize(std::string_view text);

    const std::string& bytes() const { return m_bytes; }
    std::string take() { return std::move(m_bytes); }

private:
    void writeRaw(const void* data, std::size_t size)
    {
        m_bytes.append(static_cast<const char*>(data), size);
    }
    void writeUInt16(std::uint16_t value);
    void writeUInt32(std::uint32_t value);

    std::string m_bytes;
};

} // namespace finora
