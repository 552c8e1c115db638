// What exists only in the track's tree: virtual folders and files, and links.
#include "TreeBuilder.hpp"
#include "Failure.hpp"
#include "FolderWalker.hpp"
#include "ItemAttributes.hpp"
#include "ProducedFiles.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

namespace engine::plan {
namespace {

class TreeBuilder {
  public:
    TreeBuilder(Tree& tree, const DataTrack& track, uint8_t filesystems, SourceList& sources,
                const Signal& signal)
        : tree_(tree), sources_(sources), signal_(signal), walker_(tree, sources, signal),
          produced_(tree, sources, walker_, filesystems), filesystems_(filesystems),
          now_(track.defaultDate.value_or(std::time(nullptr))) {}

    void build(const Content& root) {
        reserve(root);
        if (const auto* folder = std::get_if<VirtualFolder>(&root.source)) {
            tree_.nodes[0] = virtualNode(tree_.nodes[0], 0755);
            pending_.push_back({0, folder, filesystems_});
        } else if (const auto* item = std::get_if<RealItem>(&root.source)) {
            walker_.addRoot(item->path, filesystems_);
        } else {
            fail(ErrorCode::BadLayout,
                 "The root of a disc must be a folder; " + inQuotes(root.name) + " is none.");
        }
        apply(tree_, 0, *root.attributes);
        if (root.identity != 0) identities_.emplace_back(root.identity, 0);
        while (!pending_.empty()) {
            const Pending folder = pending_.back();
            pending_.pop_back();
            addChildren(folder);
        }
        walker_.walk();
        // Now all that they can point at is there.
        if (!links_.empty()) std::ranges::stable_sort(identities_, {}, &Identity::first);
        addLinks();
    }

  private:
    struct Pending {
        uint32_t node;
        const VirtualFolder* folder;
        uint8_t filesystems;
    };
    struct Link {
        uint32_t folder;
        const Content* item;
        uint8_t filesystems;
        bool isBegun = false;
    };

    using Identity = std::pair<uint64_t, uint32_t>;

    // For all that is in memory: a list that grows needs twice its room on the way.
    void reserve(const Content& root) {
        size_t items = 0, files = 0, nameBytes = 0;
        std::vector<const VirtualFolder*> waiting;
        const auto count = [&](const Content& item) {
            ++items;
            if (const auto* folder = std::get_if<VirtualFolder>(&item.source)) waiting.push_back(folder);
            if (!std::holds_alternative<DataFile>(item.source) &&
                !std::holds_alternative<ProducedFile>(item.source))
                return;
            ++files;
            nameBytes += item.name.size() + 1;
        };
        count(root);
        while (!waiting.empty()) {
            const VirtualFolder* folder = waiting.back();
            waiting.pop_back();
            for (const Content& child : folder->children)
                count(child);
        }
        tree_.nodes.reserve(tree_.nodes.size() + items);
        tree_.entries.reserve(tree_.entries.size() + items);
        tree_.extents.reserve(tree_.extents.size() + files);
        sources_.files.reserve(files);
        sources_.names.reserve(nameBytes);
        identities_.reserve(items);
    }

    uint32_t nodeOf(uint64_t identity) const {
        const auto found = std::ranges::lower_bound(identities_, identity, {}, &Identity::first);
        if (found != identities_.end() && found->first == identity) return found->second;
        const auto link = linkNodes_.find(identity);
        return link == linkNodes_.end() ? none : link->second;
    }

    static uint64_t targetOf(const Link& link) {
        const auto* alias = std::get_if<FinderAlias>(&link.item->source);
        return alias ? alias->identity : std::get<HardLink>(link.item->source).identity;
    }

