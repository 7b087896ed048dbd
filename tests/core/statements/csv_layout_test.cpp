// The CSV layout: its JSON file, and the guess a user starts from and corrects.
#include "core/statements/csv_layout.h"
#include "core/statements/statement_reader.h"
#include "core/text/cp1251.h"

#include <gtest/gtest.h>

using namespace finora;
using statement_text::Encoding;

namespace finora {
void PrintTo(const CsvColumn& c, std::ostream* os)
{
    *os << (c.number > 0 ? std::to_string(c.number) : "\"" + c.name + "\"");
}
} // namespace finora

namespace {

CsvColumn named(std::string name)
{
    return CsvColumn{std::move(name), 0};
}

CsvColumn numbered(int number)
{
    return CsvColumn{"", number};
}

TEST(CsvLayoutFile, ReadsWhatAPersonWritesAndKeepsWhatItWrites)
{
    const auto read =
        readCsvLayoutJson("\xEF\xBB\xBF{\n"
                          "  \"encoding\": \"windows-1251\", \"separator\": \"\\t\",\n"
                          "  \"decimal_mark\": \",\", \"thousands_separator\": \"\",\n"
                          "  \"header_line\": 3, \"date_format\": \"d.M.yy\",\n"
                          "  \"date_column\": \"\\u0414\\u0430\\u0442\\u0430\",\n"
                          "  \"amount_column\": 4, \"direction_column\": \"Д/К\",\n"
                          "  \"debit_value\": \"Д\", \"credit_value\": \"К\",\n"
                          "  \"payee_column\": null, \"bank\": \"any later key\"\n"
                          "}\n");
    ASSERT_TRUE(read.ok()) << read.error().where << ": " << read.error().reason;
    CsvLayout expected;
    expected.encoding = Encoding::Windows1251;
    expected.separator = '\t';
    expected.decimalMark = ',';
    expected.thousandsSeparator = '\0';
    expected.headerLine = 3;
    expected.dateFormat = "d.M.yy";
    expected.dateColumn = named("Дата");
    expected.amountColumn = numbered(4);
    expected.directionColumn = named("Д/К");
    expected.debitValue = "Д";
    expected.creditValue = "К";
    expected.payeeColumn = CsvColumn{};
    EXPECT_EQ(read.value(), expected);

    // Written and read back, every key (and every key left out) is what it was.
    expected.quote = '"';
    expected.currency = "EUR";
    expected.notesColumn = named("Бележка \"1\"");
    const auto again = readCsvLayoutJson(writeCsvLayoutJson(expected));
    ASSERT_TRUE(again.ok());
    EXPECT_EQ(again.value(), expected);
}

TEST(CsvLayoutFile, RefusesWhatIsNotALayoutAndSaysTheLine)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[1, 2]", "ред 1"},
        {"{\n\"separator\": \";;\"}", "ред 2"},
        {"{\"encoding\": \"EBCDIC\"}", "ред 1"},
        {"{\n\n\"header_line\": -1}", "ред 3"},
        {"{\"date_column\": true}", "ред 1"},
        {"{\"date_column\": {\"name\": \"Дата\"}}", "ред 1"},
        {"{\"currency\": \"EUR", "ред 1"},
        {"{\"currency\": \"EUR\",}", "ред 1"},
        {"{\"currency\": \"\\ud800\"}", "ред 1"},
        {"{} {}", "ред 1"},
        {"{\"currency\": \"" + std::string(70000, 'x') + "\"}", ""},
    };
    for (const auto& [json, where] : cases) {
        SCOPED_TRACE(json.substr(0, 40));
        const auto read = readCsvLayoutJson(json);
        ASSERT_FALSE(read.ok());
        EXPECT_EQ(read.error().where, where);
    }
}

struct Guess {
    const char* name;
    std::string bytes;
    Encoding encoding;
    char separator;
    char decimalMark;
    char thousands;
    std::string dateFormat;
    int headerLine;
    CsvColumn date, amount, debit, credit, direction, payee, description, currency;
};

void PrintTo(const Guess& g, std::ostream* os)
{
    *os << g.name;
}

const std::vector<Guess> kGuesses = {
    {"Bulgarian1251WithPreamble",
     cp1251::fromUtf8OrThrow("Извлечение;;;;\r\nПериод:;01.11.2026 - 30.11.2026;;;\r\n"
                             "Дата;Основание;Наредител;Дебит;Кредит;Валута\r\n"
                             "03.11.2026;Карта;Кауфланд;1 045,60;;BGN\r\n"),
     Encoding::Windows1251,
     ';',
     ',',
     ' ',
     "dd.MM.yyyy",
     3,
     named("Дата"),
     {},
     named("Дебит"),
     named("Кредит"),
     {},
     named("Наредител"),
     named("Основание"),
     named("Валута")},
    {"EnglishCommasMonthFirst",
     "\xEF\xBB\xBF\"Posting Date\",\"Payee\",\"Amount\",\"Currency\"\n"
     "\"11/23/2026\",\"Shop\",\"-1,234.50\",\"USD\"\n",
     Encoding::Utf8,
     ',',
     '.',
     ',',
     "MM/dd/yyyy",
     1,
     named("Posting Date"),
     named("Amount"),
     {},
     {},
     {},
     named("Payee"),
     {},
     named("Currency")},
    {"Windows1252Tabs",
     "Value date\tDate\tDescription\tAmount\n2026-11-02\t2026-11-01\tCaf\xE9\t-3,50\n",
     Encoding::Windows1252,
     '\t',
     ',',
     '\0',
     "yyyy-MM-dd",
     1,
     named("Date"),
     named("Amount"),
     {},
     {},
     {},
     {},
     named("Description"),
     {}},
    {"DirectionByItsValues",
     "Дата;Сума;Тип;Описание\n1.12.26;100,00;CR;Вноска\n2.12.26;30,00;DR;АТМ\n",
     Encoding::Utf8,
     ';',
     ',',
     '\0',
     "dd.MM.yy",
     1,
     named("Дата"),
     named("Сума"),
     {},
     {},
     named("Тип"),
     {},
     named("Описание"),
     {}},
    {"NoHeader",
     "Bank export\n02.11.2026;Shop;-12,30\n03.11.2026;Salary;1500,00\n",
     Encoding::Utf8,
     ';',
     ',',
     '\0',
     "dd.MM.yyyy",
     0,
     numbered(1),
     numbered(3),
     {},
     {},
     {},
     {},
     {},
     {}},
};

