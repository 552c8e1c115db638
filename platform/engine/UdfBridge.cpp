// libisofs's tree as UDF's, and the blocks around libisofs's image.
#include "UdfBridge.hpp"
#include "Failure.hpp"
#include "NodeTimes.hpp"
#include "Utf8.hpp"
#include "udf/Text.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <set>

namespace engine {
namespace {

constexpr uint64_t firstDescriptor = 16;
constexpr size_t volumeSizeAt =
    80; // in a volume descriptor: blocks of the volume, both byte orders (ECMA-119 8.4.8)

// UDF holds fewer characters than Rock Ridge. A name that is cut, or that loses what is no text, might become another's:
// then it ends in a number.
class Names {
  public:
    std::string keep(const std::string& name) {
        std::string kept = udf::compressed(name, udf::nameLimit);
        if (isUtf8(name) && kept.size() < udf::nameLimit - 1 && taken_.insert(kept).second) return name;
        std::string changed = name;
        for (int number = 0; !taken_.insert(udf::compressed(changed, udf::nameLimit)).second; ++number) {
            const std::string end = "_" + std::to_string(number);
            changed = shortened(name, end.size()) + end;
        }
        return changed;
    }

  private:
    // As many characters of the name as leave room for `bytes` more of them.
    static std::string shortened(const std::string& name, size_t bytes) {
        std::string result;
        for (std::string_view rest = name; !rest.empty();) {
            const auto character = firstCharacter(rest);
            const std::string next =
                result + (character ? std::string(rest.substr(0, character->bytes)) : "_");
            if (udf::compressed(next + std::string(bytes, 'x'), 2 * udf::nameLimit).size() > udf::nameLimit)
                break;
            result = next;
            rest.remove_prefix(character ? character->bytes : 1);
        }
        return result;
    }

    std::set<std::string> taken_;
};

void describe(udf::Node& node, IsoNode* from) {
    node.mode = static_cast<uint16_t>(iso_node_get_permissions(from) & 07777);
    node.owner = iso_node_get_uid(from);
    node.group = iso_node_get_gid(from);
    node.accessed = accessedOf(from);
    node.modified = modifiedOf(from);
    node.changed = changedOf(from);
}

void putBoth(std::byte* at, uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        at[i] = static_cast<std::byte>(value >> (8 * i));
        at[7 - i] = at[i];
    }
}

} // namespace

UdfBridge::UdfBridge(IsoImage* image, const NodeSet& notShown, const DataTrack& track,
                     const ImagePlace& place) {
    if (place.wantsStart)
        fail(ErrorCode::FilesystemsNotSupported, "A disc that is overwritten in place can't be left open, or "
                                                 "gone on with, when UDF is on it; leave out "
                                                 "UDF, or close the disc.");
    nodeOf(reinterpret_cast<IsoNode*>(iso_image_get_root(image)));
    // Folder by folder, in the order of the nodes, so that each one's entries lie together.
    for (size_t node = 0; node < tree_.nodes.size(); ++node) {
        tree_.firstEntry.push_back(static_cast<uint32_t>(tree_.entries.size()));
        if (!folders_[node]) continue;
        Names names;
        IsoDirIter* made = nullptr;
        if (iso_dir_get_children(folders_[node], &made) < 0) throw std::bad_alloc();
        const std::unique_ptr<IsoDirIter, void (*)(IsoDirIter*)> iterator(made, iso_dir_iter_free);
        IsoNode* child = nullptr;
        while (iso_dir_iter_next(made, &child) == 1) {
            if (notShown.contains(child)) continue;
            std::string name = names.keep(iso_node_get_name(child));
            tree_.entries.push_back({std::move(name), nodeOf(child)});
        }
    }
    tree_.firstEntry.push_back(static_cast<uint32_t>(tree_.entries.size()));
    folders_ = {};

    settings_.revision = track.udfRevision;
    settings_.volumeName = track.root.name;
    settings_.volumeSetName = track.volumeSet;
    settings_.recorded = std::time(nullptr);
    settings_.sessionStart = static_cast<uint32_t>(place.startBlock);
    volume_ = std::make_unique<udf::Volume>(std::move(tree_), settings_);
    // libisofs wants its start at a multiple of 16 blocks.
    frontBlocks_ = (udf::partitionStart + volume_->structureBlocks() + 31) / 32 * 32;
}

