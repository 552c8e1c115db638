// The order of compiling: constants, signatures, classes, the program's top level, then all bodies.
#include "CompilerState.hpp"

#include <algorithm>

namespace host::basic {

std::unique_ptr<Compiled> compile(const ast::Program& program, const Source& source,
                                  Diagnostics& diagnostics) {
    return Compiler(program, source, diagnostics).run();
}

Compiler::Compiler(const ast::Program& program, const Source& source, Diagnostics& diagnostics)
    : program_(program), source_(source), diagnostics_(diagnostics) {}

void Compiler::fail(Place place, std::string message) {
    diagnostics_.report(place, std::move(message));
    throw Unusable{};
}

std::unique_ptr<Compiled> Compiler::run() {
    collectConstants();
    for (const auto& tree : program_.classes) {
        classes_.push_back(std::make_unique<PendingClass>());
        classes_.back()->tree = tree.get();
    }
    collectRoutines();
    collectClasses();

    auto main = std::make_shared<Code>();
    main->name = "the program";
    main->declaration.result = {Kind::Int32, {}, false};
    compiled_->main = main;
    RoutineScope scope;
    scope.isMain = true;
    scope.result = main->declaration.result;
    scope_ = &scope;
    scope.blocks.emplace_back();
    Actions shared;
    for (const auto& one : classes_) {
        if (one->made) compileSharedInitials(*one, shared);
    }
    statements(program_.statements, main->body);
    main->slotCount = scope.slotCount;
    main->body.insert(main->body.begin(), std::make_move_iterator(shared.begin()),
                      std::make_move_iterator(shared.end()));
    scope_ = nullptr;

    for (auto& [name, overloads] : routines_) {
        for (Routine& one : overloads)
            compileBody(*one.tree, *one.code);
    }
    for (const auto& one : classes_) {
        if (!one->made) continue;
        for (Routine& method : one->routines) {
            method.code->owner = one->made;
            compileBody(*method.tree, *method.code);
        }
        compileInitializer(*one);
    }
    return diagnostics_.empty() ? std::move(compiled_) : nullptr;
}

// Constants of the top level come first: default values and classes may use them.
void Compiler::collectConstants() {
    RoutineScope scope;
    scope.blocks.emplace_back();
    scope_ = &scope;
    for (const auto& statement : program_.statements) {
        if (statement->kind != ast::StatementKind::constant) continue;
        try {
            constant(static_cast<const ast::ConstantStatement&>(*statement));
        } catch (const Unusable&) {
        }
    }
    globals_ = std::move(scope.blocks.front());
    scope_ = nullptr;
}

void Compiler::collectRoutines() {
    for (const auto& tree : program_.routines) {
        try {
            auto code = std::make_shared<Code>();
            code->name = tree->name;
            code->isShared = true;
            code->declaration = declarationOf(*tree);
            auto& overloads = routines_[tree->name];
            for (const Routine& other : overloads) {
                const auto& a = other.code->declaration.parameters;
                const auto& b = code->declaration.parameters;
                if (std::equal(a.begin(), a.end(), b.begin(), b.end(),
                               [](const Parameter& x, const Parameter& y) { return x.type == y.type; }))
                    fail(tree->place, "There is already a '" + tree->name + "' with these parameters.");
            }
            compiled_->routines.push_back(code);
            overloads.push_back({tree.get(), code});
        } catch (const Unusable&) {
        }
    }
}

Declaration Compiler::declarationOf(const ast::Routine& routine) {
    Declaration made;
    made.name = routine.kind == ast::Routine::Kind::constructor ? "Constructor" : routine.name;
    made.hasParentheses = true;
    bool optional = false;
    for (const ast::Parameter& tree : routine.parameters) {
        if (!made.parameters.empty() && made.parameters.back().assigns)
            fail(tree.place, "The Assigns parameter must be the last one.");
        for (const Parameter& other : made.parameters) {
            if (sameName(other.name, tree.name))
                fail(tree.place, "There are two parameters with the name '" + tree.name + "'.");
        }
        Parameter one;
        one.name = tree.name;
        one.type = typeOf(tree.type);
        one.byRef = tree.byRef;
        one.assigns = tree.assigns;
        if (tree.optional) {
            if (tree.byRef) fail(tree.place, "A ByRef parameter can't be left out.");
            one.defaultValue = tree.defaultValue
                                   ? constantValue(*tree.defaultValue, &one.type, "A default value")
                                   : Value::defaultFor(one.type);
            optional = true;
        } else if (optional && !tree.assigns) {
            fail(tree.place,
                 "The parameter '" + tree.name + "' must have a default value, because one before it has.");
        }
        made.parameters.push_back(std::move(one));
    }
    if (routine.result.given()) made.result = typeOf(routine.result);
    return made;
}

Value Compiler::constantValue(const ast::Expression& tree, const Type* type, const char* what) {
    RoutineScope* const outer = scope_;
    RoutineScope scope;
    scope.blocks.emplace_back();
    scope_ = &scope;
    struct Restore {
        Compiler& compiler;
        RoutineScope* outer;
        ~Restore() { compiler.scope_ = outer; }
    } restore{*this, outer};
    // Constants of the scope that the declaration stands in are known too.
    if (outer) scope.blocks = outer->blocks;

    Typed made = required(tree, type);
    const Place place = tree.place;
    if (!made.constant && made.type.kind != Kind::Nil)
        fail(place, std::string(what) +
                        " must be a constant: a number, a text or what can be computed from constants.");
    NodePtr node = type ? coerce(std::move(made), *type, place, what) : std::move(made.node);
    Context& context = Context::ofThisThread();
    Frame frame{context, nullptr, nullptr, Value(), 0};
    try {
        return node->eval(frame);
    } catch (const Exception& exception) {
        fail(place, std::string(what) + " can't be computed: " + exception.message() + ".");
    }
}

void Compiler::compileBody(const ast::Routine& tree, Code& code) {
    RoutineScope scope;
    scope.owner = code.owner;
    scope.shared = code.isShared || !code.owner;
    scope.result = code.declaration.result;
    scope.blocks.emplace_back();
    scope_ = &scope;
    for (const host::Parameter& parameter : code.declaration.parameters) {
        Variable variable;
        variable.type = parameter.type;
        variable.slot = scope.slotCount++;
        scope.blocks.back().emplace(parameter.name, std::move(variable));
    }
    {
        const Block block(*this);
        statements(tree.body, code.body);
    }
    code.slotCount = scope.slotCount;
    scope_ = nullptr;
}

// ---- types ------------------------------------------------------------------------------------------------

Class* Compiler::findType(std::string_view name) const { return findClass(name); }

Class* Compiler::classOfType(const Type& type) const {
    return type.kind == Kind::Object && !type.array && !isAnyObject(type) ? findClass(type.className)
                                                                          : nullptr;
}

Type Compiler::typeOf(const ast::TypeName& name) {
    Type type = typeNamed(name.name);
    type.array = type.array || name.array;
    if (type.kind != Kind::Object || isAnyObject(type.element())) return type;
    if (const Class* found = findClass(type.className)) {
        type.className = found->name();
        return type;
    }
    std::vector<std::string> known{"Integer", "Int64",   "UInt32", "UInt64",  "Single",
                                   "Double",  "Boolean", "String", "Variant", "Object"};
    for (const auto& one : classes_) {
        if (sameName(one->tree->name, type.className)) {
            type.className = one->tree->name;
            return type;
        }
        known.push_back(one->tree->name);
    }
    for (const Class* one : allClasses())
        known.push_back(one->name());
    fail(name.place, "There is no type '" + name.name + "'" + suggestion(name.name, known) + ".");
}

Class& Compiler::classNamed(const ast::TypeName& name) {
    const Type type = typeOf(name);
    Class* found = classOfType(type);
    if (!found) fail(name.place, "'" + name.name + "' is not a class.");
    return *found;
}

std::string Compiler::suggestion(const std::string& name, const std::vector<std::string>& known) const {
    const std::string wanted = lowerName(name);
    const size_t limit = wanted.size() < 4 ? 1 : wanted.size() < 9 ? 2 : 3;
    size_t best = limit + 1;
    std::string found;
    for (const std::string& candidate : known) {
        const std::string other = lowerName(candidate);
        if (other.size() > wanted.size() + limit || wanted.size() > other.size() + limit) continue;
        std::vector<size_t> row(other.size() + 1);
        for (size_t k = 0; k < row.size(); ++k)
            row[k] = k;
        for (size_t i = 1; i <= wanted.size(); ++i) {
            size_t diagonal = row[0];
            row[0] = i;
            for (size_t k = 1; k <= other.size(); ++k) {
                const size_t changed = diagonal + (wanted[i - 1] == other[k - 1] ? 0 : 1);
                diagonal = row[k];
                row[k] = std::min({row[k] + 1, row[k - 1] + 1, changed});
            }
        }
        if (row.back() < best) {
            best = row.back();
            found = candidate;
        }
    }
    return found.empty() ? "" : "; perhaps '" + found + "' is meant";
}

} // namespace host::basic
