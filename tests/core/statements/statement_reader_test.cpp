// Statements as banks write them, one table per behaviour: every entry read with its date,
// signed amount, currency, texts and reference, whatever the format.
#include "core/statements/statement_reader.h"
#include "core/text/cp1251.h"

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
    std::string notes;
};

struct Sample {
    const char* name;
    StatementFormat format;
    std::string bytes;
    std::vector<Expected> entries;
};

void PrintTo(const Sample& s, std::ostream* os)
{
    *os << s.name;
}

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
        EXPECT_EQ(e.notes, x.notes);
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

// CAMT.053 001.08: two statements; a booking time late in the evening with its zone is that
// day; a batch of two salaries is one entry; a pending entry is not booked; a reversal keeps the
// sign of its indicator.
const std::string kCamt08 = R"(<?xml version="1.0" encoding="UTF-8"?>
<Document xmlns="urn:iso:std:iso:20022:tech:xsd:camt.053.001.08">
 <BkToCstmrStmt>
  <GrpHdr><MsgId>MSG-1</MsgId><CreDtTm>2026-12-01T08:00:00+02:00</CreDtTm></GrpHdr>
  <Stmt>
   <Id>S-1</Id>
   <Acct><Id><IBAN>BG80BNBG96611020345678</IBAN></Id><Ccy>BGN</Ccy></Acct>
   <Bal><Tp><CdOrPrtry><Cd>OPBD</Cd></CdOrPrtry></Tp><Amt Ccy="BGN">5000.00</Amt>
    <CdtDbtInd>CRDT</CdtDbtInd><Dt><Dt>2026-11-01</Dt></Dt></Bal>
   <Ntry>
    <NtryRef>1</NtryRef>
    <Amt Ccy="BGN">120.50</Amt>
    <CdtDbtInd>DBIT</CdtDbtInd>
    <Sts><Cd>BOOK</Cd></Sts>
    <BookgDt><DtTm>2026-11-30T23:45:00+02:00</DtTm></BookgDt>
    <ValDt><Dt>2026-12-01</Dt></ValDt>
    <AcctSvcrRef>FT2633400001</AcctSvcrRef>
    <NtryDtls><TxDtls>
     <Refs><EndToEndId>NOTPROVIDED</EndToEndId></Refs>
     <RltdPties><Cdtr><Pty><Nm>ЕВН България Електроснабдяване</Nm></Pty></Cdtr></RltdPties>
     <RmtInf><Ustrd>Ток клиентски номер 300012345</Ustrd><Ustrd>ноември 2026</Ustrd></RmtInf>
    </TxDtls></NtryDtls>
   </Ntry>
   <Ntry>
    <Amt Ccy="BGN">3000.00</Amt><CdtDbtInd>DBIT</CdtDbtInd><Sts><Cd>BOOK</Cd></Sts>
    <BookgDt><Dt>2026-11-28</Dt></BookgDt><AcctSvcrRef>BATCH-77</AcctSvcrRef>
    <NtryDtls>
     <Btch><NbOfTxs>2</NbOfTxs></Btch>
     <TxDtls><RltdPties><Cdtr><Pty><Nm>Мария Иванова</Nm></Pty></Cdtr></RltdPties>
      <RmtInf><Ustrd>Заплата 11.2026</Ustrd></RmtInf></TxDtls>
     <TxDtls><RltdPties><Cdtr><Pty><Nm>Георги Димитров</Nm></Pty></Cdtr></RltdPties>
      <RmtInf><Ustrd>Заплата 11.2026</Ustrd></RmtInf></TxDtls>
    </NtryDtls>
    <AddtlNtryInf>Масово плащане заплати</AddtlNtryInf>
   </Ntry>
   <Ntry>
    <Amt Ccy="BGN">5.00</Amt><CdtDbtInd>DBIT</CdtDbtInd><Sts><Cd>PDNG</Cd></Sts>
    <BookgDt><Dt>2026-11-30</Dt></BookgDt>
   </Ntry>
  </Stmt>
  <Stmt>
   <Acct><Id><Othr><Id>1234567890</Id></Othr></Id><Ccy>EUR</Ccy></Acct>
   <Ntry>
    <NtryRef>R-5</NtryRef>
    <Amt Ccy="EUR">19.99</Amt><CdtDbtInd>CRDT</CdtDbtInd><RvslInd>true</RvslInd>
    <Sts><Cd>BOOK</Cd></Sts><BookgDt><Dt>2026-11-29+01:00</Dt></BookgDt>
    <NtryDtls><TxDtls>
     <RltdPties><Dbtr><Pty><Nm>Shop GmbH</Nm></Pty></Dbtr></RltdPties>
     <RmtInf><Strd><CdtrRefInf><Ref>RF18539007547034</Ref></CdtrRefInf></Strd></RmtInf>
    </TxDtls></NtryDtls>
   </Ntry>
  </Stmt>
 </BkToCstmrStmt>
