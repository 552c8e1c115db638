// Files.hpp: host folder items as platform URLs and paths.
//
// Nothing here raises: every failure is null.
#pragma once

#include "plugin/bridge/FileManager.hpp"

// A URL that the caller releases. Three routes, the first that succeeds wins: an existing item by its
// reference, an item that does not exist yet by its parent and name, and at last the item's
// FSSpec. Null for a nil item.
CFURLRef MakeCFURLfromFolderItem(REALfolderItem item);

// The same URL, belonging to the current autorelease pool.
objc::Id NewNSURLfile(REALfolderItem item);

// The item's POSIX path, belonging to the current autorelease pool, or nil.
objc::Id NewNSStringPath(REALfolderItem item);
