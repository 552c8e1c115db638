// TrackEvents.hpp: the events through which a program produces a track's data.
#pragma once

#include "plugin/frame/Events.hpp"

namespace track {

using EstimateLength = frame::Event<"estimateLengthOfTrack as uint64", uint64_t(REALobject)>;
using Prepare =
    frame::Event<"prepareTrack(burn as DRBurnQRX) as boolean", REALboolean(REALobject, REALobject burn)>;
using CleanupAfterBurn = frame::Event<"cleanupTrackAfterBurn", void(REALobject)>;

// Bufferlen and blocksize count bytes, address counts blocks from the track's start. The block points at the
// burn engine's own buffer and knows no size, so Bufferlen is the only bound.
template <class Result>
using OnBuffer = Result(REALobject, REALmemoryBlock buffer, uint32_t length, uint64_t address,
                        uint32_t blockSize, uint32_t* flags);

using ProducePreGap = frame::Event<"producePreGapForTrack(buffer as memoryblock, Bufferlen as uint32, "
                                   "address as uint64, blocksize as uint32, "
                                   "byref flags as uint32) as uint32",
                                   OnBuffer<uint32_t>>;
using ProduceData = frame::Event<
    "produceDataForTrack(buffer as memoryblock, Bufferlen as uint32, address as uint64, blocksize as uint32, "
    "byref flags as uint32) as uint32",
    OnBuffer<uint32_t>>;
using PrepareForVerification =
    frame::Event<"prepareTrackForVerification as boolean", REALboolean(REALobject)>;
using VerifyPreGap = frame::Event<"verifyPreGapForTrack(buffer as memoryblock, Bufferlen as uint32, address "
                                  "as uint64, blocksize as uint32, "
                                  "byref flags as uint32) as boolean",
                                  OnBuffer<REALboolean>>;
using VerifyData = frame::Event<
    "verifyDataForTrack(buffer as memoryblock, Bufferlen as uint32, address as uint64, blocksize as uint32, "
    "byref flags as uint32) as boolean",
    OnBuffer<REALboolean>>;
using CleanupAfterVerification =
    frame::Event<"cleanupTrackAfterVerification as boolean", REALboolean(REALobject)>;

// In the order of declaration, which is fixed.
extern frame::EventTable<EstimateLength, Prepare, CleanupAfterBurn, ProducePreGap, ProduceData,
                         PrepareForVerification, VerifyPreGap, VerifyData, CleanupAfterVerification>
    events;

} // namespace track
