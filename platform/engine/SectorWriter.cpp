// Blocks of a track become what a medium's file keeps of them.
#include "SectorWriter.hpp"
#include "sectors/SectorCoding.hpp"

#include <algorithm>
#include <vector>

namespace engine {
namespace {

constexpr size_t sectorsAtOnce = 256;

} // namespace

void SectorWriter::begin(BlockForm form, int64_t address) {
    form_ = form;
    address_ = address;
}

void SectorWriter::write(std::span<std::byte> blocks) {
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
    std::vector<std::byte> empty;
    while (blocks > 0) {
        const auto count = static_cast<size_t>(std::min<uint64_t>(blocks, sectorsAtOnce));
        // Whole sectors that nobody produced are empty ones of their mode.
        const BlockForm form = form_;
        if (form == BlockForm::RawMode1) form_ = BlockForm::Data;
        if (form == BlockForm::RawMode2) form_ = BlockForm::Mode2;
        empty.assign(count * bytesPerBlock(form_), std::byte{});
        write(empty);
        form_ = form;
        blocks -= count;
    }
}

} // namespace engine
