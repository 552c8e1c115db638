// CD-Text: packs become a disc's blocks again.
#include "CDText.hpp"

#include <algorithm>
#include <optional>

namespace engine {
namespace {

using Pack = std::span<const uint8_t, cdTextPackBytes>;

CDTextType typeOf(Pack pack) { return CDTextType{pack[0]}; }
bool isWide(Pack pack) { return (pack[3] & 0x80) != 0; }
size_t blockOf(Pack pack) { return pack[3] >> 4 & 7; }
std::string_view payloadOf(Pack pack) {
    return {reinterpret_cast<const char*>(pack.data()) + cdTextPackHeaderBytes, cdTextPayloadBytes};
}

Error unreadable(std::string what) {
    return {ErrorCode::MediaInvalid, "The disc's CD-Text can't be read: " + std::move(what) + ".", {}};
}

std::string nameOf(Pack pack) {
    return "pack " + std::to_string(pack[2]) + " of block " + std::to_string(blockOf(pack));
}

std::string joined(const std::vector<Pack>& packs) {
    std::string bytes;
    for (const Pack pack : packs)
        bytes += payloadOf(pack);
    return bytes;
}

// The first end of a text at or after `from`; npos when the bytes end before it.
size_t terminatorIn(std::string_view bytes, size_t from, bool wide) {
    if (!wide) return bytes.find('\0', from);
    for (size_t i = from; i + 1 < bytes.size(); i += 2)
        if (bytes[i] == '\0' && bytes[i + 1] == '\0') return i;
    return std::string_view::npos;
}

// The texts of one type. A pack at whose start no text is under way says which track comes next.
class TextReader {
  public:
    TextReader(size_t lastTrack, bool wide) : texts_(lastTrack + 1), wide_(wide) {}

    Result<void> read(Pack pack) {
        if (pending_.empty()) track_ = pack[1];
        pending_ += payloadOf(pack);
        size_t from = 0, end = 0;
        while ((end = terminatorIn(pending_, from, wide_)) != std::string::npos) {
            if (!store(pending_.substr(from, end - from)))
                return unreadable(nameOf(pack) + " has a text for track " + std::to_string(track_) +
                                  ", and there is none");
            ++track_;
            from = end + width();
        }
        pending_.erase(0, from);
        return {};
    }

    Result<std::vector<std::string>> finish(Pack last) {
        if (!pending_.empty()) return unreadable("the text in " + nameOf(last) + " has no end");
        return std::move(texts_);
    }

  private:
    size_t width() const { return wide_ ? 2 : 1; }

    // "" is also what fills the last pack of a type up, so it may be for no track.
    bool store(std::string text) {
        if (text.empty()) return true;
        if (track_ >= texts_.size()) return false;
        if (text == std::string(width(), '\t') && track_ > 0) text = texts_[track_ - 1]; // the same again
        texts_[track_] = std::move(text);
        return true;
    }

