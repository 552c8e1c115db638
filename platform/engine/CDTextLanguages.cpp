// CD-Text: the codes of languages (EBU Tech 3264, appendix 3) and their names in ISO 639.
#include "CDText.hpp"

namespace engine {
namespace {

struct Language {
    uint8_t code;
    std::string_view name;         // two letters where ISO 639 has them
    std::string_view three = {};   // three letters, where there are two as well
    std::string_view library = {}; // the other three letters, where ISO 639-2 has two codes
};

constexpr Language languages[] = {
    {0x01, "sq", "sqi", "alb"},
    {0x02, "br", "bre"},
    {0x03, "ca", "cat"},
    {0x04, "hr", "hrv"},
    {0x05, "cy", "cym", "wel"},
    {0x06, "cs", "ces", "cze"},
    {0x07, "da", "dan"},
    {0x08, "de", "deu", "ger"},
    {0x09, "en", "eng"},
    {0x0A, "es", "spa"},
    {0x0B, "eo", "epo"},
    {0x0C, "et", "est"},
    {0x0D, "eu", "eus", "baq"},
    {0x0E, "fo", "fao"},
    {0x0F, "fr", "fra", "fre"},
    {0x10, "fy", "fry"},
    {0x11, "ga", "gle"},
    {0x12, "gd", "gla"},
    {0x13, "gl", "glg"},
    {0x14, "is", "isl", "ice"},
    {0x15, "it", "ita"},
    {0x16, "se", "sme"},
    {0x17, "la", "lat"},
    {0x18, "lv", "lav"},
    {0x19, "lb", "ltz"},
    {0x1A, "lt", "lit"},
    {0x1B, "hu", "hun"},
    {0x1C, "mt", "mlt"},
    {0x1D, "nl", "nld", "dut"},
    {0x1E, "no", "nor"},
    {0x1F, "oc", "oci"},
    {0x20, "pl", "pol"},
    {0x21, "pt", "por"},
    {0x22, "ro", "ron", "rum"},
    {0x23, "rm", "roh"},
    {0x24, "sr", "srp"},
    {0x25, "sk", "slk", "slo"},
    {0x26, "sl", "slv"},
    {0x27, "fi", "fin"},
    {0x28, "sv", "swe"},
    {0x29, "tr", "tur"},
    {0x2A, "vls"},
    {0x2B, "wa", "wln"},
    {0x45, "zu", "zul"},
    {0x46, "vi", "vie"},
    {0x47, "uz", "uzb"},
    {0x48, "ur", "urd"},
    {0x49, "uk", "ukr"},
    {0x4A, "th", "tha"},
    {0x4B, "te", "tel"},
    {0x4C, "tt", "tat"},
    {0x4D, "ta", "tam"},
    {0x4E, "tg", "tgk"},
    {0x4F, "sw", "swa"},
    {0x50, "srn"},
    {0x51, "so", "som"},
    {0x52, "si", "sin"},
    {0x53, "sn", "sna"},
    {0x54, "sh", "hbs"},
    {0x55, "rue"},
    {0x56, "ru", "rus"},
    {0x57, "qu", "que"},
    {0x58, "ps", "pus"},
    {0x59, "pa", "pan"},
    {0x5A, "fa", "fas", "per"},
    {0x5B, "pap"},
    {0x5C, "or", "ori"},
    {0x5D, "ne", "nep"},
    {0x5E, "nd", "nde"},
    {0x5F, "mr", "mar"},
    {0x60, "mo", "mol"},
    {0x61, "ms", "msa", "may"},
    {0x62, "mg", "mlg"},
    {0x63, "mk", "mkd", "mac"},
    {0x64, "lo", "lao"},
    {0x65, "ko", "kor"},
    {0x66, "km", "khm"},
    {0x67, "kk", "kaz"},
    {0x68, "kn", "kan"},
    {0x69, "ja", "jpn"},
    {0x6A, "id", "ind"},
    {0x6B, "hi", "hin"},
    {0x6C, "he", "heb"},
    {0x6D, "ha", "hau"},
    {0x6E, "gn", "grn"},
    {0x6F, "gu", "guj"},
    {0x70, "el", "ell", "gre"},
    {0x71, "ka", "kat", "geo"},
    {0x72, "ff", "ful"},
    {0x73, "prs"},
    {0x74, "cv", "chv"},
    {0x75, "zh", "zho", "chi"},
    {0x76, "my", "mya", "bur"},
    {0x77, "bg", "bul"},
    {0x78, "bn", "ben"},
    {0x79, "be", "bel"},
    {0x7A, "bm", "bam"},
    {0x7B, "az", "aze"},
    {0x7C, "as", "asm"},
    {0x7D, "hy", "hye", "arm"},
    {0x7E, "ar", "ara"},
    {0x7F, "am", "amh"},
};

} // namespace

uint8_t cdTextLanguage(std::string_view iso639) noexcept {
    if (iso639.empty()) return 0;
    for (const Language& language : languages)
        if (iso639 == language.name || iso639 == language.three || iso639 == language.library)
            return language.code;
    return 0;
}

std::string_view cdTextLanguageName(uint8_t code) noexcept {
    for (const Language& language : languages)
        if (language.code == code) return language.name;
    return {};
}

} // namespace engine
