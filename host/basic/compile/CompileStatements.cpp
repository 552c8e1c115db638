// Compiles statements.
#include "CompilerState.hpp"

namespace host::basic {

using namespace ast;

void Compiler::statements(const ast::Block& trees, Actions& into) {
    for (const StatementPtr& tree : trees) {
        if (diagnostics_.full()) return;
        statementInto(*tree, into);
    }
}

void Compiler::statementInto(const Statement& tree, Actions& into) {
    try {
        scope_->foreign = false;
        ActionPtr made = statement(tree, into);
        if (!made) return;
        const bool leaf = tree.kind == StatementKind::assign || tree.kind == StatementKind::call;
        if (leaf && scope_->foreign) made = std::make_unique<PoolAction>(tree.place, std::move(made));
        into.push_back(std::move(made));
    } catch (const Unusable&) {
    }
}

ActionPtr Compiler::statement(const Statement& tree, Actions& into) {
    switch (tree.kind) {
    case StatementKind::declare:
        declare(static_cast<const DeclareStatement&>(tree), into);
        return nullptr;
    case StatementKind::constant:
        // Those of the top level are known already.
        if (!(scope_->isMain && scope_->blocks.size() == 1))
            constant(static_cast<const ConstantStatement&>(tree));
        return nullptr;
    case StatementKind::assign:
        return assign(static_cast<const AssignStatement&>(tree));
    case StatementKind::call:
        return callStatement(static_cast<const CallStatement&>(tree));
    case StatementKind::branch:
        return branch(static_cast<const BranchStatement&>(tree));
    case StatementKind::select:
        return select(static_cast<const SelectStatement&>(tree));
    case StatementKind::countLoop:
        return countLoop(static_cast<const CountLoop&>(tree));
    case StatementKind::eachLoop:
        return eachLoop(static_cast<const EachLoop&>(tree));
    case StatementKind::conditionLoop:
        return conditionLoop(static_cast<const ConditionLoop&>(tree));
    case StatementKind::leave:
        return jump(tree.place, static_cast<const LeaveStatement&>(tree).loop, Flow::leave);
    case StatementKind::proceed:
        return jump(tree.place, static_cast<const ProceedStatement&>(tree).loop, Flow::proceed);
    case StatementKind::giveBack:
        return giveBack(static_cast<const ReturnStatement&>(tree));
    case StatementKind::guard:
        return guard(static_cast<const GuardStatement&>(tree));
    case StatementKind::raise:
        return raiseAgain(static_cast<const RaiseStatement&>(tree));
    case StatementKind::resize:
        return resize(static_cast<const ResizeStatement&>(tree));
    }
    return nullptr;
}

Variable& Compiler::declareName(const std::string& name, Place place, const Type& type, bool isStatic) {
    Names& block = scope_->isMain && scope_->blocks.size() == 1 ? globals_ : scope_->blocks.back();
    if (block.contains(name)) fail(place, "The name '" + name + "' is declared twice.");
    // A name may not hide one of the same routine: that is a mistake more often than not.
    if (&block != &globals_) {
        for (const Names& outer : scope_->blocks) {
            if (outer.contains(name))
                fail(place, "The name '" + name + "' is already declared around this block.");
        }
    }
    Variable variable;
    variable.type = type;
    if (isStatic || &block == &globals_) {
        variable.where = Variable::Where::global;
        compiled_->globals.push_back(Value::defaultFor(type));
        variable.global = &compiled_->globals.back();
    } else {
        variable.slot = scope_->slotCount++;
    }
    return block.emplace(name, std::move(variable)).first->second;
}

// What a variable holds that is declared without a value: arrays exist at once, objects do not.
NodePtr Compiler::initialValue(Place place, const Type& type, const std::vector<ExpressionPtr>& bounds) {
    if (!type.array) return std::make_unique<LiteralNode>(place, Value::defaultFor(type));
    auto made = std::make_unique<ArrayNode>(place, type.element());
    if (!bounds.empty())
        made->bound = valueFor(*bounds[0], {Kind::Int64, {}, false}, "The array's last index");
    return made;
}

void Compiler::declare(const DeclareStatement& tree, Actions& into) {
    for (const Declarator& one : tree.names) {
        scope_->foreign = false;
        Type type;
        try {
            NodePtr value;
            if (tree.type.given()) {
                type = typeOf(tree.type);
                type.array = type.array || one.array;
            }
            if (tree.makesNew) {
                if (one.array) fail(one.place, "'As New' makes one object, not an array.");
                const TypeName& name = tree.type;
                value = makeNewOf(name, tree.arguments, name.place);
            } else if (tree.value) {
                if (!one.bounds.empty())
                    fail(one.place, "An array has either a size or a value at its start, not both.");
                if (type.kind == Kind::None) { // the type is that of the value
                    Typed made = required(*tree.value);
                    type = made.type;
                    if (type.kind == Kind::Nil) type = {Kind::Variant, {}, false};
                    value =
                        coerce(std::move(made), type, tree.value->place, "The value of '" + one.name + "'");
                } else {
                    value = valueFor(*tree.value, type, "The value of '" + one.name + "'");
                }
            } else {
                if (type.kind == Kind::None)
                    fail(one.place,
                         "'" + one.name + "' needs a type or a value: Dim " + one.name + " As Integer.");
                value = initialValue(one.place, type, one.bounds);
            }
            const Variable& variable = declareName(one.name, one.place, type, tree.isStatic);
            TargetPtr target;
            if (variable.where == Variable::Where::local)
                target = std::make_unique<LocalTarget>(variable.slot);
            else
                target = std::make_unique<GlobalTarget>(variable.global);
            ActionPtr action = std::make_unique<AssignAction>(one.place, std::move(target), std::move(value));
            if (scope_->foreign) action = std::make_unique<PoolAction>(one.place, std::move(action));
            if (tree.isStatic) action = std::make_unique<OnceAction>(one.place, std::move(action));
            into.push_back(std::move(action));
        } catch (const Unusable&) {
            // Known from here on all the same, so that its uses are not reported as well.
            if (findVariable(one.name)) continue;
            if (type.kind == Kind::None || type.kind == Kind::Nil) type = {Kind::Variant, {}, false};
            declareName(one.name, one.place, type, false);
        }
    }
}

void Compiler::constant(const ConstantStatement& tree) {
    Variable variable;
    variable.where = Variable::Where::constant;
    if (tree.type.given()) {
        variable.type = typeOf(tree.type);
        variable.value = constantValue(*tree.value, &variable.type, "A constant");
    } else {
        variable.value = constantValue(*tree.value, nullptr, "A constant");
        variable.type = {variable.value.kind(), {}, false};
    }
    variable.assignable = false;
    Names& block = scope_->blocks.back();
    if (block.contains(tree.name)) fail(tree.place, "The name '" + tree.name + "' is declared twice.");
    block.emplace(tree.name, std::move(variable));
}

ActionPtr Compiler::assign(const AssignStatement& tree) {
    Type type;
    TargetPtr into = target(*tree.target, type);
    const std::string what = "The assigned value";
    if (!tree.op)
        return std::make_unique<AssignAction>(tree.place, std::move(into), valueFor(*tree.value, type, what));
    Typed left = required(*tree.target);
    Typed right = required(*tree.value);
    Typed result = combine(*tree.op, std::move(left), std::move(right), tree.value->place);
    return std::make_unique<AssignAction>(tree.place, std::move(into),
                                          coerce(std::move(result), type, tree.value->place, what));
}

ActionPtr Compiler::callStatement(const CallStatement& tree) {
    Typed made = expression(*tree.call);
    const Node* node = made.node.get();
    const bool idle = made.node->isSimple() || dynamic_cast<const FieldNode*>(node) ||
                      dynamic_cast<const IndexNode*>(node) || dynamic_cast<const SharedFieldNode*>(node) ||
                      dynamic_cast<const CastNode*>(node);
    if (idle) fail(tree.place, "This value is not used; a statement has to do something.");
    return std::make_unique<CallAction>(tree.place, std::move(made.node));
}

NodePtr Compiler::condition(const Expression& tree) {
    const bool before = scope_->foreign;
    scope_->foreign = false;
    Typed made = required(tree);
    if (!isBoolean(made.type) && !isInteger(made.type) && !isVariant(made.type))
        fail(tree.place, "A condition must be a Boolean, not " + described(made.type) + ".");
    if (scope_->foreign) made.node = std::make_unique<PoolNode>(tree.place, std::move(made.node));
    scope_->foreign = before;
    return std::move(made.node);
}

ActionPtr Compiler::branch(const BranchStatement& tree) {
    auto made = std::make_unique<BranchAction>(tree.place);
    for (const BranchStatement::Arm& arm : tree.arms) {
        BranchAction::Arm one;
        try {
            one.condition = condition(*arm.condition);
        } catch (const Unusable&) {
            one.condition = std::make_unique<LiteralNode>(tree.place, Value(false));
        }
        const Block block(*this);
        statements(arm.body, one.body);
        made->arms.push_back(std::move(one));
    }
    const Block block(*this);
    statements(tree.otherwise, made->otherwise);
    return made;
}

ActionPtr Compiler::select(const SelectStatement& tree) {
    auto made = std::make_unique<SelectAction>(tree.place);
    Typed subject;
    try {
        subject = required(*tree.subject);
    } catch (const Unusable&) {
        subject = {std::make_unique<LiteralNode>(tree.place, Value()), {Kind::Variant, {}, false}};
    }
    made->subject = std::move(subject.node);
    for (const SelectStatement::Arm& arm : tree.arms) {
        SelectAction::Arm one;
        for (const SelectStatement::Test& test : arm.tests) {
            try {
                SelectAction::Test compiled;
                if (test.isA.given()) {
                    compiled.isA = &classNamed(test.isA);
                } else {
                    Typed first = required(*test.first);
                    checkComparable(test.relation, subject.type, first.type, test.place);
                    compiled.first = std::move(first.node);
                    compiled.relation = test.relation;
                    if (test.last) {
                        Typed last = required(*test.last);
                        checkComparable(Operator::less, subject.type, last.type, test.last->place);
                        compiled.last = std::move(last.node);
                    }
                }
                one.tests.push_back(std::move(compiled));
            } catch (const Unusable&) {
            }
        }
        const Block block(*this);
        statements(arm.body, one.body);
        made->arms.push_back(std::move(one));
    }
    const Block block(*this);
    statements(tree.otherwise, made->otherwise);
    return made;
}

ActionPtr Compiler::giveBack(const ReturnStatement& tree) {
    NodePtr value;
    if (tree.value) {
        if (scope_->result.kind == Kind::None)
            fail(tree.value->place, "A Sub gives nothing back; make it a Function, or write Return alone.");
        value = valueFor(*tree.value, scope_->result, "The value of Return");
    } else if (!tree.isExit && !scope_->isMain && scope_->result.kind != Kind::None) {
        fail(tree.place, "A Function has to return a value.");
    }
    return std::make_unique<ReturnAction>(tree.place, std::move(value));
}

ActionPtr Compiler::guard(const GuardStatement& tree) {
    auto made = std::make_unique<GuardAction>(tree.place);
    {
        const Block block(*this);
        statements(tree.body, made->body);
    }
    for (const GuardStatement::Handler& handler : tree.handlers) {
        const Block block(*this);
        GuardAction::Handler one;
        try {
            one.caught = findClass("RuntimeException");
            if (handler.type.given()) {
                one.caught = &classNamed(handler.type);
                if (!one.caught->isA(*findClass("RuntimeException")))
                    fail(handler.type.place, "'" + handler.type.name + "' is not an exception.");
            }
            if (!handler.name.empty()) {
                const Type type{Kind::Object, one.caught->name(), false};
                // The block of a handler is never the top level's own.
                one.slot = declareName(handler.name, handler.place, type).slot;
            }
        } catch (const Unusable&) {
        }
        ++scope_->handlers;
        statements(handler.body, one.body);
        --scope_->handlers;
        made->handlers.push_back(std::move(one));
    }
    const Block block(*this);
    statements(tree.last, made->last);
    return made;
}

ActionPtr Compiler::raiseAgain(const RaiseStatement& tree) {
    if (!tree.exception) {
        if (scope_->handlers == 0)
            fail(tree.place,
                 "'Raise' alone raises the caught exception again; it works in a Catch block only.");
        return std::make_unique<RaiseAction>(tree.place, nullptr);
    }
    const Type type{Kind::Object, "RuntimeException", false};
    return std::make_unique<RaiseAction>(tree.place, valueFor(*tree.exception, type, "What is raised"));
}

ActionPtr Compiler::resize(const ResizeStatement& tree) {
    Typed array = required(*tree.array);
    if (!array.type.array && !isVariant(array.type))
        fail(tree.place, "Redim changes the size of an array, not of " + described(array.type) + ".");
    NodePtr bound = valueFor(*tree.bound, {Kind::Int64, {}, false}, "The array's last index");
    return std::make_unique<ResizeAction>(tree.place, std::move(array.node), std::move(bound));
}

} // namespace host::basic
