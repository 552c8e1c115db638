// CD-Text: a disc's blocks become packs.
#include "CDText.hpp"

#include <algorithm>

namespace engine {
namespace {

constexpr CDTextType trackTypes[] = {CDTextType::Title,    CDTextType::Performer, CDTextType::Songwriter,
                                     CDTextType::Composer, CDTextType::Arranger,  CDTextType::Message};
constexpr size_t sizePacks = 3;
constexpr size_t unlimited = SIZE_MAX;

bool isWide(const CDTextBlock& block) { return block.characters == CDTextCharacters::ShiftJIS; }

// The packs of one block, but for checksums: Size packs tell of all blocks, so they are filled in last.
class PackRow {
  public:
    explicit PackRow(size_t number) : number_(number) {}

    /// One text, or what stands before it. Texts of a type follow each other without a gap.
    void add(CDTextType type, size_t track, std::string_view bytes, bool wide, size_t prefix = 0) {
        for (size_t offset = 0; offset < bytes.size();) {
            if (used_ == 0) begin(type, track, (offset - std::min(offset, prefix)) / (wide ? 2 : 1), wide);
            const size_t count = std::min(bytes.size() - offset, cdTextPayloadBytes - used_);
            std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), count,
                        packs_.end() -
                            static_cast<std::ptrdiff_t>(cdTextPackBytes - cdTextPackHeaderBytes - used_));
            offset += count;
            used_ = (used_ + count) % cdTextPayloadBytes;
        }
    }
    /// The next type begins with a pack of its own.
    void endType() { used_ = 0; }

    size_t count() const { return packs_.size() / cdTextPackBytes; }
    size_t count(CDTextType type) const {
        size_t found = 0;
        for (size_t i = 0; i < packs_.size(); i += cdTextPackBytes)
            found += packs_[i] == static_cast<uint8_t>(type);
        return found;
    }
    const std::vector<uint8_t>& bytes() const { return packs_; }

  private:
    void begin(CDTextType type, size_t track, size_t position, bool wide) {
        packs_.push_back(static_cast<uint8_t>(type));
        packs_.push_back(static_cast<uint8_t>(track));
        packs_.push_back(static_cast<uint8_t>(count()));
        packs_.push_back(
            static_cast<uint8_t>((wide ? 0x80 : 0) | number_ << 4 | std::min<size_t>(position, 15)));
        packs_.resize(packs_.size() + cdTextPackBytes - cdTextPackHeaderBytes);
    }

    size_t number_;
    size_t used_ = 0; // payload of the last pack; 0 when the next byte begins one
    std::vector<uint8_t> packs_;
};

std::string_view textOf(const CDTextBlock& block, CDTextType type, size_t track) {
    const auto found = block.texts.find(type);
    if (found == block.texts.end() || track >= found->second.size()) return {};
    return found->second[track];
}

std::string_view clipped(std::string_view text, size_t limit) { return text.substr(0, limit); }

bool anyText(const CDTextBlock& block, CDTextType type, size_t limit) {
    for (size_t track = 0; track <= block.lastTrack; ++track)
        if (!clipped(textOf(block, type, track), limit).empty()) return true;
    return false;
}

// A text for the disc and one for each track, "" included, or nothing at all.
void addTexts(PackRow& row, const CDTextBlock& block, CDTextType type, size_t limit, bool wide,
              bool repeats) {
    if (!anyText(block, type, limit)) return;
    const std::string terminator(wide ? 2 : 1, '\0'), same(wide ? 2 : 1, '\t');
    std::string_view previous;
    for (size_t track = 0; track <= block.lastTrack; ++track) {
        if (track != 0 && track < block.firstTrack) continue;
        const std::string_view text = clipped(textOf(block, type, track), limit);
        // The first track's text is written out, also when it is the disc's: not every player looks there.
        const bool repeated = repeats && track > block.firstTrack && !text.empty() && text == previous;
        row.add(type, track, (repeated ? same : std::string(text)) + terminator, wide);
        previous = text;
    }
    row.endType();
}

// Closed information is the disc's, as a rule: no terminators for tracks that have none.
void addClosed(PackRow& row, const CDTextBlock& block, size_t limit) {
    CDTextBlock shorter;
    const auto found = block.texts.find(CDTextType::Closed);
    if (found == block.texts.end()) return;
    shorter.texts.insert(*found);
    shorter.firstTrack = block.firstTrack;
    shorter.lastTrack = block.lastTrack;
    while (shorter.lastTrack > 0 && textOf(shorter, CDTextType::Closed, shorter.lastTrack).empty())
        --shorter.lastTrack;
    addTexts(row, shorter, CDTextType::Closed, limit, false, false);
}

void addGenre(PackRow& row, const CDTextBlock& block, size_t limit) {
    const std::string text(clipped(textOf(block, CDTextType::Genre, 0), limit));
    if (block.genreCode == 0 && text.empty()) return;
    const std::string code{static_cast<char>(block.genreCode >> 8),
                           static_cast<char>(block.genreCode & 0xFF)};
    row.add(CDTextType::Genre, 0, code + text + '\0', false, code.size());
    row.endType();
}

