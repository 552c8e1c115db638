// ContentLinks: what becomes of the links in a tree of files and folders.
#include "ContentLinks.hpp"

#import "DRFSObjectPrivate.h"
#import "DRFilePrivate.h"

#include "Elements.hpp"

#include <algorithm>
#include <utility>

namespace discrecording {
namespace {

using engine::Content;
using engine::Error;
using engine::ErrorCode;
using engine::Result;
namespace filesystem = engine::filesystem;

constexpr std::pair<uint8_t, const char*> filesystemNames[] = {{filesystem::iso9660, "ISO 9660"},
                                                               {filesystem::joliet, "Joliet"},
                                                               {filesystem::udf, "UDF"},
                                                               {filesystem::hfsPlus, "HFS+"}};

// Deliberate: a program can give a link another mask than it was made with. Where there are no such links, the burn fails: left
// out, nobody would know until it is missed.
Error notHeld(const std::string& link, const std::string& where, const std::string& mask) {
    return {ErrorCode::FilesystemsNotSupported,
            "The " + link + " is to be in " + where + "; set an explicitFilesystemMask " + mask +
                " for it, or leave it out.",
            {}};
}

Error lost(const std::string& name, const std::string& where = {}) {
    return {ErrorCode::FileLocationConflict,
            "The link \"" + name + "\" points at nothing that is on the disc" +
                (where.empty()
                     ? "; add what it points at, or leave the link out."
                     : " in " + where + "; put what it points at there, too, or leave the link out."),
            {}};
}

// Rock Ridge has the item's name itself; elsewhere an item without a name of its own has that, too.
const std::string& nameIn(uint8_t bit, const Content& item) {
    if (item.names != nullptr && bit == filesystem::udf && !item.names->udf.empty())
        return item.names->udf;
    if (item.names != nullptr && bit == filesystem::hfsPlus && !item.names->hfsPlus.empty())
        return item.names->hfsPlus;
    return item.name;
}

std::vector<Content>& childrenOf(Content& folder) {
    return std::get<engine::VirtualFolder>(folder.source).children;
}

} // namespace

Result<Content> ContentLinks::contentOf(DRFile* link, std::string name, uint8_t mask,
                                        const std::vector<size_t>& way) {
    DRFSObject* target = [link target];
    if (!isInTree(target))
        return lost(name);
    if ([[link linkType] isEqualToString:DRLinkTypeHardLink])
        return Content{std::move(name), engine::HardLink{reinterpret_cast<uintptr_t>(target)}};
    if ([[link linkType] isEqualToString:DRLinkTypeFinderAlias]) {
        if ((mask & ~filesystem::hfsPlus) != 0)
            return notHeld("Finder alias \"" + name + "\"", "file systems that hold none", "for HFS+ alone");
        return Content{std::move(name), engine::FinderAlias{reinterpret_cast<uintptr_t>(target)}};
    }
    if ((mask & filesystem::joliet) != 0)
        return notHeld("symbolic link \"" + name + "\"", "Joliet, which holds none", "without Joliet");
    if ((mask & filesystem::iso9660) != 0 && !hasRockRidge_)
        return notHeld("symbolic link \"" + name + "\"", "ISO 9660, which holds none without Rock Ridge",
                       "without ISO 9660");
    links_.push_back({link, target, way});
    return Content::link(std::move(name), ".");
}

Result<void> ContentLinks::finish(Content& root) {
    if (links_.empty())
        return {};
    list(root);
    std::vector<std::vector<Path>> paths; // all of them before anything is placed, which moves items
    for (const Link& link : links_) {
        auto found = pathsOf(link);
        if (!found.ok())
            return found.error();
        paths.push_back(std::move(*found));
    }
    items_.clear();
    for (size_t i = 0; i < links_.size(); ++i)
        place(links_[i], paths[i], root);
    return {};
}

// Deliberate: a link has its mask from when it was made, so that it is nowhere on the disc is no wish of the program's.
Error ContentLinks::leftOut(DRFile* link, const std::string& name) {
    std::string filesystems;
    for (const auto& [bit, filesystemName] : filesystemNames)
        if (([link explicitFilesystemMask] & bit) != 0)
            filesystems += (filesystems.empty() ? "" : " or ") + std::string(filesystemName);
    return {ErrorCode::FilesystemsNotSupported,
            "The link \"" + name + "\" is for " + filesystems +
                ", and its folder is not on the disc there; put the folder there, too, or leave the link "
                "out.",
            {}};
}

// Asked of the tree, which keeps all in it: the target itself may be going on another thread.
bool ContentLinks::isInTree(DRFSObject* target) {
    if (tree_.empty()) {
        std::vector<DRFSObject*> waiting{root_};
        while (!waiting.empty()) {
            DRFSObject* object = waiting.back();
            waiting.pop_back();
            tree_.insert(object);
            if ([object isKindOfClass:[DRFolder class]])
                for (DRFSObject* child : Elements<DRFSObject*>([static_cast<DRFolder*>(object) children]))
                    waiting.push_back(child);
        }
    }
    return tree_.contains(target);
}

void ContentLinks::list(const Content& root) {
    std::vector<const Content*> waiting{&root};
    while (!waiting.empty()) {
        const Content* item = waiting.back();
        waiting.pop_back();
        items_[reinterpret_cast<DRFSObject*>(static_cast<uintptr_t>(item->identity))] = item;
        if (const auto* folder = std::get_if<engine::VirtualFolder>(&item->source))
            for (const Content& child : folder->children)
                waiting.push_back(&child);
    }
}

// Each file system has its own names, so a link of several may have several paths.
Result<std::vector<ContentLinks::Path>> ContentLinks::pathsOf(const Link& link) const {
    std::vector<Path> paths;
    const uint8_t mask = items_.at(link.file)->filesystems;
    for (const auto& [bit, filesystemName] : filesystemNames) {
        if ((mask & bit) == 0)
            continue;
        auto path = pathIn(bit, filesystemName, link);
        if (!path.ok())
            return path.error();
        const auto same = std::ranges::find(paths, *path, &Path::text);
        if (same == paths.end())
            paths.push_back({std::move(*path), bit});
        else
            same->filesystems |= bit;
    }
    return paths;
}

// From the link's folder up as far as it must be, and down to the target.
Result<std::string> ContentLinks::pathIn(uint8_t bit, const char* filesystemName, const Link& link) const {
    std::unordered_set<DRFSObject*> above;
    for (DRFSObject* folder = [link.file parent]; folder != nil; folder = [folder parent])
        above.insert(folder);
    std::string down;
    DRFSObject* meeting = link.target;
    for (; !above.contains(meeting); meeting = [meeting parent]) {
        const auto found = items_.find(meeting);
        if (found == items_.end())
            return lost(items_.at(link.file)->name);
        if ((found->second->filesystems & bit) == 0)
            return lost(items_.at(link.file)->name, filesystemName);
        const std::string& name = nameIn(bit, *found->second);
        down = down.empty() ? name : name + '/' + down;
    }
    std::string path;
    for (DRFSObject* folder = [link.file parent]; folder != meeting; folder = [folder parent])
        path += path.empty() ? ".." : "/..";
    if (!down.empty())
        path += path.empty() ? down : '/' + down;
    return path.empty() ? std::string(".") : path;
}

// Paths behind the first are items of their own, behind all others of the folder, where no way leads.
void ContentLinks::place(const Link& link, const std::vector<Path>& paths, Content& root) {
    Content* folder = &root;
    for (size_t i = 0; i + 1 < link.way.size(); ++i)
        folder = &childrenOf(*folder)[link.way[i]];
    std::vector<Content>& children = childrenOf(*folder);
    const size_t first = link.way.back();
    const uint64_t identity = children[first].identity;
    // Only a Finder alias can lead to a symbolic link itself: to the one of HFS+.
    const auto named = std::ranges::find_if(
        paths, [](const Path& path) { return (path.filesystems & filesystem::hfsPlus) != 0; });
    for (auto path = paths.begin(); path != paths.end(); ++path) {
        if (path != paths.begin())
            children.push_back(children[first]);
        Content& item = path == paths.begin() ? children[first] : children.back();
        item.source = engine::SymbolicLink{path->text};
        item.filesystems = path->filesystems;
        item.identity = path == (named == paths.end() ? paths.begin() : named) ? identity : 0;
    }
}

} // namespace discrecording
