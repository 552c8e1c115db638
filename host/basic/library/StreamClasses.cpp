// The classes TextInputStream, TextOutputStream and BinaryStream: files read and written by programs.
#include "Library.hpp"
#include "host/runtime/FolderItem.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

namespace host::basic {

namespace {

// The one field of each of these classes holds the open file, or 0 once it is closed.
Value& handleOf(REALobject self) { return fieldOf(self, 0); }

FILE* openFile(REALobject self) {
    const auto address = static_cast<intptr_t>(handleOf(self).toInt64());
    if (address == 0) raise("IOException", "the stream is closed");
    return reinterpret_cast<FILE*>(address);
}

[[noreturn]] void refuse(const std::string& doing) {
    raise("IOException", doing + ": " + std::strerror(errno));
}

Value makeStream(const char* className, const Value& item, const char* mode, const char* doing) {
    if (item.isNil()) raise("NilObjectException", std::string("the file to be ") + doing + " is nil");
    const std::string path = pathOf(item.object());
    FILE* file = std::fopen(path.c_str(), mode);
    if (!file) refuse("'" + path + "' can't be " + doing);
    // A folder can be opened for reading, but not read.
    struct stat status {};
    if (::fstat(::fileno(file), &status) == 0 && S_ISDIR(status.st_mode)) {
        std::fclose(file);
        raise("IOException", "'" + path + "' can't be " + doing + ": it is a folder");
    }
    Value made = Value::adopt(newObject(requireClass(className)));
    handleOf(made.object()) = Value(static_cast<int64_t>(reinterpret_cast<intptr_t>(file)));
    return made;
}

Value closeStream(REALobject self, Arguments) {
    const auto address = static_cast<intptr_t>(handleOf(self).toInt64());
    if (address == 0) return {};
    handleOf(self) = Value(int64_t{0});
    if (std::fclose(reinterpret_cast<FILE*>(address)) != 0)
        refuse("the file could not be written to its end");
    return {};
}

bool atEnd(FILE* file) {
    const int next = std::getc(file);
    if (next == EOF) return true;
    std::ungetc(next, file);
    return false;
}

void check(FILE* file, const char* what) {
    if (std::ferror(file)) {
        std::clearerr(file);
        refuse(std::string("the file can't be ") + what);
    }
}

// The switch from reading to writing and back needs a seek, says C.
void settle(FILE* file) { std::fseek(file, 0, SEEK_CUR); }

std::string readBytes(FILE* file, int64_t count) {
    std::string bytes;
    char chunk[16384];
    while (count != 0) {
        const size_t wanted =
            count < 0 ? sizeof chunk : static_cast<size_t>(std::min<int64_t>(count, sizeof chunk));
        const size_t got = std::fread(chunk, 1, wanted, file);
        bytes.append(chunk, got);
        if (count > 0) count -= static_cast<int64_t>(got);
        if (got < wanted) break;
    }
    check(file, "read");
    return bytes;
}

void writeBytes(FILE* file, std::string_view bytes) {
    if (bytes.empty()) return;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) refuse("the file can't be written");
}

Value textOf(std::string bytes) {
    return Value::adopt(
        newString(bytes, isValidUTF8(bytes) ? uint32_t{kREALEncodingUTF8} : uint32_t{kREALEncodingUnknown}));
}

Value readLine(REALobject self, Arguments) {
    FILE* file = openFile(self);
    std::string line;
    int byte = 0;
    while ((byte = std::getc(file)) != EOF && byte != '\n')
        line.push_back(static_cast<char>(byte));
    check(file, "read");
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return textOf(std::move(line));
}

MemberSpec member(const char* declaration, Body body, bool shared = false) {
    MemberSpec made;
    made.declaration = parseDeclaration(declaration);
    made.body = std::move(body);
    made.shared = shared;
    return made;
}
MemberSpec property(const char* declaration, Body getter, Body setter = nullptr) {
    MemberSpec made = member(declaration, std::move(getter));
    made.kind = MemberKind::Property;
    made.setter = std::move(setter);
    return made;
}

ClassSpec streamClass(const char* name) {
    ClassSpec made;
    made.name = name;
    MemberSpec handle;
    handle.kind = MemberKind::Property;
    handle.declaration = parseDeclaration("handle As Int64");
    handle.scope = Scope::Private;
    made.members.push_back(std::move(handle));
    // Made by Open and Create only; without a file New would make nothing useful.
    MemberSpec constructor = member("Constructor", [](REALobject, Arguments) -> Value { return {}; });
    constructor.declaration.hasParentheses = true;
    constructor.scope = Scope::Private;
    made.members.push_back(std::move(constructor));
    made.members.push_back(member("Close()", closeStream));
    made.destructor = [](REALobject self) { closeStream(self, {}); };
    return made;
}

void defineTextInput() {
    ClassSpec made = streamClass("TextInputStream");
    made.members.push_back(member(
        "Open(file As FolderItem) As TextInputStream",
        [](REALobject, Arguments a) -> Value { return makeStream("TextInputStream", a[0], "rbe", "read"); },
        true));
    made.members.push_back(member("ReadLine As String", readLine));
    made.members.push_back(member("ReadAll As String", [](REALobject self, Arguments) -> Value {
        return textOf(readBytes(openFile(self), -1));
    }));
    made.members.push_back(
        member("Read(count As Integer) As String", [](REALobject self, Arguments a) -> Value {
            return textOf(readBytes(openFile(self), std::max<int64_t>(a[0].toInt64(), 0)));
        }));
    for (const char* name : {"EOF As Boolean", "EndOfFile As Boolean"})
        made.members.push_back(
            property(name, [](REALobject self, Arguments) -> Value { return Value(atEnd(openFile(self))); }));
    defineClass(std::move(made));
}

void defineTextOutput() {
    ClassSpec made = streamClass("TextOutputStream");
    const auto opener = [](const char* mode) {
        return [mode](REALobject, Arguments a) -> Value {
            return makeStream("TextOutputStream", a[0], mode, "written");
        };
    };
    made.members.push_back(member("Create(file As FolderItem) As TextOutputStream", opener("wbe"), true));
    for (const char* name :
         {"Append(file As FolderItem) As TextOutputStream", "Open(file As FolderItem) As TextOutputStream"})
        made.members.push_back(member(name, opener("abe"), true));
    made.members.push_back(member("Write(text As String)", [](REALobject self, Arguments a) -> Value {
        writeBytes(openFile(self), bytesOf(a[0].string()));
        return {};
    }));
    made.members.push_back(
        member("WriteLine(Optional text As String)", [](REALobject self, Arguments a) -> Value {
            writeBytes(openFile(self), bytesOf(a[0].string()));
            writeBytes(openFile(self), "\n");
            return {};
        }));
    made.members.push_back(member("Flush()", [](REALobject self, Arguments) -> Value {
        if (std::fflush(openFile(self)) != 0) refuse("the file can't be written");
        return {};
    }));
    defineClass(std::move(made));
}

void defineBinary() {
    ClassSpec made = streamClass("BinaryStream");
    made.members.push_back(member(
        "Open(file As FolderItem, Optional writable As Boolean) As BinaryStream",
        [](REALobject, Arguments a) -> Value {
            const bool writable = a[1].toBoolean();
            return makeStream("BinaryStream", a[0], writable ? "r+be" : "rbe",
                              writable ? "opened for writing" : "read");
        },
        true));
    made.members.push_back(member(
        "Create(file As FolderItem, Optional overwrite As Boolean) As BinaryStream",
        [](REALobject, Arguments a) -> Value {
            return makeStream("BinaryStream", a[0], a[1].toBoolean() ? "w+be" : "w+bxe", "created");
        },
        true));
    made.members.push_back(
        member("Read(count As Int64) As String", [](REALobject self, Arguments a) -> Value {
            FILE* file = openFile(self);
            settle(file);
            return Value::adopt(
                newString(readBytes(file, std::max<int64_t>(a[0].toInt64(), 0)), kREALEncodingUnknown));
        }));
    made.members.push_back(member("ReadByte As Integer", [](REALobject self, Arguments) -> Value {
        FILE* file = openFile(self);
        settle(file);
        const std::string byte = readBytes(file, 1);
        if (byte.empty()) raise("IOException", "the file has no more bytes");
        return Value(int32_t{static_cast<unsigned char>(byte[0])});
    }));
    made.members.push_back(member("Write(bytes As String)", [](REALobject self, Arguments a) -> Value {
        FILE* file = openFile(self);
        settle(file);
        writeBytes(file, bytesOf(a[0].string()));
        return {};
    }));
    made.members.push_back(member("WriteByte(byte As UInt8)", [](REALobject self, Arguments a) -> Value {
        FILE* file = openFile(self);
        settle(file);
        const char byte = static_cast<char>(a[0].toInt64());
        writeBytes(file, std::string_view(&byte, 1));
        return {};
    }));
    made.members.push_back(property(
        "Position As Int64",
        [](REALobject self, Arguments) -> Value {
            return Value(static_cast<int64_t>(::ftello(openFile(self))));
        },
        [](REALobject self, Arguments a) -> Value {
            if (::fseeko(openFile(self), static_cast<off_t>(a[0].toInt64()), SEEK_SET) != 0)
                refuse("the position can't be set");
            return {};
        }));
    made.members.push_back(property("Length As Int64", [](REALobject self, Arguments) -> Value {
        FILE* file = openFile(self);
        const off_t before = ::ftello(file);
        if (::fseeko(file, 0, SEEK_END) != 0) refuse("the length can't be found");
        const off_t length = ::ftello(file);
        ::fseeko(file, before, SEEK_SET);
        return Value(static_cast<int64_t>(length));
    }));
    for (const char* name : {"EOF As Boolean", "EndOfFile As Boolean"})
        made.members.push_back(property(name, [](REALobject self, Arguments) -> Value {
            settle(openFile(self));
            return Value(atEnd(openFile(self)));
        }));
    defineClass(std::move(made));
}

} // namespace

void defineLibraryClasses() {
    defineTextInput();
    defineTextOutput();
    defineBinary();
}

} // namespace host::basic
