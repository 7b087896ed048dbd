// Statements as banks write them, one table per behaviour: every entry read with its date,
// signed amount, currency, texts and reference, whatever the format.
#include "core/statements/statement_reader.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace finora;

namespace {

struct Expected {
    std::string date; // YYYY-MM-DD
    std::int64_t cents;
    std::string currency;
    std::string counterparty;
    std::string remittance;
    std::string reference;
    std::string account;
};

struct Sample {
    const char* name;
    StatementFormat format;
    std::string bytes;
    std::vector<Expected> entries;
};

std::string dateOf(const StatementEntry& e)
{
    char text[16];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", e.year, e.month, e.day);
    return text;
}

void expectEntries(const Statement& statement, const std::vector<Expected>& expected)
{
    ASSERT_EQ(statement.entries.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE("entry " + std::to_string(i + 1));
        const StatementEntry& e = statement.entries[i];
        const Expected& x = expected[i];
        EXPECT_EQ(dateOf(e), x.date);
        EXPECT_EQ(e.amountCents, x.cents);
        EXPECT_EQ(e.currency, x.currency);
        EXPECT_EQ(e.counterparty, x.counterparty);
        EXPECT_EQ(e.remittance, x.remittance);
        EXPECT_EQ(e.reference, x.reference);
        EXPECT_EQ(e.account, x.account);
    }
}

// MT940: two statements; the entry date wins over the value date, also across a year's end; a
// reversal of a debit puts money back; ":86:" over several lines, plain and structured.
const std::string kMt940 = "{1:F01BANKBGSFAXXX0000000000}{2:I940BANKBGSFXXXXN}{4:\r\n"
                           ":20:STMT-1\r\n"
                           ":25:BG80BNBG96611020345678\r\n"
                           ":28C:12/1\r\n"
                           ":60F:C261130BGN1000,00\r\n"
                           ":61:2612011201D25,50NTRFNONREF//B1201-77\r\n"
                           ":86:Плащане по фактура 1044\r\n"
                           "от 28.11.2026 за\r\n"
                           "абонамент\r\n"
                           ":61:2612310102C1200,NTRF123456\r\n"
                           ":86:/NAME/ACME LTD/REMI/SALARY DEC/EREF/E-9\r\n"
                           ":62F:C261231BGN2174,50\r\n"
                           "-}\r\n"
                           ":20:STMT-2\r\n"
                           ":25:DE89370400440532013000\r\n"
                           ":60M:C261201EUR10,00\r\n"
                           ":61:261203RDR7,10NCHGREF9\r\n"
                           ":86:166?00GUTSCHRIFT?20Rueckbuchung ?21Gebuehr?32Muster GmbH\r\n"
                           ":61:261204D0,NCHGNONREF\r\n"
                           ":62F:C261204EUR17,10\r\n";

const std::vector<Sample> kSamples = {
    {"Mt940",
     StatementFormat::Mt940,
     kMt940,
     {{"2026-12-01", -2550, "BGN", "", "Плащане по фактура 1044 от 28.11.2026 за абонамент",
       "B1201-77", "BG80BNBG96611020345678"},
      {"2027-01-02", 120000, "BGN", "ACME LTD", "SALARY DEC", "123456", "BG80BNBG96611020345678"},
      {"2026-12-03", 710, "EUR", "Muster GmbH", "Rueckbuchung Gebuehr", "REF9",
       "DE89370400440532013000"},
      {"2026-12-04", 0, "EUR", "", "", "", "DE89370400440532013000"}}},
};

class StatementSamples : public ::testing::TestWithParam<Sample> {};

TEST_P(StatementSamples, EveryEntryIsReadAsTheBankWroteIt)
{
    const Sample& s = GetParam();
    EXPECT_EQ(detectStatementFormat(s.bytes), s.format);
    const auto read = readStatement(s.bytes);
    ASSERT_TRUE(read.ok()) << read.error().where << ": " << read.error().reason;
    EXPECT_EQ(read.value().format, s.format);
    expectEntries(read.value(), s.entries);
}

INSTANTIATE_TEST_SUITE_P(Formats, StatementSamples, ::testing::ValuesIn(kSamples),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
