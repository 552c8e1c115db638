// Dates.cpp: host dates by their six parts, platform dates by their calendar.
#include "plugin/bridge/Dates.hpp"

#include "plugin/bridge/HostReference.hpp"
#include "plugin/objc/Ownership.hpp"

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

} // namespace

Id NewNSDate(REALobject date) {
    Parts parts{};
    if (!date || !readParts(date, parts)) return nullptr;
    const auto number = [](int32_t part) { return static_cast<unsigned long>(part); };
    return objc::sendClass<"NSCalendarDate", "dateWithYear:month:day:hour:minute:second:timeZone:">(
        static_cast<long>(parts.year), number(parts.month), number(parts.day), number(parts.hour),
        number(parts.minute), number(parts.second), objc::sendClass<"NSTimeZone", "localTimeZone">());
}

REALobject NSDateRB(Id date) {
    if (!date) return nullptr;
    // The same instant with a calendar, in the default time zone, which is the local one.
    const Id calendar = objc::autoreleased(objc::send<"initWithTimeIntervalSinceReferenceDate:">(
        objc::alloc<"NSCalendarDate">(), send<"timeIntervalSinceReferenceDate", double>(date)));
    if (!calendar) return nullptr;
    HostReference made(REALnewInstance("Date"));
    if (!made) return nullptr;
    const long year = send<"yearOfCommonEra", long>(calendar);
    const long month = send<"monthOfYear", long>(calendar);
    const long day = send<"dayOfMonth", long>(calendar);
    const long second = send<"secondOfMinute", long>(calendar);
    const long minute = send<"minuteOfHour", long>(calendar);
    const long hour = send<"hourOfDay", long>(calendar);
    const auto set = [&made](const char* name, long part) {
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
