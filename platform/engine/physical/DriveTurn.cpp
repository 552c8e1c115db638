// Whether somebody has a drive, asked so that the question is in nobody's way.
#include "PhysicalDrive.hpp"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace engine {
namespace {

constexpr auto patience = std::chrono::seconds(1);
constexpr auto step = std::chrono::milliseconds(2);

Descriptor openNode(const std::string& path, int more = 0) {
    return Descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | more));
}

} // namespace

Descriptor takeTurn(const std::string& path) {
    Descriptor node = openNode(path);
    const auto until = std::chrono::steady_clock::now() + patience;
    while (node && ::flock(node.get(), LOCK_EX | LOCK_NB) != 0) {
        // Who has the drive already, and not just a turn, is found out by trying.
        if (errno != EINTR && (errno != EWOULDBLOCK || std::chrono::steady_clock::now() >= until)) return {};
        std::this_thread::sleep_for(step);
    }
    return node;
}

// The kernel lets one opener in who wants the drive for himself.
bool isInUse(const std::string& path) {
    const Descriptor turn = takeTurn(path);
    return !openNode(path, O_EXCL) && errno == EBUSY;
}

} // namespace engine
