// The file that holds a medium's bytes: written and read past the page cache where the file system can.
#pragma once

#include "Files.hpp"
#include "Signal.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace engine {

/// Direct writes reach the device at once, so that syncing at the end is short, and read-back sees the device
/// instead of memory. Where there are none, the cache is written out and dropped in a steady rhythm.
class ImageFile {
  public:
    /// Makes (or empties) `name` in `folder`. Throws MediaWriteFailure.
    ImageFile(int folder, std::string name);
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;
    /// Closes in the background: freeing the blocks of a large deleted file takes long.
    ~ImageFile();

    /// Reserves the space of the whole file. Throws MediaWriteFailure, naming what is free.
    void reserve(uint64_t bytes, const std::string& driveName);
    /// See BurnTarget::write().
    void append(std::span<std::byte> buffer);
    /// Gives the file its exact length and syncs it and the folder; throws UserCanceled as soon as told.
    void flush(const SignalRef& signal);
    /// Once, before read().
    void openForReading();
    /// See BurnTarget::reader().
    size_t read(uint64_t offset, std::span<std::byte> buffer);

  private:
    void writeOutBehind();

    int folder_;
    std::string name_;
    std::shared_ptr<Descriptor> file_;
    Descriptor reader_;
    bool direct_ = true;
    uint64_t length_ = 0;   ///< bytes appended
    uint64_t position_ = 0; ///< bytes in the file, with the padding of the last page
    uint64_t startedTo_ = 0;
};

} // namespace engine
