// CSV statements under a layout: the bank's own columns, a few lines before the header and often
// a total or two after the last entry.
#include "core/statements/csv_records.h"
#include "core/statements/format_readers.h"
#include "core/statements/statement_text.h"

#include <cstdlib>
#include <string>

namespace finora::statement_readers {

namespace st = statement_text;

Result<std::vector<CsvRecord>, StatementReadError> splitCsv(std::string_view text, char separator,
                                                            char quote, std::size_t stopAt)
{
    std::vector<CsvRecord> records;
    CsvRecord record{{}, 1};
    std::string field;
    bool quoted = false;
    bool fieldStarted = false;
    std::size_t line = 1;
    auto endField = [&] {
        record.fields.push_back(std::move(field));
        field.clear();
        fieldStarted = false;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c == quote && i + 1 < text.size() && text[i + 1] == quote) {
                field += quote;
                ++i;
            } else if (c == quote) {
                quoted = false;
            } else {
                line += c == '\n' ? 1 : 0;
                field += c;
            }
        } else if (c == quote && quote != '\0' && (!fieldStarted || st::trim(field).empty())) {
            // Blanks before the opening quote are not part of the field.
            field.clear();
            quoted = true;
            fieldStarted = true;
        } else if (c == separator) {
            endField();
        } else if (c == '\r' || c == '\n') {
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
                ++i;
            }
            endField();
            records.push_back(std::move(record));
            record = CsvRecord{{}, ++line};
            if (stopAt != 0 && records.size() >= stopAt) {
                return records;
            }
        } else {
            field += c;
            fieldStarted = true;
        }
    }
    if (quoted && stopAt == 0) {
        return lineError(record.line, "Поле в кавички не е затворено.");
    }
    if (fieldStarted || !record.fields.empty()) {
        endField();
        records.push_back(std::move(record));
    }
    return records;
}

bool parseCsvDate(std::string_view text, std::string_view format, int& year, int& month, int& day)
{
    text = st::trim(text);
    year = month = day = 0;
    std::size_t t = 0;
    auto digits = [&](std::size_t minCount, std::size_t maxCount, int& out) {
        std::size_t n = 0;
        out = 0;
        while (n < maxCount && t < text.size() && text[t] >= '0' && text[t] <= '9') {
            out = out * 10 + (text[t] - '0');
            ++t;
            ++n;
        }
        return n >= minCount;
    };
    for (std::size_t f = 0; f < format.size();) {
        const std::string_view rest = format.substr(f);
        bool ok = true;
        if (rest.rfind("yyyy", 0) == 0) {
            ok = digits(4, 4, year);
            f += 4;
        } else if (rest.rfind("yy", 0) == 0) {
            ok = digits(2, 2, year);
            year += 2000;
            f += 2;
        } else if (rest.front() == 'M' || rest.front() == 'd') {
            const bool twice = rest.size() > 1 && rest[1] == rest.front();
            ok = digits(1, 2, rest.front() == 'M' ? month : day);
            f += twice ? 2 : 1;
        } else {
            ok = t < text.size() && text[t] == rest.front();
            ++t;
            ++f;
        }
        if (!ok) {
            return false;
        }
    }
    if (t < text.size() && text[t] != ' ' && text[t] != 'T') {
        return false;
    }
    return st::isValidDate(year, month, day);
}

std::optional<std::size_t> columnIndex(const CsvColumn& column,
                                       const std::vector<std::string>& header)
{
    if (column.number > 0) {
        return static_cast<std::size_t>(column.number - 1);
    }
    const std::string wanted = st::foldUtf8(st::trim(column.name));
    for (std::size_t i = 0; i < header.size(); ++i) {
        if (!wanted.empty() && st::foldUtf8(st::trim(header[i])) == wanted) {
            return i;
        }
    }
    return std::nullopt;
}