</Document>
)";

// CAMT.053 001.02: the party's name straight under the party, the status a plain code.
const std::string kCamt02 = R"(<?xml version="1.0" encoding="UTF-8"?>
<Document xmlns="urn:iso:std:iso:20022:tech:xsd:camt.053.001.02"><BkToCstmrStmt><Stmt>
<Acct><Id><IBAN>BG18RZBB91550123456789</IBAN></Id></Acct>
<Ntry><Amt Ccy="EUR">1500</Amt><CdtDbtInd>CRDT</CdtDbtInd><Sts>BOOK</Sts>
<BookgDt><Dt>2026-10-05</Dt></BookgDt><AcctSvcrRef>X1</AcctSvcrRef>
<NtryDtls><TxDtls><RltdPties><Dbtr><Nm>Наемател ООД</Nm></Dbtr></RltdPties>
<RmtInf><Ustrd>Наем
 октомври</Ustrd></RmtInf></TxDtls></NtryDtls></Ntry>
</Stmt></BkToCstmrStmt></Document>)";

// OFX 1 in SGML, Windows-1252 by its header: values without closing tags, a payee aggregate
// on one line, an escaped ampersand and a bare one.
const std::string kOfx1 = "OFXHEADER:100\r\nDATA:OFXSGML\r\nVERSION:102\r\nSECURITY:NONE\r\n"
                          "ENCODING:USASCII\r\nCHARSET:1252\r\nCOMPRESSION:NONE\r\n"
                          "OLDFILEUID:NONE\r\nNEWFILEUID:NONE\r\n\r\n"
                          "<OFX>\r\n<SIGNONMSGSRSV1>\r\n<SONRS>\r\n<STATUS>\r\n<CODE>0\r\n"
                          "<SEVERITY>INFO\r\n</STATUS>\r\n<DTSERVER>20261130120000.000[-5:EST]\r\n"
                          "<LANGUAGE>ENG\r\n</SONRS>\r\n</SIGNONMSGSRSV1>\r\n<BANKMSGSRSV1>\r\n"
                          "<STMTTRNRS>\r\n<TRNUID>1001\r\n<STATUS>\r\n<CODE>0\r\n<SEVERITY>INFO\r\n"
                          "</STATUS>\r\n<STMTRS>\r\n<CURDEF>USD\r\n<BANKACCTFROM>\r\n"
                          "<BANKID>121000248\r\n<ACCTID>000123456789\r\n<ACCTTYPE>CHECKING\r\n"
                          "</BANKACCTFROM>\r\n<BANKTRANLIST>\r\n<DTSTART>20261101\r\n"
                          "<DTEND>20261130\r\n<STMTTRN>\r\n<TRNTYPE>DEBIT\r\n"
                          "<DTPOSTED>20261103120000.000[-5:EST]\r\n<TRNAMT>-42.50\r\n"
                          "<FITID>20261103001\r\n<NAME>Caf\xE9 Ren\xE9 & Co\r\n"
                          "<MEMO>Lunch \x80 20\r\n</STMTTRN>\r\n<STMTTRN>\r\n<TRNTYPE>CREDIT\r\n"
                          "<DTPOSTED>20261115\r\n<TRNAMT>1500.00\r\n<FITID>20261115002\r\n"
                          "<PAYEE><NAME>Employer Inc<ADDR1>1 Main St<CITY>Springfield"
                          "<POSTALCODE>62701</PAYEE>\r\n<MEMO>Payroll &amp; bonus\r\n"
                          "</STMTTRN>\r\n</BANKTRANLIST>\r\n<LEDGERBAL>\r\n<BALAMT>1457.50\r\n"
                          "<DTASOF>20261130\r\n</LEDGERBAL>\r\n</STMTRS>\r\n</STMTTRNRS>\r\n"
                          "</BANKMSGSRSV1>\r\n</OFX>\r\n";

