#include "core/model/char_set.h"
#include "core/model/number_text.h"

#include <clocale>
#include <cmath>
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
    for (const char* name : {"bg_BG.UTF-8", "de_DE.UTF-8", "ru_RU.UTF-8"}) {
        if (std::setlocale(LC_NUMERIC, name)) {
            EXPECT_EQ(amountText(3.5), "3.50") << name;
            EXPECT_EQ(parseNumber("3.5"), 3.5) << name;
        }
    }
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

TEST(CharSet, StoresEachByteAsOneBitOfEightWords)
{
    CharSet set = CharSet::fromString(" ,;");
    EXPECT_TRUE(set.test(' '));
    EXPECT_TRUE(set.contains(';'));
    EXPECT_FALSE(set.test('a'));
    EXPECT_EQ(set.words()[1], (1U << (' ' % 32)) | (1U << (',' % 32)) | (1U << (';' % 32)));
    set.set(255);
    EXPECT_EQ(set.words()[7], 0x80000000U);
    set.set(255, false);
    EXPECT_FALSE(set.test(255));
    EXPECT_TRUE(CharSet::fromString("\xFF").contains(0xFF));
}

TEST(CharSet, PositionsOutsideAByteAreRefused)
{
    CharSet set;
    for (int bad : {-1, 256, 1000}) {
        try {
            set.set(bad);
            FAIL() << bad;
        } catch (const std::out_of_range& e) {
            EXPECT_STREQ(e.what(), "invalid bitset<N> position");
        }
        EXPECT_THROW((void)set.test(bad), std::out_of_range);
    }
}
