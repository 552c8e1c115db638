// String.cpp: the records of host strings and their reference counts.
#include "host/runtime/String.hpp"

#include "host/runtime/Live.hpp"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace host {
namespace {

std::atomic<std::size_t> liveCount{0};

std::atomic_ref<uintptr_t> countOf(REALstring string) {
    return std::atomic_ref<uintptr_t>(string->references);
}

} // namespace

std::size_t liveStringCount() { return liveCount.load(); }

REALstring newString(std::string_view bytes, uint32_t encoding) {
    auto* string = static_cast<REALstring>(std::malloc(sizeof(REALstringStruct)));
    auto* buffer = static_cast<unsigned char*>(std::malloc(bytes.size() + 2));
    if (!string || !buffer) {
        std::free(string);
        std::free(buffer);
        throw std::bad_alloc();
    }
    buffer[0] = bytes.size() < 256 ? static_cast<unsigned char>(bytes.size()) : 0;
    if (!bytes.empty()) std::memcpy(buffer + 1, bytes.data(), bytes.size());
    buffer[bytes.size() + 1] = 0;
    *string = {1, buffer, bytes.size(), encoding};
    ++liveCount;
    return string;
}

void retain(REALstring string) {
    if (string) countOf(string).fetch_add(1, std::memory_order_relaxed);
}

void release(REALstring string) {
    if (!string || countOf(string).fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    std::free(string->buffer);
    std::free(string);
    --liveCount;
}

std::string_view bytesOf(REALstring string) {
    if (!string) return {};
    return {reinterpret_cast<const char*>(string->buffer) + 1, string->length};
}

uint32_t encodingOf(REALstring string) {
    return string ? static_cast<uint32_t>(string->encoding) : uint32_t{kREALEncodingUTF8};
}

std::string utf8Of(REALstring string) {
    const auto bytes = bytesOf(string);
    const auto encoding = encodingOf(string);
    if ((encoding == kREALEncodingUTF8 || encoding == kREALEncodingASCII) && isValidUTF8(bytes))
        return std::string(bytes);
    std::string text;
    if (encoding == kREALEncodingUTF8) {
        // Damaged UTF-8: by way of UTF-32, which puts U+FFFD for what means nothing.
        std::string points;
        transcode(bytes, encoding, kREALEncodingUTF32, points);
        transcode(points, kREALEncodingUTF32, kREALEncodingUTF8, text);
    } else if (!transcode(bytes, encoding, kREALEncodingUTF8, text)) {
        transcode(bytes, kREALEncodingUnknown, kREALEncodingUTF8, text);
    }
    return text;
}

REALstring convertString(REALstring string, uint32_t encoding) {
    std::string bytes;
    if (!transcode(bytesOf(string), encodingOf(string), encoding, bytes)) return nullptr;
    return newString(bytes, encoding);
}

} // namespace host