// OFX 2 in XML: a bank account and a card account; one entry in a currency of its own.
const std::string kOfx2 = R"(<?xml version="1.0" encoding="UTF-8" standalone="no"?>
<?OFX OFXHEADER="200" VERSION="220" SECURITY="NONE" OLDFILEUID="NONE" NEWFILEUID="NONE"?>
<OFX>
<SIGNONMSGSRSV1><SONRS><STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS>
<DTSERVER>20261201</DTSERVER><LANGUAGE>ENG</LANGUAGE></SONRS></SIGNONMSGSRSV1>
<BANKMSGSRSV1><STMTTRNRS><TRNUID>1</TRNUID>
<STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS>
<STMTRS><CURDEF>EUR</CURDEF>
<BANKACCTFROM><BANKID>20041</BANKID><ACCTID>FR7630004000031234567890143</ACCTID>
<ACCTTYPE>CHECKING</ACCTTYPE></BANKACCTFROM>
<BANKTRANLIST><DTSTART>20261101</DTSTART><DTEND>20261130</DTEND>
<STMTTRN><TRNTYPE>POS</TRNTYPE><DTPOSTED>20261104000000[+1:CET]</DTPOSTED>
<TRNAMT>-12.30</TRNAMT><FITID>A-1</FITID><NAME>Boulangerie Dupré</NAME><MEMO>Carte 4412</MEMO>
</STMTTRN>
<STMTTRN><TRNTYPE>XFER</TRNTYPE><DTPOSTED>20261105</DTPOSTED><TRNAMT>250.00</TRNAMT>
<FITID>A-2</FITID><NAME>Иван Петров</NAME>
<CURRENCY><CURRATE>0.51129</CURRATE><CURSYM>BGN</CURSYM></CURRENCY></STMTTRN>
</BANKTRANLIST></STMTRS></STMTTRNRS></BANKMSGSRSV1>
<CREDITCARDMSGSRSV1><CCSTMTTRNRS><TRNUID>2</TRNUID>
<STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS>
<CCSTMTRS><CURDEF>USD</CURDEF><CCACCTFROM><ACCTID>4111111111111111</ACCTID></CCACCTFROM>
<BANKTRANLIST><DTSTART>20261101</DTSTART><DTEND>20261130</DTEND>
<STMTTRN><TRNTYPE>DEBIT</TRNTYPE><DTPOSTED>20261120</DTPOSTED><TRNAMT>-99.99</TRNAMT>
<FITID>C-7</FITID><NAME>Online Store</NAME></STMTTRN>
</BANKTRANLIST></CCSTMTRS></CCSTMTTRNRS></CREDITCARDMSGSRSV1>
</OFX>
)";

// OFX 2 whose XML declaration names Latin-1.
const std::string kOfx2Latin1 =
    "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<?OFX OFXHEADER=\"200\" VERSION=\"211\"?>\n"
    "<OFX><BANKMSGSRSV1><STMTTRNRS><STMTRS><CURDEF>EUR</CURDEF><BANKACCTFROM><ACCTID>77</ACCTID>"
    "</BANKACCTFROM><BANKTRANLIST><STMTTRN><DTPOSTED>20260305</DTPOSTED><TRNAMT>-7,5</TRNAMT>"
    "<FITID>9</FITID><NAME>Mus\xE9"
    "e d'Orsay</NAME></STMTTRN></BANKTRANLIST></STMTRS></STMTTRNRS>"
    "</BANKMSGSRSV1></OFX>";

