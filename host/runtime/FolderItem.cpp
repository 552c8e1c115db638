// FolderItem.cpp: the FolderItem class on the C++ file system library.
#include "host/runtime/FolderItem.hpp"

#include "host/runtime/Builtins.hpp"
#include "host/runtime/Date.hpp"
#include "host/runtime/Exceptions.hpp"

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;

struct ItemData {
    fs::path path;
};

const fs::path& path(REALobject item) { return dataOf<ItemData>(item).path; }

fs::path normal(std::string_view text) {
    // Every call of the C library would end the path there and act on another item.
    if (text.find('\0') != std::string_view::npos)
        raise("InvalidArgumentException", "a path can't contain a zero character");
    // No path at all is the folder that the program runs in.
    fs::path result = fs::absolute(fs::path(text.empty() ? "." : text)).lexically_normal();
    if (!result.has_filename() && result.has_relative_path())
        result = result.parent_path(); // no "/" at the end
    return result;
}

void check(const std::error_code& error, const char* what, const fs::path& item) {
    if (error) raise("IOException", std::string(what) + " " + item.string() + " failed: " + error.message());
}

// The names in a folder in a fixed order, so that Item(index) means the same in a loop.
std::vector<fs::path> entriesOf(REALobject self) {
    std::vector<fs::path> entries;
    std::error_code error;
    fs::directory_iterator entry(path(self), error);
    check(error, "reading the folder", path(self));
    while (entry != fs::directory_iterator()) {
        entries.push_back(entry->path());
        entry.increment(error);
        check(error, "reading the folder", path(self));
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

Value itemAt(REALobject self, const Value& index) {
    const auto entries = entriesOf(self);
    const auto at = index.toInt64();
    if (at < 1 || at > static_cast<int64_t>(entries.size()))
        raise("OutOfBoundsException", "item " + std::to_string(at) +
                                          " is out of bounds: " + path(self).string() + " has " +
                                          std::to_string(entries.size()) + " items, counted from 1");
    return newFolderItem(entries[static_cast<std::size_t>(at - 1)].string());
}

bool isFolder(REALobject self) {
    std::error_code error;
    return fs::is_directory(path(self), error);
}

std::string nameOf(const fs::path& item) {
    const auto name = item.filename().string();
    return name.empty() ? item.string() : name;
}

std::string urlOf(REALobject self) {
    constexpr char kHex[] = "0123456789ABCDEF";
    std::string url = "file://";
    for (const char c : path(self).string()) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) || std::string_view("/-._~").find(c) != std::string_view::npos)
            url += c;
        else
            (url += '%').append({kHex[byte >> 4], kHex[byte & 15]});
    }
    if (isFolder(self) && !url.ends_with('/')) url += '/';
    return url;
}

Value childOf(REALobject self, const std::string& name) {
    if (name.empty() || name.find('/') != std::string::npos)
        raise("InvalidArgumentException", "\"" + name + "\" is not the name of one item");
    return newFolderItem((path(self) / name).string());
}

fs::path targetOf(REALobject self, const Value& target) {
    if (target.isNil()) raise("NilObjectException", "the target is nil");
    return isFolder(target.object()) ? path(target.object()) / nameOf(path(self)) : path(target.object());
}

using Text = std::string (*)(REALobject);
using Flag = bool (*)(REALobject);

MemberSpec text(const char* declaration, Text read) {
    return property(declaration, [=](REALobject self, Arguments) -> Value { return read(self); });
}
MemberSpec flag(const char* declaration, Flag read) {
    return property(declaration, [=](REALobject self, Arguments) -> Value { return read(self); });
}
MemberSpec action(const char* declaration, void (*run)(REALobject, Arguments)) {
    return method(declaration, [=](REALobject self, Arguments a) -> Value {
        run(self, a);
        return {};
    });
}

