// FileEvents.hpp: the events through which a program gives a file's size and bytes.
#pragma once

#include "plugin/frame/Events.hpp"

namespace fs {

using CalculateSize = frame::Event<"calculateSizeOfFile(fork as integer, estimating as boolean) as uint64",
                                   uint64_t(REALobject, int32_t fork, REALboolean estimating)>;
using PrepareForBurn = frame::Event<"prepareFileForBurn as boolean", REALboolean(REALobject)>;
// The block points at the burn engine's own buffer and knows no size, so Bufferlen is the only bound. The address
// counts bytes from the start of the fork.
using Produce = frame::Event<
    "produceFile(fork as integer, buffer as memoryblock, Bufferlen as uint32, address as uint64, "
    "blocksize as uint32) as uint32",
    uint32_t(REALobject, int32_t fork, REALmemoryBlock buffer, uint32_t length, uint64_t address,
             uint32_t blockSize)>;
using PrepareForVerification = frame::Event<"prepareFileForVerification as boolean", REALboolean(REALobject)>;
using CleanupAfterBurn = frame::Event<"cleanupFileAfterBurn", void(REALobject)>;

// In the order of declaration, which is fixed.
extern frame::EventTable<CalculateSize, PrepareForBurn, Produce, PrepareForVerification, CleanupAfterBurn>
    events;

} // namespace fs
