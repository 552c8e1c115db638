// NamesBenchmark: what names that collide cost as there are more of them in one folder.
//
// The claim: time grows no faster than n log n. What that is on a machine with caches is shown by a sort: the growth from few
// siblings to four times as many is compared with that of sorting the names that come out, in another order, by turns in
// one run. By the formula alone it would be 4 * log(4n) / log(n), 4.65 for 5000.
#include "NameRules.hpp"
#include "Ratio.hpp"

#include <algorithm>
#include <random>
#include <vector>

namespace {

using namespace discrecording;

constexpr size_t few = 5000;

std::u16string numbered(size_t number) {
    std::u16string digits(6, u'0');
    for (size_t at = digits.size(); at-- > 0; number /= 10)
        digits[at] = static_cast<char16_t>(u'0' + number % 10);
    return digits;
}

/// The ways in which they collide.
std::vector<Sibling> same(size_t count) {
    return std::vector<Sibling>(count, Sibling{u"COLLIDES.TXT", false});
}
std::vector<Sibling> byTheHundred(size_t count) {
    std::vector<Sibling> all;
    for (size_t i = 0; i < count; ++i)
        all.push_back({u"C" + numbered(i / 100) + u".TXT", false});
    return all;
}
/// Each is what another one would get for its suffix.
std::vector<Sibling> withSuffixes(size_t count) {
    std::vector<Sibling> all = same(count);
    for (size_t i = 0; i < count; i += 2)
        all[i].name = u"COLL_" + numbered(i / 2).substr(3) + u".TXT";
    return all;
}

struct Growth {
    benchmark::Shortest some, all;
    double times() const { return all.nanoseconds() / some.nanoseconds(); }
};

void measure(const char* what, NameRule rule, const char* how, std::vector<Sibling> (*make)(size_t)) {
    const std::vector<Sibling> some = make(few), all = make(4 * few);
    std::vector<std::u16string> someNames = mangledNames(rule, some), allNames = mangledNames(rule, all);
    std::mt19937 random(1);
    std::shuffle(someNames.begin(), someNames.end(), random);
    std::shuffle(allNames.begin(), allNames.end(), random);
    const auto sort = [](const std::vector<std::u16string>& names) {
        std::vector<std::u16string> sorted = names;
        std::sort(sorted.begin(), sorted.end());
    };
    const auto nameSome = [&] { (void)mangledNames(rule, some); };
    const auto nameAll = [&] { (void)mangledNames(rule, all); };
    const auto sortSome = [&] { sort(someNames); };
    const auto sortAll = [&] { sort(allNames); };
    Growth names, sorts;
    for (int round = 0; round < 20; ++round) {
        names.some.time(nameSome, 1);
        names.all.time(nameAll, 1);
        sorts.some.time(sortSome, 1);
        sorts.all.time(sortAll, 1);
    }
    const double ratio = names.times() / sorts.times();
    std::printf(
        "%-12s %-15s %5zu in %6.2f ms, %5zu in %6.2f ms: %5.2f times, a sort %5.2f: %4.2f (aim 1.0)%s\n",
        what, how, few, names.some.nanoseconds() / 1e6, 4 * few, names.all.nanoseconds() / 1e6, names.times(),
        sorts.times(), ratio, ratio <= 1 ? "" : "  MISSED");
}

} // namespace

int main() {
    const std::pair<const char*, NameRule> rules[] = {{"ISO level 1", NameRule::ISOLevelOne},
                                                      {"ISO level 2", NameRule::ISOLevelTwo},
                                                      {"Joliet", NameRule::Joliet},
                                                      {"HFS+", NameRule::HFSPlus},
                                                      {"UDF", NameRule::UDF},
                                                      {"Rock Ridge", NameRule::RockRidge}};
    for (const auto& [what, rule] : rules) {
        measure(what, rule, "one name", same);
        measure(what, rule, "by the hundred", byTheHundred);
        measure(what, rule, "with suffixes", withSuffixes);
    }
}
