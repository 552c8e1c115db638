// TextEntries.cpp: the services about strings and memory blocks.
#include "host/runtime/Exceptions.hpp"
#include "host/runtime/MemoryBlock.hpp"
#include "host/services/Entries.hpp"
#include "host/services/Platform.hpp"
#include "host/services/State.hpp"

#include <cstdlib>
#include <cstring>
#include <limits>

namespace host::entries {

void REALLockString(REALstring string) { retain(string); }
void REALUnlockString(REALstring string) { release(string); }

// Built strings have no encoding until one is set.
REALstring REALBuildString(const char* bytes, int32_t length) {
    if (length < 0 || (!bytes && length > 0)) return nullptr;
    return guarded<REALstring>([=] {
        return newString({length ? bytes : "", static_cast<std::size_t>(length)}, kREALEncodingUnknown);
    });
}

void REALSetStringEncoding(REALstring string, uint32_t encoding) {
    if (string) string->encoding = encoding;
}

uint32_t REALGetStringEncoding(REALstring string) {
    return string ? encodingOf(string) : uint32_t{kREALEncodingUnknown};
}

REALstring REALConvertString(REALstring string, uint32_t encoding) {
    if (!string) return nullptr;
    return guarded<REALstring>([=] { return convertString(string, encoding); });
}

uint8_t PluginGetStringData(REALstring string, uint32_t encoding, REALstringData* record) {
    if (!string || !record) return 0;
    return guarded<uint8_t>([=]() -> uint8_t {
        const auto converted = String::adopt(convertString(string, encoding));
        if (!converted.get()) return 0;
        const auto bytes = converted.bytes();
        constexpr std::size_t kZeros = 4; // ends the text in every encoding
        char* copy = static_cast<char*>(std::calloc(bytes.size() + kZeros, 1));
        if (!copy) return 0;
        if (!bytes.empty()) std::memcpy(copy, bytes.data(), bytes.size());
        *record = {copy, bytes.size(), encoding};
        return 1;
    });
}

void PluginDisposeStringData(REALstringData* record) {
    if (!record) return;
    std::free(record->data);
    *record = {};
}

const char* StringGetCString(REALstring string) {
    return string ? reinterpret_cast<const char*>(string->buffer) + 1 : "";
}

CFStringRef REALGetStringCFString(REALstring string, int32_t) {
    return guarded<CFStringRef>([=] { return newPlatformString(string); });
}

REALmemoryBlock newMemoryBlock(int32_t size) {
    auto& state = serviceState();
    {
        std::lock_guard guard(state.mutex);
        if (state.failsBlocks) return nullptr;
    }
    return guarded<REALmemoryBlock>([=] { return host::newMemoryBlock(size).detach(); });
}

void* memoryBlockGetPtr(REALmemoryBlock block) {
    return isMemoryBlock(block) ? static_cast<void*>(memoryOf(block).data()) : nullptr;
}

int32_t memoryBlockGetSize(REALmemoryBlock block) {
    if (!isMemoryBlock(block)) return 0;
    const auto size = memoryOf(block).size();
    constexpr auto most = std::numeric_limits<int32_t>::max();
    return size > static_cast<std::size_t>(most) ? most : static_cast<int32_t>(size);
}

REALmemoryBlock PtrToMemoryBlock(void* pointer) {
    return guarded<REALmemoryBlock>([=] { return newPointerBlock(pointer).detach(); });
}

} // namespace host::entries
