// Text.cpp: host strings to platform strings and back.
#include "plugin/bridge/Text.hpp"

#include "plugin/bridge/DataView.hpp"
#include "plugin/bridge/Memory.hpp"
#include "plugin/frame/Resolver.hpp"
#include "plugin/objc/Ownership.hpp"

#include <cstring>
#include <memory>
#include <string>

namespace {

struct FreeMemory {
    void operator()(void* memory) const { FreeMemoryNow(memory); }
};

// A zero-filled buffer, on the stack while it fits, otherwise on the heap; null when there is no memory.
template <class Unit, std::size_t stackBytes>
class ClearBuffer {
  public:
    ClearBuffer(bool onStack, int64_t heapBytes)
        : heap_(onStack ? nullptr : AllocateClearMemory(heapBytes)),
          data_(onStack ? stack_ : static_cast<Unit*>(heap_.get())) {}

    Unit* data() { return data_; }

  private:
    Unit stack_[stackBytes / sizeof(Unit)]{};
    std::unique_ptr<void, FreeMemory> heap_;
    Unit* data_;
};

// The bytes as UTF-16; an odd last byte is lost. They may lie at an odd address, so they are copied first.
CFStringRef fromUnits(const rbData& view) {
    std::u16string units(static_cast<std::size_t>(view.length() / 2), u'\0');
    std::memcpy(units.data(), view.bytes(), units.size() * 2);
    return CFStringCreateWithCharacters(nullptr, reinterpret_cast<const uint16_t*>(units.data()),
                                        static_cast<CFIndex>(units.size()));
}

// The last way to a platform string: decode the bytes ourselves.
CFStringRef decodeBytes(REALstring string) {
    uint32_t encoding = REALGetStringEncoding(string);
    if (encoding == kREALEncodingUnknown) encoding = kREALEncodingDefault;
    const rbData view(string);
    if (!view.bytes()) return nullptr;
    if (encoding == kREALEncodingUTF16) return fromUnits(view);
    return CFStringCreateWithCString(nullptr, view.bytes(), encoding);
}

// Marks new bytes as UTF-16 and gives the UTF-8 form of them.
REALstring utf8FromUtf16(const void* bytes, int64_t length) {
    const REALstring wide =
        originalREALBuildString(static_cast<const char*>(bytes), static_cast<int32_t>(length));
    if (wide) REALSetStringEncoding(wide, kREALEncodingUTF16);
    const REALstring text = REALConvertString(wide, kREALEncodingUTF8);
    if (wide) REALUnlockString(wide);
    return text;
}

// Deliberately simple: of every code point the low 16 bits are taken, so characters beyond U+FFFF are cut.
REALstring utf8FromUtf32(const void* bytes, int64_t length) {
    const int64_t count = length / 4;
    ClearBuffer<uint16_t, 404> units(length < 800, count * 2 + 4);
    if (!units.data()) return nullptr;
    for (int64_t i = 0; i < count; ++i) {
        uint32_t codePoint;
        std::memcpy(&codePoint, static_cast<const char*>(bytes) + i * 4, sizeof codePoint);
        units.data()[i] = static_cast<uint16_t>(codePoint);
    }
    return utf8FromUtf16(units.data(), count * 2);
}

} // namespace

CFStringRef RBString2CFString(REALstring string) {
    if (!string) return nullptr;
    if (frame::hostVersion >= 2012.0)
        if (const CFStringRef made = REALCopyStringCFString(string)) return made;
    if (const CFStringRef made = REALGetStringCFString(string, 0)) return made;
    return decodeBytes(string);
}

objc::Id NewNSString(REALstring string) { return objc::autoreleased(asObject(RBString2CFString(string))); }

REALstring CFString2RBString(CFStringRef string) {
    if (!string) return nullptr;
    const CFIndex units = CFStringGetLength(string);
    if (units < 1) return nullptr;
    // A unit takes at most three bytes of UTF-8, so both sizes hold any text of that many units.
    constexpr int64_t stackCapacity = 600;
    const bool onStack = units <= 99;
    const int64_t capacity = onStack ? stackCapacity : int64_t{units} * 6;
    ClearBuffer<char, stackCapacity + 1> buffer(onStack, capacity);
    if (!buffer.data() ||
        !CFStringGetCString(string, buffer.data(), static_cast<CFIndex>(capacity), kREALEncodingUTF8))
        return nullptr;
    return REALBuildUnicodeString(buffer.data(), static_cast<int64_t>(std::strlen(buffer.data())),
                                  kREALEncodingUTF8);
}

REALstring NSStringRB(objc::Id string) { return CFString2RBString(asString(string)); }

REALstring REALBuildUnicodeString(const void* bytes, int64_t length, uint32_t encoding) {
    if (!bytes || length < 1 || length >= 0x7FFFFFFF) return nullptr;
    if (encoding == kREALEncodingUTF32) return utf8FromUtf32(bytes, length);
    if (encoding == kREALEncodingUTF16) return utf8FromUtf16(bytes, length);
    const REALstring made =
        originalREALBuildString(static_cast<const char*>(bytes), static_cast<int32_t>(length));
    if (made) REALSetStringEncoding(made, encoding);
    return made;
}
