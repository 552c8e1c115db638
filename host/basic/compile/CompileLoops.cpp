// Compiles loops, and the statements that leave them or go on with them.
#include "CompilerState.hpp"

namespace host::basic {

using namespace ast;

namespace {

struct InLoop {
    RoutineScope& scope;
    InLoop(RoutineScope& s, LoopKind kind, uint32_t id) : scope(s) { scope.loops.push_back({kind, id}); }
    ~InLoop() { scope.loops.pop_back(); }
};

const char* loopName(LoopKind kind) {
    switch (kind) {
    case LoopKind::forLoop:
        return "For";
    case LoopKind::whileLoop:
        return "While";
    case LoopKind::doLoop:
        return "Do";
    default:
        return "loop";
    }
}

} // namespace

ActionPtr Compiler::countLoop(const CountLoop& tree) {
    auto made = std::make_unique<CountAction>(tree.place, scope_->nextLoop++);
    const Block block(*this);
    try {
        const Expression& variable = *tree.variable;
        const bool isName = variable.kind == ExpressionKind::name;
        const std::string name = isName ? static_cast<const NameExpression&>(variable).name : "";
        if (tree.type.given()) {
            if (!isName) fail(variable.place, "A loop's own variable is a plain name.");
            made->type = typeOf(tree.type);
            // The end values are outside of the variable's life.
            made->from = valueForLoop(*tree.from, made->type);
            made->to = valueForLoop(*tree.to, made->type);
            if (tree.step) made->step = valueForLoop(*tree.step, made->type);
            declareName(name, variable.place, made->type);
            Type type;
            made->variable = target(variable, type);
        } else {
            made->variable = target(variable, made->type);
            made->from = valueForLoop(*tree.from, made->type);
            made->to = valueForLoop(*tree.to, made->type);
            if (tree.step) made->step = valueForLoop(*tree.step, made->type);
        }
        if (!isNumber(made->type))
            fail(variable.place, "A For loop counts with a number, not with " + described(made->type) + ".");
        made->read = required(variable).node;
        made->down = tree.down;
    } catch (const Unusable&) {
        if (tree.variable->kind == ExpressionKind::name) {
            const auto& name = static_cast<const NameExpression&>(*tree.variable).name;
            if (!findVariable(name)) declareName(name, tree.variable->place, {Kind::Variant, {}, false});
        }
    }
    const InLoop in(*scope_, LoopKind::forLoop, made->loop);
    statements(tree.body, made->body);
    return made;
}

// Whole numbers stay 64 bits wide here, so that the end of a loop is what was written.
NodePtr Compiler::valueForLoop(const Expression& tree, const Type& type) {
    const Type wide{isIntegerKind(type.kind) ? Kind::Int64 : Kind::Double, {}, false};
    return valueFor(tree, wide, "A loop's number");
}

ActionPtr Compiler::eachLoop(const EachLoop& tree) {
    auto made = std::make_unique<EachAction>(tree.place, scope_->nextLoop++);
    const Block block(*this);
    try {
        Typed list = required(*tree.list);
        if (!list.type.array && !isVariant(list.type))
            fail(tree.list->place, "For Each goes through an array, not " + described(list.type) + ".");
        const Type element = list.type.array ? list.type.element() : Type{Kind::Variant, {}, false};
        made->list = std::move(list.node);
        if (const Variable* known = tree.type.given() ? nullptr : findVariable(tree.name)) {
            made->type = known->type;
            Type type;
            made->variable = target(NameExpression(tree.namePlace, tree.name), type);
        } else {
            made->type = tree.type.given() ? typeOf(tree.type) : element;
            Variable& variable = declareName(tree.name, tree.namePlace, made->type);
            made->variable = std::make_unique<LocalTarget>(variable.slot);
        }
        // Elements may be of a subclass: an array of objects is gone through with a variable of the class
        // that is meant.
        if (typeFit(element, made->type) < 0 && typeFit(made->type, element) < 0)
            fail(tree.namePlace,
                 "The elements are of type " + element.text() + ", which '" + tree.name + "' can't hold.");
    } catch (const Unusable&) {
        if (!findVariable(tree.name)) declareName(tree.name, tree.namePlace, {Kind::Variant, {}, false});
    }
    const InLoop in(*scope_, LoopKind::forLoop, made->loop);
    statements(tree.body, made->body);
    return made;
}

ActionPtr Compiler::conditionLoop(const ConditionLoop& tree) {
    auto made = std::make_unique<LoopAction>(tree.place, scope_->nextLoop++);
    const auto guarded = [&](const ExpressionPtr& part) -> NodePtr {
        if (!part) return nullptr;
        try {
            return condition(*part);
        } catch (const Unusable&) {
            return nullptr;
        }
    };
    made->head = guarded(tree.head);
    made->headUntil = tree.headUntil;
    made->footUntil = tree.footUntil;
    {
        const InLoop in(*scope_, tree.isWhile ? LoopKind::whileLoop : LoopKind::doLoop, made->loop);
        const Block block(*this);
        statements(tree.body, made->body);
        made->foot = guarded(tree.foot); // sees the names of the body
    }
    return made;
}

ActionPtr Compiler::jump(Place place, LoopKind kind, Flow flow) {
    for (auto loop = scope_->loops.rbegin(); loop != scope_->loops.rend(); ++loop) {
        if (kind == LoopKind::any || loop->kind == kind)
            return std::make_unique<JumpAction>(place, flow, loop->id);
    }
    fail(place, std::string(flow == Flow::leave ? "Exit" : "Continue") + " stands outside of a " +
                    loopName(kind) + (kind == LoopKind::any ? "." : " loop."));
}

} // namespace host::basic
