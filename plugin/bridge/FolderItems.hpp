// FolderItems.hpp: platform URLs and file references as host folder items.
//
// Each answers a value with one reference that the caller owns, or null; nothing here raises.
#pragma once

#include "plugin/bridge/FileManager.hpp"

// An existing item, or one that does not exist yet in a folder that does. Names longer than 255 units are
// cut.
REALfolderItem CFURL2RBFile(CFURLRef url);
inline REALfolderItem NSURLRBFile(objc::Id url) { return CFURL2RBFile(asURL(url)); }

// The text of the whole URL.
REALstring NSURLRB(objc::Id url);

REALfolderItem REALFolderItemFromFSRef(const FSRef* ref);
