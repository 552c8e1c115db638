// WriteLog.cpp: pwrite, with a look at where the bytes lie.
#include "tests/plugin/WriteLog.hpp"

#include <dlfcn.h>
#include <map>
#include <mutex>
#include <sys/types.h>

namespace test {
namespace {

struct Log {
    std::mutex mutex;
    std::map<std::uintptr_t, std::size_t> buffers; // the longest seen at each address
    Written written;
};

// Never destroyed: threads may outlive static objects.
Log& writeLog() {
    static auto* log = new Log;
    return *log;
}

void noteWrite(const void* bytes, std::size_t count) {
    Log& log = writeLog();
    const auto from = reinterpret_cast<std::uintptr_t>(bytes);
    const std::lock_guard lock(log.mutex);
    // The buffer that begins last at or before these bytes; events are shown buffers that don't overlap otherwise
    // than by being the rest of one.
    std::size_t inside = 0;
    for (auto after = log.buffers.upper_bound(from); inside == 0 && after != log.buffers.begin();) {
        --after;
        const std::uintptr_t end = after->first + after->second;
        if (end > from) inside = end - from < count ? end - from : count;
    }
    log.written.fromEvents += inside;
    log.written.fromElsewhere += count - inside;
}

} // namespace

void noteEventBuffer(const void* bytes, std::size_t count) {
    Log& log = writeLog();
    const std::lock_guard lock(log.mutex);
    std::size_t& known = log.buffers[reinterpret_cast<std::uintptr_t>(bytes)];
    if (known < count) known = count;
}

Written written() {
    const std::lock_guard lock(writeLog().mutex);
    return writeLog().written;
}

void forgetWrites() {
    const std::lock_guard lock(writeLog().mutex);
    writeLog().buffers.clear();
    writeLog().written = {};
}

} // namespace test

// Exported from the executable, so that libraries reach this one first.
extern "C" __attribute__((visibility("default"))) ssize_t pwrite64(int file, const void* bytes,
                                                                   std::size_t count, off64_t place) {
    using Real = ssize_t(int, const void*, std::size_t, off64_t);
    static auto* const real = reinterpret_cast<Real*>(dlsym(RTLD_NEXT, "pwrite64"));
    const ssize_t done = real(file, bytes, count, place);
    if (done > 0) test::noteWrite(bytes, static_cast<std::size_t>(done));
    return done;
}
