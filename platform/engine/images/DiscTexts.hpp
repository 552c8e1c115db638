// What sheets say about a disc, as CD-Text and codes.
#pragma once

#include "CDText.hpp"

#include <optional>
#include <string_view>

namespace engine {

/// The type that a word of a sheet means: TITLE, PERFORMER, SONGWRITER, COMPOSER, ARRANGER, MESSAGE, DISC_ID.
std::optional<CDTextType> textTypeOf(std::string_view word) noexcept;

/// Collects the texts of one language.
class DiscTexts {
  public:
    explicit DiscTexts(uint8_t language) { block_.language = language; }

    /// Of the disc with track 0; an empty text is as none.
    void set(CDTextType type, size_t track, std::string_view bytes);
    void setGenre(uint16_t code, std::string_view bytes);
    void setCharacters(CDTextCharacters characters) { block_.characters = characters; }
    /// Where a text has kana, Japanese and its characters: Latin-1 has none of them.
    void findLanguage();
    bool isEmpty() const noexcept { return block_.texts.empty() && block_.genreCode == 0; }
    /// For a disc of so many tracks.
    CDTextBlock block(size_t tracks) const;

  private:
    CDTextBlock block_;
};

/// Packs of the texts that aren't empty. Throws Failure.
std::vector<uint8_t> packsOf(const std::vector<DiscTexts>& languages, size_t tracks);

/// A recording code as people write it, without hyphens and in capitals. Right or wrong: wrongInRecordingCode() tells.
/// Nothing but zeros is deliberately no code: it is what a drive reads and rippers write where a track has none.
std::string isrcIn(std::string_view text);

/// Thirteen digits; the twelve of an American code get the 0 that stands before them. Other texts give none.
std::optional<std::string> catalogNumberOf(std::string_view text);

} // namespace engine
