// ISO 20022 CAMT.053 (bank to customer statement), every version from 001.02 on: the elements
// read here kept their names and places, only the party's name moved under "Pty" in 001.08.
#include "core/statements/format_readers.h"
#include "core/statements/markup_tree.h"
#include "core/statements/statement_text.h"

#include <string>
#include <vector>

namespace finora::statement_readers {

namespace st = statement_text;

namespace {

StatementReadError elementError(const MarkupNode& node, std::string reason)
{
    return StatementReadError{"елемент " + node.name + " (ред " + std::to_string(node.line) + ")",
                              std::move(reason)};
}

std::string partyName(const MarkupNode& parties, std::string_view role)
{
    const MarkupNode* party = parties.child(role);
    if (party == nullptr) {
        return {};
    }
    const std::string name = party->textAt({"Nm"});
    return name.empty() ? party->textAt({"Pty", "Nm"}) : name;
}

struct Detail {
    std::string counterparty;
    std::string remittance;
};

Detail readDetail(const MarkupNode& tx, bool in)
{
    Detail d;
    if (const MarkupNode* parties = tx.child("RltdPties")) {
        d.counterparty = partyName(*parties, in ? "Dbtr" : "Cdtr");
        if (d.counterparty.empty()) {
            d.counterparty = partyName(*parties, in ? "UltmtDbtr" : "UltmtCdtr");
        }
    }
    if (const MarkupNode* info = tx.child("RmtInf")) {
        std::string text;
        for (const MarkupNode* line : info->childrenNamed("Ustrd")) {
            text += (text.empty() ? "" : " ") + line->text;
        }
        if (text.empty()) {
            for (const MarkupNode* strd : info->childrenNamed("Strd")) {
                const std::string ref = strd->textAt({"CdtrRefInf", "Ref"});
                text += (text.empty() || ref.empty() ? "" : " ") + ref;
            }
        }
        d.remittance = st::collapseBlanks(text);
    }
    if (d.remittance.empty()) {
        d.remittance = st::collapseBlanks(tx.textAt({"AddtlTxInf"}));
    }
    return d;
}

bool readDate(const MarkupNode* date, StatementEntry& entry)
{
    if (date == nullptr) {
        return false;
    }
    const std::string text =
        date->textAt({"Dt"}).empty() ? date->textAt({"DtTm"}) : date->textAt({"Dt"});
    return st::parseIsoDate(text, entry.year, entry.month, entry.day);
}

// One operation per entry: the entry is what the bank booked, and a batch's details often come
// without amounts of their own. Their texts are kept; a name is kept when all of them share it.
Result<StatementEntry, StatementReadError> readEntry(const MarkupNode& ntry,
                                                     const std::string& account)
{
    StatementEntry entry;
    entry.account = account;
    const MarkupNode* amount = ntry.child("Amt");
    const std::optional<std::int64_t> cents =
        amount == nullptr ? std::nullopt : st::parseAmount(amount->text, '.');
    if (!cents || *cents < 0) {
        return elementError(amount == nullptr ? ntry : *amount, "Сумата липсва или не е число.");
    }
    entry.currency = amount->attribute("Ccy");
    const std::string indicator = ntry.textAt({"CdtDbtInd"});
    if (indicator != "CRDT" && indicator != "DBIT") {
        return elementError(ntry, "Липсва посоката на движението (CdtDbtInd).");
    }
    // A reversal keeps the sign its indicator gives: the bank books it in that direction.
    const bool in = indicator == "CRDT";
    entry.amountCents = in ? *cents : -*cents;
    if (!readDate(ntry.child("BookgDt"), entry) && !readDate(ntry.child("ValDt"), entry)) {
        return elementError(ntry, "Липсва датата на осчетоводяване.");
    }
    entry.reference = ntry.textAt({"AcctSvcrRef"});
    if (entry.reference.empty()) {
        entry.reference = ntry.textAt({"NtryRef"});
    }
    std::vector<const MarkupNode*> details;
    for (const MarkupNode* group : ntry.childrenNamed("NtryDtls")) {
        for (const MarkupNode* tx : group->childrenNamed("TxDtls")) {
            details.push_back(tx);
        }
    }
    std::string texts;
    for (std::size_t i = 0; i < details.size(); ++i) {
        const Detail d = readDetail(*details[i], in);
        if (i == 0) {
            entry.counterparty = d.counterparty;
        } else if (entry.counterparty != d.counterparty) {
            entry.counterparty.clear();
        }
        if (!d.remittance.empty()) {
            texts += (texts.empty() ? "" : "; ") + d.remittance;
        }
    }
    if (details.size() == 1 && entry.reference.empty()) {
        entry.reference = details[0]->textAt({"Refs", "AcctSvcrRef"});
    }
    const std::string additional = st::collapseBlanks(ntry.textAt({"AddtlNtryInf"}));
    entry.remittance = details.size() > 1 && !additional.empty() ? additional : texts;
    if (entry.remittance.empty()) {
        entry.remittance = additional;
    }
    return entry;
}

bool isBooked(const MarkupNode& ntry)
{
    const std::string status =
        ntry.textAt({"Sts"}).empty() ? ntry.textAt({"Sts", "Cd"}) : ntry.textAt({"Sts"});
    return status != "PDNG" && status != "INFO";
}

} // namespace

ReadResult readCamt053(std::string_view bytes)
{
    auto tree = readXmlTree(bytes);
    if (!tree.ok()) {
        return tree.error();
    }
    const MarkupNode& document = tree.value();
    const MarkupNode* statements = document.child("BkToCstmrStmt");
    if (document.name != "Document" || statements == nullptr) {
        return elementError(document, "Файлът не е извлечение CAMT.053.");
    }
    Statement statement;
    statement.format = StatementFormat::Camt053;
    for (const MarkupNode* stmt : statements->childrenNamed("Stmt")) {
        std::string account = stmt->textAt({"Acct", "Id", "IBAN"});
        if (account.empty()) {
            account = stmt->textAt({"Acct", "Id", "Othr", "Id"});
        }
        for (const MarkupNode* ntry : stmt->childrenNamed("Ntry")) {
            if (!isBooked(*ntry)) {
                continue;
            }
            auto entry = readEntry(*ntry, account);
            if (!entry.ok()) {
                return entry.error();
            }
            statement.entries.push_back(std::move(entry.value()));
        }
    }
    return statement;
}

} // namespace finora::statement_readers
