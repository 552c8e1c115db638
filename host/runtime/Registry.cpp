// Registry.cpp: all classes by name, from records of plug-ins, from programs, and the host's own.
#include "host/runtime/Builtins.hpp"
#include "host/runtime/Exceptions.hpp"
#include "host/runtime/Live.hpp"

#include <algorithm>
#include <mutex>

namespace host {

class Registry {
  public:
    // Event handlers look classes up on threads of the platform, so every access is under a lock of its own.
    // Recursive: defining a class asks for its superclass.
    std::recursive_mutex mutex;

    static Registry& get() {
        static Registry& registry = *new Registry; // never destroyed: objects may outlive static destructors
        std::lock_guard guard(registry.mutex);
        if (!registry.isReady_) {
            registry.isReady_ = true;
            defineExceptionClasses();
            defineMemoryBlockClass();
            defineDictionaryClass();
            defineDateClass();
            defineFolderItemClass();
            defineVariantClass();
            defineGlobals();
        }
        return registry;
    }

    Class* find(std::string_view name) {
        const auto found = byName_.find(name);
        return found == byName_.end() ? nullptr : found->second;
    }

    const std::vector<std::unique_ptr<Class>>& classes() const { return classes_; }
    const std::vector<std::unique_ptr<Class>>& hidden() const { return hidden_; }
    std::vector<std::string> problems;

    Class& add(ClassSpec spec, bool isBasic, bool isHidden) {
        auto made = std::make_unique<Class>();
        made->name_ = std::move(spec.name);
        made->superName_ = std::move(spec.superName);
        made->initializer_ = std::move(spec.initializer);
        made->destructor_ = std::move(spec.destructor);
        made->isBasic_ = isBasic;
        const Class* base = made->superOrNull();
        std::size_t nextField = base ? base->fieldCount() : 0;
        const std::size_t firstField = nextField;
        for (auto& member : spec.members)
            addSpecified(*made, std::move(member), nextField);
        made->ownFields_ = nextField - firstField;
        return keep(std::move(made), isHidden);
    }

    Class& addRecord(REALclassDefinition& record) {
        auto made = std::make_unique<Class>();
        made->name_ = record.name;
        made->superName_ = record.superName ? record.superName : "";
        made->definition_ = &record;
        made->dataSize_ = record.dataSize;
        made->nativeConstructor_ = record.constructor;
        made->nativeDestructor_ = record.destructor;
        for (uintptr_t i = 0; record.methods && i < record.methodCount; ++i)
            addRecordMember(*made, record.methods[i], false);
        for (uintptr_t i = 0; record.events && i < record.eventCount; ++i)
            addRecordEvent(*made, record.events[i]);
        for (uintptr_t i = 0; record.constants && i < record.constantCount; ++i)
            addRecordConstant(*made, record.constants[i]);
        for (uintptr_t i = 0; record.sharedMethods && i < record.sharedMethodCount; ++i)
            addRecordMember(*made, record.sharedMethods[i], true);
        return keep(std::move(made), false);
    }

    static void setNative(Class& made, const BuiltinSpec& builtin) {
        made.dataSize_ = builtin.dataSize;
        made.nativeConstructor_ = builtin.constructor;
        made.nativeDestructor_ = builtin.destructor;
    }

    void forgetPrograms() {
        std::erase_if(byName_, [](const auto& entry) { return entry.second->isBasic(); });
        // Kept, not freed: closures and cached members may still point into them.
        for (auto& known : classes_)
            if (known->isBasic()) hidden_.push_back(std::move(known));
        std::erase(classes_, nullptr);
    }

  private:
    bool isReady_ = false;
    std::vector<std::unique_ptr<Class>> classes_;
    std::vector<std::unique_ptr<Class>> hidden_;
    std::map<std::string, Class*, NameLess> byName_;

    Class& keep(std::unique_ptr<Class> made, bool isHidden) {
        Class& kept = *made;
        (isHidden ? hidden_ : classes_).push_back(std::move(made));
        if (!isHidden) byName_[kept.name_] = &kept;
        return kept;
    }

    static Member& addMember(Class& owner, Member member) {
        member.owner = &owner;
        owner.members_.push_back(std::make_unique<Member>(std::move(member)));
        Member& added = *owner.members_.back();
        if (added.kind != MemberKind::Event) owner.byName_[added.declaration.name].push_back(&added);
        return added;
    }

    static void addSpecified(Class& owner, MemberSpec spec, std::size_t& nextField) {
        Member member;
        member.kind = spec.kind;
        member.shared = spec.shared;
        member.scope = spec.scope;
        member.text = spec.declaration.text();
        const bool isStored = spec.kind == MemberKind::Property && !spec.body && !spec.setter;
        if (isStored || spec.kind == MemberKind::Constant) member.value = spec.initial;
        // Every object has an array of its own: made with the object. A shared one is made now.
        if (isStored && spec.initial.isNil() && (spec.shared || !spec.declaration.result.array))
            member.value = Value::defaultFor(spec.declaration.result);
        if (isStored && !spec.shared) member.field = nextField++;
        member.declaration = std::move(spec.declaration);
        member.body = std::move(spec.body);
        member.setterBody = std::move(spec.setter);
        if (member.kind == MemberKind::Event && member.body) {
            member.owner = &owner;
            owner.handlers_.push_back(std::make_unique<Member>(std::move(member)));
            return;
        }
        addMember(owner, std::move(member));
    }

