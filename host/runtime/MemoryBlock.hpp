// MemoryBlock.hpp: bytes with numbers and text in them; either the block's own or ones that it only points
// at.
//
// Class "MemoryBlock": Constructor(bytes as Integer), Size, LittleEndian; by offset Int8Value ...
// UInt64Value, SingleValue, DoubleValue, BooleanValue, Byte, Short, Long, StringValue(offset, length),
// CString(offset), LeftB, MidB, RightB.
#pragma once

#include "host/runtime/Value.hpp"

#include <cstddef>
#include <span>

namespace host {

// Zero-filled; null when there is no memory for it or the size is negative.
Ref newMemoryBlock(int64_t bytes);
// Points at memory that belongs to someone else and has no known size: offsets from 0 are not checked.
Ref newPointerBlock(void* pointer);
// The memory is its owner's again: whoever still uses the block gets an exception. Nothing for a block with bytes of
// its own.
void endPointerBlock(REALobject block);
bool isMemoryBlock(REALobject object);
// The block's own bytes; with an unknown size the span is empty but data() is the pointer.
std::span<std::byte> memoryOf(REALobject block);
bool hasKnownSize(REALobject block);

} // namespace host
