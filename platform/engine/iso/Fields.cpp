// Fields with a form of their own: texts and dates.
#include "Fields.hpp"
#include "Names.hpp"
#include "Utf8.hpp"

#include <chrono>
#include <cstdio>

namespace engine::iso {
namespace {

struct LocalTime {
    int year;
    unsigned month, day;
    int hour, minute, second;
};

LocalTime calendarTimeOf(std::time_t seconds, int8_t zone) {
    using namespace std::chrono;
    // The years 1 to 9999, give or take a zone: no field holds others.
    const int64_t kept = std::clamp<int64_t>(seconds, -62'135'596'800, 253'402'300'799);
    const sys_seconds local{std::chrono::seconds(kept + int64_t{zone} * 15 * 60)};
    const auto day = floor<days>(local);
    const year_month_day date(day);
    const hh_mm_ss time(local - day);
    return {static_cast<int>(date.year()),
            static_cast<unsigned>(date.month()),
            static_cast<unsigned>(date.day()),
            static_cast<int>(time.hours().count()),
            static_cast<int>(time.minutes().count()),
            static_cast<int>(time.seconds().count())};
}

// Not gmtime_r: that is asked four times for each record of a folder, mostly for the time before.
LocalTime localTimeOf(std::time_t seconds, int8_t zone) {
    struct Known {
        std::time_t seconds;
        int8_t zone;
        LocalTime time;
    };
    thread_local Known last{0, 0, {1970, 1, 1, 0, 0, 0}};
    if (last.seconds != seconds || last.zone != zone) last = {seconds, zone, calendarTimeOf(seconds, zone)};
    return last.time;
}

} // namespace

Fields& Fields::text(size_t size, std::string_view utf8) {
    size_t kept = std::min(size, utf8.size());
    // The bytes of a character behind its first are 10xxxxxx.
    while (kept > 0 && kept < utf8.size() && (utf8[kept] & 0xC0) == 0x80)
        --kept;
    raw(utf8.substr(0, kept));
    std::memset(bytes_.data() + at_, ' ', size - kept);
    return skip(size - kept);
}

Fields& Fields::wideText(size_t size, std::string_view utf8) {
    size_t units = size / 2;
    while (!utf8.empty()) {
        const auto character = firstCharacter(utf8);
        std::string wide;
        appendWide(wide, character ? character->value : U'_');
        if (wide.size() / 2 > units) break;
        raw(wide);
        units -= wide.size() / 2;
        utf8.remove_prefix(character ? character->bytes : 1);
    }
    for (; units > 0; --units)
        big16(' ');
    return skip(size % 2);
}

Fields& Fields::date(std::time_t seconds, int8_t zone) {
    const LocalTime time = localTimeOf(seconds, zone);
    u8(static_cast<uint8_t>(std::clamp(time.year - 1900, 0, 255)));
    u8(static_cast<uint8_t>(time.month))
        .u8(static_cast<uint8_t>(time.day))
        .u8(static_cast<uint8_t>(time.hour));
    return u8(static_cast<uint8_t>(time.minute))
        .u8(static_cast<uint8_t>(time.second))
        .u8(static_cast<uint8_t>(zone));
}

Fields& Fields::digits(std::optional<std::time_t> seconds, int8_t zone) {
    if (!seconds) return raw("0000000000000000").u8(0);
    const LocalTime time = localTimeOf(*seconds, zone);
    char text[80];
    std::snprintf(text, sizeof text, "%04d%02u%02u%02d%02d%02d00", std::clamp(time.year, 1, 9999), time.month,
                  time.day, time.hour, time.minute, time.second);
    return raw({text, 16}).u8(static_cast<uint8_t>(zone));
}

} // namespace engine::iso
