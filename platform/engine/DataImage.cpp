// The file-system image of a data track.
#include "DataImage.hpp"
#include "Failure.hpp"
#include "MediumKind.hpp"
#include "Utf8.hpp"
#include "VolumeSettings.hpp"
#include "plan/EarlierSession.hpp"
#include "plan/TreeBuilder.hpp"
#include "plan/Volumes.hpp"

#include <algorithm>

namespace engine {

DataImage::DataImage() = default;
DataImage::~DataImage() = default;

std::shared_ptr<DataImage> DataImage::plan(const DataTrack& track, const Signal& signal,
                                           const ImagePlace& place) {
    signal.check();
    const uint8_t filesystems = writtenFilesystems(track);
    const std::shared_ptr<DataImage> result(new DataImage);
    plan::Tree tree;
    if (place.previous) plan::addEarlierSession(tree, place, track.isoLevel);
    plan::addTrack(tree, track, filesystems, result->sources_, signal);
    signal.check();
    result->volumes_ = std::make_unique<plan::Volumes>(tree, track, filesystems, place);
    if (place.wantsStart) result->start_ = result->volumes_->mediumStart();
    result->sources_.setEmptyAside();
    return result;
}

uint64_t DataImage::blocks() const noexcept { return volumes_->blocks(); }

size_t DataImage::read(std::span<std::byte> buffer) {
    size_t filled = 0;
    while (filled < buffer.size() && position_ < blocks()) {
        if (position_ < volumes_->contentsStart() || position_ >= volumes_->contentsEnd()) {
            volumes_->block(position_++, buffer.subspan(filled).first<blockSize>());
            filled += blockSize;
            continue;
        }
        const uint64_t left = (volumes_->contentsEnd() - position_) * blockSize;
        const auto contents =
            buffer.subspan(filled, static_cast<size_t>(std::min<uint64_t>(left, buffer.size() - filled)));
        const size_t count = reader_.read(contents);
        if (count == 0) fail(ErrorCode::Internal, "The disc's image ended too early.");
        filled += count;
        position_ += count / blockSize;
    }
    return filled;
}

std::optional<Difference> DataImage::compareAgain(std::span<const std::byte> bytes) {
    const uint64_t first = compared_, end = first + bytes.size() / blockSize;
    compared_ = end;
    const auto offsetOf = [&](uint64_t block) {
        return static_cast<size_t>((std::clamp(block, first, end) - first) * blockSize);
    };
    const size_t from = offsetOf(volumes_->contentsStart()), to = offsetOf(volumes_->contentsEnd());
    auto difference = again_.compare(bytes.subspan(from, to - from));
    if (difference) difference->byte += from;
    return difference;
}

Result<void> checkVolumeName(std::string_view name) {
    const auto wrong = [&](const std::string& why) {
        return Error{ErrorCode::BadLayout, "The volume name " + inQuotes(name) + " " + why,
                     std::string(name)};
    };
    if (name.empty())
        return Error{ErrorCode::BadLayout, "The volume has no name: give its root folder one.", {}};
    if (!isUtf8(name)) return wrong("is not valid UTF-8 text; use another name.");
    size_t count = 0;
    for (std::string_view rest = name; !rest.empty(); ++count) {
        const auto character = *firstCharacter(rest);
        if (character.value < 0x20 || (character.value >= 0x7F && character.value < 0xA0))
            return wrong("has a control character, which can't stand in a volume name.");
        if (character.value == '/') return wrong("has a \"/\", which can't stand in a volume name.");
        rest.remove_prefix(character.bytes);
    }
    if (count > volumeNameLimit)
        return wrong("has " + std::to_string(count) + " characters; a volume name has at most " +
                     std::to_string(volumeNameLimit) + ".");
    return {};
}

Result<uint64_t> plannedBlocks(const DataTrack& track) {
    return guarded([&] { return DataImage::plan(track, Signal())->blocks(); });
}

Layout Layout::ofData(DataTrack track) {
    Track only;
    only.content = std::move(track);
    return ofTrack(std::move(only));
}

Layout Layout::ofTrack(Track track) {
    Layout layout;
    layout.sessions.emplace_back().tracks.push_back(std::move(track));
    return layout;
}

} // namespace engine
