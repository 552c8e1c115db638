// One track of a .toc file.
#pragma once

#include "images/PieceProducer.hpp"
#include "images/TocText.hpp"

#include <optional>
#include <string>
#include <vector>

namespace engine {

struct TocMode {
    std::string_view name;
    BlockForm form;
    uint64_t unitBytes, userAt; // of a sector in its file
};

/// Throws Failure.
class TocTrack {
  public:
    /// Takes the mode; TRACK was taken.
    TocTrack(TocWords& words, size_t number);

    /// Takes what belongs to the track; false for what doesn't.
    bool take(TocText& texts);
    Track made(bool isFirst) const;
    bool isAudio() const noexcept { return mode_->form == BlockForm::Audio; }

  private:
    uint64_t blockBytes() const; // of a block as the pieces have it
    uint64_t unitBytes() const;  // of a block as the files have it

    void takeSubchannel();
    void takeISRC();
    bool isLength() const;
    uint64_t takeLength();
    uint64_t takeOffset();
    void takeZero();
    void takeSound();
    void takeData();
    void takePreGap();
    void takeStart();
    void takeEnd();
    void takeIndex();
    void needNoStart();

    void add(PieceRef piece);
    void addNothing();
    uint64_t lengthOf(const std::string& name, uint64_t bytes, uint64_t from, uint64_t asked) const;
    std::vector<uint64_t> pointsIn(uint64_t blocks, uint64_t preGap) const;
    std::vector<PieceRef> cut(uint64_t from, uint64_t to) const;

    TocWords& words_;
    size_t number_, line_ = 0, startLine_ = 0, indexLine_ = 0, endLine_ = 0;
    const TocMode* mode_ = nullptr;
    SubchannelForm subchannel_ = SubchannelForm::None;
    bool copyPermitted_ = false, preEmphasis_ = false, fourChannel_ = false;
    std::string isrc_;
    std::vector<PieceRef> pieces_;
    std::optional<uint64_t> start_; // bytes
    std::optional<uint64_t> end_;   // blocks, with the pre-gap's
    std::vector<uint64_t> indexPoints_;
};

} // namespace engine
