// ContentLinks: what becomes of the links in a tree of files and folders.
#include "ContentLinks.hpp"

#import "DRFSObjectPrivate.h"
#import "DRFilePrivate.h"

#include "Elements.hpp"

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

} // namespace

Result<Content> ContentLinks::contentOf(DRFile* link, std::string name, uint8_t mask) {
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
    links_.push_back({link, target});
    return Content::link(std::move(name), ".");
}

Result<void> ContentLinks::finish(Content& root) {
    if (links_.empty())
        return {};
    list(root);
    for (const Link& link : links_) {
        Content& item = *items_.at(link.file);
        auto path = pathOf(link, item);
        if (!path.ok())
            return path.error();
        item.source = engine::SymbolicLink{std::move(*path), true};
    }
    items_.clear();
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

void ContentLinks::list(Content& root) {
    std::vector<Content*> waiting{&root};
    while (!waiting.empty()) {
        Content* item = waiting.back();
        waiting.pop_back();
        items_[reinterpret_cast<DRFSObject*>(static_cast<uintptr_t>(item->identity))] = item;
        if (auto* folder = std::get_if<engine::VirtualFolder>(&item->source))
            for (Content& child : folder->children)
                waiting.push_back(&child);
    }
}

// From the link's folder up as far as it must be, and down to the target, by the items' names: where a file system has others,
// the engine puts these.
Result<std::string> ContentLinks::pathOf(const Link& link, const Content& item) const {
    std::unordered_set<DRFSObject*> above;
    for (DRFSObject* folder = [link.file parent]; folder != nil; folder = [folder parent])
        above.insert(folder);
    std::string down;
    uint8_t missing = 0;
    DRFSObject* meeting = link.target;
    for (; !above.contains(meeting); meeting = [meeting parent]) {
        const auto found = items_.find(meeting);
        if (found == items_.end())
            return lost(item.name);
        missing |= static_cast<uint8_t>(item.filesystems & ~found->second->filesystems);
        down = down.empty() ? found->second->name : found->second->name + '/' + down;
    }
    for (const auto& [bit, filesystemName] : filesystemNames)
        if ((missing & bit) != 0)
            return lost(item.name, filesystemName);
    std::string path;
    for (DRFSObject* folder = [link.file parent]; folder != meeting; folder = [folder parent])
        path += path.empty() ? ".." : "/..";
    if (!down.empty())
        path += path.empty() ? down : '/' + down;
    return path.empty() ? std::string(".") : path;
}

} // namespace discrecording
