// Reads a volume: descriptors and folders. Trusts nothing that it reads.
#include "Reader.hpp"
#include "Description.hpp"
#include "Hierarchy.hpp"
#include "Names.hpp"

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <set>
#include <vector>

namespace engine::iso {
namespace {

constexpr uint32_t mostFolderBytes = 256 << 20;
constexpr uint32_t mostFolderBlocks = 1 << 20; // of all folders
constexpr size_t mostTextBytes = 512 << 20;    // of all names and targets

class TreeReader {
  public:
    TreeReader(const BlockReader& read, Form form) : read_(read), form_(form), continuations_(read) {}

    Tree readFrom(uint32_t block, uint32_t bytes, std::time_t modified) {
        Node root;
        root.kind = NodeKind::Folder;
        root.mode = 0555;
        root.modified = root.accessed = root.changed = modified;
        addFolder(root, block, bytes);
        for (; !pending_.empty(); pending_.pop_front())
            readFolder(pending_.front());
        return assemble();
    }
    bool rockRidge() const noexcept { return rockRidge_; }

  private:
    struct Folder {
        uint32_t node, block, bytes;
    };

    uint32_t addNode(const Node& node) {
        tree_.nodes.push_back(node);
        return static_cast<uint32_t>(tree_.nodes.size() - 1);
    }
    uint32_t addFolder(const Node& node, uint32_t block, uint32_t bytes) {
        if (!seen_.insert(block).second) damaged("a folder is in two places", block);
        blocks_ += blocksOf(bytes);
        if (bytes > mostFolderBytes || blocks_ > mostFolderBlocks) damaged("folders are too large", block);
        const uint32_t index = addNode(node);
        pending_.push_back({index, block, bytes});
        return index;
    }
    // Folders are read in the order of their nodes, so their entries are in it, too.
    void readFolder(const Folder& folder) {
        starts_.push_back(static_cast<uint32_t>(tree_.entries.size()));
        std::array<std::byte, blockBytes> block;
        std::vector<Section> sections; // of the file whose records are being read
        bool hasMoved = false;
        for (uint32_t index = 0; index < blocksOf(folder.bytes); ++index) {
            const uint64_t address = uint64_t{folder.block} + index;
            readBlock(read_, address, block);
            for (size_t at = 0; at + 34 <= blockBytes && byteAt(block, at) != 0;) {
                const size_t length = byteAt(block, at);
                if (length < 34 || at + length > blockBytes || 33u + byteAt(block, at + 32) > length)
                    damaged("a folder's record is damaged", address);
                readRecord(folder, Bytes(block).subspan(at, length), sections, hasMoved);
                at += length;
            }
        }
        if (hasMoved && tree_.entries.size() == starts_.back()) dropped_.insert(folder.node);
    }

    void readRecord(const Folder& folder, Bytes record, std::vector<Section>& sections, bool& hasMoved) {
        enum : uint8_t { hiddenFlag = 1, folderFlag = 2, moreSectionsFlag = 128 };
        const size_t nameBytes = byteAt(record, 32);
        std::string_view name = textAt(record, 33, nameBytes);
        const bool isSelf = nameBytes == 1 && name[0] == '\0', isParent = nameBytes == 1 && name[0] == '\1';
        const Bytes use = record.subspan(std::min(recordBytes(nameBytes), record.size()));
        if (isSelf && folder.node == 0 && form_ == Form::Iso) findRockRidge(use);
        if (isParent || (isSelf && folder.node != 0)) return;
        Description told;
        if (rockRidge_) told = describe(use.subspan(std::min<size_t>(skipped_, use.size())), continuations_);
        if (isSelf) {
            if (told.node) tree_.nodes[0] = *told.node;
            return;
        }
        const uint8_t flags = byteAt(record, 25);
        const uint32_t block = numberAt(record, 2), bytes = numberAt(record, 10);
        if (told.isMoved) {
            hasMoved = true;
            return;
        }
        Node node = told.node.value_or(Node{});
        if (!told.node) {
            node.mode = (flags & folderFlag) != 0 ? 0555 : 0444;
            node.modified = node.accessed = node.changed = dateAt(record, 18);
            node.kind = (flags & folderFlag) != 0 ? NodeKind::Folder : NodeKind::File;
        }
        uint32_t index;
        if (told.child != noBlock) {
            node.kind = NodeKind::Folder;
            std::array<std::byte, blockBytes> first;
            readBlock(read_, told.child, first);
            index = addFolder(node, told.child, numberAt(first, 10));
        } else if ((flags & folderFlag) != 0) {
            node.kind = NodeKind::Folder;
            index = addFolder(node, block, bytes);
        } else if (told.hasTarget) {
            node.kind = NodeKind::SymbolicLink;
            tree_.setTarget(node, told.target);
            index = addNode(node);
        } else {
            node.kind = NodeKind::File;
            if (bytes > 0) sections.push_back({block, bytes});
            if ((flags & moreSectionsFlag) != 0) return;
            index = addFile(node, sections);
            sections.clear();
        }
        const std::string wide = form_ == Form::Joliet ? utf8Of(name) : std::string();
        if (form_ == Form::Joliet) name = wide;
        if (rockRidge_ && told.name.empty()) told.name = name;
        if (tree_.text.size() > mostTextBytes) damaged("names are too long", folder.block);
        tree_.entries.push_back(tree_.makeEntry(index, name, told.name, (flags & hiddenFlag) != 0));
    }

