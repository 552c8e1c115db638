// What libburn waits between two questions to a drive: tenths of seconds and whole ones, as real motors need. This drive
// has none, and tests would spend most of their time asleep. Whoever else sleeps, sleeps as long as he says.

#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <unistd.h>

namespace {

constexpr long shortening = 20;

bool isLibburn(void* caller) {
    Dl_info info{};
    return ::dladdr(caller, &info) != 0 && info.dli_fname != nullptr &&
           std::strstr(info.dli_fname, "libburn") != nullptr;
}

int sleepFor(long microseconds) {
    const timespec time{static_cast<time_t>(microseconds / 1'000'000), microseconds % 1'000'000 * 1000};
    return ::nanosleep(&time, nullptr);
}

} // namespace

// NOLINTBEGIN: the names are the C library's
extern "C" {

int usleep(useconds_t microseconds) {
    return sleepFor(static_cast<long>(microseconds) /
                    (isLibburn(__builtin_return_address(0)) ? shortening : 1));
}

unsigned sleep(unsigned seconds) {
    if (isLibburn(__builtin_return_address(0)))
        return sleepFor(static_cast<long>(seconds) * 1'000'000 / shortening) == 0 ? 0 : 1;
    static const auto real = reinterpret_cast<unsigned (*)(unsigned)>(::dlsym(RTLD_NEXT, "sleep"));
    return real(seconds);
}

} // extern "C"
// NOLINTEND
