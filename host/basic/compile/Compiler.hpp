// Turns the tree of a program into nodes that run, and finds what can be wrong before it runs.
#pragma once

#include "host/basic/run/Node.hpp"
#include "host/basic/syntax/Ast.hpp"

#include <deque>
#include <memory>

namespace host::basic {

/// A program that is ready to run.
struct Compiled {
    std::shared_ptr<Code> main;
    std::deque<Value> globals;
    std::vector<std::shared_ptr<Code>> routines;
};

/// Null when something was reported. Defines the program's classes in the runtime.
std::unique_ptr<Compiled> compile(const ast::Program& program, const Source& source,
                                  Diagnostics& diagnostics);

} // namespace host::basic
