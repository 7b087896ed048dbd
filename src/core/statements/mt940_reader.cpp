// SWIFT MT940: tagged fields (":61:" an entry, ":86:" its text), any number of statements, each
// opened by ":20:". Banks write it in Latin letters; the few that do not write UTF-8.
#include "core/statements/format_readers.h"
#include "core/statements/statement_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <vector>

namespace finora::statement_readers {

namespace st = statement_text;

namespace {

struct Field {
    std::string tag;
    std::string value; // continuation lines joined with '\n'
    std::size_t line = 0;
};

bool isDigits(std::string_view s, std::size_t pos, std::size_t count)
{
    if (pos + count > s.size()) {
        return false;
    }
    for (std::size_t i = pos; i < pos + count; ++i) {
        if (s[i] < '0' || s[i] > '9') {
            return false;
        }
    }
    return true;
}

int number(std::string_view s, std::size_t pos, std::size_t count)
{
    int n = 0;
    for (std::size_t i = pos; i < pos + count; ++i) {
        n = n * 10 + (s[i] - '0');
    }
    return n;
}

// ":61:" opens a field, so does ":28C:"; the SWIFT envelope ("{1:...}", "-}") is not content.
std::vector<Field> fieldsOf(std::string_view text)
{
    std::vector<Field> fields;
    const std::vector<std::string_view> lines = st::splitLines(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string_view line = lines[i];
        std::size_t tagEnd = 0;
        if (line.size() >= 4 && line[0] == ':' && isDigits(line, 1, 2)) {
            tagEnd = line[3] == ':' ? 3 : (line.size() >= 5 && line[4] == ':' ? 4 : 0);
        }
        if (tagEnd != 0) {
            fields.push_back({std::string(line.substr(1, tagEnd - 1)),
                              std::string(line.substr(tagEnd + 1)), i + 1});
        } else if (line.empty() || line.front() == '{' || line.front() == '}' || line == "-" ||
                   line == "-}") {
            continue;
        } else if (!fields.empty()) {
            fields.back().value += '\n';
            fields.back().value += line;
        }
    }
    return fields;
}

// ":86:" in the German form: "?20".."?29" and "?60".."?63" the text, "?32" "?33" the name.
bool readQuestionMarkText(std::string_view text, StatementEntry& entry)
{
    const std::size_t first = text.find('?');
    if (first == std::string_view::npos || !isDigits(text, first + 1, 2) || first > 3) {
        return false;
    }
    std::string remittance;
    std::string name;
    std::size_t pos = first;
    while (pos < text.size()) {
        std::size_t next = pos + 3;
        while (next < text.size() && !(text[next] == '?' && isDigits(text, next + 1, 2))) {
            ++next;
        }
        const int code = isDigits(text, pos + 1, 2) ? number(text, pos + 1, 2) : -1;
        std::string part;
        for (const char c : text.substr(pos + 3, next - std::min(next, pos + 3))) {
            if (c != '\n') {
                part += c;
            }
        }
        if ((code >= 20 && code <= 29) || (code >= 60 && code <= 63)) {
            remittance += part;
        } else if (code == 32 || code == 33) {
            name += part;
        }
        pos = next;
    }
    entry.remittance = st::collapseBlanks(remittance);
    entry.counterparty = st::collapseBlanks(name);
    return true;
}

// ":86:" in the slash form: "/NAME/..../REMI/....".
bool readSlashText(std::string_view text, StatementEntry& entry)
{
    std::string flat;
    for (const char c : text) {
        if (c != '\n') {
            flat += c;
        }
    }
    if (flat.empty() || flat.front() != '/') {
        return false;
    }
    static constexpr std::array<std::string_view, 12> kKeys = {"NAME", "REMI", "EREF", "IBAN",
                                                               "BIC",  "TRTP", "ORDP", "BENM",
                                                               "CSID", "MARF", "ADDR", "PURP"};
    std::string key;
    std::string name;
    std::string remittance;
    std::size_t pos = 1;
    std::string value;
    auto flush = [&] {
        if (key == "NAME") {
            name = value;
        } else if (key == "REMI") {
            remittance = value;
        }
        value.clear();
    };
    bool anyKey = false;
    while (pos <= flat.size()) {
        std::size_t end = flat.find('/', pos);
        if (end == std::string::npos) {
            end = flat.size();
        }
        const std::string_view token = std::string_view(flat).substr(pos, end - pos);
        bool isKey = false;
        for (const std::string_view k : kKeys) {
            isKey = isKey || token == k;
        }
        if (isKey) {
            flush();
            key = std::string(token);
            anyKey = true;
        } else if (!token.empty()) {
            if (!value.empty()) {
                value += '/';
            }
            value += token;
        }
        pos = end + 1;
    }
    flush();
    if (!anyKey) {
        return false;
    }
    entry.counterparty = st::collapseBlanks(name);
    entry.remittance = st::collapseBlanks(remittance);
    return true;
}

void readEntryText(std::string_view text, StatementEntry& entry)
{
    if (readQuestionMarkText(text, entry) || readSlashText(text, entry)) {
        return;
    }
    entry.remittance = st::collapseBlanks(text);
}

int centuryYear(int yy)
{
    return yy < 80 ? 2000 + yy : 1900 + yy;
}

// ":61:" 6!n[4!n]2a[1!a]15d1!a3!c16x[//16x] and on its second line 34x.
bool readEntryLine(std::string_view field, StatementEntry& entry)
{
    const std::size_t lineEnd = field.find('\n');
    const std::string_view s = field.substr(0, lineEnd);
    if (!isDigits(s, 0, 6)) {
        return false;
    }
    int year = centuryYear(number(s, 0, 2));
    int month = number(s, 2, 2);
    int day = number(s, 4, 2);
    std::size_t p = 6;
    if (isDigits(s, p, 4)) {
        // The entry date has no year of its own: the one nearest the value date.
        const int entryMonth = number(s, p, 2);
        if (entryMonth - month > 6) {
            --year;
        } else if (month - entryMonth > 6) {
            ++year;
        }
        month = entryMonth;
        day = number(s, p + 2, 2);
        p += 4;
    }
    if (!st::isValidDate(year, month, day)) {
        return false;
    }
    bool reversal = false;
    if (p < s.size() && s[p] == 'R') {
        reversal = true;
        ++p;
    }
    if (p >= s.size() || (s[p] != 'C' && s[p] != 'D')) {
        return false;
    }
    // A reversal of a credit takes money out, of a debit puts it back.
    const bool in = (s[p] == 'C') != reversal;
    ++p;
    if (p + 1 < s.size() && std::isalpha(static_cast<unsigned char>(s[p])) != 0 &&
        std::isdigit(static_cast<unsigned char>(s[p + 1])) != 0) {
        ++p; // the funds code, the third letter of the currency
    }
    std::size_t amountEnd = p;
    while (amountEnd < s.size() && amountEnd - p < 15 &&
           (std::isdigit(static_cast<unsigned char>(s[amountEnd])) != 0 || s[amountEnd] == ',')) {
        ++amountEnd;
    }
    const std::optional<std::int64_t> amount = st::parseAmount(s.substr(p, amountEnd - p), ',');
    if (!amount || amountEnd + 4 > s.size()) {
        return false;
    }
    entry.year = year;
    entry.month = month;
    entry.day = day;
    entry.amountCents = in ? *amount : -*amount;
    const std::string_view refs = s.substr(amountEnd + 4);
    const std::size_t slashes = refs.find("//");
    const std::string_view customerRef = st::trim(refs.substr(0, slashes));
    const std::string_view bankRef =
        slashes == std::string_view::npos ? std::string_view() : st::trim(refs.substr(slashes + 2));
    if (!bankRef.empty()) {
        entry.reference = std::string(bankRef);
    } else if (customerRef != "NONREF") {
        entry.reference = std::string(customerRef);
    }
    return true;
}

} // namespace

ReadResult readMt940(std::string_view bytes)
{
    bytes = st::withoutBom(bytes);
    const std::string text = st::toUtf8(bytes, st::Encoding::Utf8);
    Statement statement;
    statement.format = StatementFormat::Mt940;
    std::string currency;
    std::string account;
    bool inEntry = false; // a ":86:" right after a ":61:" is that entry's text
    bool anyStatement = false;
    for (const Field& field : fieldsOf(text)) {
        const std::string& tag = field.tag;
        if (tag == "20") {
            anyStatement = true;
            currency.clear();
            account.clear();
            inEntry = false;
        } else if (tag == "25") {
            account = st::trim(field.value);
        } else if (tag == "60F" || tag == "60M") {
            const std::string_view v = st::trim(field.value);
            const bool letters =
                v.size() >= 10 && std::all_of(v.begin() + 7, v.begin() + 10,
                                              [](char c) { return c >= 'A' && c <= 'Z'; });
            if (!letters || !isDigits(v, 1, 6)) {
                return lineError(field.line, "Началното салдо не е записано правилно.");
            }
            currency = std::string(v.substr(7, 3));
        } else if (tag == "61") {
            StatementEntry entry;
            if (!readEntryLine(field.value, entry)) {
                return lineError(field.line, "Редът на движението не е записан правилно.");
            }
            entry.currency = currency;
            entry.account = account;
            statement.entries.push_back(std::move(entry));
            inEntry = true;
            continue;
        } else if (tag == "86" && inEntry) {
            readEntryText(field.value, statement.entries.back());
        }
        inEntry = false;
    }
    if (!anyStatement) {
        return StatementReadError{"ред 1", "Файлът не е извлечение MT940: няма поле :20:."};
    }
    return statement;
}

} // namespace finora::statement_readers
