// CD-Text: checksums, and the characters of its texts.
#include "CDText.hpp"

#include <iconv.h>

namespace engine {
namespace {

// Microsoft's table, which the discs use: it has the signs that JIS X 0208 lacks.
constexpr const char* shiftJIS = "CP932";

class Converter {
  public:
    Converter(const char* to, const char* from) noexcept : handle_(::iconv_open(to, from)) {}
    ~Converter() {
        if (works()) ::iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool works() const noexcept { return handle_ != reinterpret_cast<iconv_t>(-1); }

    /// "" when the bytes are no whole characters, or can't be converted.
    std::string convert(std::string_view bytes) const {
        if (!works()) return {};
        std::array<char, 8> out{};
        std::string in(bytes);
        char *from = in.data(), *to = out.data();
        size_t fromLeft = in.size(), toLeft = out.size();
        ::iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        if (::iconv(handle_, &from, &fromLeft, &to, &toLeft) != 0 || fromLeft != 0) return {};
        return {out.data(), out.size() - toLeft};
    }

  private:
    iconv_t handle_;
};

constexpr std::u16string_view wideKatakana = u"。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソ"
                                             u"タチツテトナニヌネノハヒフヘホマミムメモヤユヨ"
                                             u"ラリルレロワン゛゜";
static_assert(wideKatakana.size() == 0xFF9F - 0xFF61 + 1);

// The wide form of what Shift-JIS has as one byte, and the table's own form of what other systems write.
char16_t widened(char16_t unit) noexcept {
    if (unit == u' ') return u'\u3000';
    if (unit > u' ' && unit < 0x7F) return static_cast<char16_t>(unit + 0xFEE0);
    if (unit >= 0xFF61 && unit <= 0xFF9F) return wideKatakana[unit - 0xFF61u];
    switch (unit) {
    case u'\u00A2':
        return u'\uFFE0';
    case u'\u00A3':
        return u'\uFFE1';
    case u'\u00A5':
        return u'\uFFE5';
    case u'\u00B5':
        return u'\u03BC';
    case u'\u00C5':
        return u'\u212B';
    case u'\u00AC':
        return u'\uFFE2';
    case u'\u2014':
        return u'\u2015';
    case u'\u2016':
        return u'\u2225';
    case u'\u203E':
        return u'\uFFE3';
    case u'\u2212':
        return u'\uFF0D';
    case u'\u301C':
        return u'\uFF5E';
    default:
        return unit;
    }
}

bool isHighSurrogate(char16_t unit) noexcept { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char16_t unit) noexcept { return unit >= 0xDC00 && unit < 0xE000; }

std::string utf16Bytes(char16_t unit) {
    return {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
}

std::string wideEncoded(const Converter& converter, char16_t unit) {
    const std::string bytes = converter.convert(utf16Bytes(widened(unit)));
    return bytes.size() == 2 ? bytes : "\x81\x48"; // the wide "?"
}

std::u16string wideDecoded(std::string_view bytes) {
    const Converter converter("UTF-16BE", shiftJIS);
    std::u16string text;
    while (!bytes.empty()) {
        size_t taken = 1;
        std::string unit = converter.convert(bytes.substr(0, 1));
        if (unit.size() != 2 && bytes.size() > 1) {
            taken = 2;
            unit = converter.convert(bytes.substr(0, 2));
        }
        text +=
            unit.size() == 2
                ? static_cast<char16_t>(static_cast<uint8_t>(unit[0]) << 8 | static_cast<uint8_t>(unit[1]))
                : u'\uFFFD';
        bytes.remove_prefix(taken);
    }
    return text;
}

} // namespace

uint16_t cdTextChecksum(std::span<const uint8_t, cdTextPackBytes - 2> pack) noexcept {
    constexpr unsigned polynomial = 0x1021; // x^16 + x^12 + x^5 + 1
    unsigned sum = 0;
    for (const uint8_t byte : pack) {
        sum ^= static_cast<unsigned>(byte) << 8;
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum << 1) ^ ((sum & 0x8000) != 0 ? polynomial : 0);
        sum &= 0xFFFF;
    }
    return static_cast<uint16_t>(~sum); // it stands inverted in a pack
}

std::string cdTextEncoded(std::u16string_view text, CDTextCharacters characters) {
    const bool wide = characters == CDTextCharacters::ShiftJIS;
    const Converter converter(wide ? shiftJIS : "ASCII", "UTF-16BE");
    const unsigned limit = characters == CDTextCharacters::ASCII ? 0x80 : 0x100;
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i] == u'\0' || text[i] == u'\t' ? u' ' : text[i];
        if (wide) {
            bytes += wideEncoded(converter, unit);
        } else {
            bytes += unit < limit ? static_cast<char>(unit) : '?';
        }
        if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) ++i;
    }
    return bytes;
}

std::u16string cdTextDecoded(std::string_view bytes, CDTextCharacters characters) {
    if (characters == CDTextCharacters::ShiftJIS) return wideDecoded(bytes);
    std::u16string text;
    for (const char byte : bytes)
        text += static_cast<char16_t>(static_cast<uint8_t>(byte));
    return text;
}

} // namespace engine
