// Object.hpp: host objects, their references, their storage, and the count of those that live.
//
// An object is one allocation: four header words (its class, its reference count, a word for arrays'
// elements, a mark that it is a live object), then the instance data of its classes, the root first, then the
// fields that BASIC classes declare. Reference counts are atomic: any thread may hold and drop objects.
#pragma once

#include "plugin/frame/PluginInterface.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace host {

class Class;
class Value;

// A new object with one reference that the caller owns: zeroed, every class's constructor run, the root's
// first. No declared constructor runs (see construct() in Invoke.hpp). Raises when the class or a superclass
// is missing.
REALobject newObject(Class& objectClass);

// Null is allowed in both. The last release runs the destructors (BASIC's first, then each class's, the
// root's last) and frees the object. Where a program or a plug-in has a destructor, the last release waits for the
// lock, so it must not be made while holding anything that a thread with the lock may wait for.
void retain(REALobject object);
void release(REALobject object);

// Plug-ins may keep an object's address without a reference, to call its events later. From outlive() on such an
// object's memory is kept beyond its end, so that hasEnded() can be asked of it.
void outlive(REALobject object);
// True from before the destructors run.
bool hasEnded(REALobject object);

Class& classOf(REALobject object);
uintptr_t referencesOf(REALobject object);
bool isA(REALobject object, const Class& objectClass); // false for null
bool isA(REALobject object, std::string_view className);
// Instance data of the root plug-in class: the first byte after the header.
void* instanceData(REALobject object);
template <class Data>
Data& dataOf(REALobject object) {
    return *static_cast<Data*>(instanceData(object));
}
// A field of a BASIC class, by the index that Member::field gives.
Value& fieldOf(REALobject object, std::size_t index);

// Objects that live, by the name of their class; classes without any are left out. At the end of a program
// that dropped everything this is empty.
std::map<std::string, std::size_t> liveObjects();

// An owned reference.
class Ref {
  public:
    Ref() = default;
    Ref(const Ref& other) : object_(other.object_) { retain(object_); }
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() { release(object_); }

    static Ref adopt(REALobject object) {
        Ref result;
        result.object_ = object;
        return result;
    }
    static Ref borrow(REALobject object) {
        retain(object);
        return adopt(object);
    }

    // Empty for null and for an object that has ended or is about to.
    static Ref borrowAlive(REALobject object);

    REALobject get() const { return object_; }
    REALobject detach() { return std::exchange(object_, nullptr); }
    explicit operator bool() const { return object_ != nullptr; }

  private:
    REALobject object_ = nullptr;
};

} // namespace host
