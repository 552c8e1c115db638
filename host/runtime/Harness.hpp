// Harness.hpp: what tests need of the host: services that are not there, classes that can't be made, and a
// look inside.
#pragma once

#include "host/runtime/Class.hpp"
#include "plugin/frame/PluginInterface.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// Maps entry names to the host's services; what a plug-in's REALPluginMain is given.
REALresolver resolver();

namespace harness {

// ---- a host that lacks something ---------------------------------------------------------------------
void withdraw(std::string_view entry); // the resolver answers null for it from now on
void restore(std::string_view entry);
void setHostVersion(double version); // 2013.0 unless set; 0: there is no "REALGetRBVersion" entry
// "PluginNewInstance" answers null for the class, "pluginObjectType" too: as if it were not registered.
void hideClass(std::string_view className);
// The n-th "PluginNewInstance" of the class from now (1: the next) answers null, once.
void failCreation(std::string_view className, int n = 1);
void failNewMemoryBlock(bool fails); // "newMemoryBlock" answers null, as without memory
void reset();                        // undoes all of the above and forgets logs and the pending exception

// ---- calling members as a host calls them ------------------------------------------------------------
// The record of a class that a
// plug-in registered, or null.
const REALclassDefinition* definition(std::string_view className);
// A member's function by its declaration (blanks and case do not matter), instance members first, then shared
// ones, then the superclasses'. Null when there is none.
REALproc function(std::string_view className, std::string_view declaration);
REALproc setter(std::string_view className, std::string_view declaration);
// member<REALstring(REALobject)>("DRDeviceQRX", "mediaType as string")(object)
template <class Signature>
Signature* member(std::string_view className, std::string_view declaration) {
    return reinterpret_cast<Signature*>(function(className, declaration));
}
template <class Signature>
Signature* setterOf(std::string_view className, std::string_view declaration) {
    return reinterpret_cast<Signature*>(setter(className, declaration));
}
// The service itself, withdrawn or not: service<decltype(f)>("REALLockObject").
REALproc service(std::string_view entry);

// ---- a look inside -----------------------------------------------------------------------------------
struct Raised {
    std::string className;
    std::string message;
    bool operator==(const Raised&) const = default;
};
// The pending exception of this thread, taken away; nothing when there is none.
std::optional<Raised> takeException();
std::size_t references(REALobject object);
std::size_t references(REALstring string);
std::map<std::string, std::size_t> liveInstances(); // by class name, without what the host itself keeps
std::size_t liveStrings();                          // host strings that exist
std::vector<std::string> lookups();                 // entry names in the order the resolver was asked
std::vector<std::string> registrations();           // class names in the order they were registered
int32_t announcedPluginVersion();                   // what "RegisterPluginVersion" was last told; 0 before

} // namespace harness
} // namespace host
