// Reading the tracks of a virtual medium.
#include "VirtualReader.hpp"
#include "Failure.hpp"
#include "SessionPlaces.hpp"
#include "VirtualMedium.hpp"
#include "sectors/SectorCoding.hpp"
#include "subchannel/DriveChannels.hpp"

#include <algorithm>
#include <cstring>
#include <fcntl.h>

namespace engine {
namespace {

constexpr size_t sectorsAtOnce = 256; // 147 pages

[[noreturn]] void damaged(int64_t address, const std::string& how) {
    fail(ErrorCode::MediaInvalid,
         "The disc can't be read at block " + std::to_string(address) + ": " + how + ".",
         "block " + std::to_string(address));
}

} // namespace

bool hasSectors(const std::string& file) noexcept { return file.ends_with(".bin"); }

VirtualReader::VirtualReader(int folder, std::string cdText)
    : folder_(::fcntl(folder, F_DUPFD_CLOEXEC, 0)), cdText_(std::move(cdText)) {}

ImageReader& VirtualReader::file(const std::string& name) {
    const auto known = files_.find(name);
    return known != files_.end() ? known->second
                                 : files_.try_emplace(name, folder_.get(), name).first->second;
}

Result<size_t> VirtualReader::read(const TrackInfo& track, int64_t block, std::span<std::byte> buffer) {
    return guarded([&]() -> size_t {
        return track.subchannel == SubchannelForm::None ? readBlocks(track, block, buffer)
                                                        : readWithSubchannel(track, block, buffer);
    });
}

size_t VirtualReader::readBlocks(const TrackInfo& track, int64_t block, std::span<std::byte> buffer) {
    if (block >= static_cast<int64_t>(track.blocks)) return 0;
    const size_t bytes = bytesPerBlock(track.form);
    const int64_t left = block < 0 ? -block : static_cast<int64_t>(track.blocks) - block;
    const auto count =
        static_cast<size_t>(std::min<uint64_t>(static_cast<uint64_t>(left), buffer.size() / bytes));
    if (block < 0) {
        if (static_cast<uint64_t>(-block) > track.preGapBlocks)
            damaged(static_cast<int64_t>(track.startBlock) + block, "it lies in front of the track");
        const uint64_t kept = hasSectors(track.file) ? track.fileOffset / sectorBytes : 0;
        // What lies in front of the file's first sector is not kept: silence, or empty blocks.
        if (static_cast<uint64_t>(-block) > kept) {
            const auto unkept =
                static_cast<size_t>(std::min<uint64_t>(count, static_cast<uint64_t>(-block) - kept));
            std::fill_n(buffer.begin(), static_cast<std::ptrdiff_t>(unkept * bytes), std::byte{});
            return unkept * bytes;
        }
    }
    const auto wanted = buffer.first(count * bytes);
    return hasSectors(track.file) ? readSectors(track, block, wanted)
                                  : readPlain(track, static_cast<uint64_t>(block), wanted);
}

size_t VirtualReader::readWithSubchannel(const TrackInfo& track, int64_t block, std::span<std::byte> buffer) {
    const size_t user = bytesPerBlock(track.form), whole = track.blockBytes();
    size_t filled = 0;
    while (buffer.size() - filled >= whole) {
        const int64_t at = block + static_cast<int64_t>(filled / whole);
        if (block < 0 && at >= 0) break;
        blocks_.resize(std::min(sectorsAtOnce, (buffer.size() - filled) / whole) * user);
        const size_t count = readBlocks(track, at, blocks_) / user;
        if (count == 0) break;
        readSubchannel(track, at, count);
        for (size_t each = 0; each < count; ++each, filled += whole) {
            std::memcpy(&buffer[filled], &blocks_[each * user], user);
            std::memcpy(&buffer[filled + user], &symbols_[each * subchannelBytes], subchannelBytes);
        }
    }
    return filled;
}

// The symbols of so many sectors, P and Q left out. In front of the file's first sector there are none.
void VirtualReader::readSubchannel(const TrackInfo& track, int64_t block, size_t count) {
    symbols_.assign(count * subchannelBytes, std::byte{});
    const int64_t first = static_cast<int64_t>(track.fileOffset / sectorBytes) + block;
    if (first < 0) return;
    std::vector<std::byte> channels(count * subchannelBytes);
    const size_t got =
        file(track.subchannelFile).read(static_cast<uint64_t>(first) * subchannelBytes, channels);
    for (size_t each = 0; each < count; ++each) {
        const auto sector =
            std::span<const std::byte>(channels).subspan(each * subchannelBytes).first<subchannelBytes>();
        const int64_t address = static_cast<int64_t>(track.startBlock) + block + static_cast<int64_t>(each);
        if (got < (each + 1) * subchannelBytes) damaged(address, "its subchannels are not there");
        if (!isIntactQ(sector.subspan<channelBytes, channelBytes>()))
            damaged(address, "its subchannel Q is not what its code says");
        const auto symbols = std::span(symbols_).subspan(each * subchannelBytes).first<subchannelBytes>();
        symbolsOfChannels(sector, symbols);
        clearDrivesChannels(symbols);
    }
}

size_t VirtualReader::readPlain(const TrackInfo& track, uint64_t block, std::span<std::byte> buffer) {
    const size_t count = file(track.file).read(track.fileOffset + block * blockSize, buffer);
    return count - count % static_cast<size_t>(blockSize);
}

size_t VirtualReader::readSectors(const TrackInfo& track, int64_t block, std::span<std::byte> buffer) {
    const size_t bytes = bytesPerBlock(track.form);
    const auto offset = static_cast<uint64_t>(static_cast<int64_t>(track.fileOffset) +
                                              block * static_cast<int64_t>(sectorBytes));
    if (bytes == sectorBytes) return file(track.file).read(offset, buffer) / sectorBytes * sectorBytes;
    sectors_.resize(sectorsAtOnce * sectorBytes);
    size_t filled = 0;
    while (filled < buffer.size()) {
        const size_t done = filled / bytes;
        const size_t wanted = std::min(sectorsAtOnce, buffer.size() / bytes - done);
        const size_t got =
            file(track.file)
                .read(offset + done * sectorBytes, std::span(sectors_).first(wanted * sectorBytes)) /
            sectorBytes;
        for (size_t each = 0; each < got; ++each) {
            const auto sector = std::span(sectors_).subspan(each * sectorBytes).first<sectorBytes>();
            const int64_t address =
                static_cast<int64_t>(track.startBlock) + block + static_cast<int64_t>(done + each);
            if (!isIntactSector(track.form, address, sector))
                damaged(address, "its sector is not what its error detection code says");
            std::memcpy(buffer.data() + filled, sector.data() + userDataOffset(track.form), bytes);
            filled += bytes;
        }
        if (got < wanted) break;
    }
    clearPadding(track.form, buffer.first(filled));
    return filled;
}

Result<std::vector<uint8_t>> VirtualReader::cdText() {
    return guarded([&]() -> std::vector<uint8_t> {
        if (cdText_.empty()) return {};
        const auto bytes = readSmallFile(folder_.get(), cdText_);
        if (!bytes)
            fail(ErrorCode::MediaInvalid, "The disc's CD-Text can't be read: its file is gone.", cdText_);
        return {bytes->begin(), bytes->end()};
    });
}

} // namespace engine
