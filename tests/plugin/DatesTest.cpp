// DatesTest.cpp: host dates and platform dates.
#include "plugin/bridge/Dates.hpp"
#include "plugin/bridge/Variants.hpp"
#include "plugin/objc/Guard.hpp"
#include "tests/plugin/HostClasses.hpp"
#include "tests/plugin/OwnResolver.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include "host/runtime/Date.hpp"

#include <array>
#include <limits>

namespace {

using namespace test;
using objc::Id;
using objc::send;
using objc::sendClass;

using Dates = LoadedTest;

constexpr const char* partNames[] = {"Year", "Month", "Day", "Hour", "Minute", "Second"};

// A date that tells its parts as they are, also where there is no such day; `missing` is a part that it
// lacks.
int32_t given[6];

template <int index>
int32_t part(REALobject) {
    return given[index];
}

Ref dateOf(std::initializer_list<int32_t> parts, int missing = -1) {
    using Getter = int32_t (*)(REALobject);
    static constexpr Getter getters[] = {part<0>, part<1>, part<2>, part<3>, part<4>, part<5>};
    static constexpr const char* declarations[] = {"Year as integer",   "Month as integer",
                                                   "Day as integer",    "Hour as integer",
                                                   "Minute as integer", "Second as integer"};
    static std::deque<std::vector<REALmethodDefinition>> tables;
    static std::deque<std::string> names;
    auto& rows = tables.emplace_back();
    for (int i = 0; i < 6; ++i)
        if (i != missing)
            rows.push_back({reinterpret_cast<REALproc>(getters[i]),
                            reinterpret_cast<REALproc>(+[](REALobject, int32_t) {}), declarations[i],
                            kREALMemberFlags});
    const auto& name = names.emplace_back("TestDate" + std::to_string(names.size()));
    registerHostClass(name.c_str(), 0, nullptr, rows.data(), rows.size());
    std::copy(parts.begin(), parts.end(), given);
    return Ref::adopt(REALnewInstance(name.c_str()));
}

Id platformDate(long year, unsigned long month, unsigned long day, unsigned long hour = 0,
                unsigned long minute = 0, unsigned long second = 0) {
    return sendClass<"NSCalendarDate", "dateWithYear:month:day:hour:minute:second:timeZone:">(
        year, month, day, hour, minute, second, sendClass<"NSTimeZone", "localTimeZone">());
}

double secondsOf(Id date) { return send<"timeIntervalSinceReferenceDate", double>(date); }

std::string partsOf(const Ref& date) {
    std::string parts;
    for (const char* name : partNames) {
        int32_t value = -1;
        EXPECT_TRUE(REALGetPropValueInt32(date.get(), name, &value)) << name;
        parts += (parts.empty() ? "" : " ") + std::to_string(value);
    }
    return parts;
}

TEST_F(Dates, NullIsNil) {
    EXPECT_EQ(NewNSDate(nullptr), nullptr);
    EXPECT_EQ(NSDateRB(nullptr), nullptr);
}

TEST_F(Dates, TheHostsPartsAreLocalTime) {
    const Id converted = NewNSDate(dateOf({2026, 1, 31, 9, 5, 7}).get());
    EXPECT_TRUE(objc::isKindOf<"NSCalendarDate">(converted));
    EXPECT_EQ(secondsOf(converted), secondsOf(platformDate(2026, 1, 31, 9, 5, 7)));
    EXPECT_EQ((send<"hourOfDay", long>(converted)), 9);
}

TEST_F(Dates, ADateWithoutOneOfItsPartsIsNil) {
    for (int missing = 0; missing < 6; ++missing)
        EXPECT_EQ(NewNSDate(dateOf({2026, 1, 31, 9, 5, 7}, missing).get()), nullptr) << partNames[missing];
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Dates, ADayThatDoesNotExistIsThePlatformsToDecide) {
    EXPECT_EQ(secondsOf(NewNSDate(dateOf({2009, 2, 29, 0, 0, 0}).get())),
              secondsOf(platformDate(2009, 2, 29)));
}

TEST_F(Dates, ThePlatformsDateBecomesItsLocalParts) {
    const Ref date = Ref::adopt(NSDateRB(platformDate(2009, 12, 31, 23, 59, 58)));
    ASSERT_TRUE(host::isA(date.get(), "Date"));
    EXPECT_EQ(partsOf(date), "2009 12 31 23 59 58");
}

TEST_F(Dates, FractionsOfASecondAreDroppedNotRounded) {
    const Id noon = platformDate(2009, 6, 1, 12);
    const Id later = sendClass<"NSDate", "dateWithTimeIntervalSinceReferenceDate:">(secondsOf(noon) + 0.9);
    EXPECT_EQ(partsOf(Ref::adopt(NSDateRB(later))), "2009 6 1 12 0 0");
}

TEST_F(Dates, DatesGoOverAndBack) {
    for (const std::time_t seconds : {0, 1, 951'782'400, 1'700'000'000, 2'000'000'000}) {
        const Ref date = host::newDate(seconds);
        const Ref back = Ref::adopt(NSDateRB(NewNSDate(date.get())));
        EXPECT_EQ(host::dateSeconds(back.get()), seconds);
    }
}

TEST_F(Dates, ADateThatTheHostCannotMakeIsNull) {
    harness::failCreation("Date");
    EXPECT_EQ(NSDateRB(platformDate(2009, 6, 1)), nullptr);
}

TEST_F(Dates, InVariantsTheyAreDates) {
    const Ref date = Ref::adopt(NewVariantFromNSObject(platformDate(2009, 6, 1, 12)));
    EXPECT_EQ(partsOf(date), "2009 6 1 12 0 0");
}

// What the platform's calendar says, asked directly.
std::string calendarOf(double seconds) {
    const Id date = objc::autoreleased(
        objc::send<"initWithTimeIntervalSinceReferenceDate:">(objc::alloc<"NSCalendarDate">(), seconds));
    std::string parts = std::to_string(static_cast<int32_t>(send<"yearOfCommonEra", long>(date)));
    for (const long part :
         {send<"monthOfYear", long>(date), send<"dayOfMonth", long>(date), send<"hourOfDay", long>(date),
          send<"minuteOfHour", long>(date), send<"secondOfMinute", long>(date)})
        parts += " " + std::to_string(part);
    return parts;
}

Ref hostDate(double seconds) {
    return Ref::adopt(NSDateRB(sendClass<"NSDate", "dateWithTimeIntervalSinceReferenceDate:">(seconds)));
}

// Beyond the first line's first and last instants the years of the platform's own cycle stand for others.
TEST_F(Dates, FarAwayTheyAreWhatThePlatformsCalendarSays) {
    for (const double seconds :
         {-50'491'123'200.0, 25'245'561'599.0, //
          -62'000'000'000.5, 25'245'561'600.0, 25'245'561'600.75, 3.1e10, 1e11, 1e12, 1e13})
        EXPECT_EQ(partsOf(hostDate(seconds)), calendarOf(seconds)) << seconds;
}

TEST_F(Dates, BeforeTheFirstYearTheyGoOnCounting) {
    if (sizeof(long) == 4) { // where the platform has no dates beyond these
        EXPECT_EQ(partsOf(hostDate(-63'113'904'000)), "1 1 2 0 0 0");
        EXPECT_EQ(partsOf(hostDate(64'000'000'000)), "4001 1 2 0 0 0");
        return;
    }
    EXPECT_EQ(partsOf(hostDate(-63'113'904'000)), "1 1 1 0 0 0");
    EXPECT_EQ(partsOf(hostDate(-63'113'904'001)), "0 12 31 23 59 59");
    EXPECT_EQ(partsOf(hostDate(-63'145'526'400)), "0 1 1 0 0 0");
    EXPECT_EQ(partsOf(hostDate(-63'145'526'401)), "-1 12 31 23 59 59");
    EXPECT_EQ(partsOf(hostDate(-63'113'904'000 - 10 * 12'622'780'800.0)), "-3999 1 1 0 0 0");
}

// The platform may refuse them, or roll them over; it makes no date of what is not a number. It counts months one by one,
// so the largest are left out.
TEST_F(Dates, OutOfAnyRangeTheyStillEnd) {
    for (const int32_t odd : {std::numeric_limits<int32_t>::max(), -1, 0, 99'999})
        for (const auto& parts : {std::array{odd, 1, 1, 0, 0, 0}, std::array{2009, 1, odd, odd, odd, odd},
                                  std::array{2009, odd == 0 ? 0 : 99'999, odd, odd, odd, odd}})
            objc::caughtIn([&] {
                NewNSDate(dateOf({parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]}).get());
            });
    for (const double seconds :
         {-1e11, -1e17, 1e17, 1e18, 1e22, -7.9e23, 1e300, -1e300, std::numeric_limits<double>::infinity()})
        objc::caughtIn([seconds] { hostDate(seconds); });
    EXPECT_EQ(partsOf(Ref::adopt(NSDateRB(platformDate(2009, 6, 1)))), "2009 6 1 0 0 0");
}

// ---- the order of the six parts ------------------------------------------------------------------------

std::string order;

uint8_t notedGet(REALobject object, const char* name, int32_t* value) {
    order += std::string(name) + " ";
    return hostsOwn<frame::entry::REALGetPropValueInt>("REALGetPropValueInt")(object, name, value);
}

uint8_t notedSet(REALobject object, const char* name, int32_t value) {
    order += std::string(name) + " ";
    return hostsOwn<frame::entry::REALSetPropValueInt>("REALSetPropValueInt")(object, name, value);
}

TEST_F(PluginTest, ThePartsOfADateAreReadAndSetFromTheYearToTheSecond) {
    OwnServices::put("REALGetPropValueInt", notedGet);
    OwnServices::put("REALSetPropValueInt", notedSet);
    REALPluginMain(OwnServices::resolve);
    const Ref date = host::newDate(1'000'000'000);
    order.clear();
    const Id converted = NewNSDate(date.get());
    EXPECT_EQ(order, "Year Month Day Hour Minute Second ");
    order.clear();
    const Ref back = Ref::adopt(NSDateRB(converted));
    EXPECT_EQ(order, "Year Month Day Hour Minute Second ");
}

} // namespace