    // Links may lead to links: what one leads to is there before it. In a circle nothing is.
    void addLinks() {
        std::unordered_map<uint64_t, Link*> byIdentity;
        for (Link& link : links_)
            if (link.item->identity != 0) byIdentity.emplace(link.item->identity, &link);
        std::vector<Link*> way;
        for (Link& first : links_) {
            for (Link* next = &first; next && !next->isBegun;) {
                next->isBegun = true;
                way.push_back(next);
                const auto found = byIdentity.find(targetOf(*next));
                next = found == byIdentity.end() ? nullptr : found->second;
            }
            for (; !way.empty(); way.pop_back()) {
                const Link& link = *way.back();
                const bool isAlias = std::holds_alternative<FinderAlias>(link.item->source);
                const uint32_t node = isAlias ? addAlias(link) : addHardLink(link);
                if (link.item->identity != 0) linkNodes_.emplace(link.item->identity, node);
            }
        }
    }

    static std::string_view nameOf(const Content& item) {
        if (!item.name.empty()) return item.name;
        const auto* real = std::get_if<RealItem>(&item.source);
        if (real == nullptr) return {};
        std::string_view path = real->path;
        while (path.size() > 1 && path.back() == '/')
            path.remove_suffix(1);
        return path.substr(path.rfind('/') + 1);
    }

    static ItemNames namesOf(const Content& item, uint8_t filesystems) {
        ItemNames names{nameOf(item)};
        checkName(names.name);
        if (!item.names) return names;
        names.own = {item.names->iso, item.names->joliet, item.names->udf, item.names->hfsPlus};
        for (size_t i = 0; i < names.own.size(); ++i) {
            if ((filesystems >> i & 1) == 0) names.own[i] = {};
            // Cut where the file system has no room for it, HFS+ after 255 units.
            if (!names.own[i].empty()) checkName(names.own[i], UINT16_MAX);
        }
        return names;
    }

    // By name, so that what becomes of equal ones doesn't depend on the order they were given in.
    void addChildren(const Pending& folder) {
        std::vector<const Content*> sorted;
        sorted.reserve(folder.folder->children.size());
        for (const Content& child : folder.folder->children)
            if ((child.filesystems & folder.filesystems) != 0) sorted.push_back(&child);
        std::ranges::stable_sort(sorted, {}, [](const Content* child) { return nameOf(*child); });
        const size_t waiting = pending_.size();
        for (const Content* child : sorted) {
            signal_.check();
            const auto filesystems = static_cast<uint8_t>(child->filesystems & folder.filesystems);
            const ItemNames names = namesOf(*child, filesystems);
            if (std::holds_alternative<HardLink>(child->source) ||
                std::holds_alternative<FinderAlias>(child->source)) {
                links_.push_back({folder.node, child, filesystems});
                continue;
            }
            const uint32_t node = add(folder.node, *child, names, filesystems);
            apply(tree_, node, *child->attributes);
            tree_.addEntry(folder.node, node, names, filesystems);
            if (child->identity != 0) identities_.emplace_back(child->identity, node);
        }
        std::reverse(pending_.begin() + static_cast<ptrdiff_t>(waiting), pending_.end());
    }

    uint32_t add(uint32_t parent, const Content& item, const ItemNames& names, uint8_t filesystems) {
        if (const auto* folder = std::get_if<VirtualFolder>(&item.source)) {
            uint32_t node = tree_.oldFolder(parent, names, filesystems);
            if (node == none) node = tree_.addNode({});
            tree_.own.erase(node); // where an old folder was hidden
            tree_.nodes[node].kind = NodeKind::Folder;
            tree_.nodes[node] = virtualNode(tree_.nodes[node], 0755);
            pending_.push_back({node, folder, filesystems});
            return node;
        }
        if (const auto* real = std::get_if<RealItem>(&item.source))
            return walker_.addItem(real->path, filesystems, tree_.oldFolder(parent, names, filesystems),
                                   isChanged(*item.attributes));
        if (const auto* link = std::get_if<SymbolicLink>(&item.source)) {
            if (link->target.empty() || link->target.find('\0') != std::string::npos)
                fail(ErrorCode::FileLocationConflict,
                     "The symbolic link " + inQuotes(names.name) + " points nowhere.");
            Node node = virtualNode({}, 0777);
            node.kind = NodeKind::SymbolicLink;
            node.leadsToItems = link->leadsToItems;
            tree_.setTarget(node, link->target);
            return tree_.addNode(node);
        }
        Node node = virtualNode({}, 0644);
        SourceFile file;
        if (const auto* data = std::get_if<DataFile>(&item.source)) {
            file.data = data->bytes.empty() ? "" : data->bytes.data();
            file.fingerprint.size = data->bytes.size();
        } else {
            produced_.prepare(std::get<ProducedFile>(item.source), names.name, file);
        }
        node.first = walker_.addSource(file, names.name, names.name);
        if (std::holds_alternative<ProducedFile>(item.source)) produced_.add(node, item, filesystems);
        return tree_.addNode(node);
    }

