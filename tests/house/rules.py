#!/usr/bin/env python3
"""rules.py: the rules of the house, checked over the files that git knows.

    rules.py RULE [ROOT]     prints every breach as file:line: sentence; exit status 1 when there is one
    rules.py selftest        breaks every rule once in a scratch tree and sees that it is found
"""
import os
import re
import subprocess
import sys
import tempfile

SOURCES = (".c", ".cpp", ".h", ".hpp", ".m", ".mm")


def tracked(root):
    """Source files below the root: tracked or new, not ignored. In a tree without git, every file but build/'s."""
    listing = subprocess.run(["git", "-C", root, "ls-files", "-co", "--exclude-standard"],
                             capture_output=True, text=True)
    if listing.returncode == 0:
        names = listing.stdout.splitlines()
    else:
        names = [os.path.relpath(os.path.join(folder, name), root)
                 for folder, _, files in os.walk(root) for name in files]
        names = [name for name in names if not name.startswith("build/")]
    return sorted(n for n in names if n.endswith(SOURCES) and os.path.exists(os.path.join(root, n)))


def lines_of(root, name):
    with open(os.path.join(root, name), encoding="utf-8") as file:
        return list(enumerate(file.read().splitlines(), 1))


def code_lines(root, name):
    """Lines without comments; good enough for the patterns below."""
    inside = False
    for number, line in lines_of(root, name):
        if inside:
            end = line.find("*/")
            if end < 0:
                continue
            line, inside = line[end + 2:], False
        line = re.sub(r"/\*.*?\*/", "", line)
        start = line.find("/*")
        if start >= 0:
            line, inside = line[:start], True
        yield number, re.sub(r"//.*", "", line)


# Who may include whom: a folder's files may include from these folders of the project (and from their own).
MAY_INCLUDE = {
    "plugin/objc": [],
    "plugin/frame": ["plugin/objc"],
    "plugin/bridge": ["plugin/objc", "plugin/frame"],
    "plugin/": ["plugin/"],
    "platform/engine": [],
    "platform/CoreServices": [],
    "platform/DiscRecording": ["platform/engine", "platform/CoreServices"],
    "host/": ["host/", "plugin/frame/PluginInterface.h"],
    "companion/": ["companion/", "plugin/frame/PluginInterface.h"],
}
ROOMS = ("plugin/", "platform/", "host/", "companion/", "tests/", "benchmarks/")


def includes(root):
    for name in tracked(root):
        room = next((r for r in MAY_INCLUDE if name.startswith(r)), None)
        if room is None:
            continue
        for number, line in lines_of(root, name):
            found = re.match(r'\s*#\s*(?:include|import)\s+["<]([^">]+)[">]', line)
            if not found:
                continue
            path = found.group(1)
            if not path.startswith(ROOMS):
                continue
            if path.startswith(room) or any(path.startswith(allowed) for allowed in MAY_INCLUDE[room]):
                continue
            yield name, number, f"{room} may not include {path}"


def platform_headers(root):
    """The plug-in and the engine see no platform header, and only platform/ and companion/ are Objective-C."""
    for name in tracked(root):
        if name.startswith(("plugin/", "platform/engine/", "host/")):
            for number, line in code_lines(root, name):
                if re.search(r"#\s*(include|import)\s+<(Foundation|AppKit|GNUstep|objc)[/.]", line):
                    yield name, number, "no platform header may be included here"
        if name.endswith((".m", ".mm")) and not name.startswith(("platform/", "companion/", "tests/platform/")) \
                and name != "plugin/objc/ExceptionFrame.m":
            yield name, 1, "Objective-C stands in platform/ and companion/ only, and in the exception frame"


def catching(root):
    """The plug-in catches in one file only, and never in Objective-C++, where @catch crashes."""
    for name in tracked(root):
        for number, line in code_lines(root, name):
            if name.startswith("plugin/") and name != "plugin/objc/ExceptionFrame.m" and \
                    re.search(r"@catch\b|\bcatch\s*\(|\b_setjmp\b|\bsetjmp\b", line):
                yield name, number, "catching is the exception frame's business alone"
            if name.endswith(".mm") and "@catch" in line:
                yield name, number, "@catch in Objective-C++ crashes when a platform exception passes; use a .m file"


