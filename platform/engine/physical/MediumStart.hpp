// The first blocks of a medium that takes blocks in any order: what readers look at first, and what is written last.
#pragma once

#include "PhysicalDrive.hpp"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace engine {

/// Commands are taken by its functions.
class MediumStart {
  public:
    static constexpr uint64_t blocks = 32;

    explicit MediumStart(std::shared_ptr<PhysicalDrive::Hold> hold) : hold_(std::move(hold)) {}

    /// Zeros take its place, and are on the disc when this returns. Throws.
    void clear();
    /// What shall be there one day.
    void set(std::vector<std::byte> bytes);
    /// Keeps what belongs there and leaves zeros in the buffer, whose first byte is of `block`.
    void holdBack(std::span<std::byte> buffer, uint64_t block);
    /// Shows what is held back as if it were on the disc already.
    std::shared_ptr<MediumReader> readerThrough(std::shared_ptr<MediumReader> reader) const;
    /// Puts it on the disc and reads it back. Throws, after what was there before has been put back.
    void write();

  private:
    using Bytes = std::vector<std::byte>;
    void put(Bytes bytes);
    Result<Bytes> readBack();

    std::shared_ptr<PhysicalDrive::Hold> hold_;
    std::shared_ptr<Bytes> bytes_; ///< null when nothing is to be written
};

} // namespace engine
