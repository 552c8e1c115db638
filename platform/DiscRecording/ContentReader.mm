// ContentReader: turns a tree of files and folders into the content that the engine burns.
#include "ContentReader.hpp"

#include "ContentAttributes.hpp"
#import "DRFSObjectPrivate.h"
#import "DRFilePrivate.h"
#import "DRFolderPrivate.h"
#include "Elements.hpp"
#include "EngineThread.hpp"
#include "FileProducers.hpp"
#import "Filesystems.h"
#include "NameRules.hpp"
#include "PathStrings.hpp"
#include "UdfProperties.hpp"
#include "plan/Names.hpp"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include <sys/stat.h>

namespace discrecording {
namespace {

using engine::Content;
using engine::Error;
using engine::ErrorCode;
using engine::Result;
namespace filesystem = engine::filesystem;

// No file system of a disc holds paths this deep; a tree beyond it is a mistake, and would exhaust the stack.
constexpr int deepestTree = 1000;

// The engine asks for composed text.
std::string composedBytes(NSString* name) {
    std::string bytes = pathnames::bytesOf(name);
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return bytes; // ASCII is composed
    NSString* composed = [name precomposedStringWithCanonicalMapping];
    // A name that is no proper text (a surrogate without its partner) can't be composed and goes as it is.
    return [composed length] == 0 ? bytes : pathnames::bytesOf(composed);
}

Error conflict(DRFSObject* object, const char* problem) {
    std::string path = pathnames::bytesOf([object sourcePath]);
    std::ranges::replace(path, '\0', '?'); // which would end the sentence
    return {ErrorCode::FileLocationConflict, "\"" + path + "\" " + problem, path};
}

Result<Content> realContent(DRFSObject* object, std::string name) {
    std::string path = pathnames::bytesOf([object sourcePath]);
    if (path.find('\0') != std::string::npos)
        return conflict(object, "has a zero character in it; no path has that.");
    struct stat status {};
    const bool wantsFolder = [object isKindOfClass:[DRFolder class]];
    // What is not there at all is the engine's to report, with the system's reason.
    if (wantsFolder && ::stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode)) {
        return conflict(object, "is no folder; add it as a file.");
    }
    if (!wantsFolder && ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
        return conflict(object, "is a folder; add it as a folder.");
    }
    // Where the folder's path is a link, the folder that it leads to is meant.
    if (wantsFolder && ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode))
        path += '/';
    return Content::real(std::move(path), std::move(name));
}

// What the items of the tree ask for, whatever their folders say. Walked with a list: the depth is not known yet.
uint8_t masksBelow(DRFolder* root) {
    uint32_t mask = 0;
    std::vector<DRFSObject*> waiting{root};
    while (!waiting.empty()) {
        DRFSObject* object = waiting.back();
        waiting.pop_back();
        const uint32_t set = [object explicitFilesystemMask];
        mask |= set == UINT32_MAX ? 0 : set;
        if (![object isKindOfClass:[DRFolder class]])
            continue;
        for (DRFSObject* child : Elements<DRFSObject*>([static_cast<DRFolder*>(object) children]))
            waiting.push_back(child);
    }
    return static_cast<uint8_t>(mask & filesystem::all);
}

// Files whose bytes a burn reads where they are, kept for as long as it has the tree: one keeper for all of them.
class KeptFiles {
  public:
    KeptFiles() = default;
    KeptFiles(const KeptFiles&) = delete;
    KeptFiles& operator=(const KeptFiles&) = delete;
    ~KeptFiles() {
        const EngineThread thread; // the last to use it may be a thread of the engine
        for (DRFile* each : all_)
            [each release];
    }
    void add(DRFile* file) { all_.push_back([file retain]); }

  private:
    std::vector<DRFile*> all_;
};

class ContentReader {
  public:
    ContentReader(DRFolder* root, const engine::DataTrack& track, bool estimating)
        : root_(root), estimating_(estimating), hasMacExtensions_(track.macExtensions),
          isoForm_(track.isoLevel), isoNames_(track.isoLevel == 1 ? DRISO9660LevelOne : DRISO9660LevelTwo) {}

    Result<ReadContent> read() {
        uint32_t mask = [root_ explicitFilesystemMask] & filesystem::all;
        if (mask == 0)
            mask = filesystem::iso9660 | filesystem::joliet | masksBelow(root_);
        if ((mask & filesystem::joliet) != 0)
            mask |= filesystem::iso9660;
        const auto filesystems = static_cast<uint8_t>(mask);
        auto content = contentOf(root_, composedBytes([root_ baseName]), filesystems, 0);
        if (!content.ok())
            return content.error();
        content->names = volumeNames();
        if (!links_.empty())
            list(*content);
        for (const Link& link : links_)
            if (const auto done = finish(link, *content); !done.ok())
                return done.error();
        return ReadContent{std::move(*content), filesystems};
    }

  private:
    // A symbolic link's path is known when all names are. It lies where these indices lead to.
    struct Link {
        DRFile* file;
        std::vector<size_t> way;
    };
    struct Member {
        DRFSObject* object;
        uint8_t mask;
    };

