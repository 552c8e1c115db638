// A track that is put together from pieces.
#pragma once

#include "Layout.hpp"
#include "images/Piece.hpp"

#include <vector>

namespace engine {

struct PieceTrack {
    BlockForm form = BlockForm::Audio;
    std::vector<PieceRef> preGap; ///< empty: the pre-gap is silence
    std::vector<PieceRef> body;
    SubchannelForm subchannel = SubchannelForm::None;
};

/// Bytes of one after the other.
uint64_t bytesOf(const std::vector<PieceRef>& pieces) noexcept;

/// What is missing at the end of the last block is filled up with zeros.
ProducedTrack producedTrack(PieceTrack track);

} // namespace engine
