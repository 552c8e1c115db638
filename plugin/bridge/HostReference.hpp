// HostReference.hpp: owns one reference to a host value, also when the platform raises.
#pragma once

#include "plugin/frame/HostServices.hpp"

#include <utility>

inline void dropReference(REALobject object) { REALUnlockObject(object); }
inline void dropReference(REALstring string) { REALUnlockString(string); }

// Takes over a reference that the caller owned and drops it at the end of the scope; null is allowed.
template <class Handle>
class HostReference {
  public:
    explicit HostReference(Handle handle) : handle_(handle) {}
    HostReference(const HostReference&) = delete;
    HostReference& operator=(const HostReference&) = delete;
    ~HostReference() {
        if (handle_) dropReference(handle_);
    }

    Handle get() const { return handle_; }
    // The caller takes over the reference.
    Handle give() { return std::exchange(handle_, nullptr); }
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    Handle handle_;
};
