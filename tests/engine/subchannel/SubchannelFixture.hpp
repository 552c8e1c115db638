// Producers of tracks with subchannel data, and what an own reader finds in the files of a medium.
#pragma once

#include "Fixture.hpp"
#include "subchannel/Symbols.hpp"

#include <cstdio>
#include <vector>

/// Blocks that depend on their number alone, with 96 symbols behind each.
class Singer : public engine::TrackProducer {
  public:
    Singer(engine::BlockForm form, uint64_t seed) : userBytes(engine::bytesPerBlock(form)), seed(seed) {}

    std::string user(uint64_t block) const { return bytes(block * 2, userBytes); }
    std::string symbols(uint64_t block) const {
        std::string made = bytes(block * 2 + 1, engine::subchannelBytes);
        for (char& each : made)
            each = static_cast<char>(each & 0x3F);
        return made;
    }
    std::string allSymbols(uint64_t blocks) const {
        std::string all;
        for (uint64_t block = 0; block < blocks; ++block)
            all += symbols(block);
        return all;
    }

    bool producesPreGap() override { return preGap; }
    size_t producePreGap(uint64_t block, std::span<std::byte> buffer, engine::ProduceFlags& flags) override {
        return produce(preGapFrom + block, buffer, flags);
    }
    size_t produce(uint64_t block, std::span<std::byte> buffer, engine::ProduceFlags& flags) override {
        wasAsked = wasAsked && flags.subchannelDataRequested;
        const size_t whole = userBytes + engine::subchannelBytes;
        size_t filled = 0;
        for (; filled + whole <= buffer.size(); filled += whole, ++block) {
            if (block == endsAt) {
                flags.noMoreData = true;
                break;
            }
            std::string one = user(block) + symbols(block);
            if (fillsDrivesBits)
                for (size_t at = userBytes; at < whole; ++at)
                    one[at] = static_cast<char>(one[at] | (at % 2 != 0 ? 0xC0 : 0x80));
            if (again && block == spoilt) one[whole - 1] = static_cast<char>(one[whole - 1] ^ 1);
            std::copy_n(std::as_bytes(std::span(one)).begin(), whole,
                        buffer.begin() + static_cast<std::ptrdiff_t>(filled));
        }
        return filled;
    }
    bool prepareForVerification() override {
        again = true;
        return true;
    }
    bool verifyPreGap(uint64_t block, std::span<const std::byte> read) override {
        return isRight(preGapFrom + block, read);
    }
    bool verify(uint64_t block, std::span<const std::byte> read) override { return isRight(block, read); }

    static constexpr uint64_t preGapFrom = 1'000'000, never = UINT64_MAX;
    size_t userBytes;
    uint64_t seed, spoilt = never, endsAt = never;
    bool preGap = false, fillsDrivesBits = false, again = false, wasAsked = true;
    uint64_t verified = 0; ///< blocks

  private:
    std::string bytes(uint64_t number, size_t count) const {
        std::string made(count, '\0');
        uint64_t value = (number + 1) * 0x9E3779B97F4A7C15u ^ seed * 0xD1B54A32D192ED03u;
        for (char& each : made) {
            value = value * 6364136223846793005u + 1442695040888963407u;
            each = static_cast<char>(value >> 56);
        }
        return made;
    }
    bool isRight(uint64_t block, std::span<const std::byte> read) {
        const size_t whole = userBytes + engine::subchannelBytes;
        for (size_t at = 0; at < read.size(); at += whole, ++block, ++verified) {
            const std::string one = user(block) + symbols(block);
            if (!std::equal(read.begin() + static_cast<std::ptrdiff_t>(at),
                            read.begin() + static_cast<std::ptrdiff_t>(at + whole),
                            std::as_bytes(std::span(one)).begin()))
                return false;
        }
        return read.size() % whole == 0;
    }
};

class SubchannelTest : public EngineTest {
  protected:
    static std::shared_ptr<Singer> singer(uint64_t seed = 1,
                                          engine::BlockForm form = engine::BlockForm::Audio) {
        return std::make_shared<Singer>(form, seed);
    }
    static engine::Track song(std::shared_ptr<Singer> producer, uint64_t blocks,
                              engine::SubchannelForm subchannel = engine::SubchannelForm::Raw,
                              engine::BlockForm form = engine::BlockForm::Audio) {
        engine::Track track;
        engine::ProducedTrack content;
        content.form = form;
        content.blocks = blocks;
        content.subchannel = subchannel;
        content.producer = std::move(producer);
        track.content = content;
        return track;
    }
    fs::path file(const std::string& name) const { return drivePath() / name; }

    /// What subchannels.py says of a file of subchannels; its symbols are in `symbols`.
    std::string told(const std::string& name) {
        const fs::path out = base / "symbols";
        const std::string command =
            "python3 '" SUBCHANNELS_PY "' '" + file(name).string() + "' '" + out.string() + "' 2>&1";
        std::string text;
        FILE* const pipe = ::popen(command.c_str(), "r");
        for (int each; pipe != nullptr && (each = std::fgetc(pipe)) != EOF;)
            text += static_cast<char>(each);
        EXPECT_EQ(::pclose(pipe), 0) << text;
        symbols = bytesOf(out);
        return text;
    }
    std::string symbols;

    /// All blocks of a track as the drive reads them, or the error's sentence.
    std::string readBack(size_t session, size_t number) {
        const auto drive = openDrive();
        const engine::TrackInfo track = drive->mediumInfo()->sessions.at(session).tracks.at(number);
        const auto reader = drive->openMedium();
        std::string read(static_cast<size_t>(track.blocks) * track.blockBytes(), '\0');
        for (size_t filled = 0; filled < read.size();) {
            const size_t some = std::min(read.size() - filled, track.blockBytes() * 300);
            const auto got = (*reader)->read(track, static_cast<int64_t>(filled / track.blockBytes()),
                                             std::as_writable_bytes(std::span(read)).subspan(filled, some));
            if (!got) return got.error().message;
            if (*got == 0) return "it ends after " + std::to_string(filled) + " bytes";
            filled += *got;
        }
        return read;
    }
    static std::string blocksOf(const Singer& producer, uint64_t blocks) {
        std::string all;
        for (uint64_t block = 0; block < blocks; ++block)
            all += producer.user(block) + producer.symbols(block);
        return all;
    }
};
