#include "core/model/date_time.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace finora;

namespace {

DateTimeParts partsOf(double days)
{
    DateTimeParts p;
    EXPECT_TRUE(DateTime(days, DateTime::Valid).toParts(p)) << days;
    return p;
}

} // namespace

TEST(DateTime, KnownDaysMatchTheOleConvention)
{
    EXPECT_EQ(DateTime::fromParts(1899, 12, 30).days(), 0.0);
    EXPECT_EQ(DateTime::fromParts(2004, 3, 5).days(), 38051.0);
    EXPECT_EQ(DateTime::fromParts(1900, 3, 1).days(), 61.0);
    EXPECT_EQ(DateTime::fromParts(100, 1, 1).days(), -657434.0);
    EXPECT_EQ(DateTime::fromParts(9999, 12, 31).days(), 2958465.0);
    EXPECT_EQ(DateTime::fromParts(2004, 3, 5, 12).days(), 38051.5);
    EXPECT_EQ(partsOf(38051.75), (DateTimeParts{2004, 3, 5, 18, 0, 0}));
}

TEST(DateTime, BeforeTheEpochTheFractionStillCountsForward)
{
    EXPECT_EQ(DateTime::fromParts(1899, 12, 29, 6).days(), -1.25);
    EXPECT_EQ(partsOf(-1.25), (DateTimeParts{1899, 12, 29, 6, 0, 0}));
    EXPECT_EQ(partsOf(-0.5), (DateTimeParts{1899, 12, 30, 12, 0, 0}));
    EXPECT_EQ(partsOf(-1.0), (DateTimeParts{1899, 12, 29, 0, 0, 0}));
}

TEST(DateTime, EveryDayOfTheRangeRoundTripsAtBothEndsOfTheDay)
{
    // Walks all 3.6 million days from 1 January 100 to 31 December 9999 and checks each step
    // of the calendar against the previous day: this catches month lengths, leap years and
    // century rules at once.
    DateTimeParts previous{99, 12, 31, 0, 0, 0};
    for (long day = -657434; day <= 2958465; ++day) {
        const DateTimeParts p = partsOf(static_cast<double>(day));
        const bool nextDay =
            p.day == previous.day + 1 && p.month == previous.month && p.year == previous.year;
        const bool nextMonth =
            p.day == 1 && p.month == previous.month + 1 && p.year == previous.year;
        const bool nextYear = p.day == 1 && p.month == 1 && previous.month == 12 &&
                              previous.day == 31 && p.year == previous.year + 1;
        ASSERT_TRUE(nextDay || nextMonth || nextYear) << day;
        for (const auto [h, m, s] : {std::array{0, 0, 0}, std::array{23, 59, 59}}) {
            const DateTime dt = DateTime::fromParts(p.year, p.month, p.day, h, m, s);
            DateTimeParts back;
            ASSERT_TRUE(dt.toParts(back));
            ASSERT_EQ(back, (DateTimeParts{p.year, p.month, p.day, h, m, s})) << day;
        }
        previous = p;
    }
    EXPECT_EQ(previous, (DateTimeParts{9999, 12, 31, 0, 0, 0}));
}

TEST(DateTime, PartsOutsideTheCalendarGiveAnInvalidDateTime)
{
    struct Case {
        int year, month, day, hour, minute, second;
        bool valid;
    };
    const Case cases[] = {
        {2000, 2, 29, 0, 0, 0, true},  {2004, 2, 29, 0, 0, 0, true},  {1900, 2, 29, 0, 0, 0, false},
        {2100, 2, 29, 0, 0, 0, false}, {2003, 2, 29, 0, 0, 0, false}, {2004, 13, 1, 0, 0, 0, false},
        {2004, 0, 1, 0, 0, 0, false},  {2004, 4, 31, 0, 0, 0, false}, {2004, 1, 0, 0, 0, 0, false},
        {2004, 1, 1, 24, 0, 0, false}, {2004, 1, 1, 0, 60, 0, false}, {2004, 1, 1, 0, 0, 60, false},
        {99, 12, 31, 0, 0, 0, false},  {10000, 1, 1, 0, 0, 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.year) + "-" + std::to_string(c.month) + "-" +
                     std::to_string(c.day));
        const DateTime dt = DateTime::fromParts(c.year, c.month, c.day, c.hour, c.minute, c.second);
        EXPECT_EQ(dt.status(), c.valid ? DateTime::Valid : DateTime::Invalid);
    }
}

