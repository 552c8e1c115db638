// ZonesTest.cpp: dates where clocks are not those of UTC and change twice a year.
#include "plugin/bridge/Dates.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include "host/runtime/Date.hpp"

#include <cstdlib>
#include <ctime>
#include <limits>

namespace {

using namespace test;
using objc::Id;
using objc::send;
using objc::sendClass;

// The zone comes with the environment that the program is started in (see CMakeLists.txt): the platform looks at that
// once, when it is loaded.
class Berlin : public LoadedTest {
  protected:
    void SetUp() override {
        for (const char* variable : {"TZ", "GNUSTEP_TZ"})
            ASSERT_STREQ(getenv(variable), "Europe/Berlin") << variable;
        LoadedTest::SetUp();
    }

    static Id at(std::time_t utc) {
        constexpr double referenceDate = 978'307'200; // 2001-01-01 in seconds since 1970
        return sendClass<"NSDate", "dateWithTimeIntervalSinceReferenceDate:">(static_cast<double>(utc) -
                                                                              referenceDate);
    }
    static std::time_t utcOf(Id date) {
        return static_cast<std::time_t>(send<"timeIntervalSince1970", double>(date));
    }
    static std::time_t utc(int year, int month, int day, int hour, int minute, int second) {
        std::tm parts{};
        parts.tm_year = year - 1900;
        parts.tm_mon = month - 1;
        parts.tm_mday = day;
        parts.tm_hour = hour;
        parts.tm_min = minute;
        parts.tm_sec = second;
        return timegm(&parts);
    }

    // What the host's date says for an instant.
    static std::string partsAt(std::time_t instant) {
        const Ref date = Ref::adopt(NSDateRB(at(instant)));
        std::string parts;
        for (const char* name : {"Year", "Month", "Day", "Hour", "Minute", "Second"}) {
            int32_t value = -1;
            EXPECT_TRUE(REALGetPropValueInt32(date.get(), name, &value)) << name;
            parts += (parts.empty() ? "" : " ") + std::to_string(value);
        }
        return parts;
    }
    // The instant of a host date with those parts.
    static std::time_t instantOf(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute,
                                 int32_t second) {
        const Ref date = Ref::adopt(REALnewInstance("Date"));
        const std::pair<const char*, int32_t> parts[] = {
            {"Day", 1},     {"Year", year},     {"Month", month},  {"Day", day},
            {"Hour", hour}, {"Minute", minute}, {"Second", second}};
        for (const auto& [name, value] : parts)
            REALSetPropValueInt32(date.get(), name, value);
        return utcOf(NewNSDate(date.get()));
    }
};

TEST_F(Berlin, SummerIsTwoHoursAheadAndWinterOne) {
    EXPECT_EQ(partsAt(utc(2026, 7, 1, 10, 0, 0)), "2026 7 1 12 0 0");
    EXPECT_EQ(partsAt(utc(2026, 1, 1, 11, 30, 15)), "2026 1 1 12 30 15");
    EXPECT_EQ(instantOf(2026, 7, 1, 12, 0, 0), utc(2026, 7, 1, 10, 0, 0));
    EXPECT_EQ(instantOf(2026, 1, 1, 12, 30, 15), utc(2026, 1, 1, 11, 30, 15));
}

TEST_F(Berlin, TheDayIsTheLocalOne) {
    EXPECT_EQ(partsAt(utc(2025, 12, 31, 23, 30, 0)), "2026 1 1 0 30 0");
    EXPECT_EQ(instantOf(2026, 1, 1, 0, 30, 0), utc(2025, 12, 31, 23, 30, 0));
}

// On 29 March 2026 two o'clock is three o'clock.
TEST_F(Berlin, InSpringAnHourIsMissing) {
    EXPECT_EQ(partsAt(utc(2026, 3, 29, 0, 59, 59)), "2026 3 29 1 59 59");
    EXPECT_EQ(partsAt(utc(2026, 3, 29, 1, 0, 0)), "2026 3 29 3 0 0");
    EXPECT_EQ(instantOf(2026, 3, 29, 1, 59, 59), utc(2026, 3, 29, 0, 59, 59));
    EXPECT_EQ(instantOf(2026, 3, 29, 3, 0, 0), utc(2026, 3, 29, 1, 0, 0));
}

// On 25 October 2026 the hour from two to three comes twice; the host's parts are the same for both.
TEST_F(Berlin, InAutumnAnHourComesTwice) {
    EXPECT_EQ(partsAt(utc(2026, 10, 25, 0, 30, 0)), "2026 10 25 2 30 0");
    EXPECT_EQ(partsAt(utc(2026, 10, 25, 1, 30, 0)), "2026 10 25 2 30 0");
    EXPECT_EQ(partsAt(utc(2026, 10, 25, 2, 0, 0)), "2026 10 25 3 0 0");
    const std::time_t chosen = instantOf(2026, 10, 25, 2, 30, 0);
    EXPECT_TRUE(chosen == utc(2026, 10, 25, 0, 30, 0) || chosen == utc(2026, 10, 25, 1, 30, 0)) << chosen;
}

// One that counts years or days would take seconds.
TEST_F(Berlin, FarDatesGoOverAndBack) {
    const int32_t last = // that the platform has whole
        sizeof(long) == 4 ? 4000 : std::numeric_limits<int32_t>::max();
    for (const int32_t year : {1, 2, 400, 401, 2400, 2800, 2801, 3200, 3201, 4000, 20'000'000, 200'000'000}) {
        if (year > last) break;
        EXPECT_EQ(partsAt(instantOf(year, 2, 28, 9, 5, 7)), std::to_string(year) + " 2 28 9 5 7");
    }
    for (const int32_t year : {2027, 2800, 2801, 3200, 4000, 9999}) {
        if (year > last) break;
        EXPECT_EQ(instantOf(year, 12, 31, 23, 59, 58), utc(year, 12, 31, 22, 59, 58));
    }
}

TEST_F(Berlin, DatesGoOverAndBackOnEveryDayOfAYear) {
    for (std::time_t day = utc(2026, 1, 1, 4, 5, 6); day < utc(2027, 1, 1, 0, 0, 0); day += 86'400) {
        const Ref date = host::newDate(day);
        ASSERT_EQ(utcOf(NewNSDate(date.get())), day);
        const Ref back = Ref::adopt(NSDateRB(NewNSDate(date.get())));
        ASSERT_EQ(host::dateSeconds(back.get()), day);
    }
}

} // namespace
