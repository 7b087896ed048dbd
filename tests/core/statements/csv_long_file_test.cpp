#include "core/statements/statement_reader.h"

#include <gtest/gtest.h>

using namespace finora;

// The layout is guessed from the file's first 256 KiB; where that cuts a character in two, a
// UTF-8 file is still read as UTF-8.
TEST(CsvLongFile, IsGuessedFromASampleOfWholeLines)
{
    constexpr std::size_t kSample = 256 * 1024;
    for (const std::size_t cut : {kSample - 1, kSample - 2, kSample - 3}) {
        SCOPED_TRACE(cut);
        std::string csv = "Дата;Получател;Сума\n";
        const std::string ascii = "03.11.2026;Shop;-1,00\n";
        while (csv.size() + 3 * ascii.size() < cut) {
            csv += ascii;
        }
        // A line that ends just where the Cyrillic name of the next one starts at `cut`.
        const std::string date = "03.11.2026;";
        const std::string amount = ";-1,00\n";
        csv += date + std::string(cut - csv.size() - 2 * date.size() - amount.size(), 'x') + amount;
        csv += "03.11.2026;Аптека;-12,50\n";
        ASSERT_EQ(csv.compare(cut, 2, "А"), 0);
        const auto read = readStatement(csv);
        ASSERT_TRUE(read) << read.error().where << ": " << read.error().reason;
        EXPECT_EQ(read.value().entries.back().counterparty, "Аптека");
    }
}
