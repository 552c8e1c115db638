// Dates.cpp: host dates by their six parts, platform dates by their calendar.
#include "plugin/bridge/Dates.hpp"

#include "plugin/bridge/HostReference.hpp"
#include "plugin/objc/Ownership.hpp"

#include <cmath>
#include <cstdint>

namespace {

using objc::Id;
using objc::send;

struct Parts {
    int32_t year, month, day, hour, minute, second;
};

bool readParts(REALobject date, Parts& parts) {
    return REALGetPropValueInt32(date, "Year", &parts.year) &&
           REALGetPropValueInt32(date, "Month", &parts.month) &&
           REALGetPropValueInt32(date, "Day", &parts.day) &&
           REALGetPropValueInt32(date, "Hour", &parts.hour) &&
           REALGetPropValueInt32(date, "Minute", &parts.minute) &&
           REALGetPropValueInt32(date, "Second", &parts.second);
}

constexpr double cycleSeconds = 146'097.0 * 86'400; // 400 years

// An instant, and the years that are between it and another one that looks the same in every calendar.
struct Moment {
    double seconds; // from the beginning of 2001
    int64_t years;
};

// The platform looks for the year of a far instant one by one, and never finds one before the first. The calendar comes
// again every 400 years, and clocks don't change in the years 401 to 800, nor in 2401 to 2800: so these stand for all that
// are further away. What no 64-bit number of days leads to the platform has an answer for at once.
Moment near(double seconds) {
    constexpr double tooFar = 7.97e23;
    const bool isFar =
        (seconds < -4 * cycleSeconds || seconds >= 2 * cycleSeconds) && std::abs(seconds) < tooFar;
    if (!isFar) return {seconds, 0};
    const double same = std::fmod(seconds, cycleSeconds) + (seconds < 0 ? -3 : 1) * cycleSeconds; // exact
    return {same, 400 * std::llround((seconds - same) / cycleSeconds)};
}

} // namespace

// The platform counts the years of a far date, too: the same day of a year that is near, and the cycles between them.
Id NewNSDate(REALobject date) {
    Parts parts{};
    if (!date || !readParts(date, parts)) return nullptr;
    constexpr int64_t first = 401, behindLast = 2801, years = 400;
    const int64_t year = parts.year;
    const int64_t cycles = year < first         ? -((first - 1 - year) / years + 1)
                           : year >= behindLast ? (year - behindLast) / years + 1
                                                : 0;
    const auto number = [](int32_t part) { return static_cast<unsigned long>(part); };
    const Id made = objc::sendClass<"NSCalendarDate", "dateWithYear:month:day:hour:minute:second:timeZone:">(
        static_cast<long>(year - cycles * years), number(parts.month), number(parts.day), number(parts.hour),
        number(parts.minute), number(parts.second), objc::sendClass<"NSTimeZone", "localTimeZone">());
    if (cycles == 0 || !made) return made;
    return objc::autoreleased(objc::send<"initWithTimeIntervalSinceReferenceDate:">(
        objc::alloc<"NSCalendarDate">(),
        send<"timeIntervalSinceReferenceDate", double>(made) + static_cast<double>(cycles) * cycleSeconds));
}

REALobject NSDateRB(Id date) {
    if (!date) return nullptr;
    const Moment moment = near(send<"timeIntervalSinceReferenceDate", double>(date));
    // The same instant with a calendar, in the default time zone, which is the local one.
    const Id calendar = objc::autoreleased(objc::send<"initWithTimeIntervalSinceReferenceDate:">(
        objc::alloc<"NSCalendarDate">(), moment.seconds));
    if (!calendar) return nullptr;
    HostReference made(REALnewInstance("Date"));
    if (!made) return nullptr;
    const int64_t year = send<"yearOfCommonEra", long>(calendar) + moment.years;
    const long month = send<"monthOfYear", long>(calendar);
    const long day = send<"dayOfMonth", long>(calendar);
    const long second = send<"secondOfMinute", long>(calendar);
    const long minute = send<"minuteOfHour", long>(calendar);
    const long hour = send<"hourOfDay", long>(calendar);
    const auto set = [&made](const char* name, int64_t part) {
        REALSetPropValueInt32(made.get(), name, static_cast<int32_t>(part));
    };
    // The large parts first: a host may correct a day that the month it has at that moment lacks.
    set("Year", year);
    set("Month", month);
    set("Day", day);
    set("Hour", hour);
    set("Minute", minute);
    set("Second", second);
    return made.give();
}