namespace {

struct Columns {
    std::optional<std::size_t> date, payee, description, notes, currency, amount, debit, credit,
        direction;
};

std::string cell(const CsvRecord& r, std::optional<std::size_t> column)
{
    if (!column || *column >= r.fields.size()) {
        return {};
    }
    return std::string(st::trim(r.fields[*column]));
}

Result<Columns, StatementReadError> resolveColumns(const CsvLayout& layout,
                                                   const std::vector<std::string>& header,
                                                   std::size_t headerLine)
{
    Columns c;
    std::string missing;
    auto resolve = [&](const std::optional<CsvColumn>& column, std::optional<std::size_t>& out) {
        if (!column || !column->present()) {
            return;
        }
        out = columnIndex(*column, header);
        if (!out && missing.empty()) {
            missing = column->name;
        }
    };
    resolve(layout.dateColumn, c.date);
    resolve(layout.payeeColumn, c.payee);
    resolve(layout.descriptionColumn, c.description);
    resolve(layout.notesColumn, c.notes);
    resolve(layout.currencyColumn, c.currency);
    resolve(layout.amountColumn, c.amount);
    resolve(layout.debitColumn, c.debit);
    resolve(layout.creditColumn, c.credit);
    resolve(layout.directionColumn, c.direction);
    const std::size_t where = headerLine == 0 ? 1 : headerLine;
    if (!missing.empty()) {
        return lineError(where, "Няма колона „" + missing + "“.");
    }
    if (!c.date) {
        return lineError(where, "Не е посочена колоната с датата.");
    }
    if (!c.amount && !(c.debit && c.credit)) {
        return lineError(where, "Не е посочена колоната със сумата (или дебит и кредит).");
    }
    return c;
}

std::optional<std::int64_t> amountOf(const CsvRecord& r, const Columns& c, const CsvLayout& layout,
                                     std::string& why)
{
    const char mark = layout.decimalMark.value_or(',');
    const char thousands = layout.thousandsSeparator.value_or('\0');
    if (c.amount) {
        const std::optional<std::int64_t> amount =
            st::parseAmount(cell(r, c.amount), mark, thousands);
        if (!amount) {
            why = "Сумата не е число.";
            return std::nullopt;
        }
        if (!c.direction) {
            return amount;
        }
        const std::string direction = st::foldUtf8(cell(r, c.direction));
        const std::int64_t size = std::llabs(*amount);
        if (direction == st::foldUtf8(layout.debitValue.value_or(""))) {
            return -size;
        }
        if (direction == st::foldUtf8(layout.creditValue.value_or(""))) {
            return size;
        }
        why = "Посоката „" + cell(r, c.direction) + "“ не е нито дебит, нито кредит.";
        return std::nullopt;
    }
    const std::string debitText = cell(r, c.debit);
    const std::string creditText = cell(r, c.credit);
    const auto debit = debitText.empty() ? std::optional<std::int64_t>(0)
                                         : st::parseAmount(debitText, mark, thousands);
    const auto credit = creditText.empty() ? std::optional<std::int64_t>(0)
                                           : st::parseAmount(creditText, mark, thousands);
    if (!debit || !credit || (debitText.empty() && creditText.empty())) {
        why = "Дебитът или кредитът не е число.";
        return std::nullopt;
    }
    return std::llabs(*credit) - std::llabs(*debit);
}

} // namespace

