// PluginLoader.hpp: loads plug-ins and remembers what each declares.
#pragma once

#include "host/runtime/Class.hpp"

#include <stdexcept>
#include <string>
#include <vector>

namespace host {

// "FILE can't be loaded: there is no such file", "FILE is not a plug-in: it has no entry REALPluginMain", ...
class PluginError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct Plugin {
    std::string path;
    std::vector<Class*> classes; // in order of registration; Class::members() has every declaration in order
    std::vector<std::string> problems; // declarations that were not understood, one sentence each
};

// Loads a plug-in for the life of the process; loading a file again answers the first one. Throws
// PluginError.
const Plugin& loadPlugin(const std::string& path);
const std::vector<const Plugin*>& loadedPlugins();

// Every declaration of a class in the order of its record, one per line as `disc-basic list` shows it: kind
// ("method", "property", "shared method", "event", "constant") and text.
struct Listed {
    std::string kind;
    std::string text;
};
std::vector<Listed> listDeclarations(const Class& listed);

} // namespace host
