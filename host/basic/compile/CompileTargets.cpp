// Compiles what stands left of an assignment, and what is given ByRef.
#include "CompilerState.hpp"

namespace host::basic {

using namespace ast;

namespace {

const Type kVariantType{Kind::Variant, {}, false};

} // namespace

TargetPtr Compiler::target(const Expression& tree, Type& type) {
    if (tree.kind == ExpressionKind::name) {
        const auto& name = static_cast<const NameExpression&>(tree).name;
        if (const Variable* variable = findVariable(name)) {
            if (!variable->assignable)
                fail(tree.place, "'" + name + "' is a constant and can't be assigned to.");
            type = variable->type;
            if (variable->where == Variable::Where::local)
                return std::make_unique<LocalTarget>(variable->slot);
            return std::make_unique<GlobalTarget>(variable->global);
        }
        if (scope_->owner && !scope_->owner->find(name).empty()) {
            Resolved object{scope_->shared ? nullptr : std::make_unique<SelfNode>(tree.place), scope_->owner,
                            false};
            return memberTarget(std::move(object), name, {}, tree.place, type);
        }
        if (const auto natives = findNatives(lowerName(name)); !natives.empty() || routines_.contains(name))
            fail(tree.place, "'" + name + "' is a function and can't be assigned to.");
        nameValue(static_cast<const NameExpression&>(tree)); // reports what is wrong with the name
        fail(tree.place, "'" + name + "' can't be assigned to.");
    }
    const CallExpression* list =
        tree.kind == ExpressionKind::call ? static_cast<const CallExpression*>(&tree) : nullptr;
    const Expression& callee = list ? *list->callee : tree;
    static const std::vector<ExpressionPtr> none;
    const auto& arguments = list ? list->arguments : none;

    if (callee.kind == ExpressionKind::member) {
        const auto& memberTree = static_cast<const MemberExpression&>(callee);
        Resolved object;
        const Expression& owner = *memberTree.object;
        if (owner.kind == ExpressionKind::name &&
            !findVariable(static_cast<const NameExpression&>(owner).name)) {
            const std::string full =
                lowerName(static_cast<const NameExpression&>(owner).name) + "." + lowerName(memberTree.name);
            for (const NativeFunction& native : findNatives(full)) {
                if (!native.declaration.isAssigning() ||
                    native.declaration.parameters.size() != arguments.size() + 1)
                    continue;
                CallArguments bound;
                for (size_t i = 0; i < arguments.size(); ++i)
                    bound.add(valueFor(*arguments[i], native.declaration.parameters[i].type, "The argument"));
                type = native.declaration.parameters.back().type;
                return std::make_unique<NativeTarget>(tree.place, native.function, std::move(bound));
            }
        }
        if (!resolveObject(owner, object)) {
            Typed value = required(owner);
            if (isVariant(value.type) || isAnyObject(value.type)) {
                type = kVariantType;
                scope_->foreign = true;
                return std::make_unique<InvokeTarget>(memberTree.place, std::move(value.node),
                                                      memberTree.name, loose(argumentValues(arguments)));
            }
            object.objectClass = classOfType(value.type);
            if (!object.objectClass)
                fail(memberTree.place, "'" + memberTree.name + "' can't be assigned to: " +
                                           described(value.type) + " has no properties.");
            object.object = std::move(value.node);
        }
        return memberTarget(std::move(object), memberTree.name, arguments, memberTree.place, type);
    }
    if (!list) fail(tree.place, "This can't be assigned to.");
    // A method of the own class with an Assigns parameter, or a property with parameters.
    if (callee.kind == ExpressionKind::name) {
        const auto& name = static_cast<const NameExpression&>(callee).name;
        if (!findVariable(name) && scope_->owner && !scope_->owner->find(name).empty()) {
            Resolved object{scope_->shared ? nullptr : std::make_unique<SelfNode>(tree.place), scope_->owner,
                            false};
            return memberTarget(std::move(object), name, arguments, tree.place, type);
        }
        if (!findVariable(name) && routines_.contains(name))
            return routineTarget(routines_.at(name), name, arguments, tree.place, type);
    }
    if (arguments.size() != 1) fail(tree.place, "An element is chosen by one index.");
    Typed array = required(callee);
    return elementTarget(std::move(array), *arguments[0], tree.place, type);
}

TargetPtr Compiler::elementTarget(Typed array, const Expression& indexTree, Place place, Type& type) {
    if (!array.type.array && !isVariant(array.type))
        fail(place, "Only elements of arrays can be assigned to; this is " + described(array.type) + ".");
    type = array.type.array ? array.type.element() : kVariantType;
    auto made = std::make_unique<OwningTarget>();
    made->first = std::move(array.node);
    made->second = valueFor(indexTree, {Kind::Int64, {}, false}, "An index");
    made->inner = std::make_unique<IndexTarget>(place, made->first.get(), made->second.get());
    return made;
}

} // namespace host::basic
