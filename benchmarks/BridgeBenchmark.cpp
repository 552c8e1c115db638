// BridgeBenchmark.cpp: what dictionaries, strings and wrappers cost over the bridge, against the same messages and
// host calls without it.
//
// The bare side knows beforehand what every entry is, and sends the messages and makes the host calls that the
// conversion of such a value takes, tests of its class included, and nothing else.
#include "benchmarks/Ratio.hpp"

#include "host/runtime/Harness.hpp"
#include "plugin/bridge/Dictionaries.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/bridge/Variants.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/frame/Resolver.hpp"
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Pool.hpp"

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

extern "C" void REALPluginMain(REALresolver resolver);

namespace {

using benchmark::ratio;
using objc::Boolean;
using objc::Id;
using objc::send;
using objc::sendClass;
using test::nsString;
using test::Pool;

// ---- the host's services, as addresses -----------------------------------------------------------------

#define SERVICE(name)                                                                                        \
    frame::entry::name* const name = reinterpret_cast<frame::entry::name*>(host::harness::service(#name))

struct Services {
    SERVICE(PluginNewInstance);
    SERVICE(REALBuildString);
    SERVICE(REALSetStringEncoding);
    SERVICE(REALUnlockString);
    SERVICE(REALUnlockObject);
    SERVICE(REALGetStringCFString);
    SERVICE(StringToVariant);
    SERVICE(Int32ToVariant);
    SERVICE(Int64ToVariant);
    SERVICE(DoubleToVariant);
    SERVICE(BooleanToVariant);
    SERVICE(VariantToString);
    SERVICE(VariantToInt32);
    SERVICE(VariantToInt64);
    SERVICE(VariantToDouble);
    SERVICE(REALGetPropValueInt);
    SERVICE(newMemoryBlock);
    SERVICE(memoryBlockGetPtr);
    SERVICE(memoryBlockGetSize);
    SERVICE(REALLockObject);
    SERVICE(REALLoadObjectMethod);
    SERVICE(REALLoadGlobalMethod);
};
#undef SERVICE

// ---- a dictionary of every common kind -----------------------------------------------------------------

enum class Kind { Text, Integer, Long, Double, Boolean, Data };
constexpr int kinds = 6;
constexpr unsigned long entries = 1000;

Kind kindOf(unsigned long i) { return static_cast<Kind>(i % kinds); }

Id platformValue(unsigned long i) {
    switch (kindOf(i)) {
    case Kind::Text:
        return nsString(("value number " + std::to_string(i)).c_str());
    case Kind::Integer:
        return sendClass<"NSNumber", "numberWithInt:">(static_cast<int>(i));
    case Kind::Long:
        return sendClass<"NSNumber", "numberWithLongLong:">(static_cast<long long>(i) << 32);
    case Kind::Double:
        return sendClass<"NSNumber", "numberWithDouble:">(static_cast<double>(i) / 3);
    case Kind::Boolean:
        return sendClass<"NSNumber", "numberWithBool:">(Boolean{1});
    default:
        return sendClass<"NSData", "dataWithBytes:length:">(static_cast<const void*>("sixteen bytes..."),
                                                            16ul);
    }
}

Id platformDictionary() {
    const Id made = sendClass<"NSMutableDictionary", "dictionary">();
    for (unsigned long i = 0; i < entries; ++i)
        send<"setObject:forKey:", void>(made, platformValue(i),
                                        nsString(("key " + std::to_string(i)).c_str()));
    return made;
}

// ---- the same without the bridge -----------------------------------------------------------------------

using SetValue = void(REALdictionary, REALvariant, REALvariant);
using GetValue = REALvariant(REALdictionary, REALvariant);
using GetKey = REALvariant(REALdictionary, int32_t);
using VarType = int32_t(REALvariant);

class Bare {
  public:
    // The kinds in the order in which this dictionary lists its keys.
    explicit Bare(Id dictionary) {
        const Id keys = send<"allKeys">(dictionary);
        for (unsigned long i = 0; i < entries; ++i)
            kinds_.push_back(
                kindOf(std::stoul(test::text(send<"objectAtIndex:">(keys, i)).substr(std::strlen("key ")))));
    }

    REALdictionary toHost(Id dictionary) const {
        const REALdictionary made = host.PluginNewInstance("Dictionary");
        auto* const set = reinterpret_cast<SetValue*>(
            host.REALLoadObjectMethod(made, "Value(key As Variant, Assigns _value As Variant)"));
        const Id keys = send<"allKeys">(dictionary);
        const auto count = send<"count", unsigned long>(keys);
        for (unsigned long i = 0; i < count; ++i) {
            const Id key = send<"objectAtIndex:">(keys, i);
            const REALvariant hostKey = textToHost(key);
            const REALvariant hostValue = valueToHost(send<"objectForKey:">(dictionary, key), kinds_[i]);
            set(made, hostKey, hostValue);
            host.REALUnlockObject(hostKey);
            host.REALUnlockObject(hostValue);
        }
        return made;
    }

    Id toPlatform(REALdictionary dictionary) const {
        auto* const value = reinterpret_cast<GetValue*>(
            host.REALLoadObjectMethod(dictionary, "Value(key As Variant) As Variant"));
        auto* const key = reinterpret_cast<GetKey*>(
            host.REALLoadObjectMethod(dictionary, "Key(index As Integer) As Variant"));
        int32_t count = 0;
        host.REALGetPropValueInt(dictionary, "Count", &count);
        const Id made =
            sendClass<"NSMutableDictionary", "dictionaryWithCapacity:">(static_cast<unsigned long>(count));
        for (int32_t i = 0; i < count; ++i) {
            const REALvariant hostKey = key(dictionary, i);
            const REALvariant hostValue = value(dictionary, hostKey);
            const Id platformKey = toPlatform(hostKey, Kind::Text);
            send<"setObject:forKey:", void>(made, toPlatform(hostValue, kinds_[static_cast<std::size_t>(i)]),
                                            platformKey);
            host.REALUnlockObject(hostKey);
            host.REALUnlockObject(hostValue);
        }
        return made;
    }

  private:
    // The tests of its class that an object goes through before it is known for what it is.
    template <objc::FixedString... classNames>
    static void test(Id object) {
        (void)sendClass<"NSNull", "null">();
        (void)(send<"isKindOfClass:", Boolean>(object, objc::classNamed<classNames>()) + ...);
    }

    REALvariant textToHost(Id string) const {
        test<"NSArray", "NSString">(string);
        const auto text = reinterpret_cast<CFStringRef>(string);
        (void)CFStringGetLength(text);
        char buffer[601];
        CFStringGetCString(text, buffer, 600, kREALEncodingUTF8);
        const REALstring made = host.REALBuildString(buffer, static_cast<int32_t>(std::strlen(buffer)));
        host.REALSetStringEncoding(made, kREALEncodingUTF8);
        const REALvariant variant = host.StringToVariant(made);
        host.REALUnlockString(made);
        return variant;
    }

    REALvariant valueToHost(Id object, Kind kind) const {
        if (kind == Kind::Text) return textToHost(object);
        if (kind == Kind::Data) {
            test<"NSArray", "NSString", "NSData">(object);
            const auto length = send<"length", unsigned long>(object);
            const auto* bytes = send<"bytes", const void*>(object);
            const REALmemoryBlock block = host.newMemoryBlock(static_cast<int32_t>(length));
            std::memcpy(host.memoryBlockGetPtr(block), bytes, length);
            return block;
        }
        test<"NSArray", "NSString", "NSData", "NSNumber">(object);
        (void)send<"objCType", const char*>(object);
        switch (kind) {
        case Kind::Integer:
            return host.Int32ToVariant(send<"intValue", int>(object));
        case Kind::Long:
            return host.Int64ToVariant(send<"longLongValue", long long>(object));
        case Kind::Double:
            return host.DoubleToVariant(send<"doubleValue", double>(object));
        default:
            return host.BooleanToVariant(send<"boolValue", Boolean>(object));
        }
    }

    Id toPlatform(REALvariant variant, Kind kind) const {
        (void)varType(variant);
        switch (kind) {
        case Kind::Text: {
            const REALstring text = host.VariantToString(variant);
            const Id made = objc::autoreleased(asObject(host.REALGetStringCFString(text, 0)));
            host.REALUnlockString(text);
            return made;
        }
        case Kind::Integer:
            return sendClass<"NSNumber", "numberWithLong:">(static_cast<long>(host.VariantToInt32(variant)));
        case Kind::Long:
            return sendClass<"NSNumber", "numberWithLongLong:">(
                static_cast<long long>(host.VariantToInt64(variant)));
        case Kind::Double:
            return sendClass<"NSNumber", "numberWithDouble:">(host.VariantToDouble(variant));
        case Kind::Boolean:
            return sendClass<"NSNumber", "numberWithBool:">(
                static_cast<Boolean>(host.VariantToInt32(variant)));
        default: {
            (void)host.REALLoadObjectMethod(variant, "Constructor(bytes as Integer)");
            host.REALLockObject(variant);
            const auto* bytes = static_cast<const void*>(host.memoryBlockGetPtr(variant));
            const Id made = sendClass<"NSData", "dataWithBytes:length:">(
                bytes, static_cast<unsigned long>(host.memoryBlockGetSize(variant)));
            host.REALUnlockObject(variant);
            return made;
        }
        }
    }

    Services host;
    VarType* varType =
        reinterpret_cast<VarType*>(host.REALLoadGlobalMethod(nullptr, "VarType(value As Variant) As Int32"));
    std::vector<Kind> kinds_;
};

void dictionaries() {
    const Pool pool;
    const Id dictionary = platformDictionary();
    const Bare bare(dictionary);
    if (send<"isEqualToDictionary:", Boolean, Id>(NewNSDictionary(NSDictionaryRB(dictionary)), dictionary) ==
            0 ||
        send<"isEqualToDictionary:", Boolean, Id>(bare.toPlatform(bare.toHost(dictionary)), dictionary) ==
            0) {
        std::fprintf(stderr, "A dictionary came back different.\n");
        std::exit(1);
    }
    const REALdictionary inHost = NSDictionaryRB(dictionary);
    ratio(
        "dictionary of 1000 entries, platform to host", 1.5, 1,
        [&] { REALUnlockObject(NSDictionaryRB(dictionary)); },
        [&] { REALUnlockObject(bare.toHost(dictionary)); });
    ratio(
        "dictionary of 1000 entries, host to platform", 1.5, 1,
        [&] {
            const Pool inner;
            NewNSDictionary(inHost);
        },
        [&] {
            const Pool inner;
            bare.toPlatform(inHost);
        });
    ratio(
        "dictionary of 1000 entries, there and back", 1.5, 1,
        [&] {
            const Pool inner;
            const REALdictionary made = NSDictionaryRB(dictionary);
            NewNSDictionary(made);
            REALUnlockObject(made);
        },
        [&] {
            const Pool inner;
            const REALdictionary made = bare.toHost(dictionary);
            bare.toPlatform(made);
            REALUnlockObject(made);
        });
    REALUnlockObject(inHost);
}

// ---- strings -------------------------------------------------------------------------------------------

void strings(const char* name, const std::string& text, int repeats) {
    const Pool pool;
    const Id platform = nsString(text.c_str());
    const REALstring hostText = NSStringRB(platform);
    ratio((std::string(name) + ", platform to host").c_str(), 1.3, repeats,
          [&] {
              const Pool inner;
              REALUnlockString(NSStringRB(platform));
          },
          [&] {
              const Pool inner;
              (void)send<"UTF8String", const char*>(platform);
          });
    ratio((std::string(name) + ", host to platform").c_str(), 1.3, repeats,
          [&] {
              const Pool inner;
              (void)NewNSString(hostText);
          },
          [&] {
              const Pool inner;
              (void)sendClass<"NSString", "stringWithUTF8String:">(text.c_str());
          });
    REALUnlockString(hostText);
}

std::string repeated(std::string_view text, std::size_t times) {
    std::string made;
    for (std::size_t i = 0; i < times; ++i)
        made += text;
    return made;
}

// ---- wrappers ------------------------------------------------------------------------------------------

void registry() {
    const Pool pool;
    std::vector<Id> objects;
    std::vector<REALobject> wrappers;
    for (int i = 0; i < 1000; ++i) {
        objects.push_back(objc::autoreleased(sendClass<"NSObject", "new">()));
        wrappers.push_back(NewDRDeviceQRX(objects.back()));
    }
    std::size_t next = 0;
    ratio(
        "a wrapper among 1000 in the registry", 1.5, 1000,
        [&] {
            if (FindInstance(objects[next++ % objects.size()]) == nullptr) std::abort();
        },
        [&] {
            if (CFDictionaryGetValue(instances, objects[next++ % objects.size()]) == nullptr) std::abort();
        });
    for (const REALobject wrapper : wrappers)
        REALUnlockObject(wrapper);
}

} // namespace

int main(int count, char** arguments) {
    if (count > 1) benchmark::chosen = arguments[1];
    const Pool pool;
    test::companion::offerRegistry();
    REALPluginMain(host::resolver());
    instances = test::companion::registry;
    std::printf("%-56s %15s %15s %6s\n", "", "over the bridge", "without it", "ratio");
    dictionaries();
    strings("20 units of ASCII", repeated("x", 20), 500);
    strings("20 units of other text", repeated("é", 20), 500);
    strings("100,000 units of ASCII", repeated("x", 100000), 1);
    strings("100,000 units of other text", repeated("é", 100000), 1);
    registry();
}
