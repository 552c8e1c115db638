// Events.hpp: the events of a class, and calls of what a host object implements of them.
//
//   using Prepare = frame::Event<"prepareTrack(burn as DRBurnQRX) as boolean", REALboolean(REALobject, REALobject)>;
//   constinit frame::EventTable<Estimate, Prepare> trackEvents;      // the class record takes trackEvents.rows
//
//   return frame::callEvent<Prepare>(trackEvents, host, REALboolean{0}, [&](auto event) {
//       return event(host, burn.get());
//   });
#pragma once

#include "plugin/frame/Declaration.hpp"
#include "plugin/frame/HostServices.hpp"
#include "plugin/objc/FixedString.hpp"

#include <cstddef>
#include <span>
#include <type_traits>

namespace frame {

// One event: its declaration, and the function that a host object implements it with. That takes the host object
// first, then the declared parameters.
template <objc::FixedString declaration, class Function>
struct Event {
    static_assert(SignatureOf<Function*>::value() == ofInstance(parseDeclaration(declaration.view())),
                  "the function does not fit the declaration of this event");
    using Implementation = Function*;
    static constexpr auto text = declaration;
};

// A class's event table, in the order of declaration. The host writes the events' identities into it when the
// class is registered, so it is static and writable.
template <class... Events>
struct EventTable {
    REALevent rows[sizeof...(Events)] = {REALevent{Events::text.c_str(), 0}...};

    template <class Wanted>
    const REALevent* entry() const {
        std::size_t index = 0;
        ((std::is_same_v<Wanted, Events> ? false : (++index, true)) && ...);
        static_assert((std::is_same_v<Wanted, Events> || ...), "no event of this class");
        return &rows[index];
    }

    // What the host object implements the event with, or null. Looked up at every question, never kept: each
    // object may implement other events.
    template <class Wanted>
    typename Wanted::Implementation of(REALobject host) const {
        return reinterpret_cast<typename Wanted::Implementation>(REALGetEventInstance(host, entry<Wanted>()));
    }
};

// Keeps a host object alive through the call of one of its events.
class HostLock {
  public:
    explicit HostLock(REALobject host) : host_(host) { REALLockObject(host_); }
    HostLock(const HostLock&) = delete;
    HostLock& operator=(const HostLock&) = delete;
    ~HostLock() { REALUnlockObject(host_); }

  private:
    REALobject host_;
};

// Calls `body` with the implementation while the host object is held. Without a host object, or when it does not
// implement the event, answers `missing`.
template <class Wanted, class Table, class Result, class Body>
Result callEvent(const Table& table, REALobject host, Result missing, Body body) {
    if (!host) return missing;
    const auto event = table.template of<Wanted>(host);
    if (!event) return missing;
    const HostLock lock(host);
    return body(event);
}

// The same for an event that answers nothing.
template <class Wanted, class Table>
void callEvent(const Table& table, REALobject host) {
    if (!host) return;
    const auto event = table.template of<Wanted>(host);
    if (!event) return;
    const HostLock lock(host);
    event(host);
}

} // namespace frame