    Result<Content> contentOf(DRFSObject* object, std::string name, uint8_t mask, int depth) {
        if (depth > deepestTree) {
            return Error{ErrorCode::BadLayout,
                         "The folder \"" + name +
                             "\" lies too deep in the tree; use fewer folders inside each other.",
                         std::to_string(deepestTree) + " levels"};
        }
        auto content = sourceOf(object, std::move(name), mask, depth);
        if (!content.ok())
            return content;
        content->filesystems = mask;
        content->attributes = attributesOf(object, mask);
        if ([object isKindOfClass:[DRFolder class]])
            if (const struct stat* source = [static_cast<DRFolder*>(object) source])
                keepSource(*source, content->attributes);
        if ((mask & filesystem::udf) != 0)
            readUdfAttributes(object, content->attributes);
        if (hasMacExtensions_ && (mask & filesystem::iso9660) != 0 && [object isKindOfClass:[DRFile class]])
            if (auto mac = isoMacOf(object))
                content->attributes->isoMac = std::move(mac);
        if (depth > 0)
            content->names = namesOf(object, mask, content->name);
        content->identity = reinterpret_cast<uintptr_t>(object);
        return content;
    }

    Result<Content> sourceOf(DRFSObject* object, std::string name, uint8_t mask, int depth) {
        if (![object isVirtual])
            return realContent(object, std::move(name));
        if ([object isKindOfClass:[DRFile class]])
            return fileContent(static_cast<DRFile*>(object), std::move(name));
        return folderContent(static_cast<DRFolder*>(object), std::move(name), mask, depth);
    }

    Result<Content> folderContent(DRFolder* folder, std::string name, uint8_t mask, int depth) {
        std::vector<Member> members;
        std::vector<Sibling> siblings;
        members.reserve([folder count]);
        siblings.reserve([folder count]);
        for (DRFSObject* child : Elements<DRFSObject*>([folder children])) {
            const uint32_t set = [child explicitFilesystemMask];
            const auto childMask = static_cast<uint8_t>(set == 0 ? mask : set & mask);
            if (childMask == 0) {
                if ([child isKindOfClass:[DRFile class]] && [static_cast<DRFile*>(child) linkType] != nil)
                    return leftOut(child);
                continue; // its mask says so
            }
            members.push_back({child, childMask});
            const bool isFolder = [child isKindOfClass:[DRFolder class]];
            siblings.push_back({rockRidgeName(unitsOf([child baseName]), isFolder), isFolder});
        }
        const std::vector<std::u16string> names = mangledNames(NameRule::RockRidge, siblings);
        std::vector<Content> children;
        children.reserve(members.size());
        for (size_t i = 0; i < members.size(); ++i) {
            way_.push_back(i);
            // What an item's names and properties leave behind goes with it, not with the whole tree. An exception that
            // passes is left to the caller's pool, since it may lie in this one.
            NSAutoreleasePool* left = [NSAutoreleasePool new];
            auto content =
                contentOf(members[i].object, pathnames::encode(names[i]), members[i].mask, depth + 1);
            [left release];
            way_.pop_back();
            if (!content.ok())
                return content.error();
            children.push_back(std::move(*content));
        }
        [folder childNamesChanged]; // so that what it kept of them isn't in memory while the disc is written
        return Content::folder(std::move(name), std::move(children));
    }

    Result<Content> fileContent(DRFile* file, std::string name) {
        if ([file linkType] != nil)
            return linkContent(file, std::move(name));
        if ([file producer] != nil)
            return Content::produced(std::move(name), producerOfFile(file, estimating_));
        if (![file hasData]) {
            return Error{ErrorCode::DataProduction,
                         "The file \"" + name + "\" has neither data nor a producer of it.",
                         {}};
        }
        kept_->add(file);
        return Content{std::move(name),
                       engine::DataFile{{static_cast<const char*>([file bytes]), [file length]}, kept_}};
    }

    Result<Content> linkContent(DRFile* file, std::string name) {
        DRFSObject* target = [file target];
        DRFSObject* top = target;
        while ([top parent] != nil)
            top = [top parent];
        if (target == nil || top != root_)
            return lost(name);
        if ([[file linkType] isEqualToString:DRLinkTypeHardLink])
            return Content{std::move(name), engine::HardLink{reinterpret_cast<uintptr_t>(target)}};
        if ([[file linkType] isEqualToString:DRLinkTypeFinderAlias])
            return Content{std::move(name), engine::FinderAlias{reinterpret_cast<uintptr_t>(target)}};
        links_.push_back({file, way_});
        return Content::link(std::move(name), "."); // finished when all names are known
    }

