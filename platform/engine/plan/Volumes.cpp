// Lays an image out.
#include "Volumes.hpp"
#include "Assistant.hpp"
#include "Failure.hpp"
#include "Views.hpp"
#include "VolumeSettings.hpp"
#include "hfsplus/PartitionMap.hpp"

#include <algorithm>

namespace engine::plan {
namespace {

constexpr uint32_t mediumStartBlocks = 32;
// Deliberate: the contents begin no further in front. Some readers want room for eight descriptors to be there at all.
constexpr uint64_t firstContents = 32;

uint32_t blocksOf(uint64_t bytes) { return static_cast<uint32_t>((bytes + blockSize - 1) / blockSize); }

// Blocks are counted with 32 bits; no medium has as many.
uint32_t expectFit(uint64_t block) {
    if (block > INT32_MAX) fail(ErrorCode::BadLayout, "The files are larger than any disc.");
    return static_cast<uint32_t>(block);
}

// Deliberate: a link that no file system can hold fails the burn. Left out, nobody would know until it is missed.
void expectLinksHeld(const Tree& tree, uint8_t filesystems, bool rockRidge) {
    uint8_t able = filesystems & (filesystem::udf | filesystem::hfsPlus);
    if (rockRidge) able |= filesystem::iso9660;
    for (const Entry& entry : tree.entries)
        if (entry.filesystems != 0 && (entry.filesystems & able) == 0 &&
            tree.nodes[entry.node].kind == NodeKind::SymbolicLink)
            fail(ErrorCode::FilesystemsNotSupported,
                 "None of the disc's file systems can hold the symbolic link " +
                     inQuotes(tree.nameOf(entry)) +
                     "; put it into Rock Ridge, UDF or HFS+, or leave it out.");
}

uint64_t placeExtents(Tree& tree, uint64_t next) {
    for (size_t i = tree.oldExtents; i < tree.extents.size(); ++i) {
        Extent& extent = tree.extents[i];
        if (extent.bytes == 0) continue;
        extent.firstBlock = expectFit(next);
        next += blocksOf(extent.bytes);
    }
    return expectFit(next);
}

} // namespace

Volumes::Volumes(Tree& tree, const DataTrack& track, uint8_t filesystems, const ImagePlace& place)
    : start_(expectFit(place.startBlock)) {
    expectLinksHeld(tree, filesystems, track.rockRidge);
    const auto start = static_cast<uint32_t>(start_);
    const std::time_t now = std::time(nullptr);
    const bool hasJoliet = (filesystems & filesystem::joliet) != 0;
    uint32_t next = iso::firstDescriptorBlock + (hasJoliet ? 3 : 2);

    std::vector<uint32_t> udfNodes, hfsPlusNodes;
    if (filesystems & filesystem::udf) {
        if (place.wantsStart)
            fail(ErrorCode::FilesystemsNotSupported, "A disc that is overwritten in place can't be left "
                                                     "open, or gone on with, when UDF is on it; leave out "
                                                     "UDF, or close the disc.");
        View<udf::Tree> view = udfView(tree);
        udf_.emplace(std::move(view.tree), udfSettings(track, start, now));
        udfNodes = std::move(view.nodeOf);
        next = udf::partitionStart + udf_->structureBlocks();
    }
    if (filesystems & filesystem::hfsPlus) {
        // Where the medium's first blocks are written last, its volume can begin there, and earlier sessions are in its
        // reach; else a map leads to it.
        hasMap_ = !place.wantsStart;
        hfsplus::VolumeSettings settings = hfsPlusSettings(track, now);
        hfsPlusStart_ = settings.volumeStart = hasMap_ ? start + next++ : 0;
        settings.structureStart = start + next;
        View<hfsplus::Tree> view = hfsPlusView(tree, settings.volumeStart);
        hfsPlus_ = std::make_unique<hfsplus::Volume>(std::move(view.tree), settings);
        hfsPlusNodes = std::move(view.nodeOf);
        next += hfsPlus_->structureBlocks();
    }
    iso::VolumeSettings settings = isoSettings(track, start, now);
    settings.structureStart = next;
    View<iso::Tree> view;
    std::optional<View<iso::Tree>> joliet;
    const auto viewIso = [&] { view = isoView(tree, settings.rules); };
    const auto viewJoliet = [&] {
        if (hasJoliet) joliet = jolietView(tree);
    };
    doBoth(hasJoliet ? tree.entries.size() : 0, viewIso, viewJoliet);
    tree.entries = {}; // from here on it is about contents; the names have gone where they are needed
    iso_.emplace(std::move(view.tree), joliet ? std::optional(std::move(joliet->tree)) : std::nullopt,
                 settings);

    contentsStart_ = std::max(firstContents, uint64_t{next} + iso_->structureBlocks());
    contentsEnd_ = placeExtents(tree, start_ + contentsStart_) - start_;
    placeContents(tree, view.nodeOf, iso_->tree());
    if (joliet) placeContents(tree, joliet->nodeOf, *iso_->joliet());
    if (udf_) placeContents(tree, udfNodes, udf_->tree());
    blocks_ = contentsEnd_;
    if (hfsPlus_) {
        placeContents(tree, hfsPlusNodes, hfsPlus_->tree());
        blocks_ += hfsPlus_->endBlocks(start_ + contentsEnd_);
        hfsPlus_->setContentsEnd(start_ + contentsEnd_);
    }
    if (udf_) ++blocks_;
    iso_->setTotalBlocks(expectFit(blocks_));
    if (udf_) udf_->setTotalBlocks(blocks_);
}

void Volumes::block(uint64_t number, std::span<std::byte, blockSize> block) {
    if (udf_ && udf_->has(number)) return udf_->block(number, block);
    if (iso_->has(number)) return iso_->block(number, block);
    if (hfsPlus_ && hfsPlus_->has(start_ + number)) return hfsPlus_->block(start_ + number, block);
    std::ranges::fill(block, std::byte{0});
    const uint64_t recognition = iso::firstDescriptorBlock + iso_->descriptorBlocks();
    if (hasMap_ && number < hfsplus::partitionMapBlocks)
        hfsplus::putPartitionMap(static_cast<uint32_t>(number),
                                 {hfsPlusStart_, hfsPlus_->end(), start_ + blocks_}, block);
    else if (udf_ && number >= recognition && number < recognition + udf::recognitionBlocks)
        udf::putRecognition(static_cast<uint32_t>(number - recognition), block);
}

// ISO 9660's descriptors count from the medium's start, so they serve there, too.
std::vector<std::byte> Volumes::mediumStart() {
    std::vector<std::byte> start(mediumStartBlocks * blockSize);
    const auto at = [&start](uint32_t number) {
        return std::span<std::byte, blockSize>(start.data() + number * blockSize, blockSize);
    };
    const uint32_t end = iso::firstDescriptorBlock + iso_->descriptorBlocks();
    for (uint32_t number = iso::firstDescriptorBlock; number < end; ++number)
        iso_->block(number, at(number));
    if (hfsPlus_ && hfsPlusStart_ == 0) hfsPlus_->block(0, at(0));
    return start;
}

} // namespace engine::plan
