// What a program is compiled to: a tree of nodes that compute values and nodes that run statements.
#pragma once

#include "Context.hpp"
#include "host/runtime/Class.hpp"

#include <memory>
#include <vector>

namespace host::basic {

/// One running call.
struct Frame {
    Context& context;
    Value* slots;    // parameters, then local variables
    REALobject self; // borrowed; null outside of objects
    Value result;
    uint32_t loop = 0; // the loop that Exit or Continue means
};

struct Node {
    Place place;
    explicit Node(Place p) : place(p) {}
    virtual ~Node() = default;
    virtual Value eval(Frame& frame) const = 0;
    /// The value without a copy where it already lies somewhere; else it is put into `scratch`.
    virtual const Value& view(Frame& frame, Value& scratch) const {
        scratch = eval(frame);
        return scratch;
    }
    /// A variable or a constant: looking at it changes nothing and runs nothing.
    virtual bool isSimple() const { return false; }
};
using NodePtr = std::unique_ptr<Node>;

/// Something that can be assigned to, and be given ByRef.
struct Target {
    virtual ~Target() = default;
    virtual void store(Frame& frame, Value value) const = 0;
};
using TargetPtr = std::unique_ptr<Target>;

enum class Flow : uint8_t { next, leave, proceed, giveBack };

struct Action {
    Place place;
    explicit Action(Place p) : place(p) {}
    virtual ~Action() = default;
    virtual Flow run(Frame& frame) const = 0;
};
using ActionPtr = std::unique_ptr<Action>;
using Actions = std::vector<ActionPtr>;

inline Flow runAll(const Actions& actions, Frame& frame) {
    for (const ActionPtr& action : actions) {
        frame.context.place = action->place;
        frame.context.poll();
        if (const Flow flow = action->run(frame); flow != Flow::next) return flow;
    }
    return Flow::next;
}

/// A compiled Sub, Function, method or event handler.
struct Code {
    std::string name;
    Declaration declaration;
    size_t slotCount = 0;
    Actions body;
    Class* owner = nullptr; // of a method
    bool isShared = false;

    /// Runs it; the arguments stand in the first slots, converted to the parameters' types. ByRef parameters
    /// are left there with their last value.
    Value run(Context& context, REALobject self, Value* slots) const;
};

/// A Code as the runtime calls it: the door through which plug-ins and other threads come in.
struct CodeBody {
    std::shared_ptr<Code> code;
    Value operator()(REALobject self, Arguments arguments) const;
};

/// Storage for the slots of a call: on the stack for nearly all of them.
class Slots {
  public:
    explicit Slots(size_t count) {
        if (count > kSmall) large_.resize(count);
    }
    Value* data() { return large_.empty() ? small_ : large_.data(); }

  private:
    static constexpr size_t kSmall = 8;
    Value small_[kSmall];
    std::vector<Value> large_;
};

} // namespace host::basic
