#include "core/model/date_time.h"

#include <cmath>
#include <cstdio>

namespace finora {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

// Days from 1 January 1970 in the proleptic Gregorian calendar (Howard Hinnant's algorithm).
constexpr std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d)
{
    y -= m <= 2 ? 1 : 0;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const auto yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

constexpr void civilFromDays(std::int64_t z, int& year, int& month, int& day)
{
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    const unsigned d = doy - (153 * mp + 2) / 5 + 1;
    const unsigned m = mp < 10 ? mp + 3 : mp - 9;
    year = static_cast<int>(static_cast<std::int64_t>(yoe) + era * 400 + (m <= 2 ? 1 : 0));
    month = static_cast<int>(m);
    day = static_cast<int>(d);
}

constexpr std::int64_t kOleEpoch = daysFromCivil(1899, 12, 30);

constexpr bool isLeap(int y)
{
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

constexpr int daysInMonth(int y, int m)
{
    constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && isLeap(y) ? 29 : lengths[m - 1];
}

std::string format(const char* pattern, const DateTimeParts& p, bool withTime)
{
    char buffer[64];
    const int n = withTime ? std::snprintf(buffer, sizeof buffer, pattern, p.day, p.month, p.year,
                                           p.hour, p.minute, p.second)
                           : std::snprintf(buffer, sizeof buffer, pattern, p.day, p.month, p.year);
    return std::string(buffer, static_cast<std::size_t>(n));
}

} // namespace

DateTime DateTime::fromParts(int year, int month, int day, int hour, int minute, int second)
{
    if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1 ||
        day > daysInMonth(year, month) || hour < 0 || hour > 23 || minute < 0 || minute > 59 ||
        second < 0 || second > 59) {
        return DateTime(0.0, Invalid);
    }
    const auto dayNumber = static_cast<double>(
        daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) - kOleEpoch);
    const double time = static_cast<double>(hour * 3600 + minute * 60 + second) / kSecondsPerDay;
    return DateTime(dayNumber >= 0 ? dayNumber + time : dayNumber - time, Valid);
}

DateTime DateTime::fromParts(const DateTimeParts& p)
{
    return fromParts(p.year, p.month, p.day, p.hour, p.minute, p.second);
}

double DateTime::calendarValue() const
{
    if (!(m_days < 0.0)) {
        return m_days;
    }
    const double whole = std::trunc(m_days);
    return whole + (whole - m_days);
}

bool DateTime::isValid() const
{
    return m_status == Valid && m_days >= kMinDays && m_days <= kMaxDays;
}

bool DateTime::toParts(DateTimeParts& parts) const
{
    if (!isValid()) {
        return false;
    }
    const double whole = std::trunc(m_days);
    const double fraction = std::fabs(m_days - whole);
    std::int64_t day = static_cast<std::int64_t>(whole) + kOleEpoch;
    auto seconds = static_cast<std::int64_t>(std::llround(fraction * kSecondsPerDay));
    if (seconds >= kSecondsPerDay) { // 23:59:59.6 rounds into the next day
        seconds -= kSecondsPerDay;
        ++day;
    }
    DateTimeParts p;
    civilFromDays(day, p.year, p.month, p.day);
    if (p.year > 9999) {
        return false;
    }
    p.hour = static_cast<int>(seconds / 3600);
    p.minute = static_cast<int>(seconds / 60 % 60);
    p.second = static_cast<int>(seconds % 60);
    parts = p;
    return true;
}

bool DateTime::isSameDay(const DateTime& other) const
{
    DateTimeParts a;
    DateTimeParts b;
    const bool hasA = toParts(a);
    const bool hasB = other.toParts(b);
    // Dates that have no calendar day all read as the same error day, so they are alike.
    if (!hasA || !hasB) {
        return hasA == hasB;
    }
    return a.year == b.year && a.month == b.month && a.day == b.day;
}

std::string DateTime::dateText() const
{
    DateTimeParts p;
    return toParts(p) ? format("%d-%d-%d", p, false) : std::string();
}

std::string DateTime::dateTimeText() const
{
    DateTimeParts p;
    return toParts(p) ? format("%d-%d-%d %d:%d:%d", p, true) : std::string();
}

std::string DateTime::paddedDateText() const
{
    DateTimeParts p;
    return toParts(p) ? format("%02d-%02d-%d", p, false) : std::string();
}

} // namespace finora
