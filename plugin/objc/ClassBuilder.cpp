// ClassBuilder.cpp: the runtime calls behind ClassBuilder.
#include "plugin/objc/ClassBuilder.hpp"

#include <bit>

namespace objc {

ClassBuilder::ClassBuilder(const char* superclass, const char* name) {
    if (const Class parent = objc_getClass(superclass)) made_ = objc_allocateClassPair(parent, name, 0);
}

ClassBuilder& ClassBuilder::addIvar(const char* name, std::size_t size, std::size_t alignment,
                                    const char* type) {
    // The runtime takes the alignment as a power of two.
    if (made_) class_addIvar(made_, name, size, static_cast<std::uint8_t>(std::countr_zero(alignment)), type);
    return *this;
}

ClassBuilder& ClassBuilder::addMethod(Sel selector, Imp code, const char* types) {
    if (made_) class_addMethod(made_, selector, code, types);
    return *this;
}

Class ClassBuilder::finish() {
    if (made_) objc_registerClassPair(made_);
    return made_;
}

void* ivarStorage(Id object, const char* name) {
    if (!object) return nullptr;
    const Ivar found = class_getInstanceVariable(send<"class", Class>(object), name);
    if (!found) return nullptr;
    return reinterpret_cast<char*>(object) + ivar_getOffset(found);
}

} // namespace objc
