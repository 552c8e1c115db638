// Encodings.cpp: text from one encoding to another, with iconv.
#include "host/runtime/String.hpp"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <clocale>
#include <cstdint>
#include <cwctype>
#include <iconv.h>
#include <iterator>
#include <limits>
#include <map>

namespace host {
namespace {

struct EncodingName {
    uint32_t number;
    const char* name;
};

constexpr bool kLittle = std::endian::native == std::endian::little;

// The platform's numbers for string encodings. Unknown (0xFFFF) stands for plain bytes and is handled before.
constexpr EncodingName kEncodings[] = {
    {kREALEncodingDefault, "MACINTOSH"},
    {kREALEncodingASCII, "US-ASCII"},
    {kREALEncodingUTF8, "UTF-8"},
    {kREALEncodingUTF16, kLittle ? "UTF-16LE" : "UTF-16BE"},
    {0x10000100, "UTF-16BE"},
    {0x14000100, "UTF-16LE"},
    {kREALEncodingUTF32, kLittle ? "UTF-32LE" : "UTF-32BE"},
    {0x18000100, "UTF-32BE"},
    {0x1C000100, "UTF-32LE"},
    {0x0007, "MAC-CYRILLIC"},
    {0x001D, "MAC-CENTRALEUROPE"},
    {0x0201, "ISO-8859-1"},
    {0x0202, "ISO-8859-2"},
    {0x0203, "ISO-8859-3"},
    {0x0204, "ISO-8859-4"},
    {0x0205, "ISO-8859-5"},
    {0x0206, "ISO-8859-6"},
    {0x0207, "ISO-8859-7"},
    {0x0208, "ISO-8859-8"},
    {0x0209, "ISO-8859-9"},
    {0x020A, "ISO-8859-10"},
    {0x020D, "ISO-8859-13"},
    {0x020E, "ISO-8859-14"},
    {0x020F, "ISO-8859-15"},
    {0x0210, "ISO-8859-16"},
    {0x0400, "CP437"},
    {0x0410, "CP850"},
    {0x0414, "CP852"},
    {0x0420, "CP932"},
    {0x0500, "CP1252"},
    {0x0501, "CP1250"},
    {0x0502, "CP1251"},
    {0x0503, "CP1253"},
    {0x0504, "CP1254"},
    {0x0505, "CP1255"},
    {0x0506, "CP1256"},
    {0x0507, "CP1257"},
    {0x0508, "CP1258"},
    {0x0632, "GB18030"},
    {0x0920, "EUC-JP"},
    {0x0930, "GB2312"},
    {0x0940, "EUC-KR"},
    {0x0A01, "SHIFT_JIS"},
    {0x0A02, "KOI8-R"},
    {0x0A03, "BIG5"},
};

// One converter per pair and thread: opening one costs far more than a short conversion.
class Converters {
  public:
    Converters() = default;
    Converters(const Converters&) = delete;
    Converters& operator=(const Converters&) = delete;
    ~Converters() {
        for (const auto& [names, converter] : converters_)
            if (converter != kNone) iconv_close(converter);
    }
    iconv_t get(const char* from, const char* to) {
        const auto [entry, isNew] = converters_.try_emplace({from, to}, kNone);
        if (isNew) entry->second = iconv_open(to, from);
        if (entry->second != kNone) iconv(entry->second, nullptr, nullptr, nullptr, nullptr);
        return entry->second;
    }
    static inline const iconv_t kNone = reinterpret_cast<iconv_t>(-1);

