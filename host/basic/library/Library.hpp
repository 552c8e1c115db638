// The functions that every program has, found by name.
#pragma once

#include "host/basic/run/Calls.hpp"

#include <span>
#include <string_view>

namespace host::basic {

/// One function as its file lists it: "Left(text As String, count As Integer) As String". A name with a dot
/// belongs to a namespace: "StdErr.Write(text As String)". "..." at the end takes any number of further
/// values.
struct NativeEntry {
    const char* declaration;
    Native function;
};

struct NativeFunction {
    Declaration declaration; // without the namespace
    Native function = nullptr;
    bool variadic = false;
    std::string name; // with the namespace, as listed
};

/// All overloads; the name in lower case, with its namespace.
std::span<const NativeFunction> findNatives(std::string_view lowerName);
bool isNativeNamespace(std::string_view lowerName);
/// The names of all functions, for suggestions and for `disc-basic list`.
std::vector<std::string> nativeNames();

/// A method that arrays have. Parameters: E element, I integer, S text, A array of the same kind; lower case:
/// may be left out. Result: - none, B boolean, E, I, S, A as above.
struct ArrayMethod {
    const char* name;
    const char* parameters;
    char result;
    Native function; // gets the array first
};
const ArrayMethod* findArrayMethod(std::string_view lowerName, size_t arguments);
bool isArrayMethod(std::string_view lowerName);

/// Classes that are written with the runtime's class records: text and binary files.
void defineLibraryClasses();

/// The program's arguments and file, for App.
void setProgram(std::string file, std::vector<std::string> arguments);

} // namespace host::basic
