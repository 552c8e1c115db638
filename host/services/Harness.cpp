// Harness.cpp: the tests' view of the host.
#include "host/runtime/Harness.hpp"

#include "host/runtime/Exceptions.hpp"
#include "host/runtime/Live.hpp"
#include "host/runtime/Object.hpp"
#include "host/services/State.hpp"

namespace host::harness {
namespace {

template <class Change>
void change(Change apply) {
    auto& state = serviceState();
    std::lock_guard guard(state.mutex);
    apply(state);
}

const Member* memberDeclared(std::string_view className, std::string_view declaration) {
    const Class* found = findClass(className);
    if (!found) return nullptr;
    const Declaration wanted = parseDeclaration(declaration);
    const Member* shared = nullptr;
    for (const auto* member : found->find(wanted.name)) {
        if (!member->declaration.matches(wanted)) continue;
        if (!member->shared) return member;
        if (!shared) shared = member;
    }
    return shared;
}

} // namespace

void withdraw(std::string_view entry) {
    change([=](auto& state) { state.withdrawn.emplace(entry); });
}

void restore(std::string_view entry) {
    change([=](auto& state) { state.withdrawn.erase(std::string(entry)); });
}

void setHostVersion(double version) {
    change([=](auto& state) { state.version = version; });
}

void hideClass(std::string_view className) {
    change([=](auto& state) { state.hidden.emplace(className); });
}

void failCreation(std::string_view className, int n) {
    change([=](auto& state) { state.failing[std::string(className)] = n; });
}

void failNewMemoryBlock(bool fails) {
    change([=](auto& state) { state.failsBlocks = fails; });
}

void reset() {
    change([](auto& state) {
        state.withdrawn.clear();
        state.hidden.clear();
        state.failing.clear();
        state.lookups.clear();
        state.registrations.clear();
        state.version = 2013.0;
        state.failsBlocks = false;
    });
    takeException();
}

const REALclassDefinition* definition(std::string_view className) {
    const Class* found = findClass(className);
    return found ? found->definition() : nullptr;
}

REALproc function(std::string_view className, std::string_view declaration) {
    const Member* member = memberDeclared(className, declaration);
    return member ? member->function : nullptr;
}

REALproc setter(std::string_view className, std::string_view declaration) {
    const Member* member = memberDeclared(className, declaration);
    return member ? member->setter : nullptr;
}

std::optional<Raised> takeException() {
    Value object = takePendingException();
    if (object.isNil()) {
        try {
            throwStrayException();
        } catch (const Exception& exception) {
            object = exception.object();
        }
    }
    if (object.isNil()) return std::nullopt;
    const Exception exception(std::move(object));
    return Raised{exception.className(), exception.message()};
}

std::size_t references(REALobject object) { return referencesOf(object); }
std::size_t references(REALstring string) { return string ? string->references : 0; }
std::map<std::string, std::size_t> liveInstances() { return liveObjects(); }
std::size_t liveStrings() { return liveStringCount(); }

std::vector<std::string> lookups() {
    std::vector<std::string> copy;
    change([&](auto& state) { copy = state.lookups; });
    return copy;
}

std::vector<std::string> registrations() {
    std::vector<std::string> copy;
    change([&](auto& state) { copy = state.registrations; });
    return copy;
}

int32_t announcedPluginVersion() {
    int32_t version = 0;
    change([&](auto& state) { version = state.announced; });
    return version;
}

} // namespace host::harness
