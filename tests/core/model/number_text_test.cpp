#include "core/model/number_text.h"

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

using namespace finora;

TEST(NumberText, FixedFormsRoundAsTheBinaryValueSays)
{
    EXPECT_EQ(amountText(12.5), "12.50");
    EXPECT_EQ(amountText(10.005), "10.01"); // 10.00500000000000078... in binary
    EXPECT_EQ(amountText(1.005), "1.00");   // 1.00499999999999989... in binary
    EXPECT_EQ(amountText(2.675), "2.67");
    EXPECT_EQ(amountText(0.125), "0.12"); // an exact tie goes to even, as printf does
    EXPECT_EQ(amountText(-0.004), "-0.00");
    EXPECT_EQ(amountText(1234567.891), "1234567.89");
    EXPECT_EQ(amountText(1e20), "100000000000000000000.00");
    EXPECT_EQ(rateText(1.95583), "1.955830");
    EXPECT_EQ(rateText(0.0000005), "0.000000"); // 4.99999...e-7
    EXPECT_EQ(rateText(0.0000015), "0.000002");
    EXPECT_EQ(idText(-42), "-42");
    EXPECT_EQ(amountWithCurrencyText(12.5, "EUR"), "12.50 EUR");
}

TEST(NumberText, FormsIgnoreTheProcessLocale)
{
    // Desktops set the locale from the environment; a decimal comma must not leak into texts.
    const char* previous = std::setlocale(LC_NUMERIC, nullptr);
    const std::string saved = previous ? previous : "C";
    ASSERT_NE(std::setlocale(LC_NUMERIC, "bg_BG.UTF-8"), nullptr)
        << "the bg_BG.UTF-8 locale is missing; scripts/install-deps.sh generates it";
    // The locale is in force: the C library itself now writes and reads a comma.
    char written[16];
    std::snprintf(written, sizeof written, "%.2f", 3.5);
    EXPECT_STREQ(written, "3,50");
    EXPECT_EQ(std::strtod("3,5", nullptr), 3.5);

    EXPECT_EQ(amountText(3.5), "3.50");
    EXPECT_EQ(parseNumber("3.5"), 3.5);
    EXPECT_EQ(parseNumber("3,5"), 3.0);
    std::setlocale(LC_NUMERIC, saved.c_str());
}

TEST(NumberText, ParsingIsLenientLikeAtof)
{
    EXPECT_EQ(parseNumber("12.5"), 12.5);
    EXPECT_EQ(parseNumber("  \t-3.25abc"), -3.25);
    EXPECT_EQ(parseNumber("+7"), 7.0);
    EXPECT_EQ(parseNumber(".5"), 0.5);
    EXPECT_EQ(parseNumber("1e3"), 1000.0);
    EXPECT_EQ(parseNumber("1,7"), 1.0);
    EXPECT_EQ(parseNumber("1.6 beta"), 1.6);
    EXPECT_EQ(parseNumber("abc"), 0.0);
    EXPECT_EQ(parseNumber(""), 0.0);
    EXPECT_EQ(parseNumber("-"), 0.0);
    EXPECT_EQ(parseNumber("--5"), 0.0);
    EXPECT_EQ(parseNumber("+-5"), 0.0);
    EXPECT_EQ(parseNumber(" 1 000"), 1.0);
    EXPECT_TRUE(std::isinf(parseNumber("1e999")));
    EXPECT_EQ(parseNumber("-1e999"), -HUGE_VAL);
    EXPECT_EQ(parseNumber("1e-999"), 0.0);
    EXPECT_EQ(parseNumber(rateText(1.955830)), 1.95583);
}
