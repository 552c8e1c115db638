// HostServices.cpp: the host's services, each looked up by name at first use.
#include "plugin/frame/HostServices.hpp"

#include "plugin/frame/Resolver.hpp"

#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace {

using frame::HostCell;
namespace entry = frame::entry;

// A function has its entry's signature; only a byte may have become a bool.
template <class Ours, class Entry>
constexpr bool fits = std::is_same_v<Ours, Entry>;
template <class... Args>
constexpr bool fits<bool(Args...), uint8_t(Args...)> = true;

// What a missing service answers: 0, null, false, nothing.
template <class Result>
Result nothing() {
    if constexpr (!std::is_void_v<Result>) return Result();
}

// Booleans come back as one byte; any bit of it means true.
template <class Result, class Function, class... Args>
Result forward(HostCell<Function>& cell, Args... args) {
    Function* service = cell.get();
    if (!service) return nothing<Result>();
    if constexpr (std::is_same_v<Result, bool>)
        return (service(args...) & 0xFF) != 0;
    else
        return service(args...);
}

} // namespace

#define UNPACK(...) __VA_ARGS__
#define DEFINE_SERVICE(function, name, Result, parameters, arguments)                                        \
    static_assert(fits<Result parameters, entry::name>,                                                      \
                  "the function must have the signature of its entry");                                      \
    Result function parameters {                                                                             \
        static constinit HostCell<entry::name> cell(#name);                                                  \
        return forward<Result>(cell, UNPACK arguments);                                                      \
    }
PLUGIN_HOST_SERVICES(DEFINE_SERVICE)
#undef DEFINE_SERVICE
#undef UNPACK

REALproc REALLoadFrameworkMethod(const char* declaration) {
    static constinit HostCell<entry::REALLoadGlobalMethod> cell("REALLoadGlobalMethod");
    return forward<REALproc>(cell, static_cast<void*>(nullptr), declaration);
}

REALproc REALGetEventInstance(REALobject object, const REALevent* event) {
    static constinit HostCell<entry::GetEventInstance> cell("GetEventInstance");
    return forward<REALproc>(cell, object, event->identity);
}

CFStringRef REALCopyStringCFString(REALstring string) {
    // A cell of its own: this form is used from host version 2012.0 on, the other on every version.
    static constinit HostCell<entry::REALGetStringCFString> cell("REALGetStringCFString");
    return forward<CFStringRef>(cell, string, int32_t{0});
}

bool REALObjectIsA(REALobject object, const char* className) {
    if (!object) return false;
    const REALclassRef classRef = REALGetClassRef(className);
    return classRef && REALObjectIsA(object, classRef);
}

bool IsFolderItem(REALobject object) {
    return REALLoadObjectMethod(object, "TrueItem(Index as integer) as Folderitem") != nullptr;
}

bool IsMemoryBlock(REALobject object) {
    return REALLoadObjectMethod(object, "Constructor(bytes as Integer)") != nullptr;
}
