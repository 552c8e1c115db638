// DriveWatcher: tells of drives that come, go and change.
#include "DriveWatcher.hpp"
#include "DrivesFolder.hpp"
#include "VirtualMedium.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <poll.h>
#include <pthread.h>
#include <set>
#include <string>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace discrecording {
namespace {

// For what the system does not tell of; without its telling, for everything.
constexpr std::chrono::milliseconds seldom{2000}, often{500};
// Things happen together: a moment later they are looked at once.
constexpr std::chrono::milliseconds together{10};

constexpr uint32_t changes = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE |
                             IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

// The drives' descriptions are replaced by renaming. Their locks are opened by whoever looks whether a drive is
// busy or reserved, this watcher included: news of them would never end.
bool isNews(const inotify_event& event) {
    if (event.len == 0) return true;
    const std::string_view name = event.name;
    return name != engine::names::lock && name != engine::names::reservation;
}

} // namespace

DriveWatcher::Snapshot DriveWatcher::snapshotOf(engine::Drive& drive) {
    Snapshot now;
    now.trayOpen = drive.isTrayOpen();
    now.busy = drive.isBusy();
    now.reserved = drive.holdsMediaReservation();
    if (const auto medium = drive.mediumInfo()) {
        now.present = true;
        now.kind = medium->kind;
        now.state = medium->state;
        now.capacity = medium->capacityBlocks;
        now.used = medium->blocksUsed;
        now.free = medium->blocksFree;
        now.sessions = medium->sessions.size();
        now.tracks = medium->trackCount();
    } else {
        now.present = drive.hasMedium();
    }
    return now;
}

void DriveWatcher::acquire(const Known& known) {
    const std::lock_guard starting(starting_);
    if (wanted_++ == 0) {
        if (wake_ < 0) wake_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
        stops_ = false;
        look(false);
        sigset_t every, before;
        sigfillset(&every); // the program's handlers run on the program's threads
        pthread_sigmask(SIG_SETMASK, &every, &before);
        thread_ = std::thread([this] { run(); });
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }
    const std::lock_guard lock(mutex_);
    std::vector<engine::DriveRef> present;
    for (const auto& [drive, snapshot] : drives_)
        present.push_back(drive);
    known(present);
}

void DriveWatcher::release() {
    const std::lock_guard starting(starting_);
    if (wanted_ == 0 || --wanted_ > 0) return;
    stops_ = true;
    lookNow();
    thread_.join();
    drives_.clear();
}

void DriveWatcher::lookNow() {
    const uint64_t one = 1;
    // A full counter wakes as well.
    if (wake_ >= 0) (void)!::write(wake_, &one, sizeof one);
}

void DriveWatcher::run() {
    pthread_setname_np(pthread_self(), "disc-watch");
    notify_ = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    while (!stops_) {
        watchFolders();
        look(true); // after the folders are watched, so that nothing is missed in between
        if (!stops_) waitForNews();
    }
    if (notify_ >= 0) ::close(notify_);
    notify_ = -1;
    watched_.clear();
}

void DriveWatcher::look(bool tells) {
    const auto found = engine::drives();
    const std::vector<engine::DriveRef> drives = found.ok() ? *found : std::vector<engine::DriveRef>();
    // Those that can't write are none of this system's, as for everybody who asks for the drives.
    std::map<engine::DriveRef, Snapshot> now;
    for (const engine::DriveRef& drive : drives)
        if (!drive->capabilities().writes.empty()) now.emplace(drive, snapshotOf(*drive));
    const std::lock_guard lock(mutex_);
    const auto before = std::exchange(drives_, now);
    if (!tells) return;
    for (const auto& [drive, snapshot] : before)
        if (!now.contains(drive)) tell_(DriveEvent::Disappeared, drive);
    for (const auto& [drive, snapshot] : now) {
        const auto old = before.find(drive);
        if (old == before.end())
            tell_(DriveEvent::Appeared, drive);
        else if (old->second != snapshot)
            tell_(DriveEvent::StatusChanged, drive);
    }
}

// A folder that is watched already keeps its number. Folders that are gone end their watches by themselves.
void DriveWatcher::watchFolders() {
    if (notify_ < 0) return;
    const auto watch = [this](const std::string& path) {
        if (const int number = ::inotify_add_watch(notify_, path.c_str(), changes); number >= 0)
            watched_[number] = path;
    };
    try {
        watch(engine::virtualDrivesFolder());
    } catch (const std::exception&) {
        // No folder, no virtual drives: whoever asks for the drives is told why.
    }
    const std::lock_guard lock(mutex_);
    for (const auto& [drive, snapshot] : drives_)
        if (drive->identity().isVirtual) watch(drive->identity().id);
}

void DriveWatcher::waitForNews() {
    const bool isTold = !watched_.empty();
    const auto until = std::chrono::steady_clock::now() + (isTold ? seldom : often);
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        if (left.count() <= 0) return;
        pollfd descriptors[] = {{wake_, POLLIN, 0}, {notify_, POLLIN, 0}};
        if (::poll(descriptors, notify_ < 0 ? 1 : 2, static_cast<int>(left.count())) <= 0) continue;
        bool news = false;
        if (uint64_t count = 0;
            (descriptors[0].revents & POLLIN) != 0 && ::read(wake_, &count, sizeof count) > 0)
            news = true;
        if (notify_ >= 0 && (descriptors[1].revents & POLLIN) != 0) {
            std::this_thread::sleep_for(together);
            alignas(inotify_event) char buffer[16384];
            for (ssize_t filled; (filled = ::read(notify_, buffer, sizeof buffer)) > 0;) {
                for (ssize_t at = 0; at < filled;) {
                    const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
                    if ((event->mask & IN_IGNORED) != 0) watched_.erase(event->wd);
                    news = news || isNews(*event);
                    at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
                }
            }
        }
        if (news) return;
    }
}

} // namespace discrecording
