// The command disc-basic: runs programs, and lists what plug-ins declare.
#include "Program.hpp"
#include "host/basic/library/Library.hpp"
#include "host/plugin/PluginLoader.hpp"
#include "host/runtime/Exceptions.hpp"
#include "host/runtime/Lock.hpp"
#include "host/services/Platform.hpp"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

#include <cstdio>
#include <filesystem>
#include <optional>

#ifndef DISC_VERSION
#define DISC_VERSION "0"
#endif

namespace {

using namespace host;
using namespace host::basic;

constexpr const char* kHelp = R"(disc-basic runs BASIC programs that use disc-recording classes.

  disc-basic [OPTIONS] [run] PROGRAM [ARGUMENTS...]   run a program; its arguments are App.Arguments
  disc-basic [OPTIONS] list [CLASS]                   show the classes of the loaded plug-ins, or one class

Options stand before PROGRAM:
  --plugin FILE         load this plug-in instead of the project's own; may be given several times
  --without-companion   do not load the companion plug-in
  --without-plugins     load no plug-in at all
  --leaks               name the objects that are still alive when the program has ended
  --version             print the version
  --help                print this

Examples:
  disc-basic examples/list-drives.bas
  disc-basic run examples/burn-folder.bas Pictures "My Pictures"
  disc-basic list DRDeviceQRX
  disc-basic --plugin ./Other.so list

Exit status: that of Quit or Return, otherwise 0; 1 when an exception was not caught, 2 when the program could not
be run, 130 or 143 when it was interrupted.
)";

struct Options {
    std::vector<std::string> plugins;
    bool withoutPlugins = false, withoutCompanion = false, leaks = false, help = false, version = false;
    std::string command = "run";
    std::vector<std::string> rest; // the program or class, and the program's arguments
};

// One sentence when the command line makes no sense.
std::optional<std::string> readOptions(const std::vector<std::string>& words, Options& options) {
    bool hasCommand = false;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "--help" || word == "-h")
            options.help = true;
        else if (word == "--version")
            options.version = true;
        else if (word == "--without-companion")
            options.withoutCompanion = true;
        else if (word == "--without-plugins")
            options.withoutPlugins = true;
        else if (word == "--leaks")
            options.leaks = true;
        else if (word == "--plugin") {
            if (i + 1 == words.size()) return "--plugin needs the file of a plug-in.";
            options.plugins.push_back(words[++i]);
        } else if (word.starts_with("--plugin="))
            options.plugins.push_back(word.substr(9));
        else if (word == "--") {
            options.rest.assign(words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
            return {};
        } else if (word.starts_with('-') && word.size() > 1)
            return "There is no option " + word + "; see disc-basic --help.";
        else if (!hasCommand && (word == "run" || word == "list")) {
            hasCommand = true;
            options.command = word;
        } else {
            options.rest.assign(words.begin() + static_cast<std::ptrdiff_t>(i), words.end());
            return {};
        }
    }
    return {};
}

void loadPlugins(const Options& options) {
    if (options.withoutPlugins) return;
    std::vector<std::string> files = options.plugins;
    if (files.empty()) {
        std::error_code error;
        const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
        const auto folder = self.parent_path().parent_path() / "plugins";
        const auto add = [&](const char* name) {
            if (!error && std::filesystem::exists(folder / name, error))
                files.push_back((folder / name).string());
        };
        add("DiscRecording.so");
        if (!options.withoutCompanion) add("Companion.so");
    }
    for (const std::string& file : files) {
        for (const std::string& problem : loadPlugin(file).problems)
            std::fprintf(stderr, "%s: %s\n", file.c_str(), problem.c_str());
    }
}

void listClass(const Class& listed) {
    std::printf("%s%s%s\n", listed.name().c_str(), listed.superName().empty() ? "" : " inherits ",
                listed.superName().c_str());
    for (const Listed& one : listDeclarations(listed))
        std::printf("  %-16s %s\n", one.kind.c_str(), one.text.c_str());
}

int list(const Options& options) {
    if (options.rest.size() > 1) {
        std::fputs("list takes the name of one class.\n", stderr);
        return kExitUnusable;
    }
    if (options.rest.size() == 1) {
        defineLibraryClasses();
        const Class* wanted = findClass(options.rest[0]);
        if (!wanted) {
            std::fprintf(stderr, "There is no class %s; disc-basic list shows those of the plug-ins.\n",
                         options.rest[0].c_str());
            return kExitUnusable;
        }
        listClass(*wanted);
        return kExitGood;
    }
    if (loadedPlugins().empty()) {
        std::fputs("No plug-in is loaded; name one with --plugin FILE.\n", stderr);
        return kExitUnusable;
    }
    bool first = true;
    for (const Plugin* plugin : loadedPlugins()) {
        for (const Class* one : plugin->classes) {
            if (!first) std::puts("");
            first = false;
            listClass(*one);
        }
    }
    return kExitGood;
}

int start(const Options& options) {
    {
        const Locked locked;
        loadPlugins(options);
        givePlatformTheTimeZone();
        if (options.command == "list") {
            const int status = list(options);
            if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
                std::fputs("The list could not be written to its end.\n", stderr);
                return kExitUncaught;
            }
            return status;
        }
    }
    if (options.rest.empty()) {
        std::fputs(
            "Name a program to run: disc-basic PROGRAM [ARGUMENTS...]; disc-basic --help shows more.\n",
            stderr);
        return kExitUnusable;
    }
    return runProgram(options.rest[0], {options.rest.begin() + 1, options.rest.end()}, options.leaks);
}

// In sanitized builds: looks for leaks before the platform, on its way out, forgets objects that it kept.
struct LeakCheck {
    ~LeakCheck() {
#if defined(__SANITIZE_ADDRESS__)
        __lsan_do_leak_check();
#endif
    }
};

} // namespace

int main(int count, char** words) {
    const LeakCheck leaks;
    Options options;
    const auto problem = readOptions({words + 1, words + count}, options);
    if (problem) {
        std::fprintf(stderr, "%s\n", problem->c_str());
        return kExitUnusable;
    }
    if (options.help) return std::fputs(kHelp, stdout) < 0 ? 1 : 0;
    if (options.version) return std::puts("disc-basic " DISC_VERSION) < 0 ? 1 : 0;
    nameTheTimeZone();
    try {
        return start(options);
    } catch (const PluginError& error) {
        std::fprintf(stderr, "%s.\n", error.what());
        return kExitUnusable;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "disc-basic can't go on: %s.\n", error.what());
        return kExitUncaught;
    }
}
