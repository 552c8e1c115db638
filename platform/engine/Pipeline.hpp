// One thread fills buffers while another uses them.
#pragma once

#include "Signal.hpp"
#include "TrackSum.hpp"

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

/// A page-aligned buffer with what was filled in.
struct Piece {
    struct Free {
        void operator()(std::byte* memory) const noexcept { std::free(memory); }
    };
    std::unique_ptr<std::byte, Free> memory;
    size_t filled = 0;
    uint64_t sum = 0; ///< over all pieces up to this one, when a sum was asked for

    std::span<std::byte> content() noexcept { return {memory.get(), filled}; }
};

/// Starts at once. The user takes pieces in order until take() answers none. When the signal is canceled,
/// take() throws UserCanceled and the filling thread is left to end by itself, whatever it waits for: `fill`
/// must share all it uses.
class Pipeline {
  public:
    /// Fills the front of a buffer of `bytes` bytes; fewer only at the end, then 0. May throw.
    using Fill = std::function<size_t(std::span<std::byte>)>;

    /// `bytes` is at most pieceBytes. With `sum`, the filling thread adds every piece to it.
    Pipeline(SignalRef signal, const std::string& threadName, size_t bytes, Fill fill,
             std::shared_ptr<TrackSum> sum = nullptr);
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;
    ~Pipeline();

    /// The next piece, or none at the end. Throws what `fill` threw, after all that came before it.
    std::unique_ptr<Piece> take();
    void giveBack(std::unique_ptr<Piece> piece);
    /// Nothing more is wanted: returns when nothing is being filled any more, or the signal is canceled.
    void stop();

  private:
    struct Shared {
        explicit Shared(SignalRef signalOfJob) : signal(std::move(signalOfJob)) {}
        SignalRef signal;
        std::deque<std::unique_ptr<Piece>> full, empty;
        std::exception_ptr problem;
        bool ended = false, dropped = false;
    };
    static void run(const std::shared_ptr<Shared>& shared, size_t bytes, const Fill& fill, TrackSum* sum);

    std::shared_ptr<Shared> shared_;
};

} // namespace engine