    template <class Action>
    void noteProblems(const Class& owner, const char* text, Action action) {
        try {
            if (!text) throw DeclarationError("the declaration is missing", 0);
            action();
        } catch (const DeclarationError& error) {
            problems.push_back("class " + owner.name() + ": \"" + (text ? text : "") +
                               "\" is left out: " + error.what());
        }
    }

    void addRecordMember(Class& owner, const REALmethodDefinition& record, bool isShared) {
        noteProblems(owner, record.declaration, [&] {
            Member member;
            member.declaration = parseDeclaration(record.declaration);
            member.kind = record.setter ? MemberKind::Property : MemberKind::Method;
            if (!record.function && !record.setter) throw DeclarationError("it has no function", 0);
            member.text = record.declaration;
            member.shared = isShared;
            member.function = record.function;
            member.setter = record.setter;
            member.flags = record.flags;
            addMember(owner, std::move(member));
        });
    }

    void addRecordEvent(Class& owner, REALevent& record) {
        noteProblems(owner, record.declaration, [&] {
            Member member;
            member.kind = MemberKind::Event;
            member.declaration = parseDeclaration(record.declaration);
            member.text = record.declaration;
            record.identity = reinterpret_cast<uintptr_t>(&addMember(owner, std::move(member)));
        });
    }

    void addRecordConstant(Class& owner, const REALconstant& record) {
        noteProblems(owner, record.declaration, [&] {
            auto constant = parseConstant(record.declaration);
            Member member;
            member.kind = MemberKind::Constant;
            member.shared = true;
            member.declaration.name = std::move(constant.name);
            member.text = record.declaration;
            member.value = std::move(constant.value);
            addMember(owner, std::move(member));
        });
    }
};

Class* findClass(std::string_view name) {
    Registry& registry = Registry::get();
    std::lock_guard guard(registry.mutex);
    return registry.find(name);
}

Class& requireClass(std::string_view name) {
    if (Class* found = findClass(name)) return *found;
    raise("UnsupportedOperationException", "there is no class " + std::string(name));
}

std::vector<Class*> allClasses() {
    Registry& registry = Registry::get();
    std::lock_guard guard(registry.mutex);
    std::vector<Class*> classes;
    for (const auto& known : registry.classes())
        classes.push_back(known.get());
    return classes;
}

Class& defineClass(ClassSpec spec) {
    Registry& registry = Registry::get();
    std::lock_guard guard(registry.mutex);
    const auto refuse = [&](const std::string& why) {
        raise("UnsupportedOperationException", "class " + spec.name + " can't be defined: " + why);
    };
    if (registry.find(spec.name)) refuse("there is a class of that name already");
    const Class* base = spec.superName.empty() ? nullptr : registry.find(spec.superName);
    if (!spec.superName.empty() && !base) refuse("its superclass " + spec.superName + " is not there");
    for (const auto& member : spec.members) {
        if (member.kind != MemberKind::Event || !member.body) continue;
        const Member* event = base ? base->event(member.declaration.name) : nullptr;
        if (!event) refuse("no superclass has an event " + member.declaration.name);
        if (event->declaration.parameters.size() != member.declaration.parameters.size())
            refuse("the event is declared as " + event->text);
    }
    for (; base; base = base->superOrNull())
        if (!base->superName().empty() && !base->superOrNull())
            refuse("class " + base->name() + " needs the class " + base->superName() +
                   ", which is not loaded");
    return registry.add(std::move(spec), true, false);
}

void registerClass(REALclassDefinition* definition) {
    Registry& registry = Registry::get();
    std::lock_guard guard(registry.mutex);
    if (!definition || !definition->name) {
        registry.problems.push_back("a class without a name was registered; it is left out");
        return;
    }
    if (registry.find(definition->name)) {
        registry.problems.push_back("class " + std::string(definition->name) +
                                    " is left out: there is a class of that name already");
        return;
    }
    registry.addRecord(*definition);
}

std::vector<std::string> registrationProblems() {
    Registry& registry = Registry::get();
    std::lock_guard guard(registry.mutex);
    return registry.problems;
}

void forgetProgramClasses() {
    Registry& registry = Registry::get();
    std::lock_guard guard(registry.mutex);
    registry.forgetPrograms();
}

Class& defineBuiltin(BuiltinSpec builtin) {
    Registry& registry = Registry::get();
    std::lock_guard guard(registry.mutex);
    Class& made = registry.add(std::move(builtin.spec), false, false);
    Registry::setNative(made, builtin);
    return made;
}

Class& defineHidden(BuiltinSpec builtin) {
    Registry& registry = Registry::get();
    std::lock_guard guard(registry.mutex);
    Class& made = registry.add(std::move(builtin.spec), false, true);
    Registry::setNative(made, builtin);
    return made;
}

std::map<std::string, std::size_t> liveObjects() {
    Registry& registry = Registry::get();
    std::lock_guard guard(registry.mutex);
    std::map<std::string, std::size_t> live;
    for (const auto* list : {&registry.classes(), &registry.hidden()})
        for (const auto& known : *list)
            if (const auto count = known->liveCount.load()) live[known->name()] += count;
    return live;
}

} // namespace host
