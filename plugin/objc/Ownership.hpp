// Ownership.hpp: who keeps a platform object, visible in the verb.
//
//   retained(object)   the caller now owns one more reference (for a wrapper's slot)
//   autoreleased(id)   the reference that the caller owned is given to the current pool
//   Adopted<T>         takes over a reference that alloc, copy or a Create function gave, and releases it
#pragma once

#include "plugin/objc/Message.hpp"

#include <utility>

namespace objc {

inline Id retained(Id object) { return send<"retain">(object); }
inline Id autoreleased(Id object) { return send<"autorelease">(object); }
inline void release(Id object) { send<"release", void>(object); }

// Owns one reference until it goes out of scope. Handle is Id or a CoreFoundation reference, which on this
// platform is an object too.
template <class Handle = Id>
class Adopted {
  public:
    explicit Adopted(Handle handle) : handle_(handle) {}
    Adopted(Adopted&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Adopted& operator=(Adopted&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Adopted() {
        if (handle_) release(reinterpret_cast<Id>(const_cast<void*>(static_cast<const void*>(handle_))));
    }

    Handle get() const { return handle_; }
    // The caller takes over the reference.
    Handle give() { return std::exchange(handle_, nullptr); }
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    Handle handle_;
};

} // namespace objc
