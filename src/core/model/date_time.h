#pragma once

#include <compare>
#include <cstdint>
#include <string>

namespace finora {

struct DateTimeParts {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;

    bool operator==(const DateTimeParts&) const = default;
};

// A moment as an OLE automation date: days since 30 December 1899 with the time of day as the
// fraction, plus a validity status. Before that epoch the whole part counts days back and the
// fraction still counts time forward (-1.25 is 29 December 1899, 06:00).
class DateTime {
public:
    enum Status : std::int32_t { Valid = 0, Invalid = 1, Null = 2 };

    // The range the convention admits: 1 January 100 to 31 December 9999, each to its last
    // second (before the epoch the time of day is subtracted, so the low end is below -657434).
    static constexpr double kMinDays = -657434.0 - 86399.0 / 86400.0;
    static constexpr double kMaxDays = 2958465.0 + 86399.0 / 86400.0;

    DateTime() = default;
    DateTime(double days, std::int32_t status) : m_days(days), m_status(status) {}

    // A date-time with status Invalid when any part is out of range.
    static DateTime fromParts(int year, int month, int day, int hour = 0, int minute = 0,
                              int second = 0);
    static DateTime fromParts(const DateTimeParts& parts);

    double days() const { return m_days; }
    std::int32_t status() const { return m_status; }
    bool isValid() const;

    // Rounded to the nearest second. False, with `parts` untouched, when the date-time is not
    // valid or its day value lies outside the range.
    bool toParts(DateTimeParts& parts) const;

    // Year, month and day agree. Two date-times without a calendar day count as the same day.
    bool isSameDay(const DateTime& other) const;

    // The three text forms; a date-time that is not valid gives an empty text.
    std::string dateText() const;       // 5-3-2004
    std::string dateTimeText() const;   // 5-3-2004 9:7:2
    std::string paddedDateText() const; // 05-03-2004

    // The day value on a scale that grows with the calendar. Before the epoch the stored
    // fraction counts forward from a whole part that counts back, so the raw -1.5 (29 December,
    // 12:00) is below -1.0 (its midnight); here it is -0.5. Every comparison of moments goes
    // through this.
    double calendarValue() const;

    // Ordering follows the calendar, whatever the status; equality asks for the same stored
    // value and status.
    bool operator==(const DateTime& other) const
    {
        return m_status == other.m_status && m_days == other.m_days;
    }
    std::partial_ordering operator<=>(const DateTime& other) const
    {
        return calendarValue() <=> other.calendarValue();
    }

private:
    double m_days = 0.0;
    std::int32_t m_status = Valid;
};

} // namespace finora