// QIF with CR line ends (old Macs): a split record is one operation for its total; the
// apostrophe years are this century; a day over 12 settles the order as month first.
const std::string kQif = "!Account\rNChecking\rTBank\r^\r!Type:Bank\rD12/25'26\rT-84.20\r"
                         "PGrocery Mart\rMWeekly shop\rN1042\rLGroceries\rSGroceries\r$-60.00\r"
                         "EFood\rSHousehold\r$-24.20\r^\rD1/ 3'27\rT1,250.00\rPACME Corp\r^\r";

// CSV in Windows-1251 as a Bulgarian bank writes it: a preamble, debit and credit columns,
// blanks between thousands and a total line after the entries.
const std::string kCsv1251 =
    cp1251::fromUtf8OrThrow("\"Извлечение по сметка\";;;;;\r\n"
                            "Сметка:;BG80BNBG96611020345678;;;;\r\n"
                            "Период:;01.11.2026 - 30.11.2026;;;;\r\n"
                            ";;;;;\r\n"
                            "Дата;Основание;Наредител / Получател;Дебит;Кредит;Валута\r\n"
                            "03.11.2026;Плащане с карта;Кауфланд България;45,60;;BGN\r\n"
                            "05.11.2026;Превод заплата;Фирма ЕООД;;2 350,00;BGN\r\n"
                            "07.11.2026;Такса обслужване;;1,50;;BGN\r\n"
                            "Обороти:;;;47,10;2 350,00;\r\n");

// CSV in UTF-8 with its BOM: commas, quoted fields with a line break, a separator and doubled
// quotes inside.
const std::string kCsvQuoted = "\xEF\xBB\xBF"
                               "Date,Description,Payee,Amount,Notes\n"
                               "2026-11-02,\"Invoice 17, part 1\nsecond line\",ACME Ltd.,-1250.00,"
                               "\"He said \"\"paid\"\"\"\n"
                               "2026-11-03,Refund,\"Shop, Inc.\",19.90,\n";

// CSV with an unsigned amount and a direction column known by its values.
const std::string kCsvDirection = "Дата на операция;Сума;Тип;Описание\n"
                                  "01/12/2026;100,00;К;Вноска\n"
                                  "02/12/2026;1.030,00;Д;Теглене АТМ\n";

