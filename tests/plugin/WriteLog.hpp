// WriteLog.hpp: what this process writes at places in files, as memory: who links WriteLog.cpp stands in for the C
// library's pwrite.
#pragma once

#include <cstddef>
#include <cstdint>

namespace test {

// Memory that an event was shown from now on counts as an event's. Any thread.
void noteEventBuffer(const void* bytes, std::size_t count);

struct Written {
    std::uint64_t fromEvents =
        0; // bytes that went from an event's buffer to a file, from where the event left them
    std::uint64_t fromElsewhere = 0;
};
// Since the last forgetWrites().
Written written();
void forgetWrites();

} // namespace test
