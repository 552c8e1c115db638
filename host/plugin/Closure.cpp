// Closure.cpp: C functions made at run time with libffi.
#include "host/plugin/Closure.hpp"

#include "host/plugin/Marshal.hpp"
#include "host/runtime/Invoke.hpp"
#include "host/runtime/Lock.hpp"
#include "host/runtime/MemoryBlock.hpp"
#include "host/runtime/Pending.hpp"
#include "host/services/Platform.hpp"

#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace host {
namespace {

struct Closure {
    const Member* member = nullptr;
    Declaration declaration; // of the event, which may name its parameters otherwise than the handler does
    std::vector<ffi_type*> types;
    ffi_cif cif{};
    ffi_closure* closure = nullptr;
    void* code = nullptr;

    bool hasObject() const { return member->owner && !member->shared; }
};

// A thread of the platform's that enters BASIC: known to the platform, and with a pool of its own. A thread
// that a program runs on has both already.
class ThreadEntry {
  public:
    ThreadEntry() {
        if (holdsLock() || isInForeignCall()) return;
        registerThread();
        pool_.emplace();
    }

  private:
    std::optional<Pool> pool_;
};

Value readArgument(const Parameter& parameter, void* address) {
    Slot slot{};
    const Slot* from = static_cast<Slot*>(address);
    if (parameter.byRef) {
        from = *static_cast<Slot**>(address);
        if (!from) return Value::defaultFor(parameter.type);
    }
    std::memcpy(&slot, from, parameter.type.isReference() ? sizeof(void*) : sizeOf(parameter.type.kind));
    return peekSlot(parameter.type, slot);
}

void writeArgument(const Parameter& parameter, void* address, const Value& value) {
    void* to = *static_cast<void**>(address);
    if (!to) return;
    const Value fitting =
        convertOr(value, parameter.type, [&] { return "ByRef parameter " + parameter.name; });
    const std::size_t size = parameter.type.isReference() ? sizeof(void*) : sizeOf(parameter.type.kind);
    Slot before{}, after{};
    std::memcpy(&before, to, size);
    storeSlot(fitting, parameter.type, after);
    std::memcpy(to, &after, size);
    dropSlot(parameter.type, before);
}

// What a pointer block points at is the plug-in's for no longer than the call.
class PointersEnd {
  public:
    explicit PointersEnd(const std::vector<Value>& arguments) {
        for (const Value& argument : arguments)
            if (argument.isObject() && isMemoryBlock(argument.object())) blocks_.push_back(argument);
    }
    PointersEnd(const PointersEnd&) = delete;
    PointersEnd& operator=(const PointersEnd&) = delete;
    ~PointersEnd() {
        for (const Value& block : blocks_)
            endPointerBlock(block.object());
    }

  private:
    std::vector<Value> blocks_; // of its own: a handler may assign its parameters
};

void callBody(const Closure& closure, void* result, void** addresses) {
    const auto& parameters = closure.declaration.parameters;
    REALobject self = closure.hasObject() ? *static_cast<REALobject*>(*addresses++) : nullptr;
    const Ref alive = Ref::borrowAlive(self);
    if (self && !alive) return; // ended while the plug-in was about to call
    std::vector<Value> arguments;
    arguments.reserve(parameters.size());
    for (std::size_t i = 0; i < parameters.size(); ++i)
        arguments.push_back(readArgument(parameters[i], addresses[i]));
    const PointersEnd end(arguments);
    const Value value = closure.member->body(self, arguments);
    for (std::size_t i = 0; i < parameters.size(); ++i)
        if (parameters[i].byRef) writeArgument(parameters[i], addresses[i], arguments[i]);
    const Type& type = closure.declaration.result;
    if (type.kind != Kind::None)
        storeResult(convertOr(value, type, [&] { return "the result of " + closure.declaration.name; }), type,
                    result);
}

// Under the lock.
void describe(const std::exception_ptr& thrown, std::string& name, std::string& reason) {
    try {
        std::rethrow_exception(thrown);
    } catch (const Exception& exception) {
        name = exception.className();
        reason = exception.message().empty() ? name : exception.message();
    } catch (...) {
        name = "RuntimeException";
        reason = "the program ended inside an event handler";
    }
}

void enter(ffi_cif*, void* result, void** addresses, void* user) {
    const auto& closure = *static_cast<Closure*>(user);
    zeroResult(closure.declaration.result, result);
    std::exception_ptr thrown;
    std::string name, reason;
    {
        const ThreadEntry entry;
        const Locked lock;
        const PendingAside aside;
        try {
            callBody(closure, result, addresses);
        } catch (...) {
            thrown = std::current_exception();
            zeroResult(closure.declaration.result, result);
            describe(thrown, name, reason);
        }
    }
    if (!thrown) return;
    keepForLater(std::move(thrown));
    if (!isInForeignCall()) raiseOnPlatformThread(name, reason);
}

bool prepare(Closure& made) {
    if (made.hasObject()) made.types.push_back(&ffi_type_pointer);
    for (const auto& parameter : made.declaration.parameters)
        made.types.push_back(foreignType(parameter.type, parameter.byRef));
    const auto count = static_cast<unsigned>(made.types.size());
    ffi_type* resultType = foreignType(made.declaration.result);
    if (ffi_prep_cif(&made.cif, FFI_DEFAULT_ABI, count, resultType, made.types.data()) != FFI_OK)
        return false;
    made.closure = static_cast<ffi_closure*>(ffi_closure_alloc(sizeof(ffi_closure), &made.code));
    return made.closure && ffi_prep_closure_loc(made.closure, &made.cif, enter, &made, made.code) == FFI_OK;
}

std::mutex mutex;

auto& closures() {
    static auto& known = *new std::map<std::pair<const Member*, std::string>, std::unique_ptr<Closure>>;
    return known;
}

/// By where the declaration stands, which is a member's for ever: an event is asked for at each of its calls, and its text takes
/// longer than the rest.
auto& asked() {
    static auto& known = *new std::map<std::pair<const Member*, const Declaration*>, const Closure*>;
    return known;
}

} // namespace

REALproc closureFor(const Member& member, const Declaration& declaration) {
    std::lock_guard guard(mutex);
    const Closure*& before = asked()[{&member, &declaration}];
    if (before) return reinterpret_cast<REALproc>(before->code);
    auto& entry = closures()[{&member, declaration.text()}];
    if (!entry) {
        entry = std::make_unique<Closure>();
        entry->member = &member;
        entry->declaration = declaration;
        if (!prepare(*entry)) {
            entry.reset();
            return nullptr;
        }
    }
    before = entry.get();
    return reinterpret_cast<REALproc>(entry->code);
}

} // namespace host