class CsvGuess : public ::testing::TestWithParam<Guess> {};

TEST_P(CsvGuess, FindsTheBanksLayout)
{
    const Guess& g = GetParam();
    const CsvLayout layout = guessCsvLayout(g.bytes);
    EXPECT_EQ(layout.encoding, g.encoding);
    EXPECT_EQ(layout.separator, g.separator);
    EXPECT_EQ(layout.decimalMark, g.decimalMark);
    EXPECT_EQ(layout.thousandsSeparator, g.thousands);
    EXPECT_EQ(layout.dateFormat, g.dateFormat);
    EXPECT_EQ(layout.headerLine, g.headerLine);
    EXPECT_EQ(layout.dateColumn, g.date);
    EXPECT_EQ(layout.amountColumn, g.amount);
    EXPECT_EQ(layout.debitColumn, g.debit);
    EXPECT_EQ(layout.creditColumn, g.credit);
    EXPECT_EQ(layout.directionColumn, g.direction);
    EXPECT_EQ(layout.payeeColumn, g.payee);
    EXPECT_EQ(layout.descriptionColumn, g.description);
    EXPECT_EQ(layout.currencyColumn, g.currency);
    // What it guessed reads the file.
    StatementReadOptions options;
    options.csvLayout = layout;
    const auto read = readStatement(g.bytes, options);
    ASSERT_TRUE(read.ok()) << read.error().where << ": " << read.error().reason;
    EXPECT_FALSE(read.value().entries.empty());
}

INSTANTIATE_TEST_SUITE_P(Files, CsvGuess, ::testing::ValuesIn(kGuesses),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(CsvGuess, KeepsWhatTheUserCorrectedAndGuessesTheRestAroundIt)
{
    const std::string bytes = "Дата;Дата вальор;Сума;Наредител\n"
                              "30.11.2026;01.12.2026;-5,00;Такса\n";
    CsvLayout given;
    given.dateColumn = named("Дата вальор");
    given.descriptionColumn = named("Наредител");
    const CsvLayout layout = guessCsvLayout(bytes, given);
    EXPECT_EQ(layout.dateColumn, named("Дата вальор"));
    EXPECT_EQ(layout.descriptionColumn, named("Наредител"));
    EXPECT_EQ(layout.payeeColumn, CsvColumn{});
    EXPECT_EQ(layout.amountColumn, named("Сума"));
    EXPECT_EQ(csvHeaderFields(bytes, layout),
              (std::vector<std::string>{"Дата", "Дата вальор", "Сума", "Наредител"}));

    StatementReadOptions options;
    options.csvLayout = given;
    const auto read = readStatement(bytes, options);
    ASSERT_TRUE(read.ok());
    ASSERT_EQ(read.value().entries.size(), 1u);
    EXPECT_EQ(read.value().entries[0].month, 12);
    EXPECT_EQ(read.value().entries[0].amountCents, -500);
}

// A layout saved for one bank is chosen for its next statement and for no other bank's.
TEST(CsvGuess, ASavedLayoutFitsTheFilesWithItsHeader)
{
    const std::string november =
        cp1251::fromUtf8OrThrow("Сметка BG80;;\nДата;Сума;Основание\n03.11.2026;-1,00;Такса\n");
    CsvLayout saved = guessCsvLayout(november);
    saved.descriptionColumn = named("Основание");
    const auto again = readCsvLayoutJson(writeCsvLayoutJson(saved));
    ASSERT_TRUE(again.ok());
    const std::vector<std::pair<std::string, bool>> files = {
        {cp1251::fromUtf8OrThrow("Сметка BG80;;\nДата;Сума;Основание\n02.12.2026;5,00;Лихва\n"),
         true},
        {"\xEF\xBB\xBFСметка BG80;;\nДата;Сума;Основание\n02.12.2026;5,00;Лихва\n", true},
        {"Дата;Сума;Основание\n02.12.2026;5,00;Лихва\n", false},
        {"Сметка BG80;;\nДата;Сума;Описание\n02.12.2026;5,00;Лихва\n", false},
    };
    for (const auto& [file, fits] : files) {
        SCOPED_TRACE(file.substr(0, 30));
        CsvLayout withoutEncoding = again.value();
        withoutEncoding.encoding.reset();
        EXPECT_EQ(csvLayoutFits(file, withoutEncoding), fits);
    }
    EXPECT_FALSE(csvLayoutFits(november, CsvLayout{}));
}

} // namespace
