#include "core/statements/statement_reader.h"

#include "core/statements/format_readers.h"
#include "core/statements/statement_text.h"

#include <array>
#include <utility>

namespace finora {

namespace st = statement_text;

namespace {

constexpr std::array<std::pair<StatementFormat, std::string_view>, 5> kNames = {{
    {StatementFormat::Csv, "csv"},
    {StatementFormat::Camt053, "camt053"},
    {StatementFormat::Ofx, "ofx"},
    {StatementFormat::Qif, "qif"},
    {StatementFormat::Mt940, "mt940"},
}};

Result<Statement, StatementReadError> readFormat(std::string_view bytes,
                                                 const StatementReadOptions& options);

bool contains(std::string_view text, std::string_view what)
{
    return text.find(what) != std::string_view::npos;
}

} // namespace

std::string_view statementFormatName(StatementFormat format)
{
    for (const auto& [f, name] : kNames) {
        if (f == format) {
            return name;
        }
    }
    return "csv";
}

std::optional<StatementFormat> statementFormatFromName(std::string_view name)
{
    for (const auto& [f, n] : kNames) {
        if (n == name) {
            return f;
        }
    }
    return std::nullopt;
}

StatementFormat detectStatementFormat(std::string_view bytes)
{
    // The first few kilobytes tell: every format but CSV names itself near the start.
    const std::string head = st::foldUtf8(st::trim(st::withoutBom(bytes.substr(0, 4096))));
    if (head.rfind("ofxheader", 0) == 0 || contains(head, "<ofx>") || contains(head, "<?ofx")) {
        return StatementFormat::Ofx;
    }
    if (contains(head, "camt.053") || contains(head, "bktocstmrstmt>")) {
        return StatementFormat::Camt053;
    }
    if (head.rfind("!type:", 0) == 0 || head.rfind("!account", 0) == 0 ||
        head.rfind("!option:", 0) == 0 || head.rfind("!clear:", 0) == 0) {
        return StatementFormat::Qif;
    }
    const bool opensWithField =
        head.rfind(":20:", 0) == 0 || head.rfind("{1:", 0) == 0 || contains(head, "\n:20:");
    if (opensWithField && (contains(head, ":25:") || contains(head, ":61:"))) {
        return StatementFormat::Mt940;
    }
    return StatementFormat::Csv;
}

Result<Statement, StatementReadError> readStatement(std::string_view bytes,
                                                    const StatementReadOptions& options)
{
    auto read = readFormat(bytes, options);
    if (read.ok()) {
        // Readers cut fields at byte positions the file gives; a letter cut in two is not passed
        // on.
        for (StatementEntry& e : read.value().entries) {
            for (std::string* text : {&e.currency, &e.counterparty, &e.remittance, &e.reference,
                                      &e.account, &e.notes}) {
                if (!st::isValidUtf8(*text)) {
                    *text = st::toUtf8(*text, st::Encoding::Utf8);
                }
            }
        }
    }
    return read;
}

namespace {

Result<Statement, StatementReadError> readFormat(std::string_view bytes,
                                                 const StatementReadOptions& options)
{
    const StatementFormat format = options.format.value_or(detectStatementFormat(bytes));
    switch (format) {
    case StatementFormat::Mt940:
        return statement_readers::readMt940(bytes);
    case StatementFormat::Camt053:
        return statement_readers::readCamt053(bytes);
    case StatementFormat::Ofx:
        return statement_readers::readOfx(bytes);
    case StatementFormat::Qif:
        return statement_readers::readQif(bytes, options.dateOrder);
    case StatementFormat::Csv:
        break;
    }
    return statement_readers::readCsv(bytes, guessCsvLayout(bytes, options.csvLayout));
}

} // namespace

} // namespace finora
