// ForeignCall.cpp: plug-in functions called through libffi.
#include "host/plugin/ForeignCall.hpp"

#include "host/plugin/Marshal.hpp"
#include "host/runtime/Pending.hpp"

#include <array>
#include <memory_resource>
#include <vector>

namespace host {
namespace {

// The machine arguments of one call: keeps the slots, and gives back their references whatever happens.
class ArgumentList {
  public:
    void addObject(REALobject self) { add(&ffi_type_pointer).object = self; }

    void addValue(const Value& value, const Parameter& parameter) {
        Slot& slot = slots_.emplace_back();
        storeSlot(value, parameter.type, slot);
        held_.push_back({&slot, &parameter});
        types_.push_back(foreignType(parameter.type, parameter.byRef));
        if (!parameter.byRef) {
            addresses_.push_back(&slot);
            return;
        }
        Slot& pointer = slots_.emplace_back();
        pointer.pointer = &slot;
        addresses_.push_back(&pointer);
    }

    void takeBack(std::vector<Value>& arguments) {
        for (std::size_t i = 0; i < held_.size(); ++i)
            if (held_[i].parameter->byRef) arguments[i] = peekSlot(held_[i].parameter->type, *held_[i].slot);
    }

    void call(REALproc function, ffi_type* resultType, Slot& result) {
        ffi_cif cif;
        const auto count = static_cast<unsigned>(types_.size());
        if (ffi_prep_cif(&cif, FFI_DEFAULT_ABI, count, resultType, types_.data()) != FFI_OK)
            raise("UnsupportedOperationException",
                  "the function can't be called: its signature is not supported");
        ForeignCallScope scope;
        ffi_call(&cif, function, &result, addresses_.data());
    }

    explicit ArgumentList(std::size_t values) {
        slots_.reserve(2 * values + 1);
        held_.reserve(values);
        types_.reserve(values + 1);
        addresses_.reserve(values + 1);
    }
    ArgumentList(const ArgumentList&) = delete;
    ArgumentList& operator=(const ArgumentList&) = delete;
    ~ArgumentList() {
        for (const auto& held : held_)
            dropSlot(held.parameter->type, *held.slot);
    }

  private:
    struct Held {
        Slot* slot;
        const Parameter* parameter;
    };
    std::array<std::byte, 1024> room_; // for some twenty arguments; more are kept elsewhere
    std::pmr::monotonic_buffer_resource memory_{room_.data(), room_.size()};
    std::pmr::vector<Slot> slots_{&memory_}; // never more than it has room for: addresses stay
    std::pmr::vector<Held> held_{&memory_};
    std::pmr::vector<ffi_type*> types_{&memory_};
    std::pmr::vector<void*> addresses_ = std::pmr::vector<void*>(&memory_); // braces would make it an element

    Slot& add(ffi_type* type) {
        types_.push_back(type);
        addresses_.push_back(&slots_.emplace_back());
        return slots_.back();
    }
};

} // namespace

Value foreignCall(const Member& member, REALobject self, std::vector<Value>& arguments) {
    const auto& declaration = member.declaration;
    Value value;
    {
        ArgumentList list(arguments.size());
        if (!member.shared) list.addObject(self);
        for (std::size_t i = 0; i < arguments.size(); ++i)
            list.addValue(arguments[i], declaration.parameters[i]);
        Slot result{};
        result.uint64 = 0;
        list.call(member.function, foreignType(declaration.result), result);
        if (declaration.result.kind != Kind::None) value = takeResult(declaration.result, result);
        list.takeBack(arguments);
    }
    throwPendingException();
    return value;
}

void foreignSet(const Member& member, REALobject self, std::vector<Value>& arguments) {
    const auto& declaration = member.declaration;
    Parameter assigned;
    assigned.name = "value";
    assigned.type = declaration.result;
    {
        ArgumentList list(arguments.size());
        if (!member.shared) list.addObject(self);
        for (std::size_t i = 0; i + 1 < arguments.size(); ++i)
            list.addValue(arguments[i], declaration.parameters[i]);
        list.addValue(arguments.back(), assigned);
        Slot nothing{};
        list.call(member.setter, &ffi_type_void, nothing);
    }
    throwPendingException();
}

} // namespace host
