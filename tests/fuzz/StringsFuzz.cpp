// StringsFuzz.cpp: host strings from every encoding into every other. The first two bytes choose the encodings.
#include "tests/fuzz/Fuzz.hpp"

#include "host/runtime/Live.hpp"
#include "host/runtime/String.hpp"

#include <iterator>
#include <string>

namespace {

using fuzz::require;
using host::String;

constexpr uint32_t encodings[] = {
    kREALEncodingUnknown,
    kREALEncodingDefault,
    kREALEncodingASCII,
    kREALEncodingUTF8,
    kREALEncodingUTF16,
    kREALEncodingUTF32,
    0x10000100,
    0x14000100,
    0x18000100,
    0x1C000100,
    0x0007,
    0x001D,
    0x0201,
    0x0202,
    0x020F,
    0x0400,
    0x0410,
    0x0414,
    0x0420,
    0x0500,
    0x0501,
    0x0502,
    0x0508,
    0x0632,
    0x0920,
    0x0930,
    0x0940,
    0x0A01,
    0x0A02,
    0x0A03,
    0x12345678, // none that anybody has
};

uint32_t chosen(uint8_t byte) { return encodings[byte % std::size(encodings)]; }

// Well-formed text crosses to any form of Unicode and back as it was.
void goAndReturn(const std::string& utf8) {
    for (const uint32_t form :
         {uint32_t{kREALEncodingUTF16}, uint32_t{kREALEncodingUTF32}, 0x10000100u, 0x18000100u}) {
        std::string there, back;
        require(host::transcode(utf8, kREALEncodingUTF8, form, there), "any text has a form in Unicode");
        require(host::transcode(there, form, kREALEncodingUTF8, back), "and comes back");
        require(back == utf8, "as it was");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const uint32_t from = chosen(data[0]), to = chosen(data[1]);
    const std::string_view bytes = fuzz::textOf(data + 2, size - 2);
    {
        const String text = String::adopt(host::newString(bytes, from));
        const std::string utf8 = host::utf8Of(text.get());
        require(host::isValidUTF8(utf8) || from == kREALEncodingUnknown,
                "the text of a string is well-formed");
        if (host::isValidUTF8(utf8)) goAndReturn(utf8);
        const std::string folded = host::foldCase(utf8);
        if (host::isValidUTF8(utf8)) require(host::isValidUTF8(folded), "folding keeps text well-formed");
        const String converted = String::adopt(host::convertString(text.get(), to));
        if (converted.get()) {
            require(host::encodingOf(converted.get()) == to, "a converted string says its encoding");
            if (to == kREALEncodingUTF8 && from != to)
                require(host::isValidUTF8(converted.bytes()), "what is converted to UTF-8 is UTF-8");
        }
    }
    require(host::liveStringCount() == 0, "no string is left");
    return 0;
}
