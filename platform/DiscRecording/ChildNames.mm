// ChildNames: specific and mangled names without a string object for each.
#include "ChildNames.hpp"

#import "DRFSObjectPrivate.h"
#import "DRFolder.h"
#include "Elements.hpp"
#import "Filesystems.h"
#import "UnitStrings.h"

namespace discrecording {
namespace {

bool areASCII(const std::u16string& units) {
    return AreASCII(reinterpret_cast<const unichar*>(units.data()), units.size());
}

bool isFolder(DRFSObject* object) {
    static const Class folders = [DRFolder class];
    return [object isKindOfClass:folders];
}

} // namespace

std::u16string unitsOf(NSString* text) {
    std::u16string units([text length], u'\0');
    if (!units.empty())
        [text getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
    return units;
}

// A text that is no proper one (a surrogate without its partner) has no other form, and stays as it is; ASCII has no other.
std::u16string legalName(NameRule rule, NSString* name, bool isFolder) {
    std::u16string units = unitsOf(name);
    if (areASCII(units))
        return legalName(rule, units, isFolder);
    const bool composed = rule == NameRule::Joliet || rule == NameRule::UDF;
    NSString* form =
        composed ? [name precomposedStringWithCanonicalMapping] : [name decomposedStringWithCanonicalMapping];
    return legalName(rule, [form length] == 0 ? units : unitsOf(form), isFolder);
}

std::u16string specificName(DRFSObject* object, NameRule rule) {
    NSString* set = [object ownNameForFilesystem:DRFilesystems()[static_cast<size_t>(rule)].name];
    return set != nil ? unitsOf(set) : legalName(rule, [object baseName], isFolder(object));
}

bool isIn(DRFSObject* object, NameRule rule) {
    const uint32_t mask = [object explicitFilesystemMask];
    return mask == 0 || (mask & DRFilesystems()[static_cast<size_t>(rule)].mask) != 0;
}

std::vector<std::u16string> namesOfChildren(NSArray* children, NameRule rule) {
    std::vector<std::u16string> names;
    std::vector<Sibling> siblings;
    std::vector<size_t> places; // of the siblings among all
    names.reserve([children count]);
    siblings.reserve([children count]);
    places.reserve([children count]);
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    for (DRFSObject* child : Elements<DRFSObject*>(children)) {
        std::u16string name = specificName(child, rule);
        if (isIn(child, rule)) {
            places.push_back(names.size());
            siblings.push_back({std::move(name), isFolder(child)});
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
