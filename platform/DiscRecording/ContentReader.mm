// ContentReader: turns a tree of files and folders into the content that the engine burns.
#include "ContentReader.hpp"

#include "ChildNames.hpp"
#include "ContentAttributes.hpp"
#include "ContentLinks.hpp"
#import "DRFSObjectPrivate.h"
#import "DRFilePrivate.h"
#import "DRFolderPrivate.h"
#include "Elements.hpp"
#include "EngineThread.hpp"
#include "FileProducers.hpp"
#import "Filesystems.h"
#include "NameRules.hpp"
#include "PathStrings.hpp"
#include "PropertyLimits.hpp"
#include "UdfProperties.hpp"
#include "plan/Names.hpp"

#include <algorithm>

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

bool isASCII(const auto& text) {
    return std::ranges::all_of(text, [](auto unit) { return unit >= 0 && unit < 0x80; });
}

// The engine asks for composed text.
std::string composedBytes(NSString* name) {
    std::string bytes = pathnames::bytesOf(name);
    if (isASCII(bytes))
        return bytes; // which is composed
    NSString* composed = [name precomposedStringWithCanonicalMapping];
    // A name that is no proper text (a surrogate without its partner) can't be composed and goes as it is.
    return [composed length] == 0 ? bytes : pathnames::bytesOf(composed);
}

std::string composedBytes(const std::u16string& name) {
    if (isASCII(name))
        return pathnames::encode(name);
    const auto* units = reinterpret_cast<const unichar*>(name.data());
    return composedBytes([NewStringOfUnits(units, name.size()) autorelease]);
}

