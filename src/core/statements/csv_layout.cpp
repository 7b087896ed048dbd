// The layout file: a flat JSON object. The reader takes only what a layout holds (strings,
// numbers, true, false, null at one level) and at most 64 KiB, so it needs no general JSON.
#include "core/statements/csv_layout.h"

#include "core/text/cp1251.h"

#include <array>
#include <cstdio>
#include <utility>

namespace finora {

namespace st = statement_text;

namespace {

constexpr std::size_t kMaxLayoutBytes = std::size_t{64} * 1024;

struct JsonValue {
    enum class Kind { String, Number, Literal } kind = Kind::String;
    std::string text;
};

using ColumnKey = std::pair<std::string_view, std::optional<CsvColumn> CsvLayout::*>;
constexpr std::array<ColumnKey, 9> kColumnKeys = {{
    {"date_column", &CsvLayout::dateColumn},
    {"payee_column", &CsvLayout::payeeColumn},
    {"description_column", &CsvLayout::descriptionColumn},
    {"notes_column", &CsvLayout::notesColumn},
    {"currency_column", &CsvLayout::currencyColumn},
    {"amount_column", &CsvLayout::amountColumn},
    {"debit_column", &CsvLayout::debitColumn},
    {"credit_column", &CsvLayout::creditColumn},
    {"direction_column", &CsvLayout::directionColumn},
}};
using TextKey = std::pair<std::string_view, std::optional<std::string> CsvLayout::*>;
constexpr std::array<TextKey, 4> kTextKeys = {{
    {"date_format", &CsvLayout::dateFormat},
    {"debit_value", &CsvLayout::debitValue},
    {"credit_value", &CsvLayout::creditValue},
    {"currency", &CsvLayout::currency},
}};
struct CharKey {
    std::string_view key;
    std::optional<char> CsvLayout::*member;
    bool mayBeEmpty;
};
constexpr std::array<CharKey, 4> kCharKeys = {{
    {"separator", &CsvLayout::separator, false},
    {"quote", &CsvLayout::quote, true},
    {"decimal_mark", &CsvLayout::decimalMark, false},
    {"thousands_separator", &CsvLayout::thousandsSeparator, true},
}};
// The first name of each is the one written; the others are read too.
constexpr std::array<std::pair<st::Encoding, std::string_view>, 11> kEncodingNames = {{
    {st::Encoding::Utf8, "UTF-8"},
    {st::Encoding::Windows1251, "Windows-1251"},
    {st::Encoding::Windows1252, "Windows-1252"},
    {st::Encoding::Latin1, "ISO-8859-1"},
    {st::Encoding::Utf8, "utf8"},
    {st::Encoding::Windows1251, "cp1251"},
    {st::Encoding::Windows1251, "1251"},
    {st::Encoding::Windows1252, "cp1252"},
    {st::Encoding::Windows1252, "1252"},
    {st::Encoding::Latin1, "Latin-1"},
    {st::Encoding::Latin1, "latin1"},
}};

class JsonObjectReader {
public:
    explicit JsonObjectReader(std::string_view text) : m_text(text) {}

