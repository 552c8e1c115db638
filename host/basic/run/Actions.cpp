// Running statements: assignments, branches, loops, exceptions.
#include "Actions.hpp"

#include "host/runtime/Array.hpp"
#include "host/services/Platform.hpp"

#include <utility>

namespace host::basic {

using ast::Operator;

namespace {

// What a loop does after its body: goes on, ends, or passes a jump on to a loop further out.
enum class After { goOn, end, passOn };

After afterBody(Frame& frame, Flow flow, uint32_t loop) {
    if (flow == Flow::next) return After::goOn;
    if (flow == Flow::proceed && frame.loop == loop) return After::goOn;
    if (flow == Flow::leave && frame.loop == loop) return After::end;
    return After::passOn;
}

} // namespace

Flow CallAction::run(Frame& frame) const {
    node->eval(frame);
    return Flow::next;
}

Flow AssignAction::run(Frame& frame) const {
    target->store(frame, value->eval(frame));
    return Flow::next;
}

Flow OnceAction::run(Frame& frame) const {
    if (done_) return Flow::next;
    done_ = true;
    return inner->run(frame);
}

Flow PoolAction::run(Frame& frame) const {
    const Pool pool;
    return inner->run(frame);
}

Flow BranchAction::run(Frame& frame) const {
    for (const Arm& arm : arms) {
        Value scratch;
        const Value& truth = arm.condition->view(frame, scratch);
        frame.context.place = arm.condition->place;
        if (isTrue(truth)) return runAll(arm.body, frame);
    }
    return runAll(otherwise, frame);
}

Flow SelectAction::run(Frame& frame) const {
    const Value value = subject->eval(frame);
    for (const Arm& arm : arms) {
        for (const Test& test : arm.tests) {
            bool fits = false;
            if (test.isA) {
                fits = value.object() && isA(value.object(), *test.isA);
            } else {
                const Value first = test.first->eval(frame);
                frame.context.place = test.first->place;
                if (test.last) {
                    fits = compared(Operator::greaterOrEqual, value, first) &&
                           compared(Operator::lessOrEqual, value, test.last->eval(frame));
                } else {
                    fits = compared(test.relation, value, first);
                }
            }
            if (fits) return runAll(arm.body, frame);
        }
    }
    return runAll(otherwise, frame);
}

Flow CountAction::run(Frame& frame) const {
    return isIntegerKind(type.kind) ? runIntegers(frame) : runReals(frame);
}

Flow CountAction::runIntegers(Frame& frame) const {
    // 64 bits, so that a loop up to a small type's last number ends.
    int64_t counter = from->eval(frame).toInt64();
    const int64_t last = to->eval(frame).toInt64();
    int64_t stride = step ? step->eval(frame).toInt64() : 1;
    frame.context.place = place;
    if (down) stride = -stride;
    if (stride == 0) raise("InvalidArgumentException", "the Step of a For loop is 0, so it would never end");
    variable->store(frame, Value::integer(type.kind, counter));
    while (stride > 0 ? counter <= last : counter >= last) {
        const Flow flow = runAll(body, frame);
        const After after = afterBody(frame, flow, loop);
        if (after == After::end) break;
        if (after == After::passOn) return flow;
        frame.context.place = place;
        frame.context.poll();
        Value scratch;
        const Value& now = read->view(frame, scratch);
        if (__builtin_add_overflow(now.toInt64(), stride, &counter)) break;
        variable->store(frame, Value::integer(type.kind, counter));
    }
    return Flow::next;
}

Flow CountAction::runReals(Frame& frame) const {
    double counter = from->eval(frame).toDouble();
    const double last = to->eval(frame).toDouble();
    double stride = step ? step->eval(frame).toDouble() : 1;
    frame.context.place = place;
    if (down) stride = -stride;
    if (stride == 0) raise("InvalidArgumentException", "the Step of a For loop is 0, so it would never end");
    const auto assign = [&] {
        variable->store(frame,
                        type.kind == Kind::Single ? Value(static_cast<float>(counter)) : Value(counter));
    };
    assign();
    while (stride > 0 ? counter <= last : counter >= last) {
        const Flow flow = runAll(body, frame);
        const After after = afterBody(frame, flow, loop);
        if (after == After::end) break;
        if (after == After::passOn) return flow;
        frame.context.place = place;
        frame.context.poll();
        counter = read->eval(frame).toDouble() + stride;
        assign();
    }
    return Flow::next;
}

Flow EachAction::run(Frame& frame) const {
    const Value values = list->eval(frame);
    frame.context.place = list->place;
    if (values.isNil()) raise("NilObjectException", "the array that For Each is to go through is nil");
    if (!values.isArray())
        raise("TypeMismatchException", "For Each goes through an array, not " + values.typeName());
    for (int32_t i = 0; i <= upperBound(values.object()); ++i) {
        frame.context.place = place;
        frame.context.poll();
        variable->store(frame, converted(arrayGet(values.object(), i), type, true, "the loop's variable"));
        const Flow flow = runAll(body, frame);
        const After after = afterBody(frame, flow, loop);
        if (after == After::end) break;
        if (after == After::passOn) return flow;
    }
    return Flow::next;
}

Flow LoopAction::run(Frame& frame) const {
    const auto holds = [&](const NodePtr& condition) {
        Value scratch;
        const Value& truth = condition->view(frame, scratch);
        frame.context.place = condition->place;
        return isTrue(truth);
    };
    for (;;) {
        frame.context.place = place;
        frame.context.poll();
        if (head && holds(head) == headUntil) break;
        const Flow flow = runAll(body, frame);
        const After after = afterBody(frame, flow, loop);
        if (after == After::end) break;
        if (after == After::passOn) return flow;
        if (foot && holds(foot) == footUntil) break;
    }
    return Flow::next;
}

Flow JumpAction::run(Frame& frame) const {
    frame.loop = loop;
    return flow;
}

Flow ReturnAction::run(Frame& frame) const {
    if (value) frame.result = value->eval(frame);
    return Flow::giveBack;
}

// A Finally block that has begun goes to its end, whatever stops the program meanwhile; the clean-up is
// bounded anyway.
Flow GuardAction::runLast(Frame& frame) const {
    struct Leaving {
        Context& context;
        bool before;
        explicit Leaving(Context& c) : context(c), before(std::exchange(c.leaving, true)) {}
        ~Leaving() { context.leaving = before; }
    } leaving{frame.context};
    return runAll(last, frame);
}

Flow GuardAction::run(Frame& frame) const {
    Flow flow = Flow::next;
    try {
        flow = runGuarded(frame);
    } catch (const Exception& exception) {
        frame.context.noteRaised(exception);
        const Place raisedAt = frame.context.raisedPlace();
        const Exception kept = exception;
        const Flow lastFlow = runLast(frame);
        if (lastFlow != Flow::next) { // a jump out of Finally drops the exception
            frame.context.forgetRaised();
            return lastFlow;
        }
        frame.context.keepRaised(kept.object(), raisedAt);
        throw;
    } catch (const Stopped&) {
        runLast(frame);
        throw;
    }
    // A Return computes its value before Finally runs, and Finally can't change it unless it returns itself.
    Value result = frame.result;
    const uint32_t target = frame.loop;
    const Flow lastFlow = runLast(frame);
    if (lastFlow != Flow::next) return lastFlow;
    frame.result = std::move(result);
    frame.loop = target;
    return flow;
}

Flow GuardAction::runGuarded(Frame& frame) const {
    if (handlers.empty()) return runAll(body, frame);
    Value caught;
    Place raisedAt;
    const Handler* chosen = nullptr;
    try {
        return runAll(body, frame);
    } catch (const Exception& exception) {
        frame.context.noteRaised(exception);
        raisedAt = frame.context.raisedPlace();
        for (const Handler& handler : handlers) {
            if (!isA(exception.object().object(), *handler.caught)) continue;
            chosen = &handler;
            caught = exception.object();
            break;
        }
        if (!chosen) throw;
    }
    // The C++ exception is gone here, so handlers may nest as deeply as they like.
    frame.context.forgetRaised();
    if (chosen->slot) frame.slots[*chosen->slot] = caught;
    struct Handling {
        Context& context;
        ~Handling() { context.handling.pop_back(); }
    } handling{frame.context};
    frame.context.handling.emplace_back(caught, raisedAt);
    return runAll(chosen->body, frame);
}

Flow RaiseAction::run(Frame& frame) const {
    if (!exception) {
        frame.context.place = place;
        if (frame.context.handling.empty())
            raise("UnsupportedOperationException", "'Raise' alone works in a Catch block only");
        const auto [again, where] = frame.context.handling.back();
        frame.context.keepRaised(again, where);
        throw Exception(again);
    }
    Value value = exception->eval(frame);
    frame.context.place = place;
    if (value.isNil()) raise("NilObjectException", "the exception to raise is nil");
    if (!value.object() || !isA(value.object(), "RuntimeException"))
        raise("TypeMismatchException", "only exceptions can be raised, not " + value.typeName());
    frame.context.keepRaised(value, place);
    throw Exception(std::move(value));
}

Flow ResizeAction::run(Frame& frame) const {
    const Value list = array->eval(frame);
    const Value last = bound->eval(frame);
    frame.context.place = place;
    if (list.isNil()) raise("NilObjectException", "the array to resize is nil");
    arrayResize(list.object(), last.toInt64());
    return Flow::next;
}

} // namespace host::basic
