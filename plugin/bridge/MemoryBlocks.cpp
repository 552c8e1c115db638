// MemoryBlocks.cpp: new host memory blocks, and memory blocks to and from platform data.
#include "plugin/bridge/DataView.hpp"
#include "plugin/bridge/Errors.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/bridge/Variants.hpp"
#include "plugin/frame/HostServices.hpp"
#include "plugin/objc/Message.hpp"

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

REALmemoryBlock NSDataRB(objc::Id data) {
    if (!data) return nullptr;
    const auto length = static_cast<int64_t>(objc::send<"length", unsigned long>(data));
    // Empty data is an empty block, not a missing one; the builder above has nothing to copy then.
    if (length == 0) return REALNewMemoryBlockOriginal(0);
    return REALBuildMemoryblock(objc::send<"bytes", const void*>(data), length);
}

objc::Id NewNSData(REALmemoryBlock block) {
    const rbData view(block, 0, 0);
    if (view.length() == 0) return nullptr;
    return objc::sendClass<"NSData", "dataWithBytes:length:">(static_cast<const void*>(view.bytes()),
                                                              static_cast<unsigned long>(view.length()));
}
