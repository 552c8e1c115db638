// Producers of track data for the engine's tests: bytes that don't repeat, calls that are noted, and faults.
#pragma once

#include "Layout.hpp"

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Gives bytes that depend on their place alone, and notes what it is asked.
class TestProducer : public engine::TrackProducer {
  public:
    explicit TestProducer(size_t bytesPerBlock, uint64_t seed = 1)
        : bytesPerBlock(bytesPerBlock), seed(seed) {}

    std::byte at(uint64_t offset) const {
        uint64_t value = (offset / 8 + 1) * 0x9E3779B97F4A7C15u ^ seed * 0xD1B54A32D192ED03u;
        value ^= value >> 29;
        value *= 0xBF58476D1CE4E5B9u;
        return static_cast<std::byte>(value >> (offset % 8 * 8));
    }
    std::string bytes(uint64_t count) const {
        std::string text(static_cast<size_t>(count), '\0');
        for (size_t offset = 0; offset < text.size(); ++offset)
            text[offset] = static_cast<char>(at(offset));
        return text;
    }

    bool prepare(uint64_t& blocks, const engine::MediumInfo&) override {
        note("prepare");
        given = 0;
        again = false;
        if (becomes > 0) blocks = becomes;
        return preparing;
    }
    bool producesPreGap() override { return preGap; }
    size_t producePreGap(uint64_t block, std::span<std::byte> buffer, engine::ProduceFlags& flags) override {
        note("producePreGap");
        ++preGapCalls;
        std::fill(buffer.begin(), buffer.end(), std::byte{0x55});
        return gapFault ? gapFault(block * bytesPerBlock, buffer, flags) : buffer.size();
    }
    size_t produce(uint64_t block, std::span<std::byte> buffer, engine::ProduceFlags& flags) override {
        note("produce");
        largest = std::max(largest, buffer.size());
        if (block * bytesPerBlock != given / bytesPerBlock * bytesPerBlock) inOrder = false;
        const size_t count = fault ? fault(given, buffer, flags) : buffer.size();
        for (size_t index = 0; index < std::min(count, buffer.size()); ++index)
            buffer[index] = at(given + index);
        if (spoilt != UINT64_MAX && again && spoilt >= given && spoilt < given + count)
            buffer[static_cast<size_t>(spoilt - given)] ^= std::byte{1};
        given += count;
        return count;
    }
    bool prepareForVerification() override {
        note("prepareForVerification");
        given = 0;
        again = true;
        return preparesVerification;
    }
    bool verifyPreGap(uint64_t, std::span<const std::byte> read) override {
        note("verifyPreGap");
        return std::all_of(read.begin(), read.end(), [](std::byte each) { return each == std::byte{0x55}; });
    }
    bool verify(uint64_t block, std::span<const std::byte> read) override {
        note("verify");
        for (size_t index = 0; index < read.size(); ++index)
            if (read[index] != at(block * bytesPerBlock + index)) return false;
        return content;
    }
    bool cleanupAfterVerification() override {
        note("cleanupAfterVerification");
        ++cleanups;
        return cleansVerification;
    }
    void cleanupAfterBurn() override { note("cleanupAfterBurn"); }

    /// The calls in order, repeated ones once.
    std::string calls() const {
        const std::lock_guard lock(mutex_);
        return calls_;
    }

    size_t bytesPerBlock;
    uint64_t seed;
    uint64_t becomes = 0;
    bool preparing = true, preGap = false, content = true, again = false, inOrder = true;
    bool preparesVerification = true, cleansVerification = true;
    int cleanups = 0;             ///< after verifications
    uint64_t spoilt = UINT64_MAX; ///< a byte that is another one when asked for again
    uint64_t given = 0;
    size_t largest = 0;
    /// What produce() answers, or throws.
    std::function<size_t(uint64_t given, std::span<std::byte>, engine::ProduceFlags&)> fault;
    /// The same of the pre-gap.
    std::function<size_t(uint64_t from, std::span<std::byte>, engine::ProduceFlags&)> gapFault;
    int preGapCalls = 0;
    /// Calls that throw: "produce again" is a second one, for verification.
    std::set<std::string, std::less<>> throwsIn;

  private:
    void note(std::string_view call) {
        {
            const std::lock_guard lock(mutex_);
            if (!calls_.ends_with(std::string(call) + ' ')) calls_ += std::string(call) + ' ';
        }
        if (throwsIn.contains(std::string(call) + (again && call == "produce" ? " again" : "")))
            throw std::runtime_error(std::string(call) + " is torn");
    }
    mutable std::mutex mutex_;
    std::string calls_;
};

inline engine::Track producedTrack(std::shared_ptr<TestProducer> producer, engine::BlockForm form,
                                   uint64_t blocks) {
    engine::Track track;
    engine::ProducedTrack content;
    content.form = form;
    content.blocks = blocks;
    content.producer = std::move(producer);
    track.content = content;
    return track;
}
