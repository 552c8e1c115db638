// PluginLoader.cpp: dlopen, the one entry, and what was registered meanwhile.
#include "host/plugin/PluginLoader.hpp"

#include "host/runtime/Harness.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <memory>
#include <sys/stat.h>

namespace host {
namespace {

auto& plugins() {
    static auto& list = *new std::vector<std::unique_ptr<Plugin>>;
    return list;
}

std::string resolved(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        throw PluginError(path + " can't be loaded: " + std::strerror(errno));
    if (S_ISDIR(status.st_mode)) throw PluginError(path + " is not a plug-in: it is a folder");
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), std::free);
    return real ? real.get() : path;
}

} // namespace

const Plugin& loadPlugin(const std::string& path) {
    const auto file = resolved(path);
    for (const auto& known : plugins())
        if (known->path == file) return *known;
    // Global: the host asks for the platform's functions by name, and the plug-in brings the platform along.
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!library) {
        const char* reason = dlerror();
        throw PluginError(path + " is not a plug-in: " + (reason ? reason : "it is no shared library"));
    }
    const auto main = reinterpret_cast<REALPluginMainProc>(dlsym(library, "REALPluginMain"));
    if (!main) {
        dlclose(library);
        throw PluginError(path + " is not a plug-in: it has no entry REALPluginMain");
    }
    const auto before = allClasses().size();
    const auto problemsBefore = registrationProblems().size();
    main(resolver());
    auto plugin = std::make_unique<Plugin>();
    plugin->path = file;
    const auto classes = allClasses();
    const auto problems = registrationProblems();
    plugin->classes.assign(classes.begin() + static_cast<std::ptrdiff_t>(before), classes.end());
    plugin->problems.assign(problems.begin() + static_cast<std::ptrdiff_t>(problemsBefore), problems.end());
    plugins().push_back(std::move(plugin));
    return *plugins().back();
}

const std::vector<const Plugin*>& loadedPlugins() {
    static std::vector<const Plugin*> list;
    list.clear();
    for (const auto& known : plugins())
        list.push_back(known.get());
    return list;
}

std::vector<Listed> listDeclarations(const Class& listed) {
    std::vector<Listed> list;
    for (const auto& member : listed.members()) {
        if (member->scope == Scope::Private) continue; // not for programs
        std::string kind = member->kind == MemberKind::Method     ? "method"
                           : member->kind == MemberKind::Property ? "property"
                           : member->kind == MemberKind::Event    ? "event"
                                                                  : "constant";
        if (member->shared && member->kind != MemberKind::Constant) kind = "shared " + kind;
        list.push_back({std::move(kind), member->text});
    }
    return list;
}

} // namespace host