ReadResult readCsv(std::string_view bytes, const CsvLayout& layout)
{
    const std::string text =
        st::toUtf8(st::withoutBom(bytes), layout.encoding.value_or(st::Encoding::Utf8));
    auto records = splitCsv(text, layout.separator.value_or(';'), layout.quote.value_or('"'));
    if (!records.ok()) {
        return records.error();
    }
    const std::vector<CsvRecord>& rows = records.value();
    const auto headerLine = static_cast<std::size_t>(std::max(0, layout.headerLine.value_or(0)));
    if (headerLine > rows.size()) {
        return lineError(headerLine,
                         "Файлът няма толкова редове, колкото е мястото на заглавието.");
    }
    const std::vector<std::string> header =
        headerLine == 0 ? std::vector<std::string>() : rows[headerLine - 1].fields;
    auto columns = resolveColumns(layout, header, headerLine == 0 ? 1 : rows[headerLine - 1].line);
    if (!columns.ok()) {
        return columns.error();
    }
    const Columns& c = columns.value();
    const std::string dateFormat = layout.dateFormat.value_or("dd.MM.yyyy");
    Statement statement;
    statement.format = StatementFormat::Csv;
    // A line whose date is not a date is an error only between entries: before the first it is
    // the bank's preamble, after the last its total.
    std::optional<StatementReadError> pending;
    std::optional<StatementReadError> firstBadDate;
    for (std::size_t i = headerLine; i < rows.size(); ++i) {
        const CsvRecord& r = rows[i];
        const std::string dateText = cell(r, c.date);
        if (dateText.empty()) {
            continue;
        }
        StatementEntry entry;
        if (!parseCsvDate(dateText, dateFormat, entry.year, entry.month, entry.day)) {
            std::string reason = "„";
            reason += dateText;
            reason += "“ не е дата във вида ";
            reason += dateFormat;
            reason += '.';
            if (!firstBadDate) {
                firstBadDate = lineError(r.line, reason);
            }
            if (!pending && !statement.entries.empty()) {
                pending = lineError(r.line, reason);
            }
            continue;
        }
        if (pending) {
            return *pending;
        }
        std::string why;
        const std::optional<std::int64_t> amount = amountOf(r, c, layout, why);
        if (!amount) {
            return lineError(r.line, why);
        }
        entry.amountCents = *amount;
        entry.currency = c.currency ? cell(r, c.currency) : layout.currency.value_or("");
        entry.counterparty = st::collapseBlanks(cell(r, c.payee));
        entry.remittance = st::collapseBlanks(cell(r, c.description));
        entry.notes = st::collapseBlanks(cell(r, c.notes));
        statement.entries.push_back(std::move(entry));
    }
    if (statement.entries.empty() && firstBadDate) {
        return *firstBadDate; // not one date read: the format is wrong, not the preamble
    }
    return statement;
}

} // namespace finora::statement_readers

namespace finora {

std::vector<std::string> csvHeaderFields(std::string_view bytes, const CsvLayout& layout)
{
    const int line = layout.headerLine.value_or(0);
    if (line <= 0) {
        return {};
    }
    const std::string text =
        statement_text::toUtf8(statement_text::withoutBom(bytes),
                               layout.encoding.value_or(statement_text::Encoding::Utf8));
    auto records =
        statement_readers::splitCsv(text, layout.separator.value_or(';'),
                                    layout.quote.value_or('"'), static_cast<std::size_t>(line));
    if (!records.ok() || records.value().size() < static_cast<std::size_t>(line)) {
        return {};
    }
    std::vector<std::string> fields;
    for (const std::string& f : records.value()[static_cast<std::size_t>(line - 1)].fields) {
        fields.emplace_back(statement_text::trim(f));
    }
    return fields;
}

bool csvLayoutFits(std::string_view bytes, const CsvLayout& layout)
{
    CsvLayout read = layout;
    if (!read.encoding) {
        read.encoding =
            statement_text::guessEncoding(bytes.substr(0, statement_readers::kSampleBytes));
    }
    const std::vector<std::string> header = csvHeaderFields(bytes, read);
    bool anyName = false;
    for (const auto& column : {layout.dateColumn, layout.payeeColumn, layout.descriptionColumn,
                               layout.notesColumn, layout.currencyColumn, layout.amountColumn,
                               layout.debitColumn, layout.creditColumn, layout.directionColumn}) {
        if (column && !column->name.empty()) {
            anyName = true;
            if (!statement_readers::columnIndex(*column, header)) {
                return false;
            }
        }
    }
    return anyName;
}

} // namespace finora
