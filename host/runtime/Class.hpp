// Class.hpp: classes and their members, whether a plug-in, the host or a BASIC program declares them.
#pragma once

#include "host/runtime/Declaration.hpp"

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// The arguments of a call, in declaration order, one per parameter. A body that assigns to the slot of a
// ByRef parameter changes the caller's variable.
using Arguments = std::span<Value>;
// A method, getter, setter or event handler written in C++ or BASIC. `self` is null for shared members; a
// setter gets the property's parameters first and the assigned value last. Raises by throwing
// host::Exception.
using Body = std::function<Value(REALobject self, Arguments arguments)>;

enum class MemberKind { Method, Property, Event, Constant };
enum class Scope { Public, Protected, Private }; // kept for the interpreter, which enforces it

inline constexpr std::size_t kNoField = static_cast<std::size_t>(-1);

// One member as declared. Never moves or dies once its class is registered, so pointers to it may be cached.
struct Member {
    MemberKind kind = MemberKind::Method;
    bool shared = false;
    Scope scope = Scope::Public;
    Declaration declaration;
    std::string text; // the declaration as it was written
    uintptr_t flags = kREALMemberFlags;
    Class* owner = nullptr;

    REALproc function = nullptr; // a plug-in's method or getter
    REALproc setter = nullptr;   // a plug-in's setter
    Body body; // the host's or program's method, getter, or event handler (see Class::handler)
    Body setterBody;
    std::size_t field =
        kNoField; // a stored property: index for fieldOf(); shared ones keep their value in `value`
    Value value;  // a constant's value; a shared stored property's present value

    bool canAssign() const {
        return kind == MemberKind::Property &&
               (setter || setterBody || field != kNoField || (shared && !body && !function));
    }
    bool notForPrograms() const { return (flags & kREALMemberNotForPrograms) != 0; }
};

// What a BASIC program (or the host itself) says to define a class.
struct MemberSpec {
    MemberKind kind = MemberKind::Method;
    Declaration declaration; // a method named "Constructor" is a constructor; overloads share a name
    Body body;   // method body, getter, or the implementation of an event that a superclass declares
    Body setter; // computed properties only
    bool shared = false;
    Scope scope = Scope::Public;
    Value initial; // stored properties: value in a new object (nil: the type's default); constants: the value
};
struct ClassSpec {
    std::string name;
    std::string superName; // "" for a root class
    // A Property without body is stored. An Event with a body implements that event; without, it declares a
    // new one.
    std::vector<MemberSpec> members;
    // Runs first when the last reference goes; what it throws becomes a stray exception. May be empty.
    std::function<void(REALobject self)> destructor;
    // Runs in every new object of the class, after the superclasses' and before a declared constructor. May
    // be empty.
    std::function<void(REALobject self)> initializer;
};

// What follows from a class and its superclasses together, and is asked for at every object. It stays as it is: a class
// that is registered never changes.
struct ClassShape {
    std::vector<Class*> chain; // the root first
    std::size_t fieldsOffset = 0, fieldCount = 0, objectSize = 0;
    // Whether others may find an object without a reference: plug-ins keep tables of their objects, from which the
    // object's destructor takes it out, and a program's destructor is a part of the program.
    bool endsUnderLock = false;
    // Whether a plug-in may keep an object's address without a reference: it does where it calls events. Some drop a
    // reference that they never took, so also an object that was never asked for an event is met after its end.
    bool isKeptByAddress = false;
    // Those of the most derived class that declares any; they hide those of its superclasses.
    std::vector<const Member*> constructors;
    bool isNotMadeWithNew = false; // it declares constructors, and none for programs
};

class Class {
  public:
    Class() = default;
    ~Class();
    const std::string& name() const { return name_; }
    const std::string& superName() const { return superName_; }
    // The superclass, found when first asked for; null for a root class. Raises UnsupportedOperationException
    // when it is named but not there ("class X can't be used: its superclass Y is not loaded").
    Class* super() const;
    // As super(), but null where the superclass is missing.
    Class* superOrNull() const noexcept;
    bool isA(const Class& other) const noexcept; // itself or a subclass
    // In order of declaration; this class's own only.
    const std::vector<std::unique_ptr<Member>>& members() const { return members_; }
    const REALclassDefinition* definition() const { return definition_; } // null for classes not of a plug-in
    bool isBasic() const { return isBasic_; }                             // defined by a program

    // All overloads of a name, the most derived class's first, then the superclasses'; events and handlers
    // are left out.
    std::vector<const Member*> find(std::string_view name) const;
    bool has(std::string_view name) const { return !find(name).empty(); }
    // The member whose declaration matches (see Declaration::matches), here or in a superclass; null if none.
    const Member* findDeclared(const Declaration& declaration) const;
    // The event of that name that this class or a superclass declares; null if none.
    const Member* event(std::string_view name) const;
    // The implementation of an event for objects of this class: its own or the nearest superclass's; null if
    // none.
    const Member* handler(const Member& event) const;

    // ---- for the runtime itself
    const ClassShape& shape() const; // made when first asked for; raises as super() does
    std::size_t dataOffset() const;  // of this class's own instance data, from the start of the object
    std::size_t fieldCount() const;  // fields of this class and its superclasses
    std::atomic<std::size_t> liveCount{0};
    const std::function<void(REALobject)>& initializer() const { return initializer_; }
    const std::function<void(REALobject)>& destructor() const { return destructor_; }
    uintptr_t dataSize() const { return dataSize_; }
    void (*nativeConstructor() const)(REALobject) { return nativeConstructor_; }
    void (*nativeDestructor() const)(REALobject) { return nativeDestructor_; }
    const std::vector<std::unique_ptr<Member>>& handlers() const { return handlers_; }

  private:
    friend class Registry;
    ClassShape makeShape() const;
    std::string name_, superName_;
    mutable std::atomic<Class*> super_{nullptr};
    const REALclassDefinition* definition_ = nullptr;
    bool isBasic_ = false;
    uintptr_t dataSize_ = 0;
    void (*nativeConstructor_)(REALobject) = nullptr;
    void (*nativeDestructor_)(REALobject) = nullptr;
    std::vector<std::unique_ptr<Member>> members_;
    std::vector<std::unique_ptr<Member>> handlers_; // name, parameters and body
    std::function<void(REALobject)> initializer_, destructor_;
    std::size_t ownFields_ = 0;
    std::map<std::string, std::vector<const Member*>, NameLess> byName_;
    mutable std::atomic<const ClassShape*> shape_{nullptr};
};

// ---- the registry: all classes of the process, by name -----------------------------------------------

// Null when there is none.
Class* findClass(std::string_view name);
// Raises UnsupportedOperationException "there is no class X".
Class& requireClass(std::string_view name);
// Every class in order of registration.
std::vector<Class*> allClasses();
// Defines a class for a program. Raises UnsupportedOperationException when the name is taken, the superclass
// is missing, or an event is implemented that no superclass declares.
Class& defineClass(ClassSpec spec);
// As "PluginRegisterClass" does it. Keeps the addresses, writes the events' identities. What is wrong with a
// record (a declaration that does not parse, a name that is taken) is not fatal: it leaves the member out and
// is told by registrationProblems().
void registerClass(REALclassDefinition* definition);
std::vector<std::string> registrationProblems();
// Forgets the classes that programs defined, for a host that runs several programs. Objects of theirs must be
// gone.
void forgetProgramClasses();

} // namespace host
