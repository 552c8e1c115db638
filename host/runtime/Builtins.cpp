// Builtins.cpp: helpers for the host's own classes, and the classes of exceptions.
#include "host/runtime/Builtins.hpp"

namespace host {

MemberSpec method(std::string_view declaration, Body body) {
    MemberSpec spec;
    spec.declaration = parseDeclaration(declaration);
    spec.body = std::move(body);
    return spec;
}

MemberSpec sharedMethod(std::string_view declaration, Body body) {
    MemberSpec spec = method(declaration, std::move(body));
    spec.shared = true;
    return spec;
}

MemberSpec property(std::string_view declaration, Body getter, Body setter) {
    MemberSpec spec = method(declaration, std::move(getter));
    spec.kind = MemberKind::Property;
    spec.setter = std::move(setter);
    return spec;
}

MemberSpec storedProperty(std::string_view declaration) {
    MemberSpec spec;
    spec.kind = MemberKind::Property;
    spec.declaration = parseDeclaration(declaration);
    return spec;
}

void defineExceptionClasses() {
    BuiltinSpec root;
    root.spec.name = "RuntimeException";
    root.spec.members.push_back(storedProperty("Message As String"));
    root.spec.members.push_back(storedProperty("ErrorNumber As Int32"));
    // Found among the members by their order: "Message" is field 0, "ErrorNumber" field 1.
    const auto construct = [](REALobject self, Arguments arguments) -> Value {
        for (std::size_t i = 0; i < arguments.size(); ++i)
            fieldOf(self, i) = arguments[i];
        return {};
    };
    for (const char* declaration : {"Constructor()", "Constructor(message As String)",
                                    "Constructor(message As String, number As Integer)"})
        root.spec.members.push_back(method(declaration, construct));
    defineBuiltin(std::move(root));
    for (const char* name : {"NilObjectException", "UnsupportedOperationException", "OutOfMemoryException",
                             "OutOfBoundsException", "TypeMismatchException", "IllegalCastException",
                             "IOException", "KeyNotFoundException", "InvalidArgumentException",
                             "StackOverflowException", "UnsupportedFormatException",
                             "FunctionNotFoundException", "DivisionByZeroException", "EndException"}) {
        BuiltinSpec builtin;
        builtin.spec.name = name;
        builtin.spec.superName = "RuntimeException";
        defineBuiltin(std::move(builtin));
    }
}

} // namespace host
