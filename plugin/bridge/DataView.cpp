// DataView.cpp: takes hold of the bytes and lets them go.
#include "plugin/bridge/DataView.hpp"

#include "plugin/frame/Resolver.hpp"

rbData::rbData(REALstring string) {
    if (!string) return;
    if (frame::hostVersion >= 2013.0) {
        REALPresetStringDataLength(string, &record_);
        ownsRecord_ = REALGetStringData(string, kREALEncodingUnknown, &record_);
        if (!ownsRecord_) return;
        bytes_ = static_cast<const char*>(record_.data);
        length_ = static_cast<int64_t>(record_.length);
        return;
    }
    // Older hosts: the text lies in the host's own buffer, behind one byte, for as long as the string is
    // locked.
    REALLockString(string);
    lockedString_ = string;
    bytes_ = reinterpret_cast<const char*>(string->buffer) + 1;
    length_ = static_cast<int64_t>(string->length);
}

rbData::rbData(REALmemoryBlock block, int32_t offset, int32_t length) {
    if (!block) return;
    REALLockObject(block);
    lockedBlock_ = block;
    const auto* bytes = static_cast<const char*>(REALMemoryBlockGetPtr(block));
    if (!bytes) return;
    bytes_ = bytes + offset;
    length_ = length == 0 ? REALMemoryBlockGetSize(block) : length;
}

rbData::~rbData() {
    if (lockedString_) REALUnlockString(lockedString_);
    if (lockedBlock_) REALUnlockObject(lockedBlock_);
    if (ownsRecord_) REALDisposeStringData(&record_);
}
