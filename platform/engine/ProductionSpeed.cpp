// How fast a track's data comes, without burning it.
#include "ProductionSpeed.hpp"
#include "BurnChecks.hpp"
#include "Failure.hpp"
#include "Pipeline.hpp"
#include "TrackSource.hpp"

#include <algorithm>
#include <chrono>
#include <memory>

namespace engine {

Result<double> productionSpeed(Track track, const SpeedTestEnd& end) {
    return guarded([&] {
        using Clock = std::chrono::steady_clock;
        const auto layout = std::make_shared<const Layout>(Layout::ofTrack(std::move(track)));
        const BurnPlan plan = planOf(*layout, {});
        const auto source =
            makeTrackSource(layout, layout->sessions.front().tracks.front(), plan.sessions.front().front());
        // As after a burn, whatever happens.
        const std::shared_ptr<void> cleanUp(nullptr, [&](void*) { source->cleanUp(); });
        source->prepare({}, {}, Signal());
        const std::unique_ptr<std::byte, Piece::Free> memory(
            static_cast<std::byte*>(std::aligned_alloc(4096, pieceBytes)));
        if (!memory) fail(ErrorCode::Internal, "There is no memory to read the track into.");
        const size_t blockBytes = plan.sessions.front().front().blockBytes();
        const std::span<std::byte> whole(memory.get(), pieceBytes / blockBytes * blockBytes);

        // Short answers say little: the speed is that of the best half second, or of all when it was shorter.
        constexpr double window = 0.5;
        const auto began = Clock::now();
        const auto secondsSince = [](Clock::time_point from) {
            return std::chrono::duration<double>(Clock::now() - from).count();
        };
        double best = 0;
        uint64_t bytes = 0, windowBytes = 0;
        auto windowBegan = began;
        while ((!end.seconds || secondsSince(began) < *end.seconds) && (!end.bytes || bytes < *end.bytes)) {
            const size_t wanted =
                end.bytes
                    ? static_cast<size_t>(std::min<uint64_t>(
                          whole.size(), (*end.bytes - bytes + blockBytes - 1) / blockBytes * blockBytes))
                    : whole.size();
            const size_t count = source->read(whole.first(wanted));
            if (count == 0) break;
            bytes += count;
            windowBytes += count;
            if (const double passed = secondsSince(windowBegan); passed >= window) {
                best = std::max(best, static_cast<double>(windowBytes) / passed / 1000);
                windowBytes = 0;
                windowBegan = Clock::now();
            }
        }
        const double all = std::max(secondsSince(began), 1e-9);
        return best > 0 ? best : static_cast<double>(bytes) / all / 1000;
    });
}

} // namespace engine
