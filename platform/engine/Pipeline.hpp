// One thread fills buffers while another uses them.
#pragma once

#include "Signal.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace engine {

/// Bytes of a buffer at most.
inline constexpr size_t pieceBytes = 1u << 20;

/// A page-aligned buffer with what was filled in, and its XXH3 when checksums were asked for.
struct Piece {
    struct Free {
        void operator()(std::byte* memory) const noexcept { std::free(memory); }
    };
    std::unique_ptr<std::byte, Free> memory;
    size_t filled = 0;
    uint64_t checksum = 0;

    std::span<std::byte> content() noexcept { return {memory.get(), filled}; }
};

/// Starts at once. The user takes pieces in order until take() answers none. When the signal is canceled,
/// take() throws UserCanceled and the filling thread is left to end by itself, whatever it waits for: `fill`
/// must share all it uses.
class Pipeline {
  public:
    /// Fills the front of a buffer of `bytes` bytes; fewer only at the end, then 0. May throw.
    using Fill = std::function<size_t(std::span<std::byte>)>;

    /// `bytes` is at most pieceBytes.
    Pipeline(SignalRef signal, const std::string& threadName, size_t bytes, bool withChecksums, Fill fill);
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;
    ~Pipeline();

    /// The next piece, or none at the end. Throws what `fill` threw, after all that came before it.
    std::unique_ptr<Piece> take();
    void giveBack(std::unique_ptr<Piece> piece);

  private:
    struct Shared {
        explicit Shared(SignalRef signalOfJob) : signal(std::move(signalOfJob)) {}
        SignalRef signal;
        std::deque<std::unique_ptr<Piece>> full, empty;
        std::exception_ptr problem;
        bool ended = false, dropped = false;
    };
    static void run(const std::shared_ptr<Shared>& shared, size_t bytes, bool withChecksums,
                    const Fill& fill);

    std::shared_ptr<Shared> shared_;
};

} // namespace engine
