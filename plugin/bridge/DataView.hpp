// DataView.hpp: the bytes of a host string or memory block, for as long as the view stands.
#pragma once

#include "plugin/frame/HostServices.hpp"

// Lives on the stack. A null string or block, or one whose bytes the host does not give, is an empty view.
//
// Bytes and length are those of the moment when the view begins. A program may resize a block, and then its bytes lie
// elsewhere: nothing that lets a program run may be called while a view stands. Every conversion copies at once.
class rbData {
  public:
    // The string's own bytes, unconverted.
    explicit rbData(REALstring string);
    // A part of the block; a length of 0 means the whole block. Deliberately unchecked: the caller is trusted
    // that offset and length lie inside the block.
    rbData(REALmemoryBlock block, int32_t offset, int32_t length);
    ~rbData();

    rbData(const rbData&) = delete;
    rbData& operator=(const rbData&) = delete;

    const char* bytes() const { return bytes_; }
    int64_t length() const { return length_; }

  private:
    REALstring lockedString_ = nullptr;
    REALmemoryBlock lockedBlock_ = nullptr;
    REALstringData record_{};
    bool ownsRecord_ = false;
    const char* bytes_ = nullptr;
    int64_t length_ = 0;
};
