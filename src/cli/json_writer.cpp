#include "cli/json_writer.h"

#include <array>
#include <charconv>
#include <cmath>

namespace finora {

void JsonWriter::separate()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (!m_first.empty()) {
        if (!m_first.back()) {
            m_out << ',';
        }
        m_first.back() = false;
    }
}

JsonWriter& JsonWriter::beginObject()
{
    separate();
    m_out << '{';
    m_first.push_back(true);
    return *this;
}

JsonWriter& JsonWriter::endObject()
{
    m_out << '}';
    m_first.pop_back();
    return *this;
}

JsonWriter& JsonWriter::beginArray()
{
    separate();
    m_out << '[';
    m_first.push_back(true);
    return *this;
}

JsonWriter& JsonWriter::endArray()
{
    m_out << ']';
    m_first.pop_back();
    return *this;
}

JsonWriter& JsonWriter::key(std::string_view name)
{
    separate();
    writeString(m_out, name);
    m_out << ':';
    m_afterKey = true;
    return *this;
}

JsonWriter& JsonWriter::value(std::string_view text)
{
    separate();
    writeString(m_out, text);
    return *this;
}

JsonWriter& JsonWriter::value(double number)
{
    separate();
    if (!std::isfinite(number)) {
        m_out << "null";
        return *this;
    }
    std::array<char, 32> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    m_out.write(buffer.data(), result.ptr - buffer.data());
    return *this;
}

JsonWriter& JsonWriter::value(std::int64_t number)
{
    separate();
    m_out << number;
    return *this;
}

JsonWriter& JsonWriter::value(bool flag)
{
    separate();
    m_out << (flag ? "true" : "false");
    return *this;
}

JsonWriter& JsonWriter::null()
{
    separate();
    m_out << "null";
    return *this;
}

void JsonWriter::writeString(std::ostream& out, std::string_view text)
{
    static constexpr char kHex[] = "0123456789abcdef";
    out << '"';
    for (char c : text) {
        const auto b = static_cast<unsigned char>(c);
        switch (c) {
        case '"':
            out << "\\\"";
            break;
        case '\\':
            out << "\\\\";
            break;
        case '\n':
            out << "\\n";
            break;
        case '\r':
            out << "\\r";
            break;
        case '\t':
            out << "\\t";
            break;
        default:
            if (b < 0x20) {
                out << "\\u00" << kHex[b >> 4] << kHex[b & 0xF];
            } else {
                out << c;
            }
        }
    }
    out << '"';
}

} // namespace finora
