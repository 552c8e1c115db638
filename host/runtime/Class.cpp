// Class.cpp: what a class knows of itself: superclass, layout, members.
#include "host/runtime/Class.hpp"

#include "host/runtime/Exceptions.hpp"

#include <algorithm>

namespace host {
namespace {

constexpr std::size_t kHeaderSize = sizeof(REALobjectStruct);

std::size_t aligned(std::size_t size, std::size_t alignment) {
    return (size + alignment - 1) / alignment * alignment;
}

} // namespace

Class* Class::superOrNull() const noexcept {
    if (superName_.empty()) return nullptr;
    if (Class* known = super_.load(std::memory_order_acquire)) return known;
    Class* found = findClass(superName_);
    // A class below itself in its own chain of superclasses is as good as missing.
    for (const Class* c = found; c; c = c->super_.load(std::memory_order_acquire))
        if (c == this) return nullptr;
    if (found) super_.store(found, std::memory_order_release);
    return found;
}

Class* Class::super() const {
    Class* found = superOrNull();
    if (!found && !superName_.empty())
        raise("UnsupportedOperationException",
              "class " + name_ + " can't be used: its superclass " + superName_ + " is not loaded");
    return found;
}

bool Class::isA(const Class& other) const noexcept {
    for (const Class* c = this; c; c = c->superOrNull())
        if (c == &other) return true;
    return false;
}

std::vector<const Member*> Class::find(std::string_view name) const {
    std::vector<const Member*> found;
    for (const Class* c = this; c; c = c->superOrNull())
        if (const auto own = c->byName_.find(name); own != c->byName_.end())
            found.insert(found.end(), own->second.begin(), own->second.end());
    return found;
}

const Member* Class::findDeclared(const Declaration& declaration) const {
    for (const auto* member : find(declaration.name))
        if (member->declaration.matches(declaration)) return member;
    return nullptr;
}

const Member* Class::event(std::string_view name) const {
    for (const Class* c = this; c; c = c->superOrNull())
        for (const auto& member : c->members_)
            if (member->kind == MemberKind::Event && sameName(member->declaration.name, name))
                return member.get();
    return nullptr;
}

const Member* Class::handler(const Member& event) const {
    for (const Class* c = this; c; c = c->superOrNull()) {
        for (const auto& handler : c->handlers_)
            if (sameName(handler->declaration.name, event.declaration.name)) return handler.get();
        if (c == event.owner) break; // classes above the one that declares an event do not handle it
    }
    return nullptr;
}

std::size_t Class::dataOffset() const {
    const Class* base = superOrNull();
    return base ? aligned(base->dataOffset() + base->dataSize_, 16) : kHeaderSize;
}

std::size_t Class::fieldCount() const {
    const Class* base = superOrNull();
    return ownFields_ + (base ? base->fieldCount() : 0);
}

ClassShape Class::makeShape() const {
    ClassShape made;
    for (auto* c = const_cast<Class*>(this); c; c = c->super())
        made.chain.insert(made.chain.begin(), c);
    made.fieldsOffset = aligned(dataOffset() + dataSize_, alignof(Value));
    made.fieldCount = fieldCount();
    made.objectSize = made.fieldsOffset + made.fieldCount * sizeof(Value);
    for (const Class* c : made.chain) {
        made.endsUnderLock |= c->destructor_ || (c->definition_ && c->nativeDestructor_);
        made.isKeptByAddress |= c->definition_ && c->definition_->eventCount > 0;
    }
    for (const Member* member : find("Constructor")) {
        if (member->kind != MemberKind::Constant && member->shared) continue;
        if (made.constructors.empty() || member->owner == made.constructors[0]->owner)
            made.constructors.push_back(member);
    }
    made.isNotMadeWithNew = !made.constructors.empty() && made.constructors[0]->owner == this &&
                            std::ranges::all_of(made.constructors, &Member::notForPrograms);
    return made;
}

const ClassShape& Class::shape() const {
    if (const ClassShape* known = shape_.load(std::memory_order_acquire)) return *known;
    auto made = std::make_unique<ClassShape>(makeShape());
    const ClassShape* before = nullptr;
    if (!shape_.compare_exchange_strong(before, made.get(), std::memory_order_acq_rel)) return *before;
    return *made.release();
}

Class::~Class() { delete shape_.load(); }

} // namespace host
