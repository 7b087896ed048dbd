// QIF: one letter and a value a line, "^" ends a record, "!Type:" names what follows. Only bank,
// cash and card records are statements; lists (categories, memorised items, investments) are
// passed over. QIF names no currency and writes dates in its program's order.
#include "core/statements/format_readers.h"
#include "core/statements/statement_text.h"

#include <string>
#include <vector>

namespace finora::statement_readers {

namespace st = statement_text;

namespace {

struct RawRecord {
    std::string date;
    std::optional<std::int64_t> total;
    std::int64_t splitSum = 0;
    bool anySplit = false;
    std::string payee;
    std::string memo;
    std::size_t line = 0;
};

// "1,234.56", "1.234,56", "-45.5": the last mark followed by one or two digits is the decimal one.
std::optional<std::int64_t> qifAmount(std::string_view text)
{
    text = st::trim(text);
    const std::size_t last = text.find_last_of(".,");
    if (last == std::string_view::npos) {
        return st::parseAmount(text, '.');
    }
    const std::size_t after = text.size() - last - 1;
    const char mark = text[last];
    const char other = mark == '.' ? ',' : '.';
    if (after == 3 && mark == ',') {
        return st::parseAmount(text, '.', ',');
    }
    return st::parseAmount(text, mark, other);
}

struct DateParts {
    int first = 0;
    int second = 0;
    int year = 0;
    bool yearFirst = false;
};

// "1/ 5'98", "01/05/2026", "5.1.2026", "2026-01-05": three numbers. Quicken's apostrophe marks
// a year of this century.
bool splitDate(std::string_view text, DateParts& parts)
{
    std::vector<std::string> numbers(1);
    bool apostrophe = false;
    for (const char c : st::trim(text)) {
        if (c >= '0' && c <= '9') {
            if (numbers.back().size() >= 4) {
                return false;
            }
            numbers.back() += c;
        } else if (c == '/' || c == '.' || c == '-' || c == '\'') {
            apostrophe = apostrophe || c == '\'';
            if (numbers.back().empty() || numbers.size() == 3) {
                return false;
            }
            numbers.emplace_back();
        } else if (c != ' ') {
            return false;
        }
    }
    if (numbers.size() != 3 || numbers[2].empty()) {
        return false;
    }
    parts.yearFirst = numbers[0].size() == 4;
    const std::string& yearText = parts.yearFirst ? numbers[0] : numbers[2];
    parts.first = std::stoi(parts.yearFirst ? numbers[1] : numbers[0]);
    parts.second = std::stoi(parts.yearFirst ? numbers[2] : numbers[1]);
    parts.year = std::stoi(yearText);
    if (yearText.size() <= 2) {
        parts.year += apostrophe || parts.year < 70 ? 2000 : 1900;
    } else if (yearText.size() != 4) {
        return false;
    }
    return true;
}

bool dateIn(const DateParts& p, DateOrder order, StatementEntry& entry)
{
    entry.year = p.year;
    const bool dayFirst = !p.yearFirst && order == DateOrder::Dmy;
    entry.month = dayFirst ? p.second : p.first;
    entry.day = dayFirst ? p.first : p.second;
    if (p.yearFirst) {
        entry.month = p.first;
        entry.day = p.second;
    }
    return st::isValidDate(entry.year, entry.month, entry.day);
}

// Reads the records of bank, cash and card sections; an error names the line.
Result<std::vector<RawRecord>, StatementReadError> readRecords(std::string_view text,
                                                               std::string& account)
{
    std::vector<RawRecord> records;
    RawRecord current;
    bool anyType = false;
    bool statementSection = false;
    bool accountBlock = false;
    std::string pendingAccount;
    const std::vector<std::string_view> lines = st::splitLines(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string_view line = st::trim(lines[i]);
        if (line.empty()) {
            continue;
        }
        if (line.front() == '!') {
            const std::string header = st::foldUtf8(line);
            if (header.rfind("!type:", 0) == 0) {
                const std::string type(st::trim(std::string_view(header).substr(6)));
                anyType = true;
                statementSection = type == "bank" || type == "cash" || type == "ccard" ||
                                   type == "oth a" || type == "oth l";
                accountBlock = false;
            } else if (header == "!account") {
                accountBlock = true;
            }
            continue;
        }
        const char code = line.front();
        const std::string_view value = line.substr(1);
        if (accountBlock) {
            if (code == 'N') {
                pendingAccount = std::string(st::trim(value));
            } else if (code == '^') {
                account = pendingAccount;
                accountBlock = false;
            }
            continue;
        }
        if (!anyType) {
            return lineError(i + 1, "Файлът не е QIF: записите не започват с „!Type:“.");
        }
        if (!statementSection) {
            continue;
        }
        if (current.line == 0) {
            current.line = i + 1;
        }
        if (code == 'D') {
            current.date = std::string(value);
        } else if (code == 'T' || code == 'U') {
            const auto amount = qifAmount(value);
            if (!amount) {
                return lineError(i + 1, "Сумата не е число.");
            }
            if (code == 'T' || !current.total) {
                current.total = amount;
            }
        } else if (code == '$') {
            const auto amount = qifAmount(value);
            if (!amount) {
                return lineError(i + 1, "Сумата на разделянето не е число.");
            }
            current.splitSum += *amount;
            current.anySplit = true;
        } else if (code == 'P') {
            current.payee = st::collapseBlanks(value);
        } else if (code == 'M') {
            current.memo = st::collapseBlanks(value);
        } else if (code == '^') {
            records.push_back(std::move(current));
            current = RawRecord();
        }
    }
    if (current.line != 0 && !current.date.empty()) {
        records.push_back(std::move(current)); // a last record without its "^"
    }
    if (!anyType) {
        return lineError(1, "Файлът не е QIF: липсва „!Type:“.");
    }
    return records;
}

} // namespace

ReadResult readQif(std::string_view bytes, std::optional<DateOrder> order)
{
    bytes = st::withoutBom(bytes);
    const std::string text = st::toUtf8(bytes, st::guessEncoding(bytes));
    std::string account;
    auto records = readRecords(text, account);
    if (!records.ok()) {
        return records.error();
    }
    // The order: the one asked for, else the only one every date fits.
    std::vector<DateParts> dates;
    bool dmyFits = true;
    bool mdyFits = true;
    bool allYearFirst = true;
    for (const RawRecord& r : records.value()) {
        DateParts parts;
        StatementEntry probe;
        if (!splitDate(r.date, parts)) {
            return lineError(r.line, "Датата липсва или не е дата.");
        }
        allYearFirst = allYearFirst && parts.yearFirst;
        const bool dmy = dateIn(parts, DateOrder::Dmy, probe);
        const bool mdy = dateIn(parts, DateOrder::Mdy, probe);
        if (!dmy && !mdy) {
            return lineError(r.line, "Датата не е дата.");
        }
        dmyFits = dmyFits && dmy;
        mdyFits = mdyFits && mdy;
        dates.push_back(parts);
    }
    Statement statement;
    statement.format = StatementFormat::Qif;
    if (order) {
        statement.dateOrder = *order;
    } else if (allYearFirst) {
        statement.dateOrder = DateOrder::Ymd;
    } else if (dmyFits != mdyFits) {
        statement.dateOrder = dmyFits ? DateOrder::Dmy : DateOrder::Mdy;
    } else if (dmyFits) {
        statement.dateOrderAmbiguous = true;
        // Quicken's apostrophe is an American habit: read month first until the user says.
        const bool quicken = text.find('\'') != std::string::npos;
        statement.dateOrder = quicken ? DateOrder::Mdy : DateOrder::Dmy;
    } else {
        return lineError(records.value().front().line,
                         "Датите не следват един и същ ред на деня и месеца.");
    }
    for (std::size_t i = 0; i < dates.size(); ++i) {
        const RawRecord& r = records.value()[i];
        StatementEntry entry;
        if (!dateIn(dates[i], statement.dateOrder, entry)) {
            return lineError(r.line, "Датата не отговаря на избрания ред на деня и месеца.");
        }
        if (!r.total && !r.anySplit) {
            return lineError(r.line, "Записът няма сума.");
        }
        // A split record is one operation: its total, or the sum of its parts when it has none.
        entry.amountCents = r.total.value_or(r.splitSum);
        entry.counterparty = r.payee;
        entry.remittance = r.memo;
        entry.account = account;
        statement.entries.push_back(std::move(entry));
    }
    return statement;
}

} // namespace finora::statement_readers