void addAttributes(std::vector<MemberSpec>& m) {
    m.push_back(text("Name As String", [](REALobject self) { return nameOf(path(self)); }));
    for (const char* name : {"NativePath As String", "ShellPath As String", "POSIXPath As String"})
        m.push_back(text(name, [](REALobject self) { return path(self).string(); }));
    m.push_back(text("URLPath As String", urlOf));
    m.push_back(flag("Exists As Boolean", [](REALobject self) {
        std::error_code error;
        return fs::exists(fs::symlink_status(path(self), error));
    }));
    for (const char* name : {"Directory As Boolean", "IsFolder As Boolean"})
        m.push_back(flag(name, isFolder));
    m.push_back(flag("IsAlias As Boolean", [](REALobject self) {
        std::error_code error;
        return fs::is_symlink(path(self), error);
    }));
    m.push_back(
        flag("IsReadable As Boolean", [](REALobject self) { return access(path(self).c_str(), R_OK) == 0; }));
    m.push_back(flag("IsWriteable As Boolean",
                     [](REALobject self) { return access(path(self).c_str(), W_OK) == 0; }));
    m.push_back(property("Length As Int64", [](REALobject self, Arguments) -> Value {
        std::error_code error;
        const auto size = isFolder(self) ? 0 : fs::file_size(path(self), error);
        return error ? int64_t{0} : static_cast<int64_t>(size);
    }));
    m.push_back(property("ModificationDate As Date", [](REALobject self, Arguments) -> Value {
        struct stat status {};
        if (stat(path(self).c_str(), &status) != 0) return {};
        return newDate(status.st_mtime);
    }));
}

void addTree(std::vector<MemberSpec>& m) {
    m.push_back(property("Count As Integer", [](REALobject self, Arguments) -> Value {
        return isFolder(self) ? static_cast<int32_t>(entriesOf(self).size()) : 0;
    }));
    const auto item = [](REALobject self, Arguments a) { return itemAt(self, a[0]); };
    m.push_back(method("Item(index As Integer) As FolderItem", item));
    m.push_back(method("TrueItem(Index as integer) as Folderitem", item));
    m.push_back(method("Child(name As String) As FolderItem",
                       [](REALobject self, Arguments a) { return childOf(self, a[0].toText()); }));
    m.push_back(property("Parent As FolderItem", [](REALobject self, Arguments) -> Value {
        if (path(self) == path(self).root_path()) return {};
        return newFolderItem(path(self).parent_path().string());
    }));
}

void addActions(std::vector<MemberSpec>& m) {
    m.push_back(action("CreateAsFolder", [](REALobject self, Arguments) {
        std::error_code error;
        fs::create_directory(path(self), error);
        check(error, "creating the folder", path(self));
    }));
    for (const char* name : {"Delete", "Remove"})
        m.push_back(action(name, [](REALobject self, Arguments) {
            std::error_code error;
            const bool wasThere = fs::remove(path(self), error);
            if (!error && !wasThere) error = std::make_error_code(std::errc::no_such_file_or_directory);
            check(error, "deleting", path(self));
        }));
    m.push_back(action("CopyFileTo(target As FolderItem)", [](REALobject self, Arguments a) {
        std::error_code error;
        fs::copy_file(path(self), targetOf(self, a[0]), error);
        check(error, "copying", path(self));
    }));
    m.push_back(action("MoveFileTo(target As FolderItem)", [](REALobject self, Arguments a) {
        std::error_code error;
        fs::rename(path(self), targetOf(self, a[0]), error);
        check(error, "moving", path(self));
    }));
}

} // namespace

Ref newFolderItem(std::string_view text) {
    Ref item = Ref::adopt(newObject(requireClass("FolderItem")));
    dataOf<ItemData>(item.get()).path = normal(text);
    return item;
}

std::string pathOf(REALobject folderItem) { return path(folderItem).string(); }

void defineFolderItemClass() {
    std::vector<MemberSpec> m;
    m.push_back(action("Constructor(path As String)", [](REALobject self, Arguments a) {
        const auto given = a[0].toText();
        if (given.empty()) raise("InvalidArgumentException", "the path of a folder item can't be empty");
        dataOf<ItemData>(self).path = normal(given);
    }));
    m.push_back(action("Constructor(other As FolderItem)", [](REALobject self, Arguments a) {
        if (a[0].isNil()) raise("NilObjectException", "the folder item to copy is nil");
        dataOf<ItemData>(self).path = path(a[0].object());
    }));
    addAttributes(m);
    addTree(m);
    addActions(m);
    defineBuiltin(builtinWith<ItemData>("FolderItem", std::move(m)));
}

} // namespace host