    std::vector<std::string> texts_;
    std::string pending_;
    size_t track_ = 0;
    bool wide_;
};

// Only the types up to Message have the block's characters. Packs and characters that don't agree on the width of a
// terminator leave open where a text ends.
Result<void> readTexts(CDTextBlock& block, CDTextType type, const std::vector<Pack>& packs) {
    const bool ownCharacters = type <= CDTextType::Message;
    const bool wide = ownCharacters && block.characters == CDTextCharacters::ShiftJIS;
    for (const Pack pack : packs)
        if (ownCharacters && isWide(pack) != wide)
            return unreadable(nameOf(pack) + " has characters of " + (wide ? "one byte" : "two bytes") +
                              ", and the block says " + (wide ? "two" : "one"));
    TextReader reader(block.lastTrack, wide);
    for (const Pack pack : packs)
        if (const auto read = reader.read(pack); !read.ok()) return read.error();
    auto texts = reader.finish(packs.back());
    if (!texts.ok()) return texts.error();
    if (std::ranges::any_of(*texts, [](const std::string& text) { return !text.empty(); }))
        block.texts[type] = std::move(*texts);
    return {};
}

// Two bytes of code and a text. Some writers repeat the code at the start of each further pack.
Result<void> readGenre(CDTextBlock& block, const std::vector<Pack>& packs) {
    const std::string_view code = payloadOf(packs.front()).substr(0, 2);
    block.genreCode =
        static_cast<uint16_t>(static_cast<uint8_t>(code[0]) << 8 | static_cast<uint8_t>(code[1]));
    std::string text(payloadOf(packs.front()).substr(2));
    for (size_t i = 1; i < packs.size(); ++i)
        text += payloadOf(packs[i]).substr(payloadOf(packs[i]).starts_with(code) ? 2 : 0);
    const size_t end = text.find('\0');
    if (end == std::string::npos) return unreadable("the genre in " + nameOf(packs.back()) + " has no end");
    if (end == 0) return {};
    block.texts[CDTextType::Genre].resize(block.lastTrack + 1u);
    block.texts[CDTextType::Genre].front() = text.substr(0, end);
    return {};
}

Result<void> readSize(CDTextBlock& block, size_t number, size_t count, const std::vector<Pack>& packs) {
    const std::string which = " of block " + std::to_string(number);
    if (packs.size() != 3 || packs[0][1] != 0 || packs[1][1] != 1 || packs[2][1] != 2)
        return unreadable("the three packs with the sizes" + which + " are not all there");
    const std::string record = joined(packs);
    const auto byte = [&](size_t index) { return static_cast<uint8_t>(record[index]); };
    block.characters = CDTextCharacters{byte(0)};
    if (block.characters != CDTextCharacters::Latin1 && block.characters != CDTextCharacters::ASCII &&
        block.characters != CDTextCharacters::ShiftJIS)
        return unreadable("the character code" + which + " is " + std::to_string(byte(0)));
    block.firstTrack = byte(1);
    block.lastTrack = byte(2);
    if (block.firstTrack == 0 || block.lastTrack > cdTextMaxTrack)
        return unreadable("the tracks" + which + " are " + std::to_string(byte(1)) + " to " +
                          std::to_string(byte(2)));
    block.copyright = byte(3);
    if (byte(20 + number) + 1u != count)
        return unreadable("there are " + std::to_string(count) + " packs" + which + " and not " +
                          std::to_string(byte(20 + number) + 1));
    block.language = byte(28 + number);
    block.records[CDTextType::Size] = record;
    return {};
}

Result<void> readType(CDTextBlock& block, CDTextType type, const std::vector<Pack>& packs) {
    switch (type) {
    case CDTextType::Genre:
        return readGenre(block, packs);
    case CDTextType::TOC:
    case CDTextType::TOC2:
        block.records[type] = joined(packs);
        return {};
    case CDTextType::Size:
        return {};
    default:
        // The types that are defined for nothing yet say nothing to us.
        if (type > CDTextType::TOC2 && type < CDTextType::Closed) return {};
        return readTexts(block, type, packs);
    }
}

Result<CDTextBlock> readBlock(size_t number, const std::vector<Pack>& packs) {
    std::map<CDTextType, std::vector<Pack>> byType;
    for (const Pack pack : packs)
        byType[typeOf(pack)].push_back(pack);
    CDTextBlock block;
    if (const auto read = readSize(block, number, packs.size(), byType[CDTextType::Size]); !read.ok())
        return read.error();
    for (const auto& [type, ofType] : byType)
        if (const auto read = readType(block, type, ofType); !read.ok()) return read.error();
    return block;
}

// The packs behind the four bytes of a drive, if there are any; nothing when the count of bytes is wrong.
std::optional<std::span<const uint8_t>> withoutHeader(std::span<const uint8_t> bytes) {
    constexpr size_t headerBytes = 4, lengthBytes = 2;
    if (bytes.size() % cdTextPackBytes == 0) return bytes;
    if (bytes.size() % cdTextPackBytes != headerBytes) return {};
    const size_t announced = static_cast<size_t>(bytes[0] << 8 | bytes[1]);
    if (announced + lengthBytes != bytes.size()) return {};
    return bytes.subspan(headerBytes);
}

} // namespace

Result<std::vector<CDTextBlock>> cdTextFromPacks(std::span<const uint8_t> bytes) {
    const auto packs = withoutHeader(bytes);
    if (!packs || packs->empty())
        return unreadable(std::to_string(bytes.size()) + " bytes are no whole packs of 18 bytes");
    std::array<std::vector<Pack>, cdTextMaxBlocks> byBlock;
    for (size_t i = 0; i < packs->size(); i += cdTextPackBytes) {
        const Pack pack(packs->data() + i, cdTextPackBytes);
        if (cdTextChecksum(pack.first<cdTextPackBytes - 2>()) != (pack[16] << 8 | pack[17]))
            return unreadable("the checksum of pack " + std::to_string(i / cdTextPackBytes) + " is wrong");
        if (pack[0] < 0x80 || pack[0] > 0x8F) return unreadable(nameOf(pack) + " is of no known type");
        std::vector<Pack>& block = byBlock[blockOf(pack)];
        if (pack[2] != block.size()) return unreadable(nameOf(pack) + " is not the next one");
        block.push_back(pack);
    }
    std::vector<CDTextBlock> blocks;
    for (size_t number = 0; number < cdTextMaxBlocks; ++number) {
        if (!byBlock[number].empty()) {
            auto block = readBlock(number, byBlock[number]);
            if (!block.ok()) return block.error();
            blocks.push_back(std::move(*block));
        } else if (!blocks.empty() && blocks.back().records[CDTextType::Size][20 + number] != '\0') {
            return unreadable("block " + std::to_string(number) + " is announced and is not there");
        }
    }
    return blocks;
}

} // namespace engine