// All packs of a block but the Size packs, with texts of at most so many bytes. Numbers of disc and tracks
// are never cut: half of one is another one.
PackRow textPacks(const CDTextBlock& block, size_t number, size_t limit) {
    PackRow row(number);
    for (const CDTextType type : trackTypes)
        addTexts(row, block, type, limit, isWide(block), true);
    if (const auto ident = clipped(textOf(block, CDTextType::DiscIdent, 0), limit); !ident.empty()) {
        row.add(CDTextType::DiscIdent, 0, std::string(ident) + '\0', false);
        row.endType();
    }
    addGenre(row, block, limit);
    addClosed(row, block, limit);
    addTexts(row, block, CDTextType::MCNISRC, unlimited, false, false);
    return row;
}

size_t longestText(const CDTextBlock& block) {
    size_t longest = 0;
    for (const auto& [type, texts] : block.texts)
        for (const std::string& text : texts)
            longest = std::max(longest, text.size());
    return longest;
}

// The most bytes that every text may have: packs never get more when texts get shorter. In wide text it is
// even.
size_t limitOf(const CDTextBlock& block) {
    const auto fits = [&](size_t limit) {
        return textPacks(block, 0, limit).count() + sizePacks <= cdTextMaxPacks;
    };
    if (fits(unlimited)) return unlimited;
    const size_t step = isWide(block) ? 2 : 1;
    size_t good = 0, bad = longestText(block) / step + 1;
    while (bad - good > 1) {
        const size_t middle = good + (bad - good) / 2;
        (fits(middle * step) ? good : bad) = middle;
    }
    return good * step;
}

void addSize(PackRow& row, const CDTextBlock& block, std::span<const uint8_t> lasts,
             std::span<const uint8_t> languages) {
    std::string record;
    const auto put = [&](size_t value) { record += static_cast<char>(value); };
    put(static_cast<size_t>(block.characters));
    put(block.firstTrack);
    put(block.lastTrack);
    put(block.copyright);
    for (uint8_t type = 0x80; type < static_cast<uint8_t>(CDTextType::Size); ++type)
        put(row.count(CDTextType{type}));
    put(sizePacks);
    record.append(lasts.begin(), lasts.end());
    record.append(languages.begin(), languages.end());
    for (size_t part = 0; part < sizePacks; ++part)
        row.add(CDTextType::Size, part,
                std::string_view(record).substr(part * cdTextPayloadBytes, cdTextPayloadBytes), false);
}

void addChecksums(std::vector<uint8_t>& packs) {
    for (size_t i = 0; i < packs.size(); i += cdTextPackBytes) {
        const std::span<const uint8_t, cdTextPackBytes - 2> pack(packs.data() + i, cdTextPackBytes - 2);
        const uint16_t sum = cdTextChecksum(pack);
        packs[i + 16] = static_cast<uint8_t>(sum >> 8);
        packs[i + 17] = static_cast<uint8_t>(sum & 0xFF);
    }
}

Error refusal(std::string sentence) { return {ErrorCode::CantWriteCDText, std::move(sentence), {}}; }

} // namespace

size_t cdTextBytesCut(const CDTextBlock& block) {
    const size_t limit = limitOf(block);
    size_t cut = 0;
    for (const auto& [type, texts] : block.texts)
        for (const std::string& text : texts)
            if (type != CDTextType::MCNISRC) cut += text.size() - clipped(text, limit).size();
    return cut;
}

Result<std::vector<uint8_t>> cdTextPacks(std::span<const CDTextBlock> blocks) {
    if (blocks.size() > cdTextMaxBlocks)
        return refusal("A disc takes eight blocks of CD-Text, and there are " +
                       std::to_string(blocks.size()) + "; leave some out.");
    std::array<uint8_t, cdTextMaxBlocks> lasts{}, languages{};
    std::vector<PackRow> rows;
    for (size_t i = 0; i < blocks.size(); ++i) {
        if (blocks[i].lastTrack > cdTextMaxTrack)
            return refusal("A block of CD-Text is for " + std::to_string(blocks[i].lastTrack) +
                           " tracks, and a disc has at most 99.");
        rows.push_back(textPacks(blocks[i], i, limitOf(blocks[i])));
        lasts[i] = static_cast<uint8_t>(rows[i].count() + sizePacks - 1);
        languages[i] = blocks[i].language;
    }
    std::vector<uint8_t> packs;
    for (size_t i = 0; i < blocks.size(); ++i) {
        addSize(rows[i], blocks[i], lasts, languages);
        packs.insert(packs.end(), rows[i].bytes().begin(), rows[i].bytes().end());
    }
    addChecksums(packs);
    return packs;
}

} // namespace engine
