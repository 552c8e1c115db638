// MemoryBlocks.cpp: new host memory blocks.
#include "plugin/bridge/Errors.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/frame/HostServices.hpp"

#include <cinttypes>
#include <cstdio>
#include <cstring>

REALmemoryBlock REALBuildMemoryblock(const void* bytes, int64_t length) {
    if (!bytes || length <= 0) return nullptr;
    if (length < 0x7FFFFFFF)
        if (const REALmemoryBlock block = REALNewMemoryBlockOriginal(static_cast<int32_t>(length))) {
            void* target = REALMemoryBlockGetPtr(block);
            if (!target) {
                REALUnlockObject(block);
                return nullptr;
            }
            std::memcpy(target, bytes, static_cast<std::size_t>(length));
            return block;
        }
    char message[200];
    std::snprintf(message, sizeof message, "Failed to allocate a memoryblock with %" PRId64 " bytes in size.",
                  length);
    RaiseException("OutOfMemoryException", message, kREALEncodingASCII);
    return nullptr;
}