    uint32_t addFile(Node node, const std::vector<Section>& sections) {
        if (!sections.empty()) {
            const auto [known, isNew] = files_.try_emplace(sections[0].firstBlock, tree_.nodes.size());
            if (!isNew) return static_cast<uint32_t>(known->second);
        }
        node.first = static_cast<uint32_t>(tree_.sections.size());
        node.count = static_cast<uint32_t>(sections.size());
        tree_.sections.insert(tree_.sections.end(), sections.begin(), sections.end());
        return addNode(node);
    }

    // SP stands first in the root (SUSP 5.3).
    void findRockRidge(Bytes use) {
        if (use.size() < 7 || textAt(use, 0, 2) != "SP" || byteAt(use, 4) != 0xBE || byteAt(use, 5) != 0xEF)
            return;
        rockRidge_ = describe(use, continuations_).node.has_value();
        skipped_ = byteAt(use, 6);
    }

    Tree assemble() {
        std::vector<Entry> entries;
        auto start = starts_.begin();
        for (const Node& node : tree_.nodes) {
            tree_.firstEntry.push_back(static_cast<uint32_t>(entries.size()));
            if (node.kind != NodeKind::Folder) continue;
            const uint32_t from = *start++;
            const auto end = start == starts_.end() ? static_cast<uint32_t>(tree_.entries.size()) : *start;
            for (uint32_t i = from; i < end; ++i)
                if (!dropped_.contains(tree_.entries[i].node)) entries.push_back(tree_.entries[i]);
        }
        tree_.firstEntry.push_back(static_cast<uint32_t>(entries.size()));
        tree_.entries = std::move(entries);
        return std::move(tree_);
    }

    const BlockReader& read_;
    Form form_;
    Continuations continuations_;
    Tree tree_;
    bool rockRidge_ = false;
    uint8_t skipped_ = 0; ///< bytes in front of all system use entries
    uint64_t blocks_ = 0; ///< of the folders that are known
    std::deque<Folder> pending_;
    std::vector<uint32_t> starts_;     ///< of the entries of each folder that was read
    std::set<uint32_t> seen_;          ///< blocks of folders, so that none is read twice
    std::set<uint32_t> dropped_;       ///< folders that only hold what was moved to them
    std::map<uint32_t, size_t> files_; ///< nodes by first block
};

} // namespace

std::optional<ReadVolume> readVolume(const BlockReader& read, uint32_t sessionStart) {
    std::optional<ReadVolume> volume;
    std::array<std::byte, blockBytes> block;
    for (uint32_t index = 16; index < 16 + 64; ++index) {
        if (!read(uint64_t{sessionStart} + index, block) || textAt(block, 1, 5) != "CD001") break;
        const uint8_t kind = byteAt(block, 0);
        if (kind == 255) break;
        const uint32_t rootBlock = numberAt(block, 158), rootBytes = numberAt(block, 166);
        if (kind == 1 && !volume) {
            volume.emplace();
            volume->volumeBlocks = numberAt(block, 80);
            volume->volumeName = textAt(block, 40, 32);
            volume->volumeName.erase(volume->volumeName.find_last_not_of(' ') + 1);
            TreeReader reader(read, Form::Iso);
            volume->tree = reader.readFrom(rootBlock, rootBytes, dateAt(block, 174));
            volume->rockRidge = reader.rockRidge();
        } else if (kind == 2 && volume && !volume->joliet && textAt(block, 88, 2) == "%/" &&
                   std::string_view("@CE").find(textAt(block, 90, 1)) != std::string_view::npos) {
            volume->joliet =
                TreeReader(read, Form::Joliet).readFrom(rootBlock, rootBytes, dateAt(block, 174));
        }
    }
    return volume;
}

} // namespace engine::iso
