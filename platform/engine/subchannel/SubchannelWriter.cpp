// Writes the file of a session's subchannels, beside that of its sectors.
#include "subchannel/SubchannelWriter.hpp"

#include <algorithm>
#include <array>
#include <cstring>

namespace engine {
namespace {

constexpr size_t sectorsAtOnce = 1024;

} // namespace

void SubchannelWriter::begin(const TrackInfo& track, int64_t address) {
    form_ = track.form;
    subchannel_ = track.subchannel;
    address_ = address;
    drives_.begin(track);
}

std::span<std::byte> SubchannelWriter::take(std::span<std::byte> blocks) {
    const size_t user = bytesPerBlock(form_), whole = bytesPerBlock(form_, subchannel_);
    const size_t count = blocks.size() / whole;
    if (subchannel_ == SubchannelForm::None) {
        fill(count);
        return blocks;
    }
    made_.resize(count * subchannelBytes);
    for (size_t each = 0; each < count; ++each) {
        const auto symbols = blocks.subspan(each * whole + user).first<subchannelBytes>();
        channelsOfSymbols(symbols, next(each));
        putNext(each);
        if (each > 0) std::memmove(&blocks[each * user], &blocks[each * whole], user);
    }
    file_->append(made_);
    return blocks.first(count * user);
}

void SubchannelWriter::fill(uint64_t blocks) {
    while (blocks > 0) {
        const auto count = static_cast<size_t>(std::min<uint64_t>(blocks, sectorsAtOnce));
        made_.assign(count * subchannelBytes, std::byte{});
        for (size_t each = 0; each < count; ++each)
            putNext(each);
        file_->append(made_);
        blocks -= count;
    }
}

std::span<std::byte, subchannelBytes> SubchannelWriter::next(size_t place) {
    return std::span(made_).subspan(place * subchannelBytes).first<subchannelBytes>();
}

void SubchannelWriter::putNext(size_t place) {
    drives_.make(address_++, next(place).first<2 * channelBytes>());
}

} // namespace engine
