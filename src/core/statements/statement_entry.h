#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace finora {

enum class StatementFormat { Csv, Camt053, Ofx, Qif, Mt940 };

// The order of day, month and year in a date that does not say it (QIF's 03/04/2026).
enum class DateOrder { Dmy, Mdy, Ymd };

// One booked entry as the bank wrote it, whatever the file's format. Texts are UTF-8 (each reader
// decodes its file's encoding); the import decides how they are stored in the ledger.
struct StatementEntry {
    int year = 0; // booking date (the entry date where a format has one)
    int month = 0;
    int day = 0;
    std::int64_t amountCents = 0; // signed: positive is money in, negative money out
    std::string currency;     // ISO code as written ("BGN", "EUR"); empty when the file has none
    std::string counterparty; // the payee or payer
    std::string remittance;   // the free text of the payment
    std::string reference;    // the bank's own reference of the entry; empty when it has none
    std::string notes;        // any further text the file gives (a CSV's notes column)
    std::string account;      // the account the statement is for, when the file says

    bool operator==(const StatementEntry&) const = default;
};

struct Statement {
    StatementFormat format = StatementFormat::Csv;
    std::vector<StatementEntry> entries;
    // The order the dates were read in. Ambiguous when the file's dates fit more than one order
    // and the caller named none: the entries are then read in `dateOrder` and the user must be
    // asked before anything is added.
    DateOrder dateOrder = DateOrder::Dmy;
    bool dateOrderAmbiguous = false;
};

// Why a file could not be read: where it broke (a line, an element) and what was wrong, in
// Bulgarian, so a message can name both.
struct StatementReadError {
    std::string where;
    std::string reason;
};

} // namespace finora
