// OFX: version 1 is SGML after a "KEY:VALUE" header that names its character set; version 2 is
// XML. Both hold any number of bank ("STMTRS") and card ("CCSTMTRS") statements.
#include "core/statements/format_readers.h"
#include "core/statements/markup_tree.h"
#include "core/statements/statement_text.h"

#include <algorithm>
#include <string>
#include <vector>

namespace finora::statement_readers {

namespace st = statement_text;

namespace {

// The header of OFX 1: "ENCODING:USASCII" with "CHARSET:1252", or "ENCODING:UTF-8".
st::Encoding headerEncoding(std::string_view header)
{
    std::string encoding;
    std::string charset;
    for (const std::string_view line : st::splitLines(header)) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) {
            continue;
        }
        const std::string key = st::foldUtf8(st::trim(line.substr(0, colon)));
        const std::string value = st::foldUtf8(st::trim(line.substr(colon + 1)));
        if (key == "encoding") {
            encoding = value;
        } else if (key == "charset") {
            charset = value;
        }
    }
    if (encoding == "utf-8" || encoding == "utf8" || charset == "utf-8") {
        return st::Encoding::Utf8;
    }
    if (charset == "1251" || charset == "windows-1251") {
        return st::Encoding::Windows1251;
    }
    if (charset == "iso-8859-1" || charset == "8859-1" || charset == "latin1") {
        return st::Encoding::Latin1;
    }
    // "1252", "NONE" and what else banks write: Windows-1252 holds Latin-1's letters too.
    return st::Encoding::Windows1252;
}

void collectStatements(const MarkupNode& node, std::vector<const MarkupNode*>& out, int depth)
{
    if (node.name == "STMTRS" || node.name == "CCSTMTRS") {
        out.push_back(&node);
        return;
    }
    if (depth > 16) {
        return;
    }
    for (const MarkupNode& c : node.children) {
        collectStatements(c, out, depth + 1);
    }
}

StatementReadError elementError(const MarkupNode& node, std::string reason)
{
    return StatementReadError{"елемент " + node.name + " (ред " + std::to_string(node.line) + ")",
                              std::move(reason)};
}

Result<StatementEntry, StatementReadError> readTransaction(const MarkupNode& trn)
{
    StatementEntry entry;
    const std::string amount = trn.textAt({"TRNAMT"});
    std::optional<std::int64_t> cents = st::parseAmount(amount, '.');
    if (!cents) {
        cents = st::parseAmount(amount, ','); // some banks write their own decimal mark
    }
    if (!cents) {
        return elementError(trn, "Сумата (TRNAMT) липсва или не е число.");
    }
    entry.amountCents = *cents;
    const std::string posted = trn.textAt({"DTPOSTED"});
    if (!st::parseIsoDate(posted.empty() ? trn.textAt({"DTUSER"}) : posted, entry.year, entry.month,
                          entry.day)) {
        return elementError(trn, "Датата (DTPOSTED) липсва или не е дата.");
    }
    entry.reference = trn.textAt({"FITID"});
    entry.counterparty = trn.textAt({"NAME"});
    if (entry.counterparty.empty()) {
        entry.counterparty = trn.textAt({"PAYEE", "NAME"});
    }
    entry.remittance = st::collapseBlanks(trn.textAt({"MEMO"}));
    entry.currency = trn.textAt({"CURRENCY", "CURSYM"});
    return entry;
}

} // namespace

ReadResult readOfx(std::string_view bytes)
{
    bytes = st::withoutBom(bytes);
    const std::string_view start = st::trim(bytes.substr(0, 64));
    Result<MarkupNode, StatementReadError> tree = StatementReadError{};
    if (start.rfind("<?xml", 0) == 0) {
        tree = readXmlTree(bytes);
    } else {
        const std::size_t body = bytes.find('<');
        if (body == std::string_view::npos) {
            return StatementReadError{"ред 1", "Файлът не е OFX: няма елемент OFX."};
        }
        const std::string text =
            st::toUtf8(bytes.substr(body), headerEncoding(bytes.substr(0, body)));
        // Lines are counted from where the elements begin, after the header's lines.
        const std::string_view header = bytes.substr(0, body);
        const auto breaks = std::count(header.begin(), header.end(), '\n');
        tree = readSgmlTree(
            text,
            static_cast<std::size_t>(
                breaks != 0 ? breaks + 1 : std::count(header.begin(), header.end(), '\r') + 1));
    }
    if (!tree.ok()) {
        return tree.error();
    }
    std::vector<const MarkupNode*> statements;
    collectStatements(tree.value(), statements, 0);
    if (statements.empty() && tree.value().name != "OFX" && tree.value().child("OFX") == nullptr) {
        return StatementReadError{"ред 1", "Файлът не е OFX: няма елемент OFX."};
    }
    Statement statement;
    statement.format = StatementFormat::Ofx;
    for (const MarkupNode* stmt : statements) {
        const std::string currency = stmt->textAt({"CURDEF"});
        std::string account = stmt->textAt({"BANKACCTFROM", "ACCTID"});
        if (account.empty()) {
            account = stmt->textAt({"CCACCTFROM", "ACCTID"});
        }
        const MarkupNode* list = stmt->child("BANKTRANLIST");
        if (list == nullptr) {
            continue;
        }
        for (const MarkupNode* trn : list->childrenNamed("STMTTRN")) {
            auto entry = readTransaction(*trn);
            if (!entry.ok()) {
                return entry.error();
            }
            if (entry.value().currency.empty()) {
                entry.value().currency = currency;
            }
            entry.value().account = account;
            statement.entries.push_back(std::move(entry.value()));
        }
    }
    return statement;
}

} // namespace finora::statement_readers
