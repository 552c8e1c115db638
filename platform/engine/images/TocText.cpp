// CD-Text as .toc files write it: a map of languages, then for each its texts.
#include "images/TocText.hpp"

namespace engine {
namespace {

// "0", "0:" and "0 : 9" all mean the same; the colon may stick to either side.
std::string takeMapWord(TocWords& words) {
    std::string word;
    while (word.empty()) {
        word = words.takeWord();
        std::erase(word, ':');
    }
    return word;
}

std::vector<uint8_t> takeBytes(TocWords& words) {
    std::vector<uint8_t> bytes;
    words.need("{");
    while (!words.take("}")) {
        bytes.push_back(static_cast<uint8_t>(words.takeNumber("a byte", 255)));
        words.take(",");
    }
    return bytes;
}

} // namespace

void TocText::take(TocWords& words, size_t track) {
    words.need("{");
    while (!words.take("}")) {
        if (words.take("LANGUAGE_MAP"))
            takeLanguageMap(words);
        else if (words.take("LANGUAGE"))
            takeLanguage(words, track);
        else
            words.refuseNext("LANGUAGE_MAP or LANGUAGE");
    }
}

void TocText::takeLanguageMap(TocWords& words) {
    words.need("{");
    while (!words.take("}")) {
        // "0:9" may be one word.
        std::string number(words.peek()), code;
        if (const size_t colon = number.find(':');
            colon != std::string::npos && colon > 0 && colon + 1 < number.size()) {
            words.takeWord();
            code = number.substr(colon + 1);
            number.erase(colon);
        } else {
            number = takeMapWord(words);
            code = takeMapWord(words);
        }
        words.take(",");
        if (number.size() != 1 || number[0] < '0' || number[0] > '7')
            words.refuse(inQuotes(number) + " is no number of a language: they are 0 to 7.");
        uint8_t language = 0;
        if (code.find_first_not_of("0123456789") == std::string::npos && code.size() <= 3 &&
            std::stoi(code) <= 255) {
            language = static_cast<uint8_t>(std::stoi(code));
        } else {
            std::string small = code;
            for (char& each : small)
                if (each >= 'A' && each <= 'Z') each = static_cast<char>(each - 'A' + 'a');
            language = cdTextLanguage(small);
            if (language == 0) words.refuse("the language " + inQuotes(code) + " is not known.");
        }
        codes_[static_cast<uint64_t>(number[0] - '0')] = language;
    }
}

void TocText::takeLanguage(TocWords& words, size_t track) {
    const uint64_t number = words.takeNumber("the number of a language", cdTextMaxBlocks - 1);
    const auto code = codes_.find(number);
    DiscTexts unmapped(0);
    DiscTexts& texts =
        code == codes_.end() ? unmapped : texts_.try_emplace(number, code->second).first->second;
    words.need("{");
    while (!words.take("}")) {
        const std::string item = words.takeWord();
        if (item == "ENCODING_ISO_8859_1")
            texts.setCharacters(CDTextCharacters::Latin1);
        else if (item == "ENCODING_ASCII")
            texts.setCharacters(CDTextCharacters::ASCII);
        else if (item == "ENCODING_MS_JIS")
            texts.setCharacters(CDTextCharacters::ShiftJIS);
        else if (const auto type = textTypeOf(item))
            texts.set(*type, track, words.takeText("the text"));
        else if (item == "GENRE" && words.isText())
            texts.setGenre(0, words.takeText("the text"));
        else if (item == "GENRE") {
            const std::vector<uint8_t> bytes = takeBytes(words);
            std::string text;
            for (size_t at = 2; at < bytes.size() && bytes[at] != 0; ++at)
                text += static_cast<char>(bytes[at]);
            if (bytes.size() >= 2) texts.setGenre(static_cast<uint16_t>(bytes[0] << 8 | bytes[1]), text);
        } else if (item == "UPC_EAN" || item == "ISRC")
            words.takeText("the code"); // CATALOG and the track say it
        else if (item == "TOC_INFO1" || item == "TOC_INFO2" || item == "SIZE_INFO")
            takeBytes(words); // made anew
        else
            words.refuse("the word " + inQuotes(item) + " is not known in CD-Text.");
    }
}

std::vector<uint8_t> TocText::packs(size_t tracks) const {
    std::vector<DiscTexts> languages;
    for (const auto& [number, texts] : texts_)
        languages.push_back(texts);
    return packsOf(languages, tracks);
}

} // namespace engine