    // Deliberate: a link has its mask from when it was made, so that it is nowhere on the disc is no wish of the program's.
    static Error leftOut(DRFSObject* link) {
        std::string filesystems;
        const std::pair<uint8_t, const char*> all[] = {{filesystem::iso9660, "ISO 9660"},
                                                       {filesystem::joliet, "Joliet"},
                                                       {filesystem::udf, "UDF"},
                                                       {filesystem::hfsPlus, "HFS+"}};
        for (const auto& [bit, name] : all)
            if (([link explicitFilesystemMask] & bit) != 0)
                filesystems += (filesystems.empty() ? "" : " or ") + std::string(name);
        return {ErrorCode::FilesystemsNotSupported,
                "The link \"" + composedBytes([link baseName]) + "\" is for " + filesystems +
                    ", and its folder is not on the disc there; put the folder there, too, or leave the link "
                    "out.",
                {}};
    }

    static Error lost(const std::string& name) {
        return {ErrorCode::FileLocationConflict,
                "The link \"" + name +
                    "\" points at nothing that is on the disc; add what it points at, or leave "
                    "the link out.",
                {}};
    }

    // What became of each object.
    void list(const Content& root) {
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

    // From the link's folder up as far as it must be, and down to the target.
    Result<void> finish(const Link& link, Content& root) {
        const auto mask = static_cast<uint8_t>([link.file explicitFilesystemMask]);
        std::unordered_set<DRFSObject*> above;
        for (DRFSObject* folder = [link.file parent]; folder != nil; folder = [folder parent])
            above.insert(folder);
        std::string down;
        DRFSObject* meeting = [link.file target];
        for (; !above.contains(meeting); meeting = [meeting parent]) {
            const auto found = items_.find(meeting);
            if (found == items_.end() || (found->second->filesystems & mask) == 0)
                return lost(items_.at(link.file)->name);
            down = down.empty() ? nameIn(mask, meeting) : nameIn(mask, meeting) + '/' + down;
        }
        std::string path;
        for (DRFSObject* folder = [link.file parent]; folder != meeting; folder = [folder parent])
            path += path.empty() ? ".." : "/..";
        if (!down.empty())
            path += path.empty() ? down : '/' + down;
        Content* place = &root;
        for (const size_t index : link.way)
            place = &std::get<engine::VirtualFolder>(place->source).children[index];
        place->source = engine::SymbolicLink{path.empty() ? "." : path};
        return {};
    }

    std::string nameIn(uint8_t mask, DRFSObject* object) {
        const NameRule rule = mask == filesystem::hfsPlus ? NameRule::HFSPlus : NameRule::UDF;
        return mask == filesystem::iso9660
                   ? items_.at(object)->name
                   : composedBytes(
                         [object mangledNameForFilesystem:DRFilesystems()[static_cast<int>(rule)].name]);
    }

    // What differs from the item's name, or in ISO 9660 from what the engine makes of that. Rock Ridge has the name itself.
    std::shared_ptr<const engine::FilesystemNames> namesOf(DRFSObject* object, uint8_t mask,
                                                           const std::string& name) const {
        engine::FilesystemNames names;
        const auto add = [&](uint8_t wanted, NSString* filesystemName, std::string& place) {
            if ((mask & wanted) == 0)
                return;
            std::string found = composedBytes([object mangledNameForFilesystem:filesystemName]);
            if (found != name)
                place = std::move(found);
        };
        add(filesystem::joliet, DRJoliet, names.joliet);
        add(filesystem::udf, DRUDF, names.udf);
        add(filesystem::hfsPlus, DRHFSPlus, names.hfsPlus);
        if ((mask & filesystem::iso9660) != 0) {
            std::string found = pathnames::bytesOf([object mangledNameForFilesystem:isoNames_]);
            if (found != isoForm_.legal(name, [object isKindOfClass:[DRFolder class]]))
                names.iso = std::move(found);
        }
        if (names.joliet.empty() && names.udf.empty() && names.hfsPlus.empty() && names.iso.empty())
            return nullptr;
        return std::make_shared<const engine::FilesystemNames>(std::move(names));
    }

    // The root's names are the volume's: those that were set, else the base name as it is.
    std::shared_ptr<const engine::FilesystemNames> volumeNames() const {
        const auto given = [this](NSString* filesystemName) {
            NSString* name = [root_ ownNameForFilesystem:filesystemName];
            return name == nil ? std::string() : composedBytes(name);
        };
        return std::make_shared<const engine::FilesystemNames>(
            engine::FilesystemNames{given(DRJoliet), given(DRUDF), given(DRHFSPlus), given(isoNames_)});
    }

    static std::u16string unitsOf(NSString* text) { return pathnames::decode(composedBytes(text)); }

    DRFolder* root_;
    bool estimating_;
    bool hasMacExtensions_;
    engine::plan::IsoForm isoForm_;
    NSString* isoNames_;      ///< the file system that they are asked for
    std::vector<size_t> way_; ///< to the item that is read
    std::vector<Link> links_;
    std::shared_ptr<KeptFiles> kept_ = std::make_shared<KeptFiles>();
    std::unordered_map<DRFSObject*, const Content*> items_; ///< only where there are links to be finished
};

} // namespace

Result<ReadContent> contentOfRoot(DRFolder* root, const engine::DataTrack& track, bool estimating) {
    return ContentReader(root, track, estimating).read();
}

} // namespace discrecording
