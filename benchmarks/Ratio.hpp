// Ratio.hpp: what one piece of code costs against another, timed in turns within one run.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace benchmark {

// The shortest of many rounds: what else the machine does only ever makes a round longer.
class Shortest {
  public:
    template <class Code>
    void time(Code& code, int repeats) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < repeats; ++i)
            code();
        const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
        best_ = std::min(best_, taken.count() / repeats);
    }
    double nanoseconds() const { return best_; }

  private:
    double best_ = 1e300;
};

// Only what has this in its name is run.
inline const char* chosen = "";

// Runs both by turns and prints how many times the second the first one takes, and what is aimed at.
template <class Code, class Bare>
void ratio(const char* what, double aim, int repeats, Code code, Bare bare) {
    if (!std::strstr(what, chosen)) return;
    constexpr int rounds = 400;
    Shortest ours, theirs;
    for (int round = 0; round < rounds; ++round) {
        ours.time(code, repeats);
        theirs.time(bare, repeats);
    }
    const double times = ours.nanoseconds() / theirs.nanoseconds();
    std::printf("%-56s %12.0f ns %12.0f ns %6.2f (aim %.1f)%s\n", what, ours.nanoseconds(),
                theirs.nanoseconds(), times, aim, times <= aim ? "" : "  MISSED");
}

} // namespace benchmark
