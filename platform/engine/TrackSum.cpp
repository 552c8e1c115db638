// The sum over all bytes of a track, which a virtual medium keeps.
#include "TrackSum.hpp"
#include "XXH3.hpp"

#include <new>

namespace engine {

TrackSum::TrackSum() : state_(XXH3_createState()) {
    if (!state_) throw std::bad_alloc();
    XXH3_64bits_reset(state_.get());
}

void TrackSum::add(std::span<const std::byte> bytes) noexcept {
    XXH3_64bits_update(state_.get(), bytes.data(), bytes.size());
}

uint64_t TrackSum::value() const noexcept { return XXH3_64bits_digest(state_.get()); }

void TrackSum::Free::operator()(XXH3_state_s* state) const noexcept { XXH3_freeState(state); }

} // namespace engine
