// HostStringData.cpp: a heap copy of a host string's bytes, also from hosts without "PluginGetStringData".
#include "plugin/frame/HostServices.hpp"
#include "plugin/frame/Resolver.hpp"

#include <cstdlib>
#include <cstring>

namespace {

using frame::HostCell;

using LenB = int32_t(REALstring);

constinit HostCell<frame::entry::PluginGetStringData> getStringData("PluginGetStringData");
constinit HostCell<frame::entry::StringGetCString> stringGetCString("StringGetCString");

constexpr std::size_t terminator = 4;

LenB* lenB() {
    static constinit std::atomic<LenB*> cell{nullptr};
    LenB* found = cell.load(std::memory_order_relaxed);
    if (!found) {
        found = reinterpret_cast<LenB*>(REALLoadFrameworkMethod("LenB( s as string ) as integer"));
        cell.store(found, std::memory_order_relaxed);
    }
    return found;
}

// Copies `count` bytes into a buffer of `capacity` + 4 bytes and writes four zero bytes after them; false
// when they do not fit.
bool fill(REALstringData* record, const char* bytes, std::size_t count, std::size_t capacity,
          uint32_t encoding) {
    if (count > capacity) return false;
    auto* buffer = static_cast<char*>(std::calloc(capacity + terminator, 1));
    if (!buffer) return false;
    std::memcpy(buffer, bytes, count);
    std::memset(buffer + count, 0, terminator);
    record->data = buffer;
    record->length = count;
    record->encoding = encoding;
    return true;
}

} // namespace

void REALPresetStringDataLength(REALstring string, REALstringData* record) {
    if (getStringData.get() || !string) return;
    if (LenB* byteCount = lenB()) record->length = static_cast<uintptr_t>(byteCount(string));
}

bool REALGetStringData(REALstring string, uint32_t encoding, REALstringData* record) {
    if (auto* service = getStringData.get()) return (service(string, encoding, record) & 0xFF) != 0;

    auto* bytesOf = stringGetCString.get();
    LenB* byteCount = lenB();
    if (!bytesOf || !byteCount || !string) return false;

    // Deliberate: for "any encoding" the buffer is sized by the length that stands in the caller's record,
    // not by the string's; the caller sets it to at least the string's byte length before the call
    // (REALPresetStringDataLength).
    if (encoding == kREALEncodingUnknown)
        return fill(record, bytesOf(string), static_cast<std::size_t>(byteCount(string)), record->length,
                    encoding);

    const auto copy = [&](REALstring from) {
        const auto count = static_cast<std::size_t>(byteCount(from));
        return fill(record, bytesOf(from), count, count, encoding);
    };
    if (encoding == REALGetStringEncoding(string)) return copy(string);

    const REALstring converted = REALConvertString(string, encoding);
    if (!converted) return false;
    const bool filled = copy(converted);
    REALUnlockString(converted);
    return filled;
}