def services(root):
    """Host entries are named in the one list; other files of the plug-in use its functions."""
    interface = os.path.join(root, "plugin/frame/PluginInterface.h")
    with open(interface, encoding="utf-8") as file:
        entries = set(re.findall(r"\bX\(\w+\*?,\s*(\w+),", file.read().replace("\n", " ")))
    if not entries:
        yield "plugin/frame/PluginInterface.h", 1, "the list of host entries was not found"
    for name in tracked(root):
        if not name.startswith("plugin/") or name.startswith("plugin/frame/Host") or \
                name == "plugin/frame/PluginMain.cpp":
            continue
        for number, line in code_lines(root, name):
            for text in re.findall(r'"(\w+)"', line):
                if text in entries:
                    yield name, number, f'the host entry "{text}" may be named in plugin/frame/HostServices only'
            if not name.startswith("plugin/frame/") and re.search(r"\bresolver\s*\(", line):
                yield name, number, "only plugin/frame/ calls the resolver"


def messages(root):
    """One header gives a method's code its signature."""
    for name in tracked(root):
        if not name.startswith("plugin/") or name in ("plugin/objc/Message.hpp", "plugin/objc/Runtime.hpp"):
            continue
        for number, line in code_lines(root, name):
            if re.search(r"objc_msg(_lookup|Send)", line):
                yield name, number, "messages are sent through plugin/objc/Message.hpp"


def heads(root):
    """Every file opens with one clause of purpose."""
    for name in tracked(root):
        first = lines_of(root, name)[:1]
        if not first or not re.match(r"(//|/\*)+!?\s*\S+", first[0][1]):
            yield name, 1, "the first line says in a comment what the file is for"


def formatting(root):
    names = tracked(root)
    for start in range(0, len(names), 50):
        result = subprocess.run(["clang-format", "--dry-run", "-Werror", *names[start:start + 50]], cwd=root,
                                capture_output=True, text=True)
        for found in re.finditer(r"^(\S+?):(\d+):\d+: error: ", result.stderr, re.M):
            yield found.group(1), int(found.group(2)), "not in the house's format; run clang-format -i on the file"


RULES = {"includes": includes, "platform-headers": platform_headers, "catching": catching, "services": services,
         "messages": messages, "heads": heads, "format": formatting}

# For each rule a file that breaks it.
BREACHES = {
    "includes": ("plugin/objc/Bad.hpp", '// Bad.hpp: x\n#include "plugin/bridge/Text.hpp"\n'),
    "platform-headers": ("plugin/msf/Bad.cpp", "// Bad.cpp: x\n#import <Foundation/Foundation.h>\n"),
    "catching": ("plugin/msf/Bad.cpp", "// Bad.cpp: x\nvoid f() { try { g(); } catch (...) {} }\n"),
    "services": ("plugin/msf/Bad.cpp", '// Bad.cpp: x\nauto x = find("PluginNewInstance");\n'),
    "messages": ("plugin/msf/Bad.cpp", "// Bad.cpp: x\nauto x = objc_msg_lookup(a, b);\n"),
    "heads": ("plugin/msf/Bad.cpp", "int x;\n"),
    "format": ("plugin/msf/Bad.cpp", "// Bad.cpp: x\nint    x  ;\n"),
}


def selftest(home):
    silent = []
    for rule, (name, text) in BREACHES.items():
        with tempfile.TemporaryDirectory() as root:
            for path, content in ((name, text), ("plugin/frame/PluginInterface.h",
                                                 "/* h */\n#define L(X) X(REALobject, PluginNewInstance, (void))\n"),
                                  (".clang-format", open(os.path.join(home, ".clang-format")).read())):
                full = os.path.join(root, path)
                os.makedirs(os.path.dirname(full), exist_ok=True)
                with open(full, "w", encoding="utf-8") as file:
                    file.write(text if path == name else content)
            if not any(found[0] == name for found in RULES[rule](root)):
                silent.append(rule)
    for rule in silent:
        print(f"the rule '{rule}' did not find its breach")
    return 1 if silent else 0


def main():
    home = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    rule = sys.argv[1] if len(sys.argv) > 1 else ""
    if rule == "selftest":
        return selftest(home)
    if rule not in RULES:
        print(f"rules.py: give one of {', '.join(RULES)} or selftest", file=sys.stderr)
        return 2
    breaches = list(RULES[rule](sys.argv[2] if len(sys.argv) > 2 else home))
    for name, number, sentence in breaches:
        print(f"{name}:{number}: {sentence}")
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
