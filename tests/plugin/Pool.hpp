// Pool.hpp: an autorelease pool for the length of a test, and platform strings in C++ terms.
#pragma once

#include "plugin/objc/Message.hpp"

#include <string>

namespace test {

class Pool {
  public:
    Pool() : pool_(objc::sendClass<"NSAutoreleasePool", "new">()) {}
    ~Pool() { objc::send<"drain", void>(pool_); }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

  private:
    objc::Id pool_;
};

inline objc::Id nsString(const char* utf8) {
    return objc::sendClass<"NSString", "stringWithUTF8String:">(utf8);
}

inline std::string text(objc::Id string) {
    const auto utf8 = objc::send<"UTF8String", const char*>(string);
    return utf8 ? utf8 : "";
}

} // namespace test