TEST(DateTime, TheFractionRoundsToTheNearestSecond)
{
    const double second = 1.0 / 86400.0;
    const double noon = DateTime::fromParts(2004, 3, 5, 12).days();
    EXPECT_EQ(partsOf(noon + 0.4 * second), (DateTimeParts{2004, 3, 5, 12, 0, 0}));
    EXPECT_EQ(partsOf(noon + 0.6 * second), (DateTimeParts{2004, 3, 5, 12, 0, 1}));
    // Just short of midnight rounds into the next day, across a month and a year end.
    EXPECT_EQ(partsOf(DateTime::fromParts(2004, 1, 1).days() - 0.2 * second),
              (DateTimeParts{2004, 1, 1, 0, 0, 0}));
    EXPECT_EQ(partsOf(DateTime::fromParts(2004, 2, 29, 23, 59, 59).days() + 0.7 * second),
              (DateTimeParts{2004, 3, 1, 0, 0, 0}));
    // One second stepped by adding its fraction to a late date keeps exact seconds.
    const DateTime late = DateTime::fromParts(9000, 6, 30, 23, 59, 58);
    EXPECT_EQ(partsOf(late.days() + second), (DateTimeParts{9000, 6, 30, 23, 59, 59}));
}

TEST(DateTime, DatesThatAreNotValidHaveNoPartsAndNoText)
{
    DateTimeParts p{1, 2, 3, 4, 5, 6};
    const DateTimeParts before = p;
    for (const DateTime dt :
         {DateTime(38051.0, DateTime::Invalid), DateTime(38051.0, DateTime::Null),
          DateTime(38051.0, 7), DateTime(std::numeric_limits<double>::quiet_NaN(), DateTime::Valid),
          DateTime(DateTime::kMinDays - 1, DateTime::Valid), DateTime(3e6, DateTime::Valid),
          DateTime(DateTime::kMaxDays + 0.9 / 86400.0, DateTime::Valid)}) {
        EXPECT_FALSE(dt.toParts(p)) << dt.days();
        EXPECT_EQ(p, before);
        EXPECT_EQ(dt.dateText(), "");
        EXPECT_EQ(dt.dateTimeText(), "");
        EXPECT_EQ(dt.paddedDateText(), "");
    }
}

TEST(DateTime, TextForms)
{
    EXPECT_EQ(DateTime::fromParts(2003, 12, 31).dateText(), "31-12-2003");
    EXPECT_EQ(DateTime::fromParts(2003, 12, 31).paddedDateText(), "31-12-2003");
    EXPECT_EQ(DateTime::fromParts(2004, 1, 1).dateText(), "1-1-2004");
    EXPECT_EQ(DateTime::fromParts(2004, 1, 1).paddedDateText(), "01-01-2004");
    EXPECT_EQ(DateTime::fromParts(2004, 3, 5, 9, 7, 2).dateTimeText(), "5-3-2004 9:7:2");
    EXPECT_EQ(DateTime::fromParts(2004, 1, 1).dateTimeText(), "1-1-2004 0:0:0");
    EXPECT_EQ(DateTime::fromParts(2004, 3, 5, 23, 59, 59).dateText(), "5-3-2004");
    EXPECT_EQ(DateTime::fromParts(150, 7, 4).paddedDateText(), "04-07-150");
}

TEST(DateTime, ComparesInCalendarOrderAndTestsTheSameDay)
{
    // Before 30 December 1899 the raw day values of one day run backwards; the order must not.
    for (const DateTimeParts day : {DateTimeParts{2004, 3, 5}, DateTimeParts{1899, 12, 29},
                                    DateTimeParts{1776, 12, 31}, DateTimeParts{1025, 2, 28}}) {
        SCOPED_TRACE(DateTime::fromParts(day).dateText());
        const DateTime midnight = DateTime::fromParts(day.year, day.month, day.day);
        const DateTime morning = DateTime::fromParts(day.year, day.month, day.day, 0, 0, 1);
        const DateTime noon = DateTime::fromParts(day.year, day.month, day.day, 12);
        const DateTime evening = DateTime::fromParts(day.year, day.month, day.day, 23, 59, 59);
        const DateTime nextMidnight = DateTime::fromParts(day.year, day.month, day.day + 1);
        EXPECT_LT(midnight, morning);
        EXPECT_LT(morning, noon);
        EXPECT_LT(noon, evening);
        EXPECT_GT(nextMidnight, evening);
        EXPECT_LE(morning, morning);
        EXPECT_GE(evening, morning);
        EXPECT_TRUE(morning.isSameDay(evening));
        EXPECT_FALSE(evening.isSameDay(nextMidnight));
    }
    EXPECT_LT(DateTime::fromParts(1899, 12, 29, 23, 59, 59), DateTime::fromParts(1899, 12, 30));
    EXPECT_FALSE(DateTime::fromParts(2004, 3, 5).isSameDay(DateTime::fromParts(2003, 3, 5)));
    EXPECT_TRUE(DateTime(38051.0, DateTime::Null).isSameDay(DateTime(1.0, DateTime::Invalid)));
    EXPECT_FALSE(DateTime(38051.0, DateTime::Null).isSameDay(DateTime::fromParts(2004, 3, 5)));
    EXPECT_NE(DateTime(38051.0, DateTime::Valid), DateTime(38051.0, DateTime::Invalid));
}
