// Date.cpp: the Date class on the C library's local time.
#include "host/runtime/Date.hpp"

#include "host/runtime/Builtins.hpp"
#include "host/runtime/Exceptions.hpp"

#include <cstdio>
#include <limits>

namespace host {
namespace {

[[noreturn]] void tooFar() {
    raise("InvalidArgumentException",
          "a date can't be that far away: its year would not fit into an Integer");
}

// What a program has as base and more, such as a year, as the C library counts it.
int counted(int64_t part, int base) {
    if (part < int64_t{std::numeric_limits<int>::min()} + base ||
        part > int64_t{std::numeric_limits<int>::max()} + base)
        tooFar();
    return static_cast<int>(part - base);
}

// The C library's limit for years is the larger by the base of 1900.
void checkYear(const std::tm& parts) {
    if (parts.tm_year > std::numeric_limits<int>::max() - 1900) tooFar();
}

std::tm localParts(std::time_t seconds) {
    std::tm parts{};
    if (!localtime_r(&seconds, &parts)) tooFar();
    checkYear(parts);
    return parts;
}

// The parts put in order. A result of -1 is a good one, too: the last second of 1969.
std::time_t secondsOf(std::tm parts) {
    parts.tm_wday = -1; // stays only where the library fails
    const std::time_t seconds = std::mktime(&parts);
    if (parts.tm_wday < 0) tooFar();
    checkYear(parts);
    return seconds;
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
    secondsOf(parts); // refuses what can't be put in order: the date stays as it was
    dataOf<DateData>(date).parts = parts;
}

// As a program counts them.
void setParts(REALobject date, int64_t year, int64_t month, int64_t day, int64_t hour, int64_t minute,
              int64_t second) {
    std::tm parts{};
    parts.tm_year = counted(year, 1900);
    parts.tm_mon = counted(month, 1);
    parts.tm_mday = counted(day, 0);
    parts.tm_hour = counted(hour, 0);
    parts.tm_min = counted(minute, 0);
    parts.tm_sec = counted(second, 0);
    setParts(date, parts);
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
            parts.*field = counted(a[0].toInt64(), base);
            setParts(self, parts);
            return {};
        });
}

void setText(REALobject date, const std::string& text) {
    long long year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    int used = 0;
    bool isGood = std::sscanf(text.c_str(), "%lld-%lld-%lld%n", &year, &month, &day, &used) == 3;
    const std::string rest = isGood ? text.substr(static_cast<std::size_t>(used)) : "";
    if (isGood && !rest.empty()) {
        int end = 0;
        isGood = std::sscanf(rest.c_str(), "%*[ T]%lld:%lld%n", &hour, &minute, &used) == 2;
        if (isGood && std::sscanf(rest.c_str() + used, ":%lld%n", &second, &end) == 1) used += end;
        isGood = isGood && static_cast<std::size_t>(used) == rest.size();
    }
    if (!isGood)
        raise("UnsupportedFormatException",
              "\"" + text + "\" is no date: write it as 2026-01-31 or 2026-01-31 09:05:00");
    setParts(date, year, month, day, hour, minute, second);
}

double offsetHours(REALobject date) { return static_cast<double>(partsOf(date).tm_gmtoff) / 3600; }

} // namespace

Ref newDate() { return Ref::adopt(newObject(requireClass("Date"))); }

Ref newDate(std::time_t seconds) {
    Ref date = newDate();
    dataOf<DateData>(date.get()).parts = localParts(seconds);
    return date;
}

std::time_t dateSeconds(REALobject date) { return secondsOf(dataOf<DateData>(date).parts); }
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
                   setParts(self, a[0].toInt64(), a[1].toInt64(), a[2].toInt64(), a[3].toInt64(),
                            a[4].toInt64(), a[5].toInt64());
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
            if (!gmtime_r(&local, &parts)) tooFar();
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
