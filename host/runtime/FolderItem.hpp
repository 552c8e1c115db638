// FolderItem.hpp: a file or folder by its path, whether it exists or not.
//
// Class "FolderItem": Constructor(path As String); Name, NativePath (ShellPath, POSIXPath), URLPath, Exists,
// Directory (IsFolder), IsAlias, IsReadable, IsWriteable, Length, Count, Item(index from 1), TrueItem(index),
// Child(name), Parent, ModificationDate, CreateAsFolder, Delete (Remove), CopyFileTo, MoveFileTo.
#pragma once

#include "host/runtime/Value.hpp"

#include <string>
#include <string_view>

namespace host {

// An absolute path; a relative one is taken from the current folder. "." and ".." parts and doubled slashes
// go. Raises InvalidArgumentException for a zero byte.
Ref newFolderItem(std::string_view path);
std::string pathOf(REALobject folderItem);

} // namespace host
