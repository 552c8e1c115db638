// Reads tokens into the tree of a program.
#pragma once

#include "Ast.hpp"
#include "Lexer.hpp"

namespace host::basic {

/// Reads a whole program. What is broken is reported, one report per statement, and reading goes on after it.
ast::Program parse(const Source& source, Diagnostics& diagnostics);

} // namespace host::basic