  private:
    std::map<std::pair<std::string, std::string>, iconv_t> converters_;
};

// Converts; where the input means nothing, or has no place in the target, `replacement` (in the target
// encoding) is put and `unit` bytes are skipped.
bool convertAll(const char* from, const char* to, std::string_view bytes, std::string_view replacement,
                std::size_t unit, std::string& out) {
    thread_local Converters converters;
    const iconv_t converter = converters.get(from, to);
    if (converter == Converters::kNone) return false;
    char* in = const_cast<char*>(bytes.data());
    std::size_t left = bytes.size();
    char buffer[4096];
    while (left > 0) {
        char* next = buffer;
        std::size_t room = sizeof buffer;
        const auto result = iconv(converter, &in, &left, &next, &room);
        const int error = errno;
        out.append(buffer, static_cast<std::size_t>(next - buffer));
        if (result != std::numeric_limits<std::size_t>::max() || error == E2BIG) continue;
        const std::size_t skipped = std::min(left, unit);
        out.append(replacement);
        in += skipped;
        left -= skipped;
    }
    char* next = buffer;
    std::size_t room = sizeof buffer;
    iconv(converter, nullptr, nullptr, &next, &room);
    out.append(buffer, static_cast<std::size_t>(next - buffer));
    return true;
}

std::size_t unitOf(uint32_t encoding) {
    const std::string_view name = iconvName(encoding);
    return name.starts_with("UTF-16") ? 2 : name.starts_with("UTF-32") ? 4 : 1;
}

} // namespace

const char* iconvName(uint32_t encoding) {
    const auto* found = std::find_if(std::begin(kEncodings), std::end(kEncodings),
                                     [=](auto& e) { return e.number == encoding; });
    return found == std::end(kEncodings) ? nullptr : found->name;
}

bool isValidUTF8(std::string_view bytes) {
    std::size_t i = 0;
    while (i < bytes.size()) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        const std::size_t length = lead < 0x80                   ? 1
                                   : lead >= 0xC2 && lead < 0xE0 ? 2
                                   : lead >= 0xE0 && lead < 0xF0 ? 3
                                   : lead >= 0xF0 && lead < 0xF5 ? 4
                                                                 : 0;
        if (length == 0 || i + length > bytes.size()) return false;
        uint32_t point = length == 1 ? lead : lead & (0x7Fu >> length);
        for (std::size_t k = 1; k < length; ++k) {
            const auto follow = static_cast<unsigned char>(bytes[i + k]);
            if ((follow & 0xC0) != 0x80) return false;
            point = point << 6 | (follow & 0x3Fu);
        }
        const bool isOverlong = (length == 3 && point < 0x800) || (length == 4 && point < 0x10000);
        if (isOverlong || point > 0x10FFFF || (point >= 0xD800 && point < 0xE000)) return false;
        i += length;
    }
    return true;
}

bool transcode(std::string_view bytes, uint32_t from, uint32_t to, std::string& out) {
    out.clear();
    if (from == to) {
        out = bytes;
        return from == kREALEncodingUnknown || iconvName(from) != nullptr;
    }
    if (to == kREALEncodingUnknown) {
        out = bytes;
        return true;
    }
    if (from == kREALEncodingUnknown) from = isValidUTF8(bytes) ? kREALEncodingUTF8 : kREALEncodingDefault;
    const char* fromName = iconvName(from);
    const char* toName = iconvName(to);
    if (!fromName || !toName) return false;
    // By way of UTF-32, so that "means nothing" and "has no place in the target" are told apart.
    const char* middle = kLittle ? "UTF-32LE" : "UTF-32BE";
    constexpr char32_t unknown = U'�';
    std::string points;
    if (!convertAll(fromName, middle, bytes, {reinterpret_cast<const char*>(&unknown), 4}, unitOf(from),
                    points))
        return false;
    std::string question;
    if (!convertAll("US-ASCII", toName, "?", {}, 1, question)) return false;
    return convertAll(middle, toName, points, question, 4, out);
}

std::string foldCase(std::string_view utf8) {
    if (std::all_of(utf8.begin(), utf8.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
        std::string lower(utf8);
        for (char& c : lower)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        return lower;
    }
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    std::string points;
    if (!transcode(utf8, kREALEncodingUTF8, kREALEncodingUTF32, points)) return std::string(utf8);
    for (std::size_t i = 0; i + 4 <= points.size(); i += 4) {
        uint32_t point;
        points.copy(reinterpret_cast<char*>(&point), 4, i);
        if (locale) point = static_cast<uint32_t>(towlower_l(static_cast<wint_t>(point), locale));
        points.replace(i, 4, reinterpret_cast<const char*>(&point), 4);
    }
    std::string folded;
    return transcode(points, kREALEncodingUTF32, kREALEncodingUTF8, folded) ? folded : std::string(utf8);
}

} // namespace host
