// Declaration.hpp: the texts with which members are declared, parsed.
#pragma once

#include "host/runtime/Value.hpp"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Parameter {
    std::string name;
    Type type;
    bool byRef = false;   // the machine argument is a pointer to the variable
    bool assigns = false; // last parameter only: called by assignment, object.Name(arguments) = value
    std::optional<Value> defaultValue; // given: the argument may be left out
};

struct Declaration {
    std::string name;
    std::vector<Parameter> parameters;
    Type result;                 // Kind::None: nothing comes back
    bool hasParentheses = false; // written with a parameter list, even an empty one

    // "writeLayout(tracks() As DRTrackQRX)": normalised, for messages and lists.
    std::string text() const;
    // Same name, parameter names, types and result, without regard to case and blanks: how a plug-in asks for
    // a method by its declaration. Parameter names count: a plug-in recognises a memory block by
    // "Constructor(bytes as Integer)".
    bool matches(const Declaration& other) const;
    bool isAssigning() const { return !parameters.empty() && parameters.back().assigns; }
};

// What is wrong with a declaration, and where in the text (0-based).
class DeclarationError : public std::runtime_error {
  public:
    DeclarationError(const std::string& message, std::size_t position)
        : std::runtime_error(message), position(position) {}
    std::size_t position;
};

// "device(index as UInt32) as DRDeviceQRX", "devices as DRDeviceQRX()", "writeLayout(tracks() as
// DRTrackQRX)", "byref flags as uint32" among parameters, "Value(key As Variant, Assigns _value As Variant)".
// Throws DeclarationError.
Declaration parseDeclaration(std::string_view text);

struct ConstantDeclaration {
    std::string name;
    Value value;
};
// "NAME = 42", "NAME = &hFF", "NAME = 1.5", "NAME = true", "NAME = "text"", also "Const NAME as Integer =
// 42".
ConstantDeclaration parseConstant(std::string_view text);

} // namespace host
