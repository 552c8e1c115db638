// The CD_TEXT blocks of a .toc file.
#pragma once

#include "images/DiscTexts.hpp"
#include "images/TocWords.hpp"

#include <map>

namespace engine {

class TocText {
  public:
    /// Takes a block, from its opening brace on; track 0 is the disc.
    void take(TocWords& words, size_t track);
    /// Packs of the languages that were mapped, in the order of their numbers.
    std::vector<uint8_t> packs(size_t tracks) const;

  private:
    void takeLanguageMap(TocWords& words);
    void takeLanguage(TocWords& words, size_t track);

    std::map<uint64_t, uint8_t> codes_;
    std::map<uint64_t, DiscTexts> texts_;
};

} // namespace engine
