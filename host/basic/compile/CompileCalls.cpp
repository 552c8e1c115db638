// Compiles calls: which function a name and its arguments mean.
#include "CompilerState.hpp"

namespace host::basic {

using namespace ast;

namespace {

const Type kVariantType{Kind::Variant, {}, false};

std::string counted(size_t number) {
    return std::to_string(number) + (number == 1 ? " argument" : " arguments");
}

size_t fewest(const Declaration& declaration) {
    size_t count = 0;
    for (const host::Parameter& parameter : declaration.parameters) {
        if (!parameter.defaultValue) ++count;
    }
    return count;
}

} // namespace

std::vector<Typed> Compiler::argumentValues(const std::vector<ExpressionPtr>& trees,
                                            const Declaration* only) {
    std::vector<Typed> made;
    for (size_t i = 0; i < trees.size(); ++i)
        made.push_back(
            required(*trees[i], only && i < only->parameters.size() ? &only->parameters[i].type : nullptr));
    return made;
}

int Compiler::selectOverload(const std::vector<const Declaration*>& overloads,
                             const std::vector<Typed>& arguments, bool dynamic, const std::string& what,
                             Place place) {
    int best = -1, bestScore = INT32_MAX, viable = 0;
    for (size_t i = 0; i < overloads.size(); ++i) {
        const auto& parameters = overloads[i]->parameters;
        if (arguments.size() > parameters.size() || arguments.size() < fewest(*overloads[i])) continue;
        int score = 0;
        for (size_t k = 0; k < arguments.size() && score >= 0; ++k) {
            const int fits = typeFit(arguments[k].type, parameters[k].type);
            score = fits < 0 ? -1 : score + fits;
        }
        if (score < 0) continue;
        ++viable;
        if (score < bestScore) {
            best = static_cast<int>(i);
            bestScore = score;
        }
    }
    if (viable > 1 && dynamic) {
        for (const Typed& argument : arguments) {
            if (isVariant(argument.type)) return -1;
        }
    }
    if (best >= 0) return best;
    if (overloads.size() == 1) {
        const auto& parameters = overloads[0]->parameters;
        const size_t least = fewest(*overloads[0]);
        if (arguments.size() > parameters.size() || arguments.size() < least) {
            const std::string range = least == parameters.size() ? counted(least)
                                      : arguments.size() < least ? "at least " + counted(least)
                                                                 : "at most " + counted(parameters.size());
            fail(place, "'" + what + "' takes " + range + ", not " + std::to_string(arguments.size()) + ".");
        }
        return 0; // the argument that does not fit is reported by name when it is bound
    }
    std::string types;
    for (const Typed& argument : arguments)
        types +=
            (types.empty() ? "" : ", ") + (argument.type.kind == Kind::Nil ? "Nil" : argument.type.text());
    std::string known;
    for (size_t i = 0; i < overloads.size() && i < 6; ++i)
        known += (i == 0 ? " There is " : "; ") + overloads[i]->text();
    fail(place, "No '" + what + "' takes (" + types + ")." + known + ".");
}

CallArguments Compiler::bind(const Declaration& declaration, std::vector<Typed> values,
                             const std::vector<ExpressionPtr>& trees, const std::string& what, Place place) {
    CallArguments made;
    const size_t offset = values.size() - trees.size(); // a receiver in front has no tree
    for (size_t i = 0; i < declaration.parameters.size(); ++i) {
        const host::Parameter& parameter = declaration.parameters[i];
        if (i >= values.size()) {
            if (parameter.defaultValue)
                made.add(std::make_unique<LiteralNode>(
                    place, converted(*parameter.defaultValue, parameter.type, false, what)));
            continue;
        }
        const Place at = i >= offset ? trees[i - offset]->place : place;
        if (parameter.byRef && i >= offset) {
            Type type;
            TargetPtr into = target(*trees[i - offset], type);
            if (!(type == parameter.type))
                fail(at, "'" + parameter.name + "' of '" + what + "' is ByRef and needs a variable of type " +
                             parameter.type.text() + ", not " + type.text() + ".");
            made.add(std::move(values[i].node), std::move(into));
            continue;
        }
        made.add(
            coerce(std::move(values[i]), parameter.type, at, "'" + parameter.name + "' of '" + what + "'"));
    }
    return made;
}

// Arguments for a member that is found when the program runs: its own types decide then.
CallArguments Compiler::loose(std::vector<Typed> values) {
    CallArguments made;
    for (Typed& value : values)
        made.add(std::move(value.node));
    return made;
}

// ---- names -------------------------------------------------------------------------------------------

Typed Compiler::nameValue(const NameExpression& tree) {
    if (const Variable* variable = findVariable(tree.name)) return variableValue(tree.place, *variable);
    static const std::vector<ExpressionPtr> none;
    if (scope_->owner && !scope_->owner->find(tree.name).empty()) {
        Resolved object{scope_->shared ? nullptr : std::make_unique<SelfNode>(tree.place), scope_->owner,
                        false};
        return memberOf(std::move(object), tree.name, none, false, tree.place);
    }
    if (const auto found = routines_.find(tree.name); found != routines_.end())
        return routine(tree.place, found->second, tree.name, none);
    const std::string lower = lowerName(tree.name);
    if (!findNatives(lower).empty()) return native(tree.place, lower, {}, none);
    if (lower == "array")
        return arrayOf(
            CallExpression(tree.place, std::make_unique<NameExpression>(tree.place, tree.name), {}), nullptr);
    if (const Class* found = findType(tree.name))
        fail(tree.place, "'" + found->name() + "' is a class, not a value.");
    if (isNativeNamespace(lower))
        fail(tree.place, "'" + tree.name + "' needs a member: " + tree.name + ".Name.");
    const auto globals = findGlobal(tree.name);
    if (!globals.empty())
        return {std::make_unique<CallSharedNode>(tree.place, globals.front(), CallArguments{}),
                globals.front()->declaration.result};

    for (const auto& one : program_.routines) {
        if (sameName(one->name, tree.name))
            fail(tree.place,
                 "'" + tree.name + "' can't be called here: a constant is computed from constants.");
    }
    std::vector<std::string> known = nativeNames();
    for (const auto& block : scope_->blocks) {
        for (const auto& [name, variable] : block)
            known.push_back(name);
    }
    for (const auto& [name, variable] : globals_)
        known.push_back(name);
    for (const auto& [name, overloads] : routines_)
        known.push_back(name);
    fail(tree.place, "There is no '" + tree.name + "'" + suggestion(tree.name, known) + ".");
}

Typed Compiler::call(const CallExpression& tree, const Type* wanted) {
    switch (tree.callee->kind) {
    case ExpressionKind::name:
        return callName(static_cast<const NameExpression&>(*tree.callee), tree, wanted);
    case ExpressionKind::member:
        return member(static_cast<const MemberExpression&>(*tree.callee), tree.arguments, true);
    default:
        return element(required(*tree.callee), tree.arguments, tree.place);
    }
}

Typed Compiler::callName(const NameExpression& callee, const CallExpression& tree, const Type* wanted) {
    const std::string& name = callee.name;
    const auto& arguments = tree.arguments;
    if (const Variable* variable = findVariable(name)) {
        if (!variable->type.array && !isVariant(variable->type))
            fail(callee.place,
                 "'" + name + "' is " + described(variable->type) + ", not an array or a function.");
        return element(variableValue(callee.place, *variable), arguments, callee.place);
    }
    if (scope_->owner && !scope_->owner->find(name).empty()) {
        Resolved object{scope_->shared ? nullptr : std::make_unique<SelfNode>(callee.place), scope_->owner,
                        false};
        return memberOf(std::move(object), name, arguments, true, callee.place);
    }
    if (const auto found = routines_.find(name); found != routines_.end())
        return routine(callee.place, found->second, name, arguments);
    const std::string lower = lowerName(name);
    if (lower == "array") return arrayOf(tree, wanted);
    if (isArrayMethod(lower) && !arguments.empty()) {
        Typed first = required(*arguments[0]);
        if (first.type.array) return arrayMethod(std::move(first), lower, arguments, 1, callee.place);
    }
    if (!findNatives(lower).empty()) {
        const auto overloads = findNatives(lower);
        return native(callee.place, lower,
                      argumentValues(arguments, overloads.size() == 1 ? &overloads[0].declaration : nullptr),
                      arguments);
    }
    const Type named = typeNamed(name);
    if (named.kind != Kind::Object || isAnyObject(named) || findType(name)) {
        if (arguments.size() != 1)
            fail(callee.place, "The conversion " + name + "(value) takes 1 argument, not " +
                                   std::to_string(arguments.size()) + ".");
        Typed value = required(*arguments[0]);
        if (named.kind != Kind::Object) {
            if (value.type.array || value.type.kind == Kind::Object || value.type.kind == Kind::Nil)
                fail(callee.place,
                     "This is " + described(value.type) + ", which can't become " + described(named) + ".");
            return {
                std::make_unique<ConvertNode>(callee.place, std::move(value.node), named, true, "The value"),
                named};
        }
        if (isAnyObject(named)) return {coerce(std::move(value), named, callee.place, "The value"), named};
        Class* wantedClass = findType(name);
        const Type type{Kind::Object, wantedClass->name(), false};
        if (typeFit(value.type, type) < 0 && typeFit(type, value.type) < 0)
            fail(callee.place,
                 "This is " + described(value.type) + " and can never be " + described(type) + ".");
        return {std::make_unique<CastNode>(callee.place, std::move(value.node), wantedClass), type};
    }
    const auto globals = findGlobal(name);
    if (!globals.empty()) {
        CallArguments bound =
            bind(globals.front()->declaration, argumentValues(arguments), arguments, name, callee.place);
        return {std::make_unique<CallSharedNode>(callee.place, globals.front(), std::move(bound)),
                globals.front()->declaration.result};
    }
    return nameValue(callee); // reports the name
}

Typed Compiler::routine(Place place, const std::vector<Routine>& overloads, const std::string& name,
                        const std::vector<ExpressionPtr>& arguments) {
    std::vector<const Declaration*> declarations;
    for (const Routine& one : overloads) {
        if (!one.code->declaration.isAssigning()) declarations.push_back(&one.code->declaration);
    }
    if (declarations.empty()) fail(place, "'" + name + "' can only be assigned to.");
    std::vector<Typed> values =
        argumentValues(arguments, declarations.size() == 1 ? declarations[0] : nullptr);
    const int chosen = selectOverload(declarations, values, false, name, place);
    const Declaration& declaration = *declarations[static_cast<size_t>(chosen)];
    const Code* code = nullptr;
    for (const Routine& one : overloads) {
        if (&one.code->declaration == &declaration) code = one.code.get();
    }
    CallArguments bound = bind(declaration, std::move(values), arguments, name, place);
    return {std::make_unique<CallCodeNode>(place, code, std::move(bound)), declaration.result};
}

namespace {

// Name(arguments) = value, for a Sub with an Assigns parameter.
struct CodeTarget final : Target {
    Place place;
    const Code* code;
    CallArguments arguments;
    void store(Frame& frame, Value value) const override {
        Slots slots(code->slotCount);
        arguments.eval(frame, slots.data());
        slots.data()[arguments.size()] = std::move(value);
        frame.context.place = place;
        code->run(frame.context, nullptr, slots.data());
    }
};

} // namespace

TargetPtr Compiler::routineTarget(const std::vector<Routine>& overloads, const std::string& name,
                                  const std::vector<ExpressionPtr>& arguments, Place place, Type& type) {
    for (const Routine& one : overloads) {
        const Declaration& declaration = one.code->declaration;
        if (!declaration.isAssigning() || declaration.parameters.size() != arguments.size() + 1) continue;
        auto made = std::make_unique<CodeTarget>();
        made->place = place;
        made->code = one.code.get();
        for (size_t i = 0; i < arguments.size(); ++i)
            made->arguments.add(valueFor(*arguments[i], declaration.parameters[i].type,
                                         "'" + declaration.parameters[i].name + "' of '" + name + "'"));
        type = declaration.parameters.back().type;
        return made;
    }
    fail(place, "'" + name + "' can't be assigned to: it has no Assigns parameter after " +
                    counted(arguments.size()) + ".");
}

Typed Compiler::element(Typed list, const std::vector<ExpressionPtr>& arguments, Place place) {
    if (!list.type.array && !isVariant(list.type))
        fail(place, "Only arrays have elements; this is " + described(list.type) + ".");
    if (arguments.size() != 1)
        fail(place, "An element is chosen by one index, not by " + std::to_string(arguments.size()) + ".");
    NodePtr index = valueFor(*arguments[0], {Kind::Int64, {}, false}, "An index");
    const Type type = list.type.array ? list.type.element() : kVariantType;
    return {std::make_unique<IndexNode>(place, std::move(list.node), std::move(index)), type};
}

Typed Compiler::arrayOf(const CallExpression& tree, const Type* wanted) {
    std::vector<Typed> values = argumentValues(tree.arguments);
    Type element = kVariantType;
    if (wanted && wanted->array) {
        element = wanted->element();
    } else if (!values.empty()) {
        element = values[0].type;
        for (const Typed& value : values) {
            if (typeFit(value.type, element) >= 0 && !isVariant(value.type) &&
                !(isNumber(element) && isNumber(value.type)))
                continue;
            if (isNumber(element) && isNumber(value.type))
                element = value.type == element ? element : arithmeticType(element, value.type);
            else if (typeFit(element, value.type) >= 0 && !isVariant(element))
                element = value.type;
            else
                element = kVariantType;
        }
        if (element.kind == Kind::Nil || element.array) element = kVariantType;
    }
    auto made = std::make_unique<ArrayNode>(tree.place, element);
    for (size_t i = 0; i < values.size(); ++i)
        made->elements.push_back(
            coerce(std::move(values[i]), element, tree.arguments[i]->place, "An element"));
    Type type = element;
    type.array = true;
    return {std::move(made), type};
}

Typed Compiler::arrayMethod(Typed list, const std::string& name, const std::vector<ExpressionPtr>& arguments,
                            size_t from, Place place) {
    const size_t count = arguments.size() - from;
    const ArrayMethod* method = findArrayMethod(lowerName(name), count);
    if (!method) {
        if (isArrayMethod(lowerName(name)))
            fail(place, "An array's '" + name + "' does not take " + counted(count) + ".");
        fail(place, "An array has no '" + name + "'.");
    }
    const Type element = list.type.element();
    Type self = list.type;
    CallArguments bound;
    bound.add(std::move(list.node));
    const auto typeFor = [&](char letter) -> Type {
        switch (letter & ~0x20) {
        case 'E':
            return element;
        case 'I':
            return {Kind::Int64, {}, false};
        case 'S':
            return {Kind::String, {}, false};
        case 'A':
            return self;
        case 'B':
            return {Kind::Boolean, {}, false};
        default:
            return {};
        }
    };
    for (size_t i = 0; i < count; ++i)
        bound.add(
            valueFor(*arguments[from + i], typeFor(method->parameters[i]), "The argument of '" + name + "'"));
    Type result = typeFor(method->result);
    if (method->result == 'I') result.kind = Kind::Int32;
    if (method->result == '-') result = {};
    return {std::make_unique<CallNativeNode>(place, method->function, std::move(bound)), result};
}

Typed Compiler::native(Place place, const std::string& lower, std::vector<Typed> values,
                       const std::vector<ExpressionPtr>& trees) {
    const auto overloads = findNatives(lower);
    std::vector<const Declaration*> declarations;
    for (const NativeFunction& one : overloads) {
        if (one.variadic) {
            CallArguments bound;
            for (size_t i = 0; i < values.size(); ++i) {
                const auto& parameters = one.declaration.parameters;
                const Type& type = i < parameters.size() ? parameters[i].type : kVariantType;
                bound.add(
                    coerce(std::move(values[i]), type, trees[i]->place, "An argument of '" + one.name + "'"));
            }
            return {std::make_unique<CallNativeNode>(place, one.function, std::move(bound)),
                    one.declaration.result};
        }
        if (!one.declaration.isAssigning()) declarations.push_back(&one.declaration);
    }
    const std::string& name = overloads.front().name;
    if (declarations.empty()) fail(place, "'" + name + "' can only be assigned to.");
    const auto chosen = static_cast<size_t>(selectOverload(declarations, values, false, name, place));
    for (const NativeFunction& one : overloads) {
        if (&one.declaration != declarations[chosen]) continue;
        CallArguments bound = bind(one.declaration, std::move(values), trees, name, place);
        return {std::make_unique<CallNativeNode>(place, one.function, std::move(bound)),
                one.declaration.result};
    }
    fail(place, "'" + name + "' can't be called.");
}

} // namespace host::basic
