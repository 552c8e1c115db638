// A file that holds bytes of a medium: written and read past the page cache where the file system can.
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
    /// Makes (or empties) `name` in `folder`; with `from`, the file keeps as many bytes and grows behind them.
    /// `mayBeDirect` when every append() but the last has whole pages. Throws MediaWriteFailure.
    explicit ImageFile(int folder, std::string name, uint64_t from = 0, bool mayBeDirect = true);
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;
    /// Closes in the background: freeing the blocks of a large deleted file takes long.
    ~ImageFile();

    /// Reserves the space of all that will be appended from here on. Throws MediaWriteFailure, naming what is free.
    void reserve(uint64_t bytes, const std::string& driveName);
    /// See BurnTarget::write().
    void append(std::span<std::byte> buffer);
    /// Gives the file its exact length and syncs it and the folder; throws UserCanceled as soon as told.
    void flush(const SignalRef& signal);
    uint64_t length() const noexcept { return length_; }

  private:
    void writeOutBehind();

    int folder_;
    std::string name_;
    std::shared_ptr<Descriptor> file_;
    bool direct_ = true;
    uint64_t length_ = 0;    ///< bytes that count
    uint64_t position_ = 0;  ///< bytes in the file, with the padding of the last page
    uint64_t startedTo_ = 0; ///< writing out began up to here
    uint64_t dropped_ = 0;   ///< and is done, and the cache is free, up to here
};

/// Reads a file past the page cache where that is possible and `buffer` allows it.
class ImageReader {
  public:
    /// Throws MediaInvalid.
    ImageReader(int folder, const std::string& name);

    /// Fills `buffer`; answers the bytes, fewer at the end of the file. Throws MediaInvalid.
    size_t read(uint64_t offset, std::span<std::byte> buffer);

  private:
    std::string name_;
    Descriptor file_;
    bool direct_ = false;
};

} // namespace engine
