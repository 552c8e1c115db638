// ClassBuilder.hpp: builds a platform class at run time, from C++ functions.
//
//   const objc::Class made = objc::ClassBuilder("DRTrack", "MyDRTrack")
//                                .ivar<REALobject>("host")
//                                .method<"prepareTrack:forBurn:toMedia:", prepareTrack>()
//                                .finish();
//
// The methods' type encodings come from the functions' signatures. Where the superclass is missing there is
// no class: finish() answers null, and the caller leaves its slot empty.
#pragma once

#include "plugin/objc/Encoding.hpp"
#include "plugin/objc/Message.hpp"

namespace objc {

class ClassBuilder {
  public:
    ClassBuilder(const char* superclass, const char* name);

    // An instance variable, zero in a new object; read and written with ivar<T>(object, name).
    template <class T>
    ClassBuilder& ivar(const char* name) {
        return addIvar(name, sizeof(T), alignof(T), "^v");
    }

    // An instance method. A method of the superclass with the same selector is overridden.
    template <FixedString selectorName, auto function>
    ClassBuilder& method() {
        using Types = MethodTypes<decltype(function)>;
        static_assert(Types::text.size() > 2 + detail::colons(selectorName.view()),
                      "one parameter for each colon of the selector");
        return addMethod(selector<selectorName>(), reinterpret_cast<Imp>(function), Types::text.data());
    }

    // Makes the class known to the runtime. Answers null when the superclass is missing or the name is taken.
    Class finish();

  private:
    ClassBuilder& addIvar(const char* name, std::size_t size, std::size_t alignment, const char* type);
    ClassBuilder& addMethod(Sel selector, Imp code, const char* types);

    Class made_ = nullptr;
};

// The storage of an object's instance variable, or null when its class has none of that name.
void* ivarStorage(Id object, const char* name);

template <class T>
T* ivar(Id object, const char* name) {
    return static_cast<T*>(ivarStorage(object, name));
}

} // namespace objc
