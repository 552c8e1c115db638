// ChildNames: specific and mangled names without a string object for each.
#include "ChildNames.hpp"

#import "DRFSObjectPrivate.h"
#import "DRFile.h"
#import "DRFolder.h"
#include "Elements.hpp"
#import "Filesystems.h"
#import "UnitStrings.h"

namespace discrecording {
namespace {

bool areASCII(const std::u16string& units) {
    return AreASCII(reinterpret_cast<const unichar*>(units.data()), units.size());
}

// A text that is no proper one (a surrogate without its partner) has no other form, and stays as it is; ASCII has no other.
std::u16string legalForm(NameRule rule, const std::u16string& units, bool isFolder) {
    NSString* name =
        [NewStringOfUnits(reinterpret_cast<const unichar*>(units.data()), units.size()) autorelease];
    const bool composed = rule == NameRule::Joliet || rule == NameRule::UDF;
    NSString* form =
        composed ? [name precomposedStringWithCanonicalMapping] : [name decomposedStringWithCanonicalMapping];
    return legalName(rule, [form length] == 0 ? units : unitsOf(form), isFolder);
}

NSString* ownName(DRFSObject* object, NameRule rule) {
    return [object ownNameForFilesystem:DRFilesystems()[static_cast<size_t>(rule)].name];
}

bool isIn(uint32_t mask, NameRule rule) {
    return mask == 0 || (mask & DRFilesystems()[static_cast<size_t>(rule)].mask) != 0;
}

std::u16string specificName(const NamedChild& child, NameRule rule) {
    if (NSString* set = ownName(child.object, rule))
        return unitsOf(set);
    return child.isASCII ? legalName(rule, child.baseName, child.isFolder)
                         : legalForm(rule, child.baseName, child.isFolder);
}

} // namespace

bool isFolder(DRFSObject* object) {
    static const Class folders = [DRFolder class];
    return [object isKindOfClass:folders];
}

bool isFile(DRFSObject* object) {
    static const Class files = [DRFile class];
    return [object isKindOfClass:files];
}

std::u16string unitsOf(NSString* text) {
    std::u16string units([text length], u'\0');
    if (!units.empty())
        [text getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
    return units;
}

std::u16string legalName(NameRule rule, NSString* name, bool isFolder) {
    const std::u16string units = unitsOf(name);
    return areASCII(units) ? legalName(rule, units, isFolder) : legalForm(rule, units, isFolder);
}

std::u16string specificName(DRFSObject* object, NameRule rule) {
    NSString* set = ownName(object, rule);
    return set != nil ? unitsOf(set) : legalName(rule, [object baseName], isFolder(object));
}

bool isIn(DRFSObject* object, NameRule rule) { return isIn([object explicitFilesystemMask], rule); }

std::vector<NamedChild> namedChildren(NSArray* children) {
    std::vector<NamedChild> named;
    named.reserve([children count]);
    for (DRFSObject* child : Elements<DRFSObject*>(children)) {
        std::u16string units = unitsOf([child baseName]);
        const bool isASCII = areASCII(units);
        named.push_back({child, std::move(units), isASCII, isFolder(child), [child explicitFilesystemMask]});
    }
    return named;
}

std::vector<std::u16string> namesOfChildren(const std::vector<NamedChild>& children, NameRule rule) {
    std::vector<std::u16string> names;
    std::vector<Sibling> siblings;
    std::vector<size_t> places; // of the siblings among all
    names.reserve(children.size());
    siblings.reserve(children.size());
    places.reserve(children.size());
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (const NamedChild& child : children) {
        std::u16string name = specificName(child, rule);
        if (isIn(child.mask, rule)) {
            places.push_back(names.size());
            siblings.push_back({std::move(name), child.isFolder});
        }
        names.push_back(std::move(name));
    }
    [pool release];
    std::vector<std::u16string> mangled = mangledNames(rule, siblings);
    for (size_t i = 0; i < places.size(); ++i)
        names[places[i]] = std::move(mangled[i]);
    return names;
}

} // namespace discrecording
