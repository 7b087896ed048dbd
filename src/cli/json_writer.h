#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>
#include <vector>

namespace finora {

// A streaming JSON writer: commas and nesting are its business, so commands just say what comes
// next. Doubles are written in their shortest form that reads back to the same value; values
// JSON has no number for (NaN, infinities) are written as null.
class JsonWriter {
public:
    explicit JsonWriter(std::ostream& out) : m_out(out) {}

    JsonWriter& beginObject();
    JsonWriter& endObject();
    JsonWriter& beginArray();
    JsonWriter& endArray();
    JsonWriter& key(std::string_view name);
    JsonWriter& value(std::string_view text); // UTF-8
    JsonWriter& value(const char* text) { return value(std::string_view(text)); }
    JsonWriter& value(double number);
    JsonWriter& value(std::int64_t number);
    JsonWriter& value(std::int32_t number) { return value(static_cast<std::int64_t>(number)); }
    JsonWriter& value(bool flag);
    JsonWriter& null();

    static void writeString(std::ostream& out, std::string_view text);

private:
    void separate();

    std::ostream& m_out;
    std::vector<bool> m_first; // per open container: nothing written into it yet
    bool m_afterKey = false;
};

} // namespace finora