const std::vector<Sample> kSamples = {
    {"Mt940",
     StatementFormat::Mt940,
     kMt940,
     {{"2026-12-01", -2550, "BGN", "", "Плащане по фактура 1044 от 28.11.2026 за абонамент",
       "B1201-77", "BG80BNBG96611020345678", ""},
      {"2027-01-02", 120000, "BGN", "ACME LTD", "SALARY DEC", "123456", "BG80BNBG96611020345678",
       ""},
      {"2026-12-03", 710, "EUR", "Muster GmbH", "Rueckbuchung Gebuehr", "REF9",
       "DE89370400440532013000", ""},
      {"2026-12-04", 0, "EUR", "", "", "", "DE89370400440532013000", ""}}},
    {"Camt053v08",
     StatementFormat::Camt053,
     kCamt08,
     {{"2026-11-30", -12050, "BGN", "ЕВН България Електроснабдяване",
       "Ток клиентски номер 300012345 ноември 2026", "FT2633400001", "BG80BNBG96611020345678", ""},
      {"2026-11-28", -300000, "BGN", "", "Масово плащане заплати", "BATCH-77",
       "BG80BNBG96611020345678", ""},
      {"2026-11-29", 1999, "EUR", "Shop GmbH", "RF18539007547034", "R-5", "1234567890", ""}}},
    {"Camt053v02",
     StatementFormat::Camt053,
     kCamt02,
     {{"2026-10-05", 150000, "EUR", "Наемател ООД", "Наем октомври", "X1", "BG18RZBB91550123456789",
       ""}}},
    {"Ofx1Windows1252",
     StatementFormat::Ofx,
     kOfx1,
     {{"2026-11-03", -4250, "USD", "Café René & Co", "Lunch € 20", "20261103001", "000123456789",
       ""},
      {"2026-11-15", 150000, "USD", "Employer Inc", "Payroll & bonus", "20261115002",
       "000123456789", ""}}},
    {"Ofx2TwoAccounts",
     StatementFormat::Ofx,
     kOfx2,
     {{"2026-11-04", -1230, "EUR", "Boulangerie Dupré", "Carte 4412", "A-1",
       "FR7630004000031234567890143", ""},
      {"2026-11-05", 25000, "BGN", "Иван Петров", "", "A-2", "FR7630004000031234567890143", ""},
      {"2026-11-20", -9999, "USD", "Online Store", "", "C-7", "4111111111111111", ""}}},
    {"Ofx2Latin1",
     StatementFormat::Ofx,
     kOfx2Latin1,
     {{"2026-03-05", -750, "EUR", "Musée d'Orsay", "", "9", "77", ""}}},
    {"QifSplitCrLines",
     StatementFormat::Qif,
     kQif,
     {{"2026-12-25", -8420, "", "Grocery Mart", "Weekly shop", "", "Checking", ""},
      {"2027-01-03", 125000, "", "ACME Corp", "", "", "Checking", ""}}},
    {"CsvWindows1251DebitCredit",
     StatementFormat::Csv,
     kCsv1251,
     {{"2026-11-03", -4560, "BGN", "Кауфланд България", "Плащане с карта", "", "", ""},
      {"2026-11-05", 235000, "BGN", "Фирма ЕООД", "Превод заплата", "", "", ""},
      {"2026-11-07", -150, "BGN", "", "Такса обслужване", "", "", ""}}},
    {"CsvQuotedLineBreaks",
     StatementFormat::Csv,
     kCsvQuoted,
     {{"2026-11-02", -125000, "", "ACME Ltd.", "Invoice 17, part 1 second line", "", "",
       "He said \"paid\""},
      {"2026-11-03", 1990, "", "Shop, Inc.", "Refund", "", "", ""}}},
    {"CsvDirectionColumn",
     StatementFormat::Csv,
     kCsvDirection,
     {{"2026-12-01", 10000, "", "", "Вноска", "", "", ""},
      {"2026-12-02", -103000, "", "", "Теглене АТМ", "", "", ""}}},
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

namespace {

struct Broken {
    const char* name;
    StatementFormat format;
    std::string bytes;
    std::string where; // where the reader must say it broke
};

void PrintTo(const Broken& b, std::ostream* os)
{
    *os << b.name;
}

const std::vector<Broken> kBroken = {
    {"Mt940EntryLine", StatementFormat::Mt940,
     ":20:S\n:25:A\n:60F:C261130BGN1,00\n:61:26X201D1,00NTRFX\n", "ред 4"},
    {"Mt940CurrencyNotLetters", StatementFormat::Mt940,
     ":20:S\n:25:A\n:60F:C261130\xEF\xBF\xBD"
     "1,00\n:61:261201D1,00NTRFX\n",
     "ред 3"},
    {"Mt940NoStatement", StatementFormat::Mt940, "hello\n:61:261201D1,00NTRFX\n", "ред 1"},
    {"CamtNoDirection", StatementFormat::Camt053,
     "<Document xmlns=\"urn:iso:std:iso:20022:tech:xsd:camt.053.001.02\">\n<BkToCstmrStmt><Stmt>"
     "\n<Ntry><Amt Ccy=\"BGN\">1.00</Amt><BookgDt><Dt>2026-01-02</Dt></BookgDt></Ntry>"
     "</Stmt></BkToCstmrStmt></Document>",
     "елемент Ntry (ред 3)"},
    {"CamtNotClosed", StatementFormat::Camt053,
     "<Document>\n<BkToCstmrStmt>\n<Stmt>\n</BkToCstmrStmt></Document>", "ред 4"},
    {"CamtEntityExpansion", StatementFormat::Camt053,
     "<?xml version=\"1.0\"?><!DOCTYPE d [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;"
     "&a;&a;&a;\"><!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;\">]><Document>&c;</Document>",
     ""},
    {"CamtExternalEntity", StatementFormat::Camt053,
     "<!DOCTYPE d [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><Document>&x;</Document>", ""},
    {"OfxAmount", StatementFormat::Ofx,
     "OFXHEADER:100\nDATA:OFXSGML\n\n<OFX>\n<BANKMSGSRSV1><STMTTRNRS><STMTRS><BANKTRANLIST>\n"
     "<STMTTRN>\n<DTPOSTED>20260102\n<TRNAMT>twelve\n</STMTTRN>\n</BANKTRANLIST></STMTRS>"
     "</STMTTRNRS></BANKMSGSRSV1></OFX>",
     "елемент STMTTRN (ред 6)"},
    {"OfxBrokenTag", StatementFormat::Ofx, "OFXHEADER:100\n\n<OFX>\n<STMTRS\n<CURDEF>EUR", "ред 4"},
    {"QifNoAmount", StatementFormat::Qif,
     "!Type:Cash\nD01/02/2026\nT-1.00\n^\nD01/03/2026\nPX\n^\n", "ред 5"},
    {"QifNoType", StatementFormat::Qif, "D01/02/2026\nT-1.00\n^\n", "ред 1"},
    {"CsvQuoteNotClosed", StatementFormat::Csv,
     "Дата;Сума;Описание\n01.02.2026;1,00;едно\n02.02.2026;2,00;\"две\n", "ред 3"},
    {"CsvDateAmongEntries", StatementFormat::Csv,
     "Дата;Сума\n01.02.2026;1,00\n31.02.2026;2,00\n03.02.2026;3,00\n", "ред 3"},
    {"CsvAmount", StatementFormat::Csv, "Дата;Сума\n01.02.2026;1,00\n02.02.2026;две\n", "ред 3"},
};

class BrokenStatements : public ::testing::TestWithParam<Broken> {};

TEST_P(BrokenStatements, SayWhereTheyBroke)
{
    const Broken& b = GetParam();
    StatementReadOptions options;
    options.format = b.format;
    const auto read = readStatement(b.bytes, options);
    ASSERT_FALSE(read.ok());
    EXPECT_EQ(read.error().where, b.where);
    EXPECT_FALSE(read.error().reason.empty());
}

INSTANTIATE_TEST_SUITE_P(Formats, BrokenStatements, ::testing::ValuesIn(kBroken),
                         [](const auto& info) { return std::string(info.param.name); });

// QIF's dates: the order every date fits, the one the caller names, or the question.
TEST(QifDateOrder, IsTheOneTheDatesAllowOrTheCallersElseItIsAsked)
{
    struct Case {
        std::vector<std::string> dates;
        std::optional<DateOrder> asked;
        std::string firstDate; // empty: refused
        bool ambiguous;
    };
    const std::vector<Case> cases = {
        {{"03/04/2026"}, std::nullopt, "2026-04-03", true},
        {{"03/04'26"}, std::nullopt, "2026-03-04", true},
        {{"03/04/2026", "25/04/2026"}, std::nullopt, "2026-04-03", false},
        {{"03/04/2026", "04/25/2026"}, std::nullopt, "2026-03-04", false},
        {{"03/04/2026"}, DateOrder::Mdy, "2026-03-04", false},
        {{"03/04/2026", "25/04/2026"}, DateOrder::Mdy, "", false},
        {{"25/04/2026", "04/25/2026"}, std::nullopt, "", false},
        {{"2026-04-03"}, std::nullopt, "2026-04-03", false},
        {{" 3/ 4/98"}, DateOrder::Dmy, "1998-04-03", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.dates.front() + (c.dates.size() > 1 ? " " + c.dates.back() : ""));
        std::string qif = "!Type:Bank\n";
        for (const std::string& d : c.dates) {
            qif += "D" + d + "\nT-1.00\n^\n";
        }
        StatementReadOptions options;
        options.dateOrder = c.asked;
        const auto read = readStatement(qif, options);
        ASSERT_EQ(read.ok(), !c.firstDate.empty());
        if (read.ok()) {
            EXPECT_EQ(dateOf(read.value().entries.front()), c.firstDate);
            EXPECT_EQ(read.value().dateOrderAmbiguous, c.ambiguous);
        }
    }
}

} // namespace
