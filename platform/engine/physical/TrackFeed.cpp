// The library's side of the hand-over.
#include "TrackFeed.hpp"

#include <algorithm>
#include <cstring>
#include <libburn/libburn.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace engine {
namespace {

struct Held {
    std::shared_ptr<TrackFeed> feed;
    size_t track;
    off_t bytes;
};

Held& heldBy(burn_source* source) { return *static_cast<Held*>(source->data); }

} // namespace

// What C calls; nothing here throws.
struct TrackSourceCalls {
    static int read(burn_source* source, unsigned char* buffer, int size) {
        const Held& held = heldBy(source);
        return held.feed->take(held.track, {reinterpret_cast<std::byte*>(buffer), static_cast<size_t>(size)});
    }
    static off_t size(burn_source* source) { return heldBy(source).bytes; }
    static int setSize(burn_source* source, off_t bytes) {
        heldBy(source).bytes = bytes;
        return 1;
    }
    static void free(burn_source* source) { delete &heldBy(source); }
    static int cancel(burn_source* source) {
        heldBy(source).feed->stop();
        return 1;
    }
};

burn_source* TrackFeed::sourceOf(size_t track, uint64_t bytes) {
    // The library releases it with free().
    auto* source = static_cast<burn_source*>(std::calloc(1, sizeof(burn_source)));
    if (source == nullptr) throw std::bad_alloc();
    source->refcount = 1;
    source->get_size = TrackSourceCalls::size;
    source->set_size = TrackSourceCalls::setSize;
    source->free_data = TrackSourceCalls::free;
    source->version = 1;
    source->read_xt = TrackSourceCalls::read;
    source->cancel = TrackSourceCalls::cancel;
    source->data = new Held{shared_from_this(), track, static_cast<off_t>(bytes)};
    return source;
}

// A whole block, or less at a track's end.
int TrackFeed::take(size_t track, std::span<std::byte> block) {
    if (taker_ == 0) taker_ = ::gettid();
    std::unique_lock lock(mutex_);
    size_t filled = 0;
    while (filled < block.size()) {
        changed_.wait(lock,
                      [&] { return stopped_ || ended_ > track || (track_ == track && !offered_.empty()); });
        if (stopped_ || track_ != track || offered_.empty()) break;
        const size_t count = std::min(block.size() - filled, offered_.size());
        std::memcpy(block.data() + filled, offered_.data(), count);
        filled += count;
        taken_ += count;
        offered_ = offered_.subspan(count);
        if (offered_.empty()) changed_.notify_all();
    }
    return static_cast<int>(filled);
}

void TrackFeed::end(size_t track) {
    const std::lock_guard lock(mutex_);
    ended_ = std::max(ended_, track + 1);
    changed_.notify_all();
}

void TrackFeed::stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    changed_.notify_all();
}

void TrackFeed::waitForTaker() const {
    while (taker_ != 0 && ::syscall(SYS_tgkill, ::getpid(), taker_.load(), 0) == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

uint64_t TrackFeed::bytesTaken() const {
    const std::lock_guard lock(mutex_);
    return taken_;
}

} // namespace engine
