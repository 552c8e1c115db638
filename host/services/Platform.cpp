// Platform.cpp: the platform reached through its runtime's C functions, looked up by name.
#include "host/services/Platform.hpp"

#include "host/runtime/Lock.hpp"
#include "host/runtime/String.hpp"
#include "host/services/TimeRules.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace host {
namespace {

using Id = void*;

template <class Function>
Function* symbol(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

// A function of the platform, looked up until it is found: the platform comes with the first plug-in that needs it.
template <class Function>
class PlatformFunction {
  public:
    constexpr explicit PlatformFunction(const char* name) : name_(name) {}

    Function* get() {
        Function* found = known_.load(std::memory_order_relaxed); // by any thread
        if (!found) known_ = found = symbol<Function>(name_);
        return found;
    }

  private:
    const char* name_;
    std::atomic<Function*> known_{nullptr};
};

Id classNamed(const char* name) {
    static constinit PlatformFunction<Id(const char*)> getClass("objc_getClass");
    auto* lookUp = getClass.get();
    return lookUp ? lookUp(name) : nullptr;
}

// Sends a message. The runtimes differ in how: one looks the method up, the other sends. Called with a class
// or object in hand, so the runtime is there.
template <class Result, class... Arguments>
Result send(Id receiver, const char* selectorName, Arguments... arguments) {
    if (!receiver) return Result();
    using Method = Result(Id, void*, Arguments...);
    static auto* const selector = symbol<void*(const char*)>("sel_registerName");
    static auto* const lookUp = symbol<void*(Id, void*)>("objc_msg_lookup");
    static auto* const message = symbol<Method>("objc_msgSend");
    if (!selector || (!lookUp && !message)) return Result();
    void* name = selector(selectorName);
    Method* method = lookUp ? reinterpret_cast<Method*>(lookUp(receiver, name)) : message;
    return method(receiver, name, arguments...);
}

using CreateWithBytes = CFStringRef(const void*, const uint8_t*, long, uint32_t, uint8_t);
using CreateWithCharacters = CFStringRef(const void*, const uint16_t*, long);

CFStringRef fromUTF16(std::string_view bytes) {
    static constinit PlatformFunction<CreateWithCharacters> function("CFStringCreateWithCharacters");
    auto* create = function.get();
    if (!create) return nullptr;
    std::vector<uint16_t> units(bytes.size() / 2);
    bytes.copy(reinterpret_cast<char*>(units.data()), units.size() * 2); // an odd last byte is no unit
    return create(nullptr, units.data(), static_cast<long>(units.size()));
}

CFStringRef fromBytes(std::string_view bytes, uint32_t encoding) {
    static constinit PlatformFunction<CreateWithBytes> function("CFStringCreateWithBytes");
    auto* create = function.get();
    if (!create) return nullptr;
    return create(nullptr, reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<long>(bytes.size()),
                  encoding, 0);
}

} // namespace

void nameTheTimeZone() {
    const char* const given = std::getenv("TZ");
    if (!given) return;
    std::string zone = given;
    if (zone.starts_with(':')) zone.erase(0, 1);
    constexpr std::string_view folder = "/usr/share/zoneinfo/";
    if (zone.starts_with(folder)) zone.erase(0, folder.size());
    if (zone.empty()) zone = "UTC"; // as the C library has it
    std::error_code error;
    if (zone[0] == '/' || !std::filesystem::is_regular_file(std::string(folder) + zone, error)) return;
    setenv("GNUSTEP_TZ", zone.c_str(), 0); // whoever has set it means it
}

void givePlatformTheTimeZone() {
    const Id zones = classNamed("NSTimeZone");
    if (!zones || !std::getenv("TZ") || std::getenv("GNUSTEP_TZ")) return;
    const Pool pool;
    const std::string rules = timeRules();
    const Id data =
        send<Id>(classNamed("NSData"), "dataWithBytes:length:", static_cast<const void*>(rules.data()),
                 static_cast<unsigned long>(rules.size()));
    auto* const text =
        const_cast<void*>(static_cast<const void*>(fromBytes("Rules of TZ", kREALEncodingUTF8)));
    const Id name = send<Id>(text, "autorelease");
    if (const Id zone = send<Id>(zones, "timeZoneWithName:data:", name, data))
        send<void>(zones, "setDefaultTimeZone:", zone);
}

bool hasPlatform() { return classNamed("NSAutoreleasePool") != nullptr; }

namespace {

// Made and ended with each statement and each event: what a message takes is looked up once.
class PoolMessages {
  public:
    // Null as long as there is no platform.
    static const PoolMessages* known() {
        static std::atomic<const PoolMessages*> found{nullptr};
        if (const auto* before = found.load(std::memory_order_acquire)) return before;
        const Id pools = classNamed("NSAutoreleasePool");
        if (!pools) return nullptr;
        static const PoolMessages messages(pools);
        found.store(&messages, std::memory_order_release);
        return &messages;
    }

    Id make() const { return make_(pools_, new_); }
    // Pools of one class have one way to end.
    void end(Id pool) const { release_(pool, releaseName_); }

