// What the catalog's records say of folders, files and hard links (TN1150, "Catalog File Data").
#include "Catalog.hpp"
#include "Fields.hpp"

#include <sys/stat.h>

namespace engine::hfsplus {
namespace {

enum : uint32_t { folderRecord = 1, fileRecord = 2 };
constexpr uint32_t hasThread = 2;

void putTimes(Fields& fields, const Node& node) {
    fields.time(node.created).time(node.modified).time(node.changed).time(node.accessed).time(node.backedUp);
}

// Owner, group, mode, and a number that is the count of names, or of a hard link the file's.
void putPermissions(Fields& fields, const Node& node, uint32_t type, uint32_t special) {
    fields.u32(node.owner).u32(node.group).u8(0).u8(0).u16(type | node.mode).u32(special);
}

// What the Finder keeps, in two halves; reserved fields between.
void putFileFinderInfo(Fields& fields, const FinderInfo& info) {
    fields.u32(info.type).u32(info.creator).u16(info.flags).i16(info.iconTop).i16(info.iconLeft).u16(0);
    fields.skip(8).u16(info.extendedFlags).u16(0).u32(0);
}

void putFolderFinderInfo(Fields& fields, const FinderInfo& info) {
    fields.i16(info.windowTop).i16(info.windowLeft).i16(info.windowBottom).i16(info.windowRight);
    fields.u16(info.flags).i16(info.iconTop).i16(info.iconLeft).u16(info.view);
    fields.i16(info.scrollTop).i16(info.scrollLeft).u32(0).u16(info.extendedFlags).u16(0).u32(0);
}

// Whose type and creator an alias has: of a document the document's own, so that it looks like it.
FinderInfo aliasInfo(const Node& alias, const Node& target) {
    FinderInfo info = alias.finder;
    info.flags |= finder::isAlias;
    info.type = fourCharacters(target.kind == NodeKind::Folder ? "fdrp" : "alis");
    info.creator = fourCharacters("MACS");
    if (target.kind == NodeKind::File && target.finder.type != 0) {
        info.type = target.finder.type;
        info.creator = target.finder.creator;
    }
    return info;
}

} // namespace

void Catalog::putFolder(Fields& fields, uint32_t id, const Node& node, uint32_t items) const {
    fields.u16(folderRecord).u16(0).u32(items).u32(id);
    putTimes(fields, node);
    putPermissions(fields, node, S_IFDIR, 0);
    putFolderFinderInfo(fields, node.finder);
    fields.u32(node.textEncoding);
}

void Catalog::putFile(Fields& fields, uint32_t index, uint32_t names) const {
    const Node& node = tree_.nodes[index];
    const bool isSymbolic = node.kind == NodeKind::SymbolicLink;
    fields.u16(fileRecord).u16(hasThread).u32(0).u32(idOfNode(index));
    putTimes(fields, node);
    putPermissions(fields, node, isSymbolic ? S_IFLNK : S_IFREG, names);
    FinderInfo info = node.kind == NodeKind::Alias ? aliasInfo(node, tree_.nodes[node.target]) : node.finder;
    if (isSymbolic) {
        info.type = fourCharacters("slnk");
        info.creator = fourCharacters("rhap");
    }
    putFileFinderInfo(fields, info);
    fields.u32(node.textEncoding).u32(0);
    putFork(fields, extentsOf(tree_, index, ForkKind::Data), settings_.volumeStart);
    putFork(fields, extentsOf(tree_, index, ForkKind::Resource), settings_.volumeStart);
}

// A reader takes it for a hard link when type, creator, and the date of its creation are right: that of the private
// folder, which here is the root's too.
void Catalog::putLink(Fields& fields, uint32_t entry) const {
    const uint32_t target = tree_.entries[entry].node;
    Node link = tree_.nodes[target];
    link.created = privateFolder_.created;
    link.finder = {};
    link.finder.type = fourCharacters("hlnk");
    link.finder.creator = fourCharacters("hfs+");
    fields.u16(fileRecord).u16(hasThread).u32(0).u32(idOfEntry(entry));
    putTimes(fields, link);
    putPermissions(fields, link, S_IFREG, idOfNode(target));
    putFileFinderInfo(fields, link.finder);
    fields.u32(link.textEncoding).u32(0).skip(2 * forkBytes);
}

} // namespace engine::hfsplus
