// The sum over all bytes of a track, which a virtual medium keeps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

struct XXH3_state_s;

namespace engine {

/// XXH3 (64 bits) over whatever is added, in whatever pieces. Against bytes that changed by themselves, not against people.
class TrackSum {
  public:
    TrackSum();
    void add(std::span<const std::byte> bytes) noexcept;
    uint64_t value() const noexcept;

  private:
    struct Free {
        void operator()(XXH3_state_s* state) const noexcept;
    };
    std::unique_ptr<XXH3_state_s, Free> state_;
};

} // namespace engine
