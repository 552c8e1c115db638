// What the tests of images share: files to make images of, and the bytes that a burn would get.
#pragma once

#include "Drive.hpp"
#include "Failure.hpp"
#include "Scratch.hpp"
#include "images/ReadImage.hpp"
#include "sectors/SectorCoding.hpp"

#include <vector>

struct BurnedTrack {
    engine::Track track;
    std::string preGap, body; // as produced; the pre-gap is empty where the engine makes silence
    engine::BlockForm form() const { return std::get<engine::ProducedTrack>(track.content).form; }
    uint64_t blocks() const { return std::get<engine::ProducedTrack>(track.content).blocks; }
};

// Bytes are too many to be printed.
inline testing::AssertionResult areSame(const std::string& bytes, const std::string& right) {
    if (bytes == right) return testing::AssertionSuccess();
    const size_t count = std::min(bytes.size(), right.size());
    size_t at = 0;
    while (at < count && bytes[at] == right[at])
        ++at;
    return testing::AssertionFailure()
           << bytes.size() << " bytes, and not " << right.size() << "; the first other one is " << at
           << ", in block " << at / engine::sectorBytes << " of 2352";
}

class ImageTest : public Scratch {
  protected:
    engine::ImageLayout read(const std::string& name) {
        auto image = engine::readImageFile((base / name).string());
        EXPECT_TRUE(image.ok()) << (image.ok() ? "" : image.error().message);
        return image.ok() ? std::move(*image) : engine::ImageLayout{};
    }
    engine::ImageLayout readText(const std::string& name, const std::string& text) {
        write(name, text);
        return read(name);
    }
    // The sentence of the error, without the folder.
    std::string refusal(const std::string& name) {
        const auto image = engine::readImageFile((base / name).string());
        if (image.ok()) return "taken";
        std::string message = image.error().message;
        for (size_t at; (at = message.find(base.string() + '/')) != std::string::npos;)
            message.erase(at, base.string().size() + 1);
        return message;
    }

    // What a burn asks of a track, with subchannel data or without.
    static BurnedTrack burned(const engine::Track& track, size_t bufferBlocks = 27, bool subchannel = false) {
        const auto& made = std::get<engine::ProducedTrack>(track.content);
        BurnedTrack burned{track, "", ""};
        uint64_t blocks = 0;
        EXPECT_TRUE(made.producer->prepare(blocks, engine::MediumInfo{}));
        EXPECT_EQ(blocks, made.blocks);
        const size_t blockBytes =
            engine::bytesPerBlock(made.form) + (subchannel ? engine::subchannelBytes : 0);
        std::vector<std::byte> buffer(bufferBlocks * blockBytes);
        const auto all = [&](uint64_t count, auto&& ask) {
            std::string bytes;
            for (uint64_t block = 0; block < count;) {
                engine::ProduceFlags flags;
                flags.subchannelDataRequested = subchannel;
                const size_t room =
                    static_cast<size_t>(std::min<uint64_t>(bufferBlocks, count - block)) * blockBytes;
                const size_t got = ask(block, std::span(buffer).first(room), flags);
                EXPECT_EQ(got % blockBytes, 0u);
                if (got == 0) break;
                bytes.append(reinterpret_cast<const char*>(buffer.data()), got);
                block += got / blockBytes;
            }
            return bytes;
        };
        if (made.producer->producesPreGap())
            burned.preGap = all(track.preGapBlocks.value_or(0),
                                [&](auto... given) { return made.producer->producePreGap(given...); });
        burned.body = all(blocks, [&](auto... given) { return made.producer->produce(given...); });
        EXPECT_EQ(burned.body.size(), blocks * blockBytes);
        made.producer->cleanupAfterBurn();
        return burned;
    }
    static std::vector<BurnedTrack> burned(const engine::ImageLayout& image, size_t bufferBlocks = 27) {
        std::vector<BurnedTrack> tracks;
        for (const auto& session : image.layout.sessions)
            for (const auto& track : session.tracks)
                tracks.push_back(burned(track, bufferBlocks));
        return tracks;
    }

    // Mode 1 sectors of noise from an address on; `user` gets their data.
    static std::string mode1Sectors(size_t count, int64_t address, std::string& user) {
        user = noise(count * 2048, 4711);
        std::string sectors(count * engine::sectorBytes, '\0');
        for (size_t number = 0; number < count; ++number)
            engine::encodeSector(
                engine::BlockForm::Data, address + static_cast<int64_t>(number),
                std::as_bytes(std::span(user).subspan(number * 2048, 2048)),
                std::as_writable_bytes(std::span(sectors).subspan(number * engine::sectorBytes))
                    .first<engine::sectorBytes>());
        return sectors;
    }
    static std::string swapped(std::string bytes) {
        for (size_t at = 0; at + 1 < bytes.size(); at += 2)
            std::swap(bytes[at], bytes[at + 1]);
        return bytes;
    }
    static constexpr size_t cd = engine::sectorBytes;
};
