// Globals.cpp: functions that belong to no class, for plug-ins by declaration and for programs by name.
#include "host/runtime/Builtins.hpp"
#include "host/runtime/Invoke.hpp"
#include "host/runtime/Variant.hpp"

#include <memory>
#include <mutex>

namespace host {
namespace {

std::recursive_mutex mutex;

std::vector<std::unique_ptr<Member>>& globals() {
    static auto& list = *new std::vector<std::unique_ptr<Member>>;
    return list;
}

} // namespace

void defineGlobal(std::string_view declaration, Body body) {
    auto member = std::make_unique<Member>();
    member->declaration = parseDeclaration(declaration);
    member->text = declaration;
    member->shared = true;
    member->body = std::move(body);
    std::lock_guard guard(mutex);
    globals().push_back(std::move(member));
}

std::vector<const Member*> findGlobal(std::string_view name) {
    findClass(""); // the host's own globals come with its classes
    std::lock_guard guard(mutex);
    std::vector<const Member*> found;
    for (const auto& member : globals())
        if (sameName(member->declaration.name, name)) found.push_back(member.get());
    return found;
}

const Member* findGlobalDeclared(const Declaration& declaration) {
    for (const auto* member : findGlobal(declaration.name))
        if (member->declaration.matches(declaration)) return member;
    return nullptr;
}

Value invokeGlobal(std::string_view name, Arguments arguments) {
    const auto members = findGlobal(name);
    if (members.empty()) raise("UnsupportedOperationException", "there is no function " + std::string(name));
    return call(select(members, arguments, false, name), nullptr, arguments);
}

void defineGlobals() {
    defineGlobal("VarType(value As Variant) As Int32",
                 [](REALobject, Arguments arguments) -> Value { return variantType(arguments[0]); });
    defineGlobal("LenB( s as string ) as integer", [](REALobject, Arguments arguments) -> Value {
        return static_cast<int32_t>(bytesOf(arguments[0].string()).size());
    });
}

} // namespace host
