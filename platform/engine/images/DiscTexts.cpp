// Texts and codes of discs.
#include "images/DiscTexts.hpp"

#include "Layout.hpp"
#include "images/Sheet.hpp"

#include <algorithm>

namespace engine {

std::optional<CDTextType> textTypeOf(std::string_view word) noexcept {
    constexpr std::pair<std::string_view, CDTextType> words[] = {
        {"TITLE", CDTextType::Title},           {"PERFORMER", CDTextType::Performer},
        {"SONGWRITER", CDTextType::Songwriter}, {"COMPOSER", CDTextType::Composer},
        {"ARRANGER", CDTextType::Arranger},     {"MESSAGE", CDTextType::Message},
        {"DISC_ID", CDTextType::DiscIdent},
    };
    for (const auto& [name, type] : words)
        if (name == word) return type;
    return std::nullopt;
}

void DiscTexts::set(CDTextType type, size_t track, std::string_view bytes) {
    if (bytes.empty()) return;
    std::vector<std::string>& texts = block_.texts[type];
    if (texts.size() <= track) texts.resize(track + 1);
    // Kept as UTF-8 or whatever it was until the characters are known.
    texts[track] = bytes;
}

void DiscTexts::setGenre(uint16_t code, std::string_view bytes) {
    block_.genreCode = code;
    set(CDTextType::Genre, 0, bytes);
}

void DiscTexts::findLanguage() {
    const auto isKana = [](char16_t each) { return each >= u'\u3041' && each <= u'\u30FF'; };
    for (const auto& [type, texts] : block_.texts)
        for (const std::string& text : texts)
            if (const std::u16string units = utf16Of(text); std::any_of(units.begin(), units.end(), isKana)) {
                block_.language = cdTextLanguage("ja");
                block_.characters = CDTextCharacters::ShiftJIS;
            }
}

CDTextBlock DiscTexts::block(size_t tracks) const {
    CDTextBlock block = block_;
    block.firstTrack = 1;
    block.lastTrack = static_cast<uint8_t>(tracks);
    for (auto& [type, texts] : block.texts) {
        const bool isASCII = type == CDTextType::DiscIdent || type == CDTextType::Genre;
        for (std::string& text : texts)
            text = cdTextEncoded(utf16Of(text), isASCII ? CDTextCharacters::ASCII : block.characters);
        texts.resize(std::min(texts.size(), tracks + 1));
    }
    return block;
}

std::vector<uint8_t> packsOf(const std::vector<DiscTexts>& languages, size_t tracks) {
    std::vector<CDTextBlock> blocks;
    for (const DiscTexts& language : languages)
        if (!language.isEmpty()) blocks.push_back(language.block(tracks));
    if (blocks.empty()) return {};
    auto packs = cdTextPacks(blocks);
    if (!packs) throw Failure(packs.error());
    return std::move(*packs);
}

std::string isrcIn(std::string_view text) {
    std::string code = inCapitals(text);
    std::erase(code, '-');
    if (code == std::string(isrcCharacters, '0')) return {};
    return code;
}

std::optional<std::string> catalogNumberOf(std::string_view text) {
    constexpr size_t digits = 13;
    std::string number(text);
    if (number.size() == digits - 1) number.insert(0, 1, '0');
    const auto isDigit = [](char each) { return each >= '0' && each <= '9'; };
    if (number.size() != digits || !std::all_of(number.begin(), number.end(), isDigit)) return std::nullopt;
    return number;
}

} // namespace engine