    // Calls `take(key, value)` for each member; stops at the first error.
    template <typename Take> std::optional<StatementReadError> read(Take take)
    {
        skipBlanks();
        if (!consume('{')) {
            return error("Файлът на оформлението не е JSON обект.");
        }
        skipBlanks();
        if (consume('}')) {
            return trailing();
        }
        while (true) {
            std::string key;
            JsonValue value;
            skipBlanks();
            if (!readString(key)) {
                return error("Очаква се име на ключ в кавички.");
            }
            skipBlanks();
            if (!consume(':')) {
                return error("Очаква се „:“ след ключа.");
            }
            skipBlanks();
            if (!readValue(value)) {
                return error("Стойността на „" + key + "“ не е текст или число.");
            }
            if (auto problem = take(key, value)) {
                return error(*problem);
            }
            skipBlanks();
            if (consume('}')) {
                return trailing();
            }
            if (!consume(',')) {
                return error("Очаква се „,“ или „}“.");
            }
        }
    }

private:
    StatementReadError error(std::string reason) const
    {
        return StatementReadError{"ред " + std::to_string(m_line), std::move(reason)};
    }
    std::optional<StatementReadError> trailing()
    {
        skipBlanks();
        if (m_pos != m_text.size()) {
            return error("След обекта има още текст.");
        }
        return std::nullopt;
    }
    bool consume(char c)
    {
        if (m_pos < m_text.size() && m_text[m_pos] == c) {
            ++m_pos;
            return true;
        }
        return false;
    }
    void skipBlanks()
    {
        while (m_pos < m_text.size() && (m_text[m_pos] == ' ' || m_text[m_pos] == '\t' ||
                                         m_text[m_pos] == '\r' || m_text[m_pos] == '\n')) {
            m_line += m_text[m_pos] == '\n' ? 1 : 0;
            ++m_pos;
        }
    }
    bool hex4(unsigned& out)
    {
        out = 0;
        for (int k = 0; k < 4; ++k, ++m_pos) {
            if (m_pos >= m_text.size()) {
                return false;
            }
            const char c = m_text[m_pos];
            const int digit = c >= '0' && c <= '9'   ? c - '0'
                              : c >= 'a' && c <= 'f' ? c - 'a' + 10
                              : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                     : -1;
            if (digit < 0) {
                return false;
            }
            out = out * 16 + static_cast<unsigned>(digit);
        }
        return true;
    }
    bool readEscape(std::string& out)
    {
        if (m_pos >= m_text.size()) {
            return false;
        }
        const char c = m_text[m_pos++];
        static constexpr std::string_view kFrom = "\"\\/bfnrt";
        static constexpr std::string_view kTo = "\"\\/\b\f\n\r\t";
        if (const std::size_t k = kFrom.find(c); k != std::string_view::npos) {
            out += kTo[k];
            return true;
        }
        unsigned code = 0;
        if (c != 'u' || !hex4(code)) {
            return false;
        }
        if (code >= 0xD800 && code <= 0xDBFF) {
            unsigned low = 0;
            if (!consume('\\') || !consume('u') || !hex4(low) || low < 0xDC00 || low > 0xDFFF) {
                return false;
            }
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        } else if (code >= 0xDC00 && code <= 0xDFFF) {
            return false;
        }
        cp1251::appendUtf8(out, code);
        return true;
    }
    bool readString(std::string& out)
    {
        if (!consume('"')) {
            return false;
        }
        while (m_pos < m_text.size()) {
            const char c = m_text[m_pos++];
            if (c == '"') {
                return st::isValidUtf8(out);
            }
            if (static_cast<unsigned char>(c) < 0x20) {
                return false;
            }
            if (c != '\\') {
                out += c;
            } else if (!readEscape(out)) {
                return false;
            }
        }
        return false;
    }
    bool readValue(JsonValue& value)
    {
        if (m_pos < m_text.size() && m_text[m_pos] == '"') {
            value.kind = JsonValue::Kind::String;
            return readString(value.text);
        }
        for (const std::string_view literal : {"true", "false", "null"}) {
            if (m_text.substr(m_pos, literal.size()) == literal) {
                value.kind = JsonValue::Kind::Literal;
                value.text = std::string(literal);
                m_pos += literal.size();
                return true;
            }
        }
        value.kind = JsonValue::Kind::Number;
        const std::size_t start = m_pos;
        while (m_pos < m_text.size() && m_pos - start < 32 &&
               std::string_view("+-0123456789.eE").find(m_text[m_pos]) != std::string_view::npos) {
            ++m_pos;
        }
        value.text = std::string(m_text.substr(start, m_pos - start));
        return !value.text.empty();
    }

