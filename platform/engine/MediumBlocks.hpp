// A medium as a row of data blocks, and the newest file system on it.
#pragma once

#include "DataImage.hpp"
#include "Drive.hpp"

#include <memory>

namespace engine {

/// Reads blocks of the medium's data tracks by their addresses.
BlockReader blockReader(const MediumInfo& medium, std::shared_ptr<MediumReader> reader);

/// The place of an image that goes on from the newest ISO 9660 file system of the medium; without `previous` when
/// the newest session has none.
ImagePlace newestFileSystem(const MediumInfo& medium, std::shared_ptr<MediumReader> reader);

} // namespace engine
