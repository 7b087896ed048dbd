#include "core/text/case_fold.h"
#include "core/text/cp1251.h"

#include <gtest/gtest.h>

using namespace finora;

TEST(Cp1251, EveryByteSurvivesARoundTripThroughUtf8)
{
    std::string all;
    for (int b = 0; b < 256; ++b) {
        all += static_cast<char>(b);
    }
    std::string back;
    ASSERT_TRUE(cp1251::fromUtf8(cp1251::toUtf8(all), back));
    EXPECT_EQ(back, all);
}

TEST(Cp1251, BulgarianTextMapsToItsCodePageBytes)
{
    EXPECT_EQ(cp1251::fromUtf8OrThrow("Храна"), "\xD5\xF0\xE0\xED\xE0");
    EXPECT_EQ(cp1251::toUtf8("\xD5\xF0\xE0\xED\xE0"), "Храна");
    EXPECT_EQ(cp1251::fromUtf8OrThrow("Ёё №€"), "\xA8\xB8 \xB9\x88");
    EXPECT_EQ(cp1251::toUtf8("\x84\x93\x94"), "„“”");
}

TEST(Cp1251, RefusesCharactersItCannotHoldAndNamesThem)
{
    std::string out = "unchanged";
    cp1251::EncodeError error;
    EXPECT_FALSE(cp1251::fromUtf8("Цена ₽ и 😀 и ₽", out, &error));
    EXPECT_EQ(out, "unchanged");
    EXPECT_FALSE(error.invalidUtf8);
    EXPECT_EQ(error.characters, "„₽“ „😀“"); // each once, in order
    EXPECT_EQ(error.firstPosition, 6u);
    EXPECT_NE(error.message().find("„₽“"), std::string::npos);
    EXPECT_THROW(cp1251::fromUtf8OrThrow("日本"), std::invalid_argument);
}

TEST(Cp1251, RefusesMalformedUtf8)
{
    for (const char* bad :
         {"\xC0\xAF", "ab\xD0", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80", "\xFF"}) {
        std::string out;
        cp1251::EncodeError error;
        EXPECT_FALSE(cp1251::fromUtf8(bad, out, &error)) << bad;
        EXPECT_TRUE(error.invalidUtf8) << bad;
    }
}

TEST(Cp1251, WideTextKeepsWhatTheCodePageHoldsAndMarksTheRest)
{
    EXPECT_EQ(cp1251::fromUtf16(u"Заплата 5€"), "\xC7\xE0\xEF\xEB\xE0\xF2\xE0 5\x88");
    EXPECT_EQ(cp1251::fromUtf16(u"a\u65E5b\U0001F600c"), "a?b?c");
    EXPECT_EQ(cp1251::fromUtf16(std::u16string(1, char16_t(0xD800))), "?"); // lone surrogate
}

TEST(CaseFold, FoldsLatinAndCyrillicCapitalsOnly)
{
    EXPECT_EQ(foldCase(cp1251::fromUtf8OrThrow("ХРАНА Food 12")),
              cp1251::fromUtf8OrThrow("храна food 12"));
    EXPECT_EQ(foldCase(cp1251::fromUtf8OrThrow("ЁЇІЎЈЅЂЃЉЊЌЋЏҐЄ")),
              cp1251::fromUtf8OrThrow("ёїіўјѕђѓљњќћџґє"));
    // Small letters, digits, punctuation and signs stay as they are.
    const std::string unchanged = cp1251::fromUtf8OrThrow("абвя ёїі 0-9 №€«»");
    EXPECT_EQ(foldCase(unchanged), unchanged);
}
