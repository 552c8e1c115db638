// The nodes that call: routines of the program, members of objects, functions of the library; and properties.
#pragma once

#include "Node.hpp"
#include "host/runtime/Invoke.hpp"

namespace host::basic {

/// The arguments of one call. Those for ByRef parameters have a place to which the value goes back.
struct CallArguments {
    std::vector<NodePtr> values;
    std::vector<TargetPtr> targets; // as many as values; null for those that are not ByRef

    void add(NodePtr value, TargetPtr target = nullptr) {
        values.push_back(std::move(value));
        targets.push_back(std::move(target));
    }
    void eval(Frame& frame, Value* into) const {
        for (size_t i = 0; i < values.size(); ++i)
            into[i] = values[i]->eval(frame);
    }
    void writeBack(Frame& frame, Value* from) const {
        for (size_t i = 0; i < targets.size(); ++i) {
            if (targets[i]) targets[i]->store(frame, std::move(from[i]));
        }
    }
    size_t size() const { return values.size(); }
};

/// A Sub or Function of the program, or a shared method of one of its classes.
struct CallCodeNode final : Node {
    const Code* code;
    CallArguments arguments;
    CallCodeNode(Place p, const Code* c, CallArguments a) : Node(p), code(c), arguments(std::move(a)) {}
    Value eval(Frame& frame) const override;
};

/// object.Method(arguments) with a method that was chosen by the types of the arguments; the object's class
/// may override it.
struct CallMemberNode final : Node {
    NodePtr object;
    const Member* member;
    CallArguments arguments;
    bool fixed; // Super.Method: no override
    CallMemberNode(Place p, NodePtr o, const Member* m, CallArguments a, bool f)
        : Node(p), object(std::move(o)), member(m), arguments(std::move(a)), fixed(f) {}
    Value eval(Frame& frame) const override;

  private:
    mutable Class* seenClass_ = nullptr;
    mutable const Member* seenMember_ = nullptr;
};

/// ClassName.Method(arguments).
struct CallSharedNode final : Node {
    const Member* member;
    CallArguments arguments;
    CallSharedNode(Place p, const Member* m, CallArguments a) : Node(p), member(m), arguments(std::move(a)) {}
    Value eval(Frame& frame) const override;
};

/// A member of a value whose class is known only when it is there.
struct InvokeNode final : Node {
    NodePtr object;
    std::string name;
    CallArguments arguments;
    Class* start; // where to look: for Super a superclass, without an object the class whose shared members
                  // are meant
    InvokeNode(Place p, NodePtr o, std::string n, CallArguments a, Class* s = nullptr)
        : Node(p), object(std::move(o)), name(std::move(n)), arguments(std::move(a)), start(s) {}
    Value eval(Frame& frame) const override;
};

/// A condition that may call the platform; see PoolAction.
struct PoolNode final : Node {
    NodePtr inner;
    PoolNode(Place p, NodePtr i) : Node(p), inner(std::move(i)) {}
    Value eval(Frame& frame) const override;
};

struct NewNode final : Node {
    Class* made;
    CallArguments arguments;
    NewNode(Place p, Class* m, CallArguments a) : Node(p), made(m), arguments(std::move(a)) {}
    Value eval(Frame& frame) const override;
};

using Native = Value (*)(Context&, Arguments);

/// A function of the library.
struct CallNativeNode final : Node {
    Native function;
    CallArguments arguments;
    CallNativeNode(Place p, Native f, CallArguments a) : Node(p), function(f), arguments(std::move(a)) {}
    Value eval(Frame& frame) const override;
};
struct NativeTarget final : Target {
    Place place;
    Native function;
    CallArguments arguments;
    NativeTarget(Place p, Native f, CallArguments a) : place(p), function(f), arguments(std::move(a)) {}
    void store(Frame& frame, Value value) const override;
};

/// A stored property of an object.
struct FieldNode final : Node {
    NodePtr object;
    const Member* member;
    FieldNode(Place p, NodePtr o, const Member* m) : Node(p), object(std::move(o)), member(m) {}
    Value eval(Frame& frame) const override;
};
struct SharedFieldNode final : Node {
    const Member* member;
    SharedFieldNode(Place p, const Member* m) : Node(p), member(m) {}
    Value eval(Frame&) const override { return member->value; }
};

/// object.Property(arguments) = value; the object is null for shared properties.
struct PropertyTarget final : Target {
    Place place;
    NodePtr object;
    const Member* member;
    CallArguments arguments;
    bool fixed;
    PropertyTarget(Place p, NodePtr o, const Member* m, CallArguments a, bool f)
        : place(p), object(std::move(o)), member(m), arguments(std::move(a)), fixed(f) {}
    void store(Frame& frame, Value value) const override;
};
struct InvokeTarget final : Target {
    Place place;
    NodePtr object;
    std::string name;
    CallArguments arguments;
    InvokeTarget(Place p, NodePtr o, std::string n, CallArguments a)
        : place(p), object(std::move(o)), name(std::move(n)), arguments(std::move(a)) {}
    void store(Frame& frame, Value value) const override;
};

/// The most derived member with the same name and parameters as the given one.
const Member* overrideIn(Class& objectClass, const Member& member);

} // namespace host::basic
