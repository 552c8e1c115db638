// A medium as a row of data blocks.
#include "MediumBlocks.hpp"

#include <algorithm>
#include <array>
#include <cstring>

namespace engine {
namespace {

constexpr uint64_t descriptorBlock = 16; // ECMA-119, 6.7.1: where volume descriptors begin

bool isData(const TrackInfo& track) noexcept { return bytesPerBlock(track.form) == blockSize; }

} // namespace

BlockReader blockReader(const MediumInfo& medium, std::shared_ptr<MediumReader> reader) {
    std::vector<TrackInfo> tracks;
    for (const SessionInfo& session : medium.sessions)
        for (const TrackInfo& track : session.tracks)
            if (isData(track)) tracks.push_back(track.withoutSubchannel());
    return [tracks = std::move(tracks), reader = std::move(reader)](uint64_t address,
                                                                    std::span<std::byte, blockSize> block) {
        for (const TrackInfo& track : tracks) {
            if (address < track.startBlock || address >= track.startBlock + track.blocks) continue;
            const auto count = reader->read(track, static_cast<int64_t>(address - track.startBlock), block);
            return count.ok() && *count == blockSize;
        }
        return false;
    };
}

ImagePlace newestFileSystem(const MediumInfo& medium, std::shared_ptr<MediumReader> reader) {
    ImagePlace place;
    BlockReader read = blockReader(medium, std::move(reader));
    for (auto session = medium.sessions.rbegin(); session != medium.sessions.rend(); ++session) {
        const auto track = std::find_if(session->tracks.begin(), session->tracks.end(), isData);
        if (track == session->tracks.end()) continue;
        std::array<std::byte, blockSize> block;
        if (!read(track->startBlock + descriptorBlock, block) ||
            std::memcmp(block.data() + 1, "CD001", 5) != 0)
            return place;
        place.previous = std::move(read);
        place.previousStart = track->startBlock;
        return place;
    }
    return place;
}

} // namespace engine
