// CDTextFuzz.cpp: CD-Text packs as a drive gives them. An odd first byte says that the checksums are to be made right,
// so that what lies behind them is reached.
#include "tests/fuzz/Fuzz.hpp"

#include "platform/engine/CDText.hpp"

#include <vector>

namespace {

using namespace engine;
using fuzz::require;

void makeChecksumsRight(std::vector<uint8_t>& packs) {
    for (std::size_t start = 0; start + cdTextPackBytes <= packs.size(); start += cdTextPackBytes) {
        const std::span<const uint8_t, cdTextPackBytes - 2> pack(packs.data() + start, cdTextPackBytes - 2);
        const uint16_t checksum = cdTextChecksum(pack);
        packs[start + cdTextPackBytes - 2] = static_cast<uint8_t>(checksum >> 8);
        packs[start + cdTextPackBytes - 1] = static_cast<uint8_t>(checksum);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    std::vector<uint8_t> packs(data + 1, data + size);
    if (data[0] & 1) makeChecksumsRight(packs);
    const auto blocks = cdTextFromPacks(packs);
    if (!blocks) return 0;
    require(blocks->size() <= cdTextMaxBlocks, "there are no more blocks than a disc has");
    for (const CDTextBlock& block : *blocks) {
        require(block.lastTrack <= cdTextMaxTrack, "there are no more tracks than a disc has");
        for (const auto& [type, texts] : block.texts)
            for (const std::string& text : texts)
                (void)cdTextDecoded(text, block.characters);
    }
    const auto written = cdTextPacks(*blocks);
    require(static_cast<bool>(written), "what was read can be written");
    const auto again = cdTextFromPacks(*written);
    require(static_cast<bool>(again), "what was written can be read");
    require(again->size() == blocks->size(), "no block is lost");
    for (std::size_t i = 0; i < blocks->size(); ++i)
        if (cdTextBytesCut((*blocks)[i]) == 0)
            require((*again)[i].language == (*blocks)[i].language, "a block keeps its language");
    return 0;
}