uint32_t UdfBridge::nodeOf(IsoNode* from) {
    udf::Node node;
    describe(node, from);
    IsoDir* folder = nullptr;
    switch (iso_node_get_type(from)) {
    case LIBISO_DIR:
        node.kind = udf::NodeKind::Folder;
        folder = reinterpret_cast<IsoDir*>(from);
        break;
    case LIBISO_SYMLINK:
        node.kind = udf::NodeKind::SymbolicLink;
        node.target = iso_symlink_get_dest(reinterpret_cast<IsoSymlink*>(from));
        break;
    case LIBISO_FILE:
        return fileNodeOf(reinterpret_cast<IsoFile*>(from), std::move(node));
    default:
        fail(ErrorCode::FilesystemsNotSupported,
             inQuotes(iso_node_get_name(from)) + " is neither file, folder nor link, and UDF can't hold it.");
    }
    tree_.nodes.push_back(std::move(node));
    folders_.push_back(folder);
    sourceOf_.push_back(0);
    return static_cast<uint32_t>(tree_.nodes.size() - 1);
}

uint32_t UdfBridge::fileNodeOf(IsoFile* file, udf::Node node) {
    node.size = static_cast<uint64_t>(iso_file_get_size(file));
    size_t number = 0;
    int count = 0;
    struct iso_file_section* sections = nullptr;
    if (iso_file_get_old_image_sections(file, &count, &sections, 0) == 1) {
        const std::unique_ptr<struct iso_file_section, void (*)(void*)> kept(sections, std::free);
        if (count > 0) node.firstBlock = sections[0].block;
        uint64_t next = node.firstBlock;
        for (int i = 0; i < count; ++i) {
            if (sections[i].block != next)
                fail(ErrorCode::FilesystemsNotSupported,
                     "The file " + inQuotes(iso_node_get_name(reinterpret_cast<IsoNode*>(file))) +
                         " of an earlier session lies in pieces, which UDF can't go on with; leave out UDF.");
            next += (sections[i].size + blockSize - 1) / blockSize;
        }
    } else {
        unsigned fileSystem = 0;
        dev_t device = 0;
        ino_t inode = 0;
        iso_stream_get_id(iso_file_get_stream(file), &fileSystem, &device, &inode);
        number = static_cast<size_t>(inode);
        if (nodeOfSource_.size() <= number) nodeOfSource_.resize(number + 1, UINT32_MAX);
        if (nodeOfSource_[number] != UINT32_MAX) return nodeOfSource_[number]; // a hard link
        nodeOfSource_[number] = static_cast<uint32_t>(tree_.nodes.size());
    }
    tree_.nodes.push_back(std::move(node));
    folders_.push_back(nullptr);
    sourceOf_.push_back(number);
    return static_cast<uint32_t>(tree_.nodes.size() - 1);
}

void UdfBridge::place(const SourceList& sources, uint64_t firstContent, uint64_t isoBlocks,
                      std::span<const std::byte> isoFront) {
    std::vector<uint64_t> starts(sources.files.size());
    for (size_t i = 0; i < sources.files.size(); ++i) {
        starts[i] = firstContent;
        firstContent += (sources.files[i].fingerprint.size + blockSize - 1) / blockSize;
    }
    for (size_t node = 0; node < sourceOf_.size(); ++node)
        if (sourceOf_[node] > 0) volume_->tree().nodes[node].firstBlock = starts.at(sourceOf_[node] - 1);
    sourceOf_ = {};
    nodeOfSource_ = {};

    const uint64_t total = frontBlocks_ + isoBlocks + behindBlocks;
    volume_->setTotalBlocks(total);
    // What stands in front of the descriptors, too: HFS+ has its partition map there.
    size_t at = firstDescriptor;
    for (bool isLast = false; !isLast && at < udf::firstVolumeBlock - udf::recognitionBlocks; ++at)
        isLast = std::to_integer<int>(isoFront[at * blockSize]) == 255;
    const auto kept = isoFront.first(at * blockSize);
    firstBlocks_.assign(kept.begin(), kept.end());
    for (at = firstDescriptor; at * blockSize < firstBlocks_.size(); ++at) {
        std::byte* block = firstBlocks_.data() + at * blockSize;
        const auto kind = std::to_integer<int>(block[0]);
        if (kind == 1 || kind == 2) putBoth(block + volumeSizeAt, static_cast<uint32_t>(total));
    }
    for (uint32_t index = 0; index < udf::recognitionBlocks; ++index) {
        firstBlocks_.resize(firstBlocks_.size() + blockSize);
        udf::putRecognition(index, std::span(firstBlocks_).last<blockSize>());
    }
}

void UdfBridge::block(uint64_t number, std::span<std::byte, blockSize> block) const {
    if (volume_->has(number)) return volume_->block(number, block);
    std::ranges::fill(block, std::byte{0});
    const uint64_t offset = number * blockSize;
    if (offset < firstBlocks_.size()) std::memcpy(block.data(), firstBlocks_.data() + offset, blockSize);
}

} // namespace engine
