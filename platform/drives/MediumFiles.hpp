// Media as files: taken from a description or an image, put into a drive, and taken out again.
#pragma once

#include "CopyFile.hpp"
#include "VirtualDrive.hpp"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace drives {

/// A medium whose files lie in a folder, named as its description names them.
struct MediumFiles {
    engine::MediumRecord record;
    std::string folder;
};

/// Names of the files that hold a medium's data.
std::vector<std::string> dataFilesOf(const engine::MediumRecord& record);
uint64_t dataBytesOf(const MediumFiles& medium);

/// Copies a medium to a staging folder: a medium's description with its data beside it, the folder that holds
/// one, an image, or a .cue or .toc sheet. `kind` is for images and sheets, whose kind is else the smallest
/// read-only one. Throws Failure.
MediumFiles stageMedium(const std::string& path, const std::string& kind, const Staging& staging, bool quiet);

/// The staged medium is the one in the drive from here on; the one before is gone. Cut off anywhere, one of
/// the two is in the drive. The caller has the drive for himself.
void putInto(const engine::VirtualDrive& drive, const MediumFiles& staged);

/// There is no medium in the drive from here on.
void takeOutOf(const engine::VirtualDrive& drive);

/// Copies the drive's medium to a folder, as what stageMedium() takes; files take their names one by one, the
/// description last. Throws Failure when another file has one of them that is not `replaceable`.
void copyOut(const engine::VirtualDrive& drive, const std::string& folder,
             const std::set<std::string>& replaceable, bool quiet);

/// Writes the description of a blank medium to a file.
void writeBlankMedium(const engine::MediumRecord& record, const std::string& file, bool mayReplace);

} // namespace drives
