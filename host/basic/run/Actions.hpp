// The nodes that run statements.
#pragma once

#include "Calls.hpp"
#include "Expressions.hpp"

#include <optional>

namespace host::basic {

/// A call whose result is not used.
struct CallAction final : Action {
    NodePtr node;
    CallAction(Place p, NodePtr n) : Action(p), node(std::move(n)) {}
    Flow run(Frame& frame) const override;
};
struct AssignAction final : Action {
    TargetPtr target;
    NodePtr value;
    AssignAction(Place p, TargetPtr t, NodePtr v) : Action(p), target(std::move(t)), value(std::move(v)) {}
    Flow run(Frame& frame) const override;
};
/// Static: runs its inner action the first time only.
struct OnceAction final : Action {
    ActionPtr inner;
    OnceAction(Place p, ActionPtr i) : Action(p), inner(std::move(i)) {}
    Flow run(Frame& frame) const override;

  private:
    mutable bool done_ = false;
};
/// A statement that may call the platform: what the platform makes for the moment goes at its end.
struct PoolAction final : Action {
    ActionPtr inner;
    PoolAction(Place p, ActionPtr i) : Action(p), inner(std::move(i)) {}
    Flow run(Frame& frame) const override;
};
struct BranchAction final : Action {
    struct Arm {
        NodePtr condition;
        Actions body;
    };
    std::vector<Arm> arms;
    Actions otherwise;
    using Action::Action;
    Flow run(Frame& frame) const override;
};
struct SelectAction final : Action {
    struct Test {
        NodePtr first, last;
        ast::Operator relation = ast::Operator::equal;
        Class* isA = nullptr;
    };
    struct Arm {
        std::vector<Test> tests;
        Actions body;
    };
    NodePtr subject;
    std::vector<Arm> arms;
    Actions otherwise;
    using Action::Action;
    Flow run(Frame& frame) const override;
};
struct CountAction final : Action {
    uint32_t loop;
    TargetPtr variable;
    NodePtr read, from, to, step;
    Type type;
    bool down;
    Actions body;
    CountAction(Place p, uint32_t l) : Action(p), loop(l) {}
    Flow run(Frame& frame) const override;

  private:
    Flow runIntegers(Frame& frame) const;
    Flow runReals(Frame& frame) const;
};
struct EachAction final : Action {
    uint32_t loop;
    TargetPtr variable;
    NodePtr list;
    Type type;
    Actions body;
    EachAction(Place p, uint32_t l) : Action(p), loop(l) {}
    Flow run(Frame& frame) const override;
};
struct LoopAction final : Action {
    uint32_t loop;
    NodePtr head, foot;
    bool headUntil = false, footUntil = false;
    Actions body;
    LoopAction(Place p, uint32_t l) : Action(p), loop(l) {}
    Flow run(Frame& frame) const override;
};
struct JumpAction final : Action {
    Flow flow;
    uint32_t loop;
    JumpAction(Place p, Flow f, uint32_t l) : Action(p), flow(f), loop(l) {}
    Flow run(Frame& frame) const override;
};
struct ReturnAction final : Action {
    NodePtr value;
    ReturnAction(Place p, NodePtr v) : Action(p), value(std::move(v)) {}
    Flow run(Frame& frame) const override;
};
struct GuardAction final : Action {
    struct Handler {
        Class* caught;
        std::optional<size_t> slot;
        Actions body;
    };
    Actions body;
    std::vector<Handler> handlers;
    Actions last;
    using Action::Action;
    Flow run(Frame& frame) const override;

  private:
    Flow runGuarded(Frame& frame) const;
    Flow runLast(Frame& frame) const;
};
struct RaiseAction final : Action {
    NodePtr exception; // null: again
    RaiseAction(Place p, NodePtr e) : Action(p), exception(std::move(e)) {}
    Flow run(Frame& frame) const override;
};
struct ResizeAction final : Action {
    NodePtr array, bound;
    ResizeAction(Place p, NodePtr a, NodePtr b) : Action(p), array(std::move(a)), bound(std::move(b)) {}
    Flow run(Frame& frame) const override;
};

} // namespace host::basic
