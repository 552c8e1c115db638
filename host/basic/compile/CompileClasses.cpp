// Classes of a program: their members are declared to the runtime before any body is compiled.
#include "CompilerState.hpp"
#include "host/basic/run/LiveObjects.hpp"

namespace host::basic {

namespace {

Scope scopeOf(ast::Access access) {
    switch (access) {
    case ast::Access::classOnly:
        return Scope::Private;
    case ast::Access::family:
        return Scope::Protected;
    default:
        return Scope::Public;
    }
}

} // namespace

void Compiler::collectClasses() {
    for (const auto& one : classes_) {
        try {
            for (const auto& other : classes_) {
                if (other.get() == one.get()) break;
                if (sameName(other->tree->name, one->tree->name))
                    fail(one->tree->place, "There are two classes with the name '" + one->tree->name + "'.");
            }
            define(*one);
        } catch (const Unusable&) {
            one->done = true;
        }
    }
}

void Compiler::define(PendingClass& pending) {
    if (pending.done) return;
    const ast::ClassDeclaration& tree = *pending.tree;
    if (pending.visiting) fail(tree.place, "The class '" + tree.name + "' inherits from itself.");
    const Type builtIn = typeNamed(tree.name);
    if (builtIn.kind != Kind::Object || findClass(tree.name) || isAnyObject(builtIn))
        fail(tree.place, "The name '" + tree.name + "' is taken by a type that is already there.");
    pending.visiting = true;
    struct Done { // also when it fails: its error is told once
        PendingClass& pending;
        ~Done() {
            pending.done = true;
            pending.visiting = false;
        }
    } done{pending};

    ClassSpec spec;
    spec.name = tree.name;
    if (tree.superclass.given()) {
        for (const auto& other : classes_) {
            if (!sameName(other->tree->name, tree.superclass.name)) continue;
            define(*other);
            if (!other->made) throw Unusable{}; // told already
        }
        const Class* super = findClass(tree.superclass.name);
        if (!super) {
            typeOf(tree.superclass); // reports a name that there is not
            fail(tree.superclass.place, "The class '" + tree.superclass.name + "' can't be inherited from.");
        }
        spec.superName = super->name();
    }
    RoutineScope scope; // for constants that use earlier ones
    scope.blocks.emplace_back();
    scope_ = &scope;
    const auto guarded = [this](auto&& body) {
        try {
            body();
        } catch (const Unusable&) {
        }
    };
    for (const auto& one : tree.constants) {
        guarded([&] {
            constant(*one);
            MemberSpec member;
            member.kind = MemberKind::Constant;
            member.declaration.name = one->name;
            member.initial = scope.blocks.front().at(one->name).value;
            member.declaration.result = scope.blocks.front().at(one->name).type;
            member.shared = true;
            spec.members.push_back(std::move(member));
        });
    }
    for (const ast::PropertyDeclaration& property : tree.properties)
        guarded([&] { addProperty(pending, spec, property); });
    for (const auto& routine : tree.routines)
        guarded([&] { addRoutine(pending, spec, *routine); });
    scope_ = nullptr;

    if (!pending.initials.empty()) {
        pending.initializer = std::make_shared<Code>();
        pending.initializer->name = tree.name;
    }
    spec.initializer = [code = pending.initializer](REALobject self) {
        noteAlive(self);
        if (code) CodeBody{code}(self, {});
    };
    spec.destructor = [code = pending.destructor](REALobject self) {
        noteGone(self);
        if (!code) return;
        const Context::RaisedAside aside(Context::ofThisThread());
        CodeBody{code}(self, {});
    };
    try {
        pending.made = &defineClass(std::move(spec));
    } catch (const Exception& exception) {
        fail(tree.place, exception.message() + ".");
    }
}

void Compiler::addProperty(PendingClass& pending, ClassSpec& spec, const ast::PropertyDeclaration& property) {
    MemberSpec member;
    member.kind = MemberKind::Property;
    member.declaration.name = property.name;
    Type type = typeOf(property.type);
    type.array = type.array || property.array;
    member.declaration.result = type;
    member.shared = property.shared;
    member.scope = scopeOf(property.access);
    for (const MemberSpec& other : spec.members) {
        if (sameName(other.declaration.name, property.name))
            fail(property.place, "The class has two members with the name '" + property.name + "'.");
    }
    const auto accessor = [&](const ast::Routine& tree) {
        auto code = std::make_shared<Code>();
        code->name = property.name;
        code->isShared = property.shared;
        code->declaration = declarationOf(tree);
        pending.routines.push_back({&tree, code});
        return CodeBody{code};
    };
    if (property.getter || property.setter) {
        if (!property.getter) fail(property.place, "The property '" + property.name + "' needs a Get.");
        member.body = accessor(*property.getter);
        if (property.setter) {
            if (property.setter->parameters.size() != 1) fail(property.place, "A Set has one parameter.");
            member.setter = accessor(*property.setter);
        }
    } else if (property.value || property.makesNew || type.array) {
        (property.shared ? pending.sharedInitials : pending.initials).push_back({&property, property.name});
    }
    spec.members.push_back(std::move(member));
}

void Compiler::addRoutine(PendingClass& pending, ClassSpec& spec, const ast::Routine& routine) {
    using RoutineKind = ast::Routine::Kind;
    auto code = std::make_shared<Code>();
    code->name = pending.tree->name + "." + routine.name;
    code->isShared = routine.shared;
    code->declaration = declarationOf(routine);
    if (routine.kind == RoutineKind::destructor) {
        if (pending.destructor) fail(routine.place, "A class has one Destructor.");
        if (!routine.parameters.empty()) fail(routine.place, "A Destructor has no parameters.");
        if (pending.tree->module) fail(routine.place, "A module has no Destructor.");
        pending.destructor = code;
        pending.routines.push_back({&routine, code});
        return;
    }
    MemberSpec member;
    member.kind = routine.kind == RoutineKind::event ? MemberKind::Event : MemberKind::Method;
    member.declaration = code->declaration;
    member.shared = routine.shared;
    member.scope = scopeOf(routine.access);
    member.body = CodeBody{code};
    if (routine.kind == RoutineKind::event) checkEvent(spec, routine, member.declaration);
    for (const MemberSpec& other : spec.members) {
        if (!sameName(other.declaration.name, member.declaration.name) || other.kind != member.kind) continue;
        bool same = other.declaration.parameters.size() == member.declaration.parameters.size();
        for (size_t i = 0; same && i < member.declaration.parameters.size(); ++i)
            same = other.declaration.parameters[i].type == member.declaration.parameters[i].type;
        if (same) fail(routine.place, "The class has two '" + routine.name + "' with these parameters.");
    }
    pending.routines.push_back({&routine, code});
    spec.members.push_back(std::move(member));
}

void Compiler::checkEvent(const ClassSpec& spec, const ast::Routine& routine,
                          const Declaration& declaration) {
    const Class* super = spec.superName.empty() ? nullptr : findClass(spec.superName);
    const Member* event = super ? super->event(routine.name) : nullptr;
    if (!event) {
        std::vector<std::string> known;
        for (const Class* at = super; at; at = at->superOrNull()) {
            for (const auto& member : at->members()) {
                if (member->kind == MemberKind::Event) known.push_back(member->declaration.name);
            }
        }
        fail(routine.place, "No superclass declares the event '" + routine.name + "'" +
                                suggestion(routine.name, known) + ".");
    }
    const auto& wanted = event->declaration.parameters;
    bool same =
        wanted.size() == declaration.parameters.size() && event->declaration.result == declaration.result;
    for (size_t i = 0; same && i < wanted.size(); ++i)
        same = wanted[i].type == declaration.parameters[i].type &&
               wanted[i].byRef == declaration.parameters[i].byRef;
    if (!same)
        fail(routine.place, "The event is declared as '" + event->declaration.text() +
                                "'; its parameters and result must have the same types here.");
}

ActionPtr Compiler::initialAction(const Initial& initial, Class& owner, bool shared) {
    const ast::PropertyDeclaration& tree = *initial.tree;
    const Member* member = nullptr;
    for (const auto& one : owner.members()) {
        if (one->kind == MemberKind::Property && sameName(one->declaration.name, initial.name))
            member = one.get();
    }
    if (!member) fail(tree.place, "The property '" + tree.name + "' could not be declared.");
    const Type& type = member->declaration.result;
    NodePtr value;
    if (tree.makesNew) {
        value = makeNewOf(tree.type, tree.arguments, tree.place);
    } else if (tree.value) {
        value = valueFor(*tree.value, type, "The value of '" + tree.name + "'");
    } else {
        value = initialValue(tree.place, type, tree.bounds);
    }
    NodePtr object = shared ? nullptr : std::make_unique<SelfNode>(tree.place);
    auto target =
        std::make_unique<PropertyTarget>(tree.place, std::move(object), member, CallArguments{}, true);
    return std::make_unique<AssignAction>(tree.place, std::move(target), std::move(value));
}

void Compiler::compileInitializer(PendingClass& pending) {
    if (!pending.initializer) return;
    RoutineScope scope;
    scope.owner = pending.made;
    scope.shared = false;
    scope.blocks.emplace_back();
    scope_ = &scope;
    for (const Initial& initial : pending.initials) {
        try {
            pending.initializer->body.push_back(initialAction(initial, *pending.made, false));
        } catch (const Unusable&) {
        }
    }
    pending.initializer->owner = pending.made;
    pending.initializer->slotCount = scope.slotCount;
    scope_ = nullptr;
}

void Compiler::compileSharedInitials(PendingClass& pending, Actions& into) {
    for (const Initial& initial : pending.sharedInitials) {
        try {
            into.push_back(initialAction(initial, *pending.made, true));
        } catch (const Unusable&) {
        }
    }
}

} // namespace host::basic
