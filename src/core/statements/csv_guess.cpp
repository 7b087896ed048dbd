// The first guess of a CSV statement's layout, from its first lines: what the user then corrects.
#include "core/statements/csv_layout.h"
#include "core/statements/csv_records.h"
#include "core/statements/statement_text.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <vector>

namespace finora {

namespace st = statement_text;
using statement_readers::CsvRecord;

namespace {

// Enough lines to find the header under any preamble and to see the columns' values.
constexpr std::size_t kSampleRecords = 200;
constexpr std::size_t kHeaderSearch = 40;
constexpr std::size_t kMaxColumns = 64;

enum class Role { Date, Debit, Credit, Amount, Currency, Payee, Description, Notes, Direction };

struct RoleWords {
    Role role;
    std::optional<CsvColumn> CsvLayout::*member;
    std::vector<std::string_view> words; // folded; a header containing one of them matches
};

// In the order they are tried: "Сума дебит" is a debit column before it is an amount.
const std::array<RoleWords, 9> kRoles = {{
    {Role::Direction,
     &CsvLayout::directionColumn,
     {"д/к", "дт/кт", "d/c", "dr/cr", "дебит/кредит", "debit/credit", "посока", "direction"}},
    {Role::Date, &CsvLayout::dateColumn, {"дата", "date", "datum"}},
    {Role::Debit,
     &CsvLayout::debitColumn,
     {"дебит", "debit", "теглен", "изходящ", "разход", "withdrawal", "money out", "paid out"}},
    {Role::Credit,
     &CsvLayout::creditColumn,
     {"кредит", "credit", "постъплен", "входящ", "приход", "deposit", "money in", "paid in"}},
    {Role::Amount, &CsvLayout::amountColumn, {"сума", "amount", "стойност", "sum"}},
    {Role::Currency, &CsvLayout::currencyColumn, {"валута", "currency", "ccy"}},
    {Role::Payee,
     &CsvLayout::payeeColumn,
     {"наредител", "получател", "контрагент", "насрещн", "payee", "payer", "counterparty",
      "beneficiary", "name", "име"}},
    {Role::Description,
     &CsvLayout::descriptionColumn,
     {"основание", "описание", "description", "details", "детайли", "narrative", "пояснение",
      "purpose", "информация"}},
    {Role::Notes,
     &CsvLayout::notesColumn,
     {"бележ", "note", "memo", "референц", "reference", "коментар", "comment"}},
}};

// Pairs of values a direction column holds: out, then in.
constexpr std::array<std::pair<std::string_view, std::string_view>, 9> kDirections = {{
    {"д", "к"},
    {"дт", "кт"},
    {"d", "c"},
    {"dr", "cr"},
    {"dbit", "crdt"},
    {"debit", "credit"},
    {"дебит", "кредит"},
    {"-", "+"},
    {"out", "in"},
}};

bool matches(const RoleWords& role, const std::string& folded)
{
    if (role.role == Role::Date &&
        (folded.find("вальор") != std::string::npos || folded.find("value") != std::string::npos)) {
        return false; // the value date only when there is no other date
    }
    if ((role.role == Role::Debit || role.role == Role::Credit) &&
        folded.find('/') != std::string::npos) {
        return false;
    }
    return std::any_of(role.words.begin(), role.words.end(),
                       [&](std::string_view w) { return folded.find(w) != std::string::npos; });
}

// Which header field plays which role; each field at most one role, each role its first field.
std::map<Role, std::size_t> rolesOf(const std::vector<std::string>& header)
{
    std::map<Role, std::size_t> found;
    // No statement has hundreds of columns; a line that splits into more is not its header.
    std::vector<std::string> folded;
    for (std::size_t i = 0; i < header.size() && i < kMaxColumns; ++i) {
        folded.push_back(st::foldUtf8(st::trim(header[i])));
    }
    std::vector<bool> used(folded.size(), false);
    for (const RoleWords& role : kRoles) {
        for (std::size_t i = 0; i < folded.size() && found.count(role.role) == 0; ++i) {
            if (!used[i] && matches(role, folded[i])) {
                found[role.role] = i;
                used[i] = true;
            }
        }
    }
    if (found.count(Role::Date) == 0) {
        for (std::size_t i = 0; i < folded.size(); ++i) {
            if (!used[i] && (folded[i].find("дата") != std::string::npos ||
                             folded[i].find("date") != std::string::npos)) {
                found[Role::Date] = i;
                break;
            }
        }
    }
    return found;
}

bool looksLikeHeader(const std::map<Role, std::size_t>& roles)
{
    const bool money = roles.count(Role::Amount) != 0 ||
                       (roles.count(Role::Debit) != 0 && roles.count(Role::Credit) != 0);
    return roles.count(Role::Date) != 0 && money;
}

std::optional<std::size_t> findHeader(const std::vector<CsvRecord>& records)
{
    for (std::size_t i = 0; i < records.size() && i < kHeaderSearch; ++i) {
        if (looksLikeHeader(rolesOf(records[i].fields))) {
            return i;
        }
    }
    return std::nullopt;
}

std::vector<CsvRecord> sampleRecords(std::string_view text, char separator, char quote)
{
    auto records = statement_readers::splitCsv(text, separator, quote, kSampleRecords);
    return records.ok() ? std::move(records.value()) : std::vector<CsvRecord>();
}

// The separator that shows a header, else the one that splits most lines alike.
char guessSeparator(std::string_view text, char quote)
{
    char best = ';';
    std::size_t bestScore = 0;
    for (const char separator : {';', ',', '\t', '|'}) {
        const std::vector<CsvRecord> records = sampleRecords(text, separator, quote);
        std::map<std::size_t, std::size_t> counts;
        for (const CsvRecord& r : records) {
            if (r.fields.size() > 1) {
                ++counts[r.fields.size()];
            }
        }
        std::size_t score = 0;
        for (const auto& [fields, n] : counts) {
            score = std::max(score, n);
        }
        if (findHeader(records)) {
            score += 100000;
        }
        if (score > bestScore) {
            best = separator;
            bestScore = score;
        }
    }
    return best;
}

std::vector<std::string> columnValues(const std::vector<CsvRecord>& rows,
                                      std::optional<std::size_t> column)
{
    std::vector<std::string> values;
    for (const CsvRecord& r : rows) {
        if (column && *column < r.fields.size() && !st::trim(r.fields[*column]).empty()) {
            values.emplace_back(st::trim(r.fields[*column]));
        }
    }
    return values;
}

std::string guessDateFormat(const std::vector<std::string>& values)
{
    bool dayFirst = true;
    std::string format;
    for (const std::string& v : values) {
        std::vector<int> groups;
        std::vector<std::size_t> lengths;
        std::string separators;
        std::size_t run = 0;
        for (std::size_t i = 0; i <= v.size(); ++i) {
            const bool digit = i < v.size() && v[i] >= '0' && v[i] <= '9';
            if (digit) {
                if (run == 0) {
                    groups.push_back(0);
                }
                if (run < 8) {
                    groups.back() = groups.back() * 10 + (v[i] - '0');
                }
                ++run;
                continue;
            }
            if (run != 0) {
                lengths.push_back(run);
            }
            run = 0;
            if (i == v.size() || v[i] == ' ' || v[i] == 'T' || groups.size() >= 3) {
                break;
            }
            separators += v[i];
        }
        if (groups.size() == 1 && lengths.size() == 1 && lengths[0] == 8) {
            return "yyyyMMdd";
        }
        if (groups.size() != 3 || lengths.size() != 3 || separators.size() != 2) {
            continue;
        }
        if (lengths[0] == 4) {
            return std::string("yyyy") + separators[0] + "MM" + separators[1] + "dd";
        }
        if (groups[1] > 12) {
            dayFirst = false;
        }
        const std::string year = lengths[2] == 2 ? "yy" : "yyyy";
        format = std::string("dd") + separators[0] + "MM" + separators[1] + year;
        if (groups[0] > 12) {
            break; // a day that is no month settles it
        }
    }
    if (format.empty()) {
        return "dd.MM.yyyy";
    }
    if (!dayFirst) {
        std::swap(format[0], format[3]);
        std::swap(format[1], format[4]);
    }
    return format;
}

void guessNumbers(CsvLayout& layout, const std::vector<std::string>& amounts)
{
    std::size_t comma = 0;
    std::size_t point = 0;
    bool blankGroups = false;
    for (const std::string& a : amounts) {
        const std::size_t last = a.find_last_of(".,");
        if (last != std::string::npos && a.size() - last - 1 <= 2) {
            (a[last] == ',' ? comma : point) += 1;
        }
        blankGroups = blankGroups || a.find(' ') != std::string::npos ||
                      a.find("\xC2\xA0") != std::string::npos;
    }
    if (!layout.decimalMark) {
        layout.decimalMark =
            comma > point || (comma == point && layout.separator != ',') ? ',' : '.';
    }
    if (!layout.thousandsSeparator) {
        const char other = *layout.decimalMark == ',' ? '.' : ',';
        const bool grouped = std::any_of(amounts.begin(), amounts.end(), [&](const std::string& a) {
            return a.find(other) != std::string::npos;
        });
        layout.thousandsSeparator = grouped ? other : (blankGroups ? ' ' : '\0');
    }
}

bool fitsPair(const std::vector<std::string>& values,
              std::pair<std::string_view, std::string_view> pair)
{
    return !values.empty() && std::all_of(values.begin(), values.end(), [&](const auto& v) {
        const std::string f = st::foldUtf8(v);
        return f == pair.first || f == pair.second;
    });
}

bool isDirectionPair(const std::vector<std::string>& values)
{
    return std::any_of(kDirections.begin(), kDirections.end(),
                       [&](const auto& pair) { return fitsPair(values, pair); });
}

void guessDirectionValues(CsvLayout& layout, const std::vector<std::string>& values)
{
    for (const auto& [out, in] : kDirections) {
        if (fitsPair(values, {out, in})) {
            layout.debitValue = layout.debitValue.value_or(std::string(out));
            layout.creditValue = layout.creditValue.value_or(std::string(in));
            return;
        }
    }
    layout.debitValue = layout.debitValue.value_or("");
    layout.creditValue = layout.creditValue.value_or("");
}

// An unsigned amount's direction in a column named anything ("Тип", "Вид"), known by its values.
void addDirectionByValues(std::map<Role, std::size_t>& roles, const std::vector<CsvRecord>& rows)
{
    std::size_t width = 0;
    for (const CsvRecord& r : rows) {
        width = std::max(width, r.fields.size());
    }
    for (std::size_t c = 0; c < width && c < kMaxColumns; ++c) {
        const bool used = std::any_of(roles.begin(), roles.end(),
                                      [c](const auto& role) { return role.second == c; });
        if (!used && isDirectionPair(columnValues(rows, c))) {
            roles[Role::Direction] = c;
            return;
        }
    }
}

// Columns without a header: the first whose cells are dates, the next whose cells are amounts.
std::map<Role, std::size_t> rolesByContent(const std::vector<CsvRecord>& allRows)
{
    // Lines of the width most lines have: a preamble's lines are narrower.
    std::map<std::size_t, std::size_t> widths;
    for (const CsvRecord& r : allRows) {
        ++widths[r.fields.size()];
    }
    std::size_t width = 0;
    std::size_t most = 0;
    for (const auto& [w, n] : widths) {
        if (n >= most) {
            width = w;
            most = n;
        }
    }
    std::vector<CsvRecord> rows;
    std::copy_if(allRows.begin(), allRows.end(), std::back_inserter(rows),
                 [width](const CsvRecord& r) { return r.fields.size() == width; });
    std::map<Role, std::size_t> roles;
    for (std::size_t c = 0; c < width && c < kMaxColumns; ++c) {
        const std::vector<std::string> values = columnValues(rows, c);
        if (values.empty()) {
            continue;
        }
        const std::string format = guessDateFormat(values);
        int y = 0;
        int m = 0;
        int d = 0;
        const bool dates = std::all_of(values.begin(), values.end(), [&](const std::string& v) {
            return statement_readers::parseCsvDate(v, format, y, m, d);
        });
        const bool amounts = std::all_of(values.begin(), values.end(), [](const std::string& v) {
            return v.find_first_of(".,") != std::string::npos &&
                   (st::parseAmount(v, ',', ' ') || st::parseAmount(v, '.', ','));
        });
        if (dates && roles.count(Role::Date) == 0) {
            roles[Role::Date] = c;
        } else if (amounts && roles.count(Role::Amount) == 0) {
            roles[Role::Amount] = c;
        }
    }
    return roles;
}

} // namespace

CsvLayout guessCsvLayout(std::string_view bytes, const CsvLayout& given)
{
    CsvLayout layout = given;
    bytes = st::withoutBom(bytes);
    // The sample ends with a whole line, so a character cut in two does not make a UTF-8 file
    // look like another encoding.
    std::string_view sample = bytes.substr(0, statement_readers::kSampleBytes);
    if (sample.size() < bytes.size() && sample.rfind('\n') != std::string_view::npos) {
        sample = sample.substr(0, sample.rfind('\n') + 1);
    }
    if (!layout.encoding) {
        layout.encoding = st::guessEncoding(sample);
    }
    const std::string text = st::toUtf8(sample, *layout.encoding);
    layout.quote = layout.quote.value_or('"');
    if (!layout.separator) {
        layout.separator = guessSeparator(text, *layout.quote);
    }
    const std::vector<CsvRecord> records = sampleRecords(text, *layout.separator, *layout.quote);
    if (!layout.headerLine) {
        const std::optional<std::size_t> header = findHeader(records);
        layout.headerLine = header ? static_cast<int>(*header) + 1 : 0;
    }
    const auto headerIndex = static_cast<std::size_t>(std::max(0, *layout.headerLine));
    const std::vector<std::string> header = headerIndex > 0 && headerIndex <= records.size()
                                                ? records[headerIndex - 1].fields
                                                : std::vector<std::string>();
    const std::vector<CsvRecord> rows(
        records.begin() + static_cast<std::ptrdiff_t>(std::min(headerIndex, records.size())),
        records.end());
    std::map<Role, std::size_t> roles = header.empty() ? rolesByContent(rows) : rolesOf(header);
    // Columns the user set are kept, and no guessed column takes their place.
    for (const RoleWords& role : kRoles) {
        if (const auto& column = layout.*(role.member)) {
            roles.erase(role.role);
            const auto index = statement_readers::columnIndex(*column, header);
            for (auto it = roles.begin(); index && it != roles.end();) {
                it = it->second == *index ? roles.erase(it) : std::next(it);
            }
        }
    }
    if (roles.count(Role::Amount) != 0 && roles.count(Role::Direction) == 0) {
        addDirectionByValues(roles, rows);
    }
    const bool amountGiven = layout.amountColumn || layout.debitColumn || layout.creditColumn;
    const bool debitCredit = roles.count(Role::Debit) != 0 && roles.count(Role::Credit) != 0;
    if (!amountGiven && debitCredit) {
        roles.erase(Role::Amount);
    } else if (!amountGiven || layout.amountColumn) {
        roles.erase(Role::Debit);
        roles.erase(Role::Credit);
    }
    for (const RoleWords& role : kRoles) {
        if (layout.*(role.member)) {
            continue;
        }
        CsvColumn column;
        if (const auto it = roles.find(role.role); it != roles.end()) {
            const std::string name(st::trim(header.empty() ? "" : header[it->second]));
            const bool unique = !name.empty() && std::count_if(header.begin(), header.end(),
                                                               [&](const std::string& h) {
                                                                   return st::trim(h) == name;
                                                               }) == 1;
            column.name = unique ? name : std::string();
            column.number = unique ? 0 : static_cast<int>(it->second) + 1;
        }
        layout.*(role.member) = column;
    }
    auto values = [&](const std::optional<CsvColumn>& column) {
        return column && column->present()
                   ? columnValues(rows, statement_readers::columnIndex(*column, header))
                   : std::vector<std::string>();
    };
    std::vector<std::string> amounts = values(layout.amountColumn);
    for (const auto& more : {values(layout.debitColumn), values(layout.creditColumn)}) {
        amounts.insert(amounts.end(), more.begin(), more.end());
    }
    guessNumbers(layout, amounts);
    if (!layout.dateFormat) {
        layout.dateFormat = guessDateFormat(values(layout.dateColumn));
    }
    guessDirectionValues(layout, values(layout.directionColumn));
    layout.currency = layout.currency.value_or("");
    return layout;
}

} // namespace finora