    std::string_view m_text;
    std::size_t m_pos = 0;
    std::size_t m_line = 1;
};

// A whole non-negative number, or -1.
long wholeNumber(const std::string& text)
{
    if (text.empty() || text.size() > 9 ||
        text.find_first_not_of("0123456789") != std::string::npos) {
        return -1;
    }
    return std::stol(text);
}

std::optional<std::string> take(CsvLayout& layout, const std::string& key, const JsonValue& value)
{
    const bool isNull = value.kind == JsonValue::Kind::Literal && value.text == "null";
    for (const auto& [name, member] : kColumnKeys) {
        if (key != name) {
            continue;
        }
        CsvColumn column;
        if (value.kind == JsonValue::Kind::Number) {
            column.number = static_cast<int>(wholeNumber(value.text));
            if (column.number < 0) {
                return "„" + key + "“ трябва да е име на колона или номер от 1 нагоре.";
            }
        } else if (value.kind == JsonValue::Kind::String) {
            column.name = std::string(st::trim(value.text));
        } else if (!isNull) {
            return "„" + key + "“ трябва да е име на колона или номер от 1 нагоре.";
        }
        layout.*member = column;
        return std::nullopt;
    }
    if (value.kind != JsonValue::Kind::String && key != "header_line") {
        return "„" + key + "“ трябва да е текст.";
    }
    for (const auto& [name, member] : kTextKeys) {
        if (key == name) {
            layout.*member = value.text;
            return std::nullopt;
        }
    }
    for (const CharKey& k : kCharKeys) {
        if (key == k.key) {
            const std::string& t = value.text == "\\t" ? std::string("\t") : value.text;
            if (t.size() > 1 || (t.empty() && !k.mayBeEmpty) ||
                (!t.empty() && static_cast<unsigned char>(t[0]) >= 0x80)) {
                return "„" + key + "“ трябва да е един знак.";
            }
            layout.*(k.member) = t.empty() ? '\0' : t[0];
            return std::nullopt;
        }
    }
    if (key == "encoding") {
        const std::string wanted = st::foldUtf8(value.text);
        for (const auto& [encoding, name] : kEncodingNames) {
            if (wanted == st::foldUtf8(name)) {
                layout.encoding = encoding;
                return std::nullopt;
            }
        }
        return "Непознато кодиране „" + value.text + "“.";
    }
    if (key == "header_line") {
        const long line = value.kind == JsonValue::Kind::Number ? wholeNumber(value.text) : -1;
        if (line < 0) {
            return "„header_line“ трябва да е номер на ред (0 без заглавие).";
        }
        layout.headerLine = static_cast<int>(line);
    }
    return std::nullopt; // a key of a later version
}

std::string quoted(std::string_view text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            out += escape;
        } else {
            out += c;
        }
    }
    return out + '"';
}

} // namespace

Result<CsvLayout, StatementReadError> readCsvLayoutJson(std::string_view json)
{
    if (json.size() > kMaxLayoutBytes) {
        return StatementReadError{"", "Файлът на оформлението е твърде голям."};
    }
    CsvLayout layout;
    JsonObjectReader reader(st::withoutBom(json));
    const auto error = reader.read([&layout](const std::string& key, const JsonValue& value) {
        return take(layout, key, value);
    });
    if (error) {
        return *error;
    }
    return layout;
}

std::string writeCsvLayoutJson(const CsvLayout& layout)
{
    std::string out = "{";
    auto member = [&out](std::string_view key, const std::string& value) {
        out += out.size() == 1 ? "\n  " : ",\n  ";
        out += quoted(key) + ": " + value;
    };
    if (layout.encoding) {
        for (const auto& [encoding, name] : kEncodingNames) {
            if (encoding == *layout.encoding) {
                member("encoding", quoted(name));
                break;
            }
        }
    }
    for (const CharKey& k : kCharKeys) {
        if (const auto& c = layout.*(k.member)) {
            member(k.key, quoted(*c == '\0' ? std::string() : std::string(1, *c)));
        }
    }
    if (layout.headerLine) {
        member("header_line", std::to_string(*layout.headerLine));
    }
    for (const auto& [key, m] : kTextKeys) {
        if (const auto& text = layout.*m) {
            member(key, quoted(*text));
        }
    }
    for (const auto& [key, m] : kColumnKeys) {
        if (const auto& column = layout.*m) {
            member(key, column->number > 0 ? std::to_string(column->number) : quoted(column->name));
        }
    }
    return out + "\n}\n";
}

} // namespace finora