    // A hard link is another name of the same node; one that is said to look otherwise is a node of its own around the same
    // bytes.
    uint32_t addHardLink(const Link& link) {
        const ItemNames names = namesOf(*link.item, link.filesystems);
        uint32_t node = nodeOf(targetOf(link));
        if (node == none)
            fail(ErrorCode::FileLocationConflict,
                 "The hard link " + inQuotes(names.name) +
                     " points at nothing that is on the disc; add the file, or leave the link out.");
        if (tree_.nodes[node].kind != NodeKind::File)
            fail(ErrorCode::FileLocationConflict,
                 "The hard link " + inQuotes(names.name) +
                     " points at what is no file; a hard link is one more name of a file.");
        if ((link.filesystems & filesystem::hfsPlus) != 0) produced_.showInHfsPlus(tree_.nodes[node]);
        if (isChanged(*link.item->attributes)) {
            const uint32_t original = node;
            node = tree_.addNode(Node(tree_.nodes[original]));
            if (const auto found = tree_.own.find(original); found != tree_.own.end()) {
                const auto own = found->second;
                tree_.own[node] = own;
            }
            for (auto* const all : {&tree_.mac, &tree_.isoMac})
                if (const auto found = all->find(original); found != all->end()) {
                    const auto mac = found->second;
                    (*all)[node] = mac;
                }
            apply(tree_, node, *link.item->attributes);
        }
        tree_.addEntry(link.folder, node, names, link.filesystems);
        return node;
    }

    uint32_t addAlias(const Link& link) {
        const auto filesystems = static_cast<uint8_t>(link.filesystems & filesystem::hfsPlus);
        const ItemNames names = namesOf(*link.item, filesystems);
        if (filesystems == 0)
            fail(ErrorCode::FilesystemsNotSupported,
                 "The Finder alias " + inQuotes(names.name) +
                     " can be in HFS+ only; have HFS+ on the disc and the alias's folder in it, or leave the "
                     "alias out.");
        const uint32_t target = nodeOf(targetOf(link));
        if (target == none)
            fail(ErrorCode::FileLocationConflict,
                 "The Finder alias " + inQuotes(names.name) +
                     " points at nothing that is on the disc; add the item, or leave the alias out.");
        Node node = virtualNode({}, 0644);
        node.kind = NodeKind::Alias;
        node.first = target;
        const uint32_t index = tree_.addNode(node);
        apply(tree_, index, *link.item->attributes);
        tree_.addEntry(link.folder, index, names, filesystems);
        return index;
    }

    Node virtualNode(Node node, uint16_t mode) const {
        node.mode = mode;
        node.owner = node.group = 0;
        node.modified = node.accessed = node.changed = now_;
        node.invisible = false; // what an old folder was
        return node;
    }

    Tree& tree_;
    SourceList& sources_;
    const Signal& signal_;
    FolderWalker walker_;
    ProducedFiles produced_;
    uint8_t filesystems_;
    std::time_t now_;
    std::vector<Pending> pending_;
    std::vector<Link> links_;
    std::vector<Identity> identities_;                 ///< nodes that links can point at
    std::unordered_map<uint64_t, uint32_t> linkNodes_; ///< links that others can point at
};

} // namespace

void addTrack(Tree& tree, const DataTrack& track, uint8_t filesystems, SourceList& sources,
              const Signal& signal) {
    TreeBuilder(tree, track, filesystems, sources, signal).build(track.root);
}

} // namespace engine::plan
