// Blocks of a track become what a medium's file keeps of them.
#include "SectorWriter.hpp"
#include "sectors/SectorCoding.hpp"

#include <algorithm>
#include <vector>

namespace engine {
namespace {

constexpr size_t sectorsAtOnce = 256;

} // namespace

void SectorWriter::begin(const TrackInfo& track, int64_t address) {
    form_ = track.form;
    address_ = address;
    if (subchannel_) subchannel_->begin(track, address);
}

void SectorWriter::write(std::span<std::byte> blocks) {
    writeSectors(subchannel_ ? subchannel_->take(blocks) : blocks);
}

void SectorWriter::writeSectors(std::span<std::byte> blocks) {
    const size_t bytes = bytesPerBlock(form_);
    if (!isSectors_ || bytes == sectorBytes) {
        address_ += static_cast<int64_t>(blocks.size() / bytes);
        file_->append(blocks);
        return;
    }
    if (!sectors_) sectors_ = std::make_unique<std::byte[]>(sectorsAtOnce * sectorBytes);
    const std::span sectors(sectors_.get(), sectorsAtOnce * sectorBytes);
    while (!blocks.empty()) {
        const size_t count = std::min(sectorsAtOnce, blocks.size() / bytes);
        for (size_t each = 0; each < count; ++each)
            encodeSector(form_, address_++, blocks.subspan(each * bytes, bytes),
                         sectors.subspan(each * sectorBytes).first<sectorBytes>());
        file_->append(sectors.first(count * sectorBytes));
        blocks = blocks.subspan(count * bytes);
    }
}

void SectorWriter::fill(uint64_t blocks) {
    if (subchannel_) subchannel_->fill(blocks);
    std::vector<std::byte> empty;
    while (blocks > 0) {
        const auto count = static_cast<size_t>(std::min<uint64_t>(blocks, sectorsAtOnce));
        const size_t bytes = bytesPerBlock(form_);
        empty.resize(count * bytes);
        for (size_t each = 0; each < count; ++each)
            makeEmptyBlock(form_, address_ + static_cast<int64_t>(each),
                           std::span(empty).subspan(each * bytes, bytes));
        writeSectors(empty);
        blocks -= count;
    }
}

void SectorWriter::flush(const SignalRef& signal) {
    file_->flush(signal);
    if (subchannel_) subchannel_->file()->flush(signal);
}

} // namespace engine
