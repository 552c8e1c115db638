// ProgramsTracks.hpp: tracks of a program's classes, their events' declarations, and the callbacks that raise them.
#pragma once

#include "host/runtime/MemoryBlock.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/Handlers.hpp"
#include "tests/plugin/PluginTest.hpp"

namespace test {

constexpr const char* estimate = "estimateLengthOfTrack As UInt64";
constexpr const char* prepare = "prepareTrack(burn As DRBurnQRX) As Boolean";
constexpr const char* cleanup = "cleanupTrackAfterBurn";
constexpr const char* producePreGap =
    "producePreGapForTrack(buffer As MemoryBlock, Bufferlen As UInt32, "
    "address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32";
constexpr const char* produceData =
    "produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, "
    "address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32";
constexpr const char* prepareVerification = "prepareTrackForVerification As Boolean";
constexpr const char* verifyPreGap =
    "verifyPreGapForTrack(buffer As MemoryBlock, Bufferlen As UInt32, "
    "address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As Boolean";
constexpr const char* verifyData =
    "verifyDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, "
    "address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As Boolean";
constexpr const char* cleanupVerification = "cleanupTrackAfterVerification As Boolean";

inline constexpr const char* callbacks[] = {
    "estimateLengthOfTrack:",
    "prepareTrack:forBurn:toMedia:",
    "cleanupTrackAfterBurn:",
    "producePreGapForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:",
    "produceDataForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:",
    "prepareTrackForVerification:",
    "verifyPreGapForTrack:inBuffer:length:atAddress:blockSize:ioFlags:",
    "verifyDataForTrack:inBuffer:length:atAddress:blockSize:ioFlags:",
    "cleanupTrackAfterVerification:"};

// The callbacks as the burn engine makes them.
template <objc::FixedString selector>
uint32_t produce(objc::Id track, void* buffer, uint32_t length, uint64_t address, uint32_t blockSize,
                 uint32_t* flags) {
    return objc::send<selector, uint32_t>(track, track, buffer, length, address, blockSize, flags);
}
template <objc::FixedString selector>
bool verify(objc::Id track, void* buffer, uint32_t length, uint64_t address, uint32_t blockSize,
            uint32_t* flags) {
    return objc::send<selector, objc::Boolean>(track, track, buffer, length, address, blockSize, flags) != 0;
}
inline uint32_t produceOf(objc::Id track, void* buffer, uint32_t length, uint64_t address, uint32_t blockSize,
                          uint32_t* flags) {
    return produce<"produceDataForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:">(
        track, buffer, length, address, blockSize, flags);
}

class ProgramsTracks : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
    }

    // A track of a program's class with these handlers, constructed.
    Ref trackWith(std::vector<host::MemberSpec> handlers) {
        static int number = 0;
        const std::string name = "ProgramsTrack" + std::to_string(++number);
        host::defineClass({name, "DRTrackQRX", std::move(handlers), {}, {}});
        Ref track = make(name.c_str());
        construct(track);
        return track;
    }
    void construct(const Ref& track) { call<void>("DRTrackQRX", "Constructor", track.get()); }
    objc::Id platform(const Ref& track) { return frame::held(track.get()); }

    OwnDrives drives;
};

} // namespace test
