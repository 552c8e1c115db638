// ChildNames: the names that files and folders have in a file system, as units and for a whole folder at once.
#pragma once

#import "DRFSObject.h"
#include "NameRules.hpp"

#include <string>
#include <vector>

namespace discrecording {

/// The name that was set for the rule's file system, else what becomes of the base name there.
std::u16string specificName(DRFSObject* object, NameRule rule);

/// A child as all its names begin with it.
struct NamedChild {
    DRFSObject* object;
    std::u16string baseName;
    bool isASCII, isFolder;
    uint32_t mask; ///< explicit
};
std::vector<NamedChild> namedChildren(NSArray* children);

/// The mangled names of a folder's children, in their order. Only those that are in the file system, as far as their own masks
/// say, can stand in each other's way; all others keep their specific names.
std::vector<std::u16string> namesOfChildren(const std::vector<NamedChild>& children, NameRule rule);

/// What becomes of a name that is no name of the file system's yet.
std::u16string legalName(NameRule rule, NSString* name, bool isFolder);

/// Whether it stands in the way of its siblings there, as far as its own mask says.
bool isIn(DRFSObject* object, NameRule rule);

/// Of a virtual or a real one. The class is looked up once: that takes longer than the answer.
bool isFolder(DRFSObject* object);
bool isFile(DRFSObject* object);

/// As it is, text or not.
std::u16string unitsOf(NSString* text);

} // namespace discrecording
