// Compiles what stands behind a dot: members of objects, classes and namespaces.
#include "CompilerState.hpp"

#include <algorithm>

namespace host::basic {

using namespace ast;

namespace {

const Type kVariantType{Kind::Variant, {}, false};

// A member that is read or called, as opposed to one that is only assigned to.
bool canRead(const Member& member) { return !member.declaration.isAssigning(); }

} // namespace

bool Compiler::resolveObject(const Expression& tree, Resolved& resolved) {
    if (tree.kind == ExpressionKind::super) {
        if (!scope_->owner || scope_->shared)
            fail(tree.place, "There is no object here that 'Super' could mean.");
        resolved.objectClass = scope_->owner->superOrNull();
        if (!resolved.objectClass)
            fail(tree.place, "The class '" + scope_->owner->name() + "' has no superclass.");
        resolved.object = std::make_unique<SelfNode>(tree.place);
        resolved.fixed = true;
        return true;
    }
    if (tree.kind != ExpressionKind::name) return false;
    const auto& name = static_cast<const NameExpression&>(tree).name;
    if (findVariable(name) || routines_.contains(name)) return false;
    if (scope_->owner && !scope_->owner->find(name).empty()) return false;
    resolved.objectClass = findType(name);
    return resolved.objectClass != nullptr;
}

Typed Compiler::member(const MemberExpression& tree, const std::vector<ExpressionPtr>& arguments,
                       bool hasList) {
    const Expression& owner = *tree.object;
    if (owner.kind == ExpressionKind::name && !findVariable(static_cast<const NameExpression&>(owner).name)) {
        const std::string space = lowerName(static_cast<const NameExpression&>(owner).name);
        const std::string full = space + "." + lowerName(tree.name);
        if (isNativeNamespace(space)) {
            if (!findNatives(full).empty()) {
                const auto overloads = findNatives(full);
                const Declaration& first = overloads[0].declaration;
                // App.Arguments(0): the property, then its element.
                if (first.parameters.empty() && first.result.array && arguments.size() == 1)
                    return element(native(tree.place, full, {}, {}), arguments, tree.place);
                return native(tree.place, full,
                              argumentValues(arguments, overloads.size() == 1 ? &first : nullptr), arguments);
            }
            if (!findType(space)) {
                std::vector<std::string> known;
                for (const std::string& name : nativeNames()) {
                    if (lowerName(name).starts_with(space + "."))
                        known.push_back(name.substr(space.size() + 1));
                }
                fail(tree.place, static_cast<const NameExpression&>(owner).name + " has no '" + tree.name +
                                     "'" + suggestion(tree.name, known) + ".");
            }
        }
    }
    Resolved object;
    if (resolveObject(owner, object))
        return memberOf(std::move(object), tree.name, arguments, hasList, tree.place);

    Typed value = required(owner);
    if (value.type.array) return arrayMethod(std::move(value), tree.name, arguments, 0, tree.place);
    if (isVariant(value.type) || isAnyObject(value.type)) {
        scope_->foreign = true;
        return {std::make_unique<InvokeNode>(tree.place, std::move(value.node), tree.name,
                                             loose(argumentValues(arguments))),
                kVariantType};
    }
    if (value.type.kind == Kind::Nil) fail(tree.place, "Nil has no members.");
    if (value.type.kind != Kind::Object) {
        const std::string lower = lowerName(tree.name);
        for (const NativeFunction& one : findNatives(lower)) {
            const auto& parameters = one.declaration.parameters;
            if (one.variadic || parameters.empty() || typeFit(value.type, parameters[0].type) < 0) continue;
            std::vector<Typed> values;
            values.push_back(std::move(value));
            for (Typed& argument : argumentValues(arguments))
                values.push_back(std::move(argument));
            return native(tree.place, lower, std::move(values), arguments);
        }
        fail(tree.place, described(value.type) + " has no '" + tree.name + "'.");
    }
    object.objectClass = classOfType(value.type);
    if (!object.objectClass) fail(tree.place, "The class '" + value.type.className + "' is not there.");
    object.object = std::move(value.node);
    return memberOf(std::move(object), tree.name, arguments, hasList, tree.place);
}

void Compiler::checkAccess(const Member& found, Place place) {
    const Class* from = scope_->owner;
    const bool may = found.scope == Scope::Public || (from && from == found.owner) ||
                     (found.scope == Scope::Protected && from && from->isA(*found.owner));
    if (!may)
        fail(place, "'" + found.declaration.name + "' is " +
                        (found.scope == Scope::Private ? "private to" : "protected in") + " the class '" +
                        found.owner->name() + "'.");
}

void Compiler::unknownMember(const Class& in, const std::string& name, Place place) {
    if (const Member* event = in.event(name))
        fail(place, "'" + event->declaration.name + "' is an event of '" + in.name() +
                        "'; a subclass implements it.");
    std::vector<std::string> known;
    for (const Class* at = &in; at; at = at->superOrNull()) {
        for (const auto& member : at->members()) {
            if (member->kind != MemberKind::Event && !member->notForPrograms())
                known.push_back(member->declaration.name);
        }
    }
    fail(place, "The class '" + in.name() + "' has no '" + name + "'" + suggestion(name, known) + ".");
}

Typed Compiler::memberOf(Resolved object, const std::string& name,
                         const std::vector<ExpressionPtr>& arguments, bool, Place place) {
    const Class& in = *object.objectClass;
    std::vector<const Member*> all = in.find(name);
    if (all.empty() && object.fixed && sameName(name, "Constructor") && arguments.empty())
        return {std::make_unique<SelfNode>(place), {}}; // every class can be constructed
    if (all.empty()) unknownMember(in, name, place);
    std::vector<const Member*> found;
    for (const Member* one : all) {
        const bool constant = one->kind == MemberKind::Constant;
        if (canRead(*one) && (object.object || one->shared || constant)) found.push_back(one);
    }
    if (found.empty()) {
        const bool assignOnly =
            std::none_of(all.begin(), all.end(), [](const Member* one) { return canRead(*one); });
        fail(place, assignOnly ? "'" + name + "' can only be assigned to."
                               : "'" + name + "' belongs to objects of the class '" + in.name() +
                                     "'; it needs one before the dot.");
    }
    if (!in.isBasic()) scope_->foreign = true;
    const Member& first = *found.front();
    // Without parameters, what stands in parentheses is an index of the result.
    const bool noneTakesAny = std::all_of(
        found.begin(), found.end(), [](const Member* one) { return one->declaration.parameters.empty(); });
    if (noneTakesAny && !arguments.empty() &&
        (first.declaration.result.array || isVariant(first.declaration.result))) {
        static const std::vector<ExpressionPtr> none;
        return element(memberOf(std::move(object), name, none, false, place), arguments, place);
    }
    if (first.kind == MemberKind::Constant) {
        checkAccess(first, place);
        if (!arguments.empty()) fail(place, "'" + name + "' is a constant and takes no arguments.");
        return {std::make_unique<LiteralNode>(place, first.value), {first.value.kind(), {}, false}, true};
    }
    std::vector<const Declaration*> declarations;
    for (const Member* one : found)
        declarations.push_back(&one->declaration);
    std::vector<Typed> values = argumentValues(arguments, found.size() == 1 ? declarations[0] : nullptr);
    const std::string what = name;
    const int chosen = selectOverload(declarations, values, true, what, place);
    if (chosen < 0) {
        Class* start = object.fixed || !object.object ? object.objectClass : nullptr;
        Type result = first.declaration.result;
        for (const Member* one : found) {
            if (!(one->declaration.result == result)) result = kVariantType;
        }
        Typed made{std::make_unique<InvokeNode>(place, std::move(object.object), name,
                                                loose(std::move(values)), start),
                   result};
        made.loose = true;
        return made;
    }
    const Member& member = *found[static_cast<size_t>(chosen)];
    checkAccess(member, place);
    const Type result = member.declaration.result;
    CallArguments bound = bind(member.declaration, std::move(values), arguments, what, place);
    const bool stored = member.kind == MemberKind::Property && !member.body && !member.function;
    if (member.shared) {
        if (stored) return {std::make_unique<SharedFieldNode>(place, &member), result};
        return {std::make_unique<CallSharedNode>(place, &member, std::move(bound)), result};
    }
    if (stored && member.field != kNoField)
        return {std::make_unique<FieldNode>(place, std::move(object.object), &member), result};
    return {std::make_unique<CallMemberNode>(place, std::move(object.object), &member, std::move(bound),
                                             object.fixed),
            result};
}

TargetPtr Compiler::memberTarget(Resolved object, const std::string& name,
                                 const std::vector<ExpressionPtr>& arguments, Place place, Type& type) {
    const Class& in = *object.objectClass;
    const std::vector<const Member*> all = in.find(name);
    if (all.empty()) unknownMember(in, name, place);
    if (!in.isBasic()) scope_->foreign = true;
    const Member* chosen = nullptr;
    for (const Member* one : all) {
        if (!object.object && !one->shared) continue;
        const auto& declaration = one->declaration;
        const bool property = one->canAssign() && declaration.parameters.size() == arguments.size();
        const bool method = one->kind == MemberKind::Method && declaration.isAssigning() &&
                            declaration.parameters.size() == arguments.size() + 1;
        if (property || method) {
            chosen = one;
            break;
        }
    }
    if (!chosen) {
        // object.Property(index) = value: an element of the array that the property answers.
        const Member& first = *all.front();
        if (arguments.size() == 1 && first.declaration.parameters.empty() && first.declaration.result.array) {
            static const std::vector<ExpressionPtr> none;
            return elementTarget(memberOf(std::move(object), name, none, false, place), *arguments[0], place,
                                 type);
        }
        if (first.kind == MemberKind::Constant)
            fail(place, "'" + name + "' is a constant and can't be assigned to.");
        if (!object.object && !first.shared)
            fail(place, "'" + name + "' belongs to objects of the class '" + in.name() +
                            "'; it needs one before the dot.");
        fail(place, "'" + name + "' of the class '" + in.name() + "' can't be assigned to.");
    }
    checkAccess(*chosen, place);
    CallArguments bound;
    for (size_t i = 0; i < arguments.size(); ++i)
        bound.add(valueFor(*arguments[i], chosen->declaration.parameters[i].type,
                           "'" + chosen->declaration.parameters[i].name + "' of '" + name + "'"));
    type = chosen->kind == MemberKind::Method ? chosen->declaration.parameters.back().type
                                              : chosen->declaration.result;
    NodePtr owner = chosen->shared ? nullptr : std::move(object.object);
    return std::make_unique<PropertyTarget>(place, std::move(owner), chosen, std::move(bound), object.fixed);
}

NodePtr Compiler::makeNewOf(const TypeName& name, const std::vector<ExpressionPtr>& arguments, Place place) {
    Class& made = classNamed(name);
    if (!made.isBasic()) scope_->foreign = true;
    std::vector<const Declaration*> declarations;
    for (const Class* at = &made; at && declarations.empty(); at = at->superOrNull()) {
        for (const auto& one : at->members()) {
            if (one->kind != MemberKind::Method || one->shared ||
                !sameName(one->declaration.name, "Constructor"))
                continue;
            if (one->notForPrograms())
                fail(place, "Objects of the class '" + made.name() +
                                "' are not made with New; ask the class's own methods for one.");
            if (at == &made || one->scope != Scope::Public) checkAccess(*one, place);
            declarations.push_back(&one->declaration);
        }
    }
    if (declarations.empty()) {
        if (!arguments.empty())
            fail(place, "The class '" + made.name() + "' has no Constructor that takes arguments.");
        return std::make_unique<NewNode>(place, &made, CallArguments{});
    }
    std::vector<Typed> values =
        argumentValues(arguments, declarations.size() == 1 ? declarations[0] : nullptr);
    const std::string what = "New " + made.name();
    const int chosen = selectOverload(declarations, values, true, what, place);
    if (chosen < 0) return std::make_unique<NewNode>(place, &made, loose(std::move(values)));
    return std::make_unique<NewNode>(
        place, &made,
        bind(*declarations[static_cast<size_t>(chosen)], std::move(values), arguments, what, place));
}

Typed Compiler::makeNew(const NewExpression& tree) {
    NodePtr node = makeNewOf(tree.type, tree.arguments, tree.type.place);
    return {std::move(node), {Kind::Object, classNamed(tree.type).name(), false}};
}

} // namespace host::basic
