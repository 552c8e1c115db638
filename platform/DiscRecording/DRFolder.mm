// DRFolder: a folder of a disc's content.
#import "DRFolder.h"
#include "ChildNames.hpp"
#import "DRFSObjectPrivate.h"
#import "DRFile.h"
#import "DRFolderPrivate.h"
#include "Elements.hpp"
#include "PathStrings.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <unordered_map>
#include <vector>

#include <dirent.h>
#include <sys/stat.h>

namespace {

struct Entry {
    std::string name;
    bool isFolder;
};

// What a folder is and holds, in the order of the names' bytes so that equal folders make equal discs. The system's
// error number when it can't be read.
int listFolder(const std::string& path, struct stat& self, std::vector<Entry>& entries) {
    DIR* folder = ::opendir(path.c_str());
    if (folder == nullptr)
        return errno;
    if (::fstat(::dirfd(folder), &self) != 0) {
        const int error = errno;
        ::closedir(folder);
        return error;
    }
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(folder);
        if (entry == nullptr)
            break;
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        struct stat status {};
        const std::string whole = path + "/" + entry->d_name;
        const bool isFolder = ::lstat(whole.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        entries.push_back({std::string(name), isFolder});
    }
    const int error = errno;
    ::closedir(folder);
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return error;
}

} // namespace

// The mangled names of the first children, for each rule that was asked for since anything else than an addition changed.
struct DRFolderNames {
    struct OfOneRule {
        std::unordered_map<const void*, std::u16string> names;
        std::optional<discrecording::GrowingNames> growing; ///< once a child comes behind them
    };
    std::array<std::optional<OfOneRule>, discrecording::nameRules> byRule;
};

namespace {

DRFolderNames::OfOneRule namesOfAll(NSArray* children, discrecording::NameRule rule) {
    std::vector<std::u16string> names =
        discrecording::namesOfChildren(discrecording::namedChildren(children), rule);
    DRFolderNames::OfOneRule result;
    result.names.reserve(names.size());
    for (size_t i = 0; i < names.size(); ++i)
        result.names.emplace([children objectAtIndex:i], std::move(names[i]));
    return result;
}

// A child behind the others changes none of their names, so that a program can ask for names while it adds children. False
// where it would: then all are found anew.
bool addNamesBehind(DRFolderNames::OfOneRule& known, NSArray* children, discrecording::NameRule rule) {
    const NSUInteger first = known.names.size(), count = [children count];
    if (first < count && !known.growing) {
        std::vector<discrecording::Sibling> siblings;
        std::vector<std::u16string> names;
        for (NSUInteger i = 0; i < first; ++i) {
            DRFSObject* child = [children objectAtIndex:i];
            if (!discrecording::isIn(child, rule))
                continue;
            siblings.push_back({discrecording::specificName(child, rule), discrecording::isFolder(child)});
            names.push_back(known.names.at(child));
        }
        known.growing.emplace(rule, siblings, names);
    }
    for (NSUInteger i = first; i < count; ++i) {
        DRFSObject* child = [children objectAtIndex:i];
        std::u16string name = discrecording::specificName(child, rule);
        if (discrecording::isIn(child, rule)) {
            const auto added = known.growing->add({name, discrecording::isFolder(child)});
            if (!added)
                return false;
            name = *added;
        }
        known.names.emplace(child, std::move(name));
    }
    return true;
}

} // namespace

namespace {

// A tree may be deeper than the stack: what the end of a folder would end with it waits until the outermost folder that ends
// on this thread has come to its own children.
thread_local std::vector<NSMutableArray*>* waitingToEnd = nullptr;

void endChildren(NSMutableArray* children) {
    if (waitingToEnd != nullptr) {
        waitingToEnd->push_back(children);
        return;
    }
    std::vector<NSMutableArray*> waiting{children};
    const struct Outermost {
        explicit Outermost(std::vector<NSMutableArray*>& list) { waitingToEnd = &list; }
        ~Outermost() { waitingToEnd = nullptr; }
    } outermost(waiting);
    while (!waiting.empty()) {
        NSMutableArray* last = waiting.back();
        waiting.pop_back();
        [last release];
    }
}

} // namespace

@implementation DRFolder