  private:
    explicit PoolMessages(Id pools) : pools_(pools) {
        auto* const selector = symbol<void*(const char*)>("sel_registerName");
        auto* const lookUp = symbol<void*(Id, void*)>("objc_msg_lookup");
        auto* const message = symbol<void>("objc_msgSend");
        new_ = selector("new");
        releaseName_ = selector("release");
        make_ = reinterpret_cast<Make*>(lookUp ? lookUp(pools, new_) : reinterpret_cast<void*>(message));
        const Id first = make();
        release_ =
            reinterpret_cast<End*>(lookUp ? lookUp(first, releaseName_) : reinterpret_cast<void*>(message));
        end(first);
    }

    using Make = Id(Id, void*);
    using End = void(Id, void*);
    Id pools_;
    void* new_;
    void* releaseName_;
    Make* make_;
    End* release_;
};

} // namespace

Pool::Pool() {
    const auto* const messages = PoolMessages::known();
    pool_ = messages ? messages->make() : nullptr;
}

Pool::~Pool() {
    if (pool_) PoolMessages::known()->end(pool_);
}

void registerThread() {
    // Told to the platform once for each thread, and taken back when the thread ends, by whoever was first.
    struct Registration {
        bool isKnown = false, isOurs = false;
        ~Registration() {
            if (auto* forget = symbol<void()>("GSUnregisterCurrentThread"); isOurs && forget) forget();
        }
    };
    thread_local Registration registration;
    if (registration.isKnown) return;
    auto* const make = symbol<uint8_t()>("GSRegisterCurrentThread");
    registration.isOurs = make && make() != 0;
    registration.isKnown = make != nullptr;
}

namespace {

// The application object, if a plug-in has brought up the user interface and this is the thread that it lives on. Never
// makes one.
Id application() {
    const auto* known = symbol<const Id>("NSApp");
    return known && send<uint8_t>(classNamed("NSThread"), "isMainThread") ? *known : nullptr;
}

// Windows live by the events that their program hands on: a run loop alone only collects them.
void handOnEvents(Id application, Id mode) {
    const Id past = send<Id>(classNamed("NSDate"), "distantPast");
    constexpr unsigned long anyEvent = ~0UL;
    for (;;) {
        const Pool pool;
        const Id event = send<Id>(application, "nextEventMatchingMask:untilDate:inMode:dequeue:", anyEvent,
                                  past, mode, static_cast<uint8_t>(1));
        if (!event) return;
        send<void>(application, "sendEvent:", event);
        send<void>(application, "updateWindows");
    }
}

} // namespace

void runLoop(double seconds) {
    using Clock = std::chrono::steady_clock;
    const Pool pool;
    const Unlocked unlocked;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    const auto left = [end] { return std::chrono::duration<double>(end - Clock::now()).count(); };
    const Id loop = send<Id>(classNamed("NSRunLoop"), "currentRunLoop");
    const auto* mode = symbol<const Id>("NSDefaultRunLoopMode");
    // A run loop waits for whole milliseconds, and goes round without a pause until its date has come: so the date lies
    // shortly behind a whole one, and the rest is slept. Without sources it returns at once.
    for (bool isWorth = loop && mode; isWorth;) {
        if (const Id windows = application()) handOnEvents(windows, *mode); // those that are here already
        const double wait = std::max(0.0, (std::floor(left() * 1000) - 0.8) / 1000);
        const Id date = send<Id>(classNamed("NSDate"), "dateWithTimeIntervalSinceNow:", wait);
        const bool hasSources = send<uint8_t>(loop, "runMode:beforeDate:", *mode, date) != 0;
        if (const Id windows = application()) handOnEvents(windows, *mode);
        isWorth = hasSources && left() > 0.002;
    }
    std::this_thread::sleep_until(end);
}

void raiseOnPlatformThread(const std::string& name, const std::string& reason) {
    const Id thread = classNamed("NSThread");
    if (!thread || send<uint8_t>(thread, "isMainThread")) return;
    const auto text = [](const std::string& bytes) {
        auto* const string = const_cast<void*>(static_cast<const void*>(fromBytes(bytes, kREALEncodingUTF8)));
        return send<Id>(string ? string : send<Id>(classNamed("NSString"), "new"), "autorelease");
    };
    send<void>(send<Id>(classNamed("NSException"), "exceptionWithName:reason:userInfo:", text(name),
                        text(reason), Id{}),
               "raise");
}

CFStringRef newPlatformString(REALstring string) {
    if (!string) return nullptr;
    auto encoding = encodingOf(string);
    if (encoding == kREALEncodingUTF16) return fromUTF16(bytesOf(string));
    if (encoding == kREALEncodingUnknown)
        encoding = isValidUTF8(bytesOf(string)) ? kREALEncodingUTF8 : kREALEncodingDefault;
    if (CFStringRef made = fromBytes(bytesOf(string), encoding)) return made;
    // An encoding that the platform does not have, or damaged text: by way of what this host can read.
    const auto converted = String::adopt(convertString(string, kREALEncodingUTF16));
    return converted.get() ? fromUTF16(converted.bytes()) : nullptr;
}

} // namespace host