std::u16string composedUnits(const NamedChild& child) {
    return child.isASCII ? child.baseName : pathnames::decode(composedBytes([child.object baseName]));
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
    const bool wantsFolder = isFolder(object);
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
        if (!isFolder(object))
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
        : root_(root), links_(root, track.rockRidge), estimating_(estimating),
          hasMacExtensions_(track.macExtensions), hasRockRidge_(track.rockRidge), isoForm_(track.isoLevel),
          isoRule_(track.isoLevel == 1 ? NameRule::ISOLevelOne : NameRule::ISOLevelTwo) {}

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
        if (const auto done = links_.finish(*content); !done.ok())
            return done.error();
        return ReadContent{std::move(*content), filesystems};
    }

  private:
    struct Member {
        DRFSObject* object;
        uint8_t mask;
        size_t place; ///< among the folder's children
    };
    /// Of a folder's children, in their order; empty where the folder isn't.
    struct ChildNames {
        std::vector<std::u16string> joliet, udf, hfsPlus, iso;
    };

    Result<Content> contentOf(DRFSObject* object, std::string name, uint8_t mask, int depth) {
        if (depth > deepestTree) {
            return Error{ErrorCode::BadLayout,
                         "The folder \"" + name +
                             "\" lies too deep in the tree; use fewer folders inside each other.",
                         std::to_string(deepestTree) + " levels"};
        }
        if (const auto checked = checkProperties(object, mask, hasRockRidge_); !checked.ok())
            return checked.error();
        auto content = sourceOf(object, std::move(name), mask, depth);
        if (!content.ok())
            return content;
        content->filesystems = mask;
        content->attributes = attributesOf(object, mask);
        if (isFolder(object))
            if (const struct stat* source = [static_cast<DRFolder*>(object) source])
                keepSource(*source, content->attributes);
        if ((mask & filesystem::udf) != 0)
            readUdfAttributes(object, content->attributes);
        if (hasMacExtensions_ && (mask & filesystem::iso9660) != 0 && isFile(object))
            if (auto mac = isoMacOf(object))
                content->attributes->isoMac = std::move(mac);
        content->identity = reinterpret_cast<uintptr_t>(object);
        return content;
    }

    Result<Content> sourceOf(DRFSObject* object, std::string name, uint8_t mask, int depth) {
        if (![object isVirtual])
            return realContent(object, std::move(name));
        if (isFile(object))
            return fileContent(static_cast<DRFile*>(object), std::move(name), mask);
        return folderContent(static_cast<DRFolder*>(object), std::move(name), mask, depth);
    }

    Result<Content> folderContent(DRFolder* folder, std::string name, uint8_t mask, int depth) {
        const std::vector<NamedChild> all = namedChildren([folder children]);
        std::vector<Member> members;
        std::vector<Sibling> siblings;
        members.reserve(all.size());
        siblings.reserve(all.size());
        size_t place = 0;
        for (const NamedChild& child : all) {
            const size_t here = place++;
            const auto childMask = static_cast<uint8_t>(child.mask == 0 ? mask : child.mask & mask);
            if (childMask == 0) {
                auto* file = static_cast<DRFile*>(child.object);
                if (!child.isFolder && [file linkType] != nil)
                    return ContentLinks::leftOut(file, composedBytes([file baseName]));
                continue; // its mask says so
            }
            members.push_back({child.object, childMask, here});
            siblings.push_back({rockRidgeName(composedUnits(child), child.isFolder), child.isFolder});
        }
        const std::vector<std::u16string> names = mangledNames(NameRule::RockRidge, siblings);
        const ChildNames inFilesystems = namesIn(mask, all);
        std::vector<Content> children;
        children.reserve(members.size());
        // What the items' names and properties leave behind goes with some of them, not with the whole tree. An exception
        // that passes is left to the caller's pool, since it may lie in this one.
        NSAutoreleasePool* left = [NSAutoreleasePool new];
        for (size_t i = 0; i < members.size(); ++i) {
            auto content =
                contentOf(members[i].object, pathnames::encode(names[i]), members[i].mask, depth + 1);
            if (content.ok())
                content->names = namesOf(members[i], siblings[i].isFolder, names[i], *content, inFilesystems);
            if (!content.ok()) {
                [left release];
                return content.error();
            }
            children.push_back(std::move(*content));
            if (i % 64 == 63) {
                [left release];
                left = [NSAutoreleasePool new];
            }
        }
        [left release];
        [folder childNamesChanged]; // so that what it kept of them isn't in memory while the disc is written
        return Content::folder(std::move(name), std::move(children));
    }

    Result<Content> fileContent(DRFile* file, std::string name, uint8_t mask) {
        if ([file linkType] != nil)
            return links_.contentOf(file, std::move(name), mask);
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

    ChildNames namesIn(uint8_t mask, const std::vector<NamedChild>& children) const {
        const auto found = [&](uint8_t wanted, NameRule rule) {
            return (mask & wanted) == 0 ? std::vector<std::u16string>() : namesOfChildren(children, rule);
        };
        return {found(filesystem::joliet, NameRule::Joliet), found(filesystem::udf, NameRule::UDF),
                found(filesystem::hfsPlus, NameRule::HFSPlus), found(filesystem::iso9660, isoRule_)};
    }

    // What differs from the item's name, or in ISO 9660 from what the engine makes of that. Rock Ridge has the name itself.
    std::shared_ptr<const engine::FilesystemNames> namesOf(const Member& member, bool isFolder,
                                                           const std::u16string& units,
                                                           const Content& content,
                                                           const ChildNames& all) const {
        engine::FilesystemNames names;
        const auto add = [&](uint8_t wanted, const std::vector<std::u16string>& found, std::string& to) {
            if ((member.mask & wanted) == 0 || found[member.place] == units)
                return;
            std::string name = composedBytes(found[member.place]);
            if (name != content.name)
                to = std::move(name);
        };
        add(filesystem::joliet, all.joliet, names.joliet);
        add(filesystem::udf, all.udf, names.udf);
        add(filesystem::hfsPlus, all.hfsPlus, names.hfsPlus);
        if ((member.mask & filesystem::iso9660) != 0) {
            const std::u16string& found = all.iso[member.place];
            if (!isASCII(units) || found != legalName(isoRule_, units, isFolder)) {
                std::string name = pathnames::encode(found);
                if (name != isoForm_.legal(content.name, isFolder))
                    names.iso = std::move(name);
            }
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
            engine::FilesystemNames{given(DRJoliet), given(DRUDF), given(DRHFSPlus),
                                    given(DRFilesystems()[static_cast<size_t>(isoRule_)].name)});
    }

    DRFolder* root_;
    ContentLinks links_;
    bool estimating_;
    bool hasMacExtensions_;
    bool hasRockRidge_;
    engine::plan::IsoForm isoForm_;
    NameRule isoRule_;
    std::shared_ptr<KeptFiles> kept_ = std::make_shared<KeptFiles>();
};

} // namespace

Result<ReadContent> contentOfRoot(DRFolder* root, const engine::DataTrack& track, bool estimating) {
    return ContentReader(root, track, estimating).read();
}

} // namespace discrecording