+ (DRFolder*)folderWithPath:(NSString*)path {
    return [[[self alloc] initWithPath:path] autorelease];
}

- (id)initWithPath:(NSString*)path {
    return [self initWithSourcePath:path];
}

+ (DRFolder*)virtualFolderWithName:(NSString*)name {
    return [[static_cast<DRFolder*>([self alloc]) initWithName:name] autorelease];
}

- (id)initWithName:(NSString*)name {
    self = [self initWithBaseName:name];
    if (self != nil)
        _children = [[NSMutableArray alloc] init];
    return self;
}

- (void)dealloc {
    // Children may live on: they must not point at a folder that is gone.
    for (DRFSObject* child : discrecording::Elements<DRFSObject*>(_children)) {
        [child setParent:nil];
    }
    endChildren(_children);
    delete _names;
    delete _source;
    [super dealloc];
}

- (void)makeVirtual {
    if ([self isVirtual])
        return;
    std::vector<Entry> entries;
    const std::string path = pathnames::bytesOf([self sourcePath]);
    struct stat source {};
    const int error = listFolder(path, source, entries);
    if (error != 0) {
        NSString* reason = [NSString
            stringWithFormat:@"The folder \"%@\" can't be made virtual, because it can't be read: %s.",
                             [self sourcePath], std::strerror(error)];
        [NSException raise:NSInternalInconsistencyException format:@"%@", reason];
    }
    _children = [[NSMutableArray alloc] initWithCapacity:entries.size()];
    for (const Entry& entry : entries) {
        NSString* whole = pathnames::textOf(path + "/" + entry.name);
        DRFSObject* child =
            entry.isFolder ? [[DRFolder alloc] initWithPath:whole] : [[DRFile alloc] initWithPath:whole];
        [child setParent:self];
        [_children addObject:child];
        [child release];
    }
    _source = new struct stat(source);
    [self forgetSource];
}

- (void)requireVirtualFor:(NSString*)action {
    if ([self isVirtual])
        return;
    [NSException
         raise:NSInternalInconsistencyException
        format:@"The folder \"%@\" is a real folder, so it can't %@ children; send it makeVirtual first.",
               [self baseName], action];
}

- (void)addChild:(DRFSObject*)child {
    [self requireVirtualFor:@"be given"];
    if (child == nil)
        return;
    if (![child isKindOfClass:[DRFSObject class]]) {
        [NSException raise:NSInvalidArgumentException
                    format:@"The folder \"%@\" can hold files and folders only, not a %@.", [self baseName],
                           [child class]];
    }
    if ([child parent] == self)
        return;
    for (DRFSObject* above = self; above != nil; above = [above parent]) {
        if (above != child)
            continue;
        [NSException raise:NSInvalidArgumentException
                    format:@"The folder \"%@\" can't be put into itself or into a folder inside it.",
                           [child baseName]];
    }
    [_children addObject:child]; // before it leaves its old parent, which may hold its last reference
    [[child parent] removeChild:child];
    [child setParent:self];
}

- (void)removeChild:(DRFSObject*)child {
    [self requireVirtualFor:@"lose"];
    if (child == nil || [child parent] != self)
        return;
    [child setParent:nil];
    [_children removeObjectIdenticalTo:child];
    [self childNamesChanged];
}

- (NSArray*)children {
    return _children == nil ? nil : [NSArray arrayWithArray:_children];
}

- (uint32_t)count {
    return static_cast<uint32_t>([_children count]);
}

@end

@implementation DRFolder (Private)

- (const struct stat*)source {
    return _source;
}

- (void)childNamesChanged {
    delete _names;
    _names = nullptr;
}

- (NSString*)mangledNameOfChild:(DRFSObject*)child byRule:(int)rule {
    if (_names == nullptr)
        _names = new DRFolderNames;
    auto& known = _names->byRule[static_cast<size_t>(rule)];
    const auto names = static_cast<discrecording::NameRule>(rule);
    if (!known || !addNamesBehind(*known, _children, names))
        known = namesOfAll(_children, names);
    const std::u16string& name = known->names.at(child);
    return [NewStringOfUnits(reinterpret_cast<const unichar*>(name.data()), name.size()) autorelease];
}

@end
