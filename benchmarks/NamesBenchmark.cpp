// NamesBenchmark: what names that collide cost as there are more of them in one folder.
//
// The claim: time grows no faster than n log n; four times as many siblings take at most 4 * log(4n) / log(n) times as
// long. Both sizes are timed in one run, by turns.
#include "NameRules.hpp"
#include "Ratio.hpp"

#include <cmath>
#include <vector>

namespace {

using namespace discrecording;

void measure(const char* what, NameRule rule, size_t few) {
    const std::vector<Sibling> all(4 * few, Sibling{u"COLLIDES.TXT", false});
    const std::vector<Sibling> some(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(few));
    benchmark::Shortest ofAll, ofSome;
    const auto nameAll = [&] { (void)mangledNames(rule, all); };
    const auto nameSome = [&] { (void)mangledNames(rule, some); };
    for (int round = 0; round < 20; ++round) {
        ofAll.time(nameAll, 1);
        ofSome.time(nameSome, 1);
    }
    const double times = ofAll.nanoseconds() / ofSome.nanoseconds();
    const double aim = 4 * std::log(4.0 * static_cast<double>(few)) / std::log(static_cast<double>(few));
    std::printf("%-12s %6zu siblings %8.2f ms, %6zu %8.2f ms: %5.2f times (aim %.2f)%s\n", what, few,
                ofSome.nanoseconds() / 1e6, 4 * few, ofAll.nanoseconds() / 1e6, times, aim,
                times <= aim ? "" : "  MISSED");
}

} // namespace

int main() {
    measure("ISO level 1", NameRule::ISOLevelOne, 5000);
    measure("ISO level 2", NameRule::ISOLevelTwo, 5000);
    measure("Joliet", NameRule::Joliet, 5000);
    measure("HFS+", NameRule::HFSPlus, 5000);
}
