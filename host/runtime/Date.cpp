// Date.cpp: the Date class on the C library's local time.
#include "host/runtime/Date.hpp"

#include "host/runtime/Builtins.hpp"
#include "host/runtime/Exceptions.hpp"

#include <cstdio>

namespace host {
namespace {

std::tm localParts(std::time_t seconds) {
    std::tm parts{};
    localtime_r(&seconds, &parts);
    return parts;
}

// The parts as they were set, put in order only when they are read: who sets year, month and day of a date
// that stands at the 31st gets the month that was set, whatever its length.
struct DateData {
    std::tm parts = localParts(std::time(nullptr));
};

// From 1904-01-01 to 1970-01-01: 66 years with 17 leap days.
constexpr double kSecondsBefore1970 = (66.0 * 365 + 17) * 86400;

std::tm partsOf(REALobject date) { return localParts(dateSeconds(date)); }

void setParts(REALobject date, std::tm parts) {
    parts.tm_isdst = -1;
    dataOf<DateData>(date).parts = parts;
}

std::string formatted(REALobject date, const char* format) {
    const std::tm parts = partsOf(date);
    char text[80];
    return {text, std::strftime(text, sizeof text, format, &parts)};
}

// A part of the local time, with what is added to make it a BASIC number (months and days count from 1).
MemberSpec part(const char* name, int std::tm::*field, int base) {
    return property(
        std::string(name) + " As Integer",
        [=](REALobject self, Arguments) -> Value { return partsOf(self).*field + base; },
        [=](REALobject self, Arguments a) -> Value {
            std::tm parts = dataOf<DateData>(self).parts;
            parts.*field = a[0].toInt32() - base;
            setParts(self, parts);
            return {};
        });
}

void setText(REALobject date, const std::string& text) {
    std::tm parts{};
    int used = 0;
    const int fields =
        std::sscanf(text.c_str(), "%d-%d-%d%n", &parts.tm_year, &parts.tm_mon, &parts.tm_mday, &used);
    bool isGood = fields == 3;
    const std::string rest = isGood ? text.substr(static_cast<std::size_t>(used)) : "";
    if (isGood && !rest.empty()) {
        int end = 0;
        isGood = std::sscanf(rest.c_str(), "%*[ T]%d:%d%n", &parts.tm_hour, &parts.tm_min, &used) == 2;
        if (isGood && std::sscanf(rest.c_str() + used, ":%d%n", &parts.tm_sec, &end) == 1) used += end;
        isGood = isGood && static_cast<std::size_t>(used) == rest.size();
    }
    if (!isGood)
        raise("UnsupportedFormatException",
              "\"" + text + "\" is no date: write it as 2026-01-31 or 2026-01-31 09:05:00");
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    setParts(date, parts);
}

double offsetHours(REALobject date) { return static_cast<double>(partsOf(date).tm_gmtoff) / 3600; }

} // namespace

Ref newDate() { return Ref::adopt(newObject(requireClass("Date"))); }

Ref newDate(std::time_t seconds) {
    Ref date = newDate();
    dataOf<DateData>(date.get()).parts = localParts(seconds);
    return date;
}

std::time_t dateSeconds(REALobject date) {
    std::tm parts = dataOf<DateData>(date).parts;
    return std::mktime(&parts);
}
std::string dateText(REALobject date) { return formatted(date, "%Y-%m-%d %H:%M:%S"); }

double dateTotalSeconds(REALobject date) {
    return static_cast<double>(dateSeconds(date)) + static_cast<double>(partsOf(date).tm_gmtoff) +
           kSecondsBefore1970;
}

void defineDateClass() {
    std::vector<MemberSpec> m;
    m.push_back(method("Constructor", [](REALobject, Arguments) { return Value(); }));
    m.push_back(method("Constructor(other As Date)", [](REALobject self, Arguments a) -> Value {
        if (a[0].isNil()) raise("NilObjectException", "the date to copy is nil");
        dataOf<DateData>(self) = dataOf<DateData>(a[0].object());
        return {};
    }));
    m.push_back(
        method("Constructor(year As Integer, month As Integer, day As Integer, Optional hour As Integer, "
               "Optional minute As Integer, Optional second As Integer)",
               [](REALobject self, Arguments a) -> Value {
                   std::tm parts{};
                   parts.tm_year = a[0].toInt32() - 1900;
                   parts.tm_mon = a[1].toInt32() - 1;
                   parts.tm_mday = a[2].toInt32();
                   parts.tm_hour = a[3].toInt32();
                   parts.tm_min = a[4].toInt32();
                   parts.tm_sec = a[5].toInt32();
                   setParts(self, parts);
                   return {};
               }));
    m.push_back(part("Year", &std::tm::tm_year, 1900));
    m.push_back(part("Month", &std::tm::tm_mon, 1));
    m.push_back(part("Day", &std::tm::tm_mday, 0));
    m.push_back(part("Hour", &std::tm::tm_hour, 0));
    m.push_back(part("Minute", &std::tm::tm_min, 0));
    m.push_back(part("Second", &std::tm::tm_sec, 0));
    const auto number = [](int std::tm::*field) {
        return [=](REALobject self, Arguments) -> Value { return partsOf(self).*field + 1; };
    };
    m.push_back(property("DayOfWeek As Integer", number(&std::tm::tm_wday)));
    m.push_back(property("DayOfYear As Integer", number(&std::tm::tm_yday)));
    m.push_back(property("WeekOfYear As Integer", [](REALobject self, Arguments) -> Value {
        return (partsOf(self).tm_yday + 7 - partsOf(self).tm_wday) / 7 + 1;
    }));
    const auto set = [](REALobject self, Arguments a) -> Value {
        setText(self, a[0].toText());
        return {};
    };
    m.push_back(property(
        "SQLDate As String", [](REALobject self, Arguments) -> Value { return formatted(self, "%Y-%m-%d"); },
        set));
    m.push_back(property(
        "SQLDateTime As String", [](REALobject self, Arguments) -> Value { return dateText(self); }, set));
    m.push_back(property(
        "TotalSeconds As Double", [](REALobject self, Arguments) -> Value { return dateTotalSeconds(self); },
        [](REALobject self, Arguments a) -> Value {
            // Local seconds are those of the same wall clock in UTC.
            const auto local =
                static_cast<std::time_t>(Value(a[0].toDouble() - kSecondsBefore1970).toInt64());
            std::tm parts{};
            gmtime_r(&local, &parts);
            setParts(self, parts);
            return {};
        }));
    m.push_back(property("ShortDate As String",
                         [](REALobject self, Arguments) -> Value { return formatted(self, "%x"); }));
    m.push_back(property("ShortTime As String",
                         [](REALobject self, Arguments) -> Value { return formatted(self, "%H:%M"); }));
    m.push_back(property("GMTOffset As Double",
                         [](REALobject self, Arguments) -> Value { return offsetHours(self); }));
    defineBuiltin(builtinWith<DateData>("Date", std::move(m)));
}

} // namespace host
