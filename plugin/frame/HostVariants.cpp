// HostVariants.cpp: what is in a host variant, by the host's functions or else by the variant's properties.
#include "plugin/frame/HostServices.hpp"
#include "plugin/frame/Resolver.hpp"

#include <atomic>

namespace {

using frame::HostCell;

// The number, or what stands in the property where the host has no such entry, or 0.
template <class Result>
Result read(HostCell<Result(REALvariant)>& cell, REALvariant variant,
            bool (*readProperty)(REALobject, const char*, Result*), const char* property) {
    if (auto* service = cell.get()) return service(variant);
    Result value{};
    return readProperty(variant, property, &value) ? value : Result{};
}

} // namespace

int32_t GetVariantType(REALvariant variant) {
    using VarType = int32_t(REALvariant);
    static constinit std::atomic<VarType*> cell{nullptr};
    VarType* type = cell.load(std::memory_order_relaxed);
    if (!type) {
        type = reinterpret_cast<VarType*>(REALLoadFrameworkMethod("VarType(value As Variant) As Int32"));
        if (type) cell.store(type, std::memory_order_relaxed);
    }
    if (type) return type(variant);
    int32_t code = 0;
    return REALGetPropValueInt32(variant, "Type", &code) ? code : 0;
}

REALstring GetVariantString(REALvariant variant) {
    static constinit HostCell<frame::entry::VariantToString> cell("VariantToString");
    return variant ? read(cell, variant, REALGetPropValueString, "StringValue") : nullptr;
}

// Deliberately without a test for null: a nil variant is the host's to read.
int32_t GetVariantInteger(REALvariant variant) {
    static constinit HostCell<frame::entry::VariantToInt32> cell("VariantToInt32");
    return read(cell, variant, REALGetPropValueInt32, "Int32Value");
}

int64_t GetVariantLong(REALvariant variant) {
    static constinit HostCell<frame::entry::VariantToInt64> cell("VariantToInt64");
    return read(cell, variant, REALGetPropValueInt64, "LongValue");
}

float GetVariantSingle(REALvariant variant) {
    static constinit HostCell<frame::entry::VariantToSingle> cell("VariantToSingle");
    return read(cell, variant, REALGetPropValueSingle, "SingleValue");
}

double GetVariantDouble(REALvariant variant) {
    static constinit HostCell<frame::entry::VariantToDouble> cell("VariantToDouble");
    return read(cell, variant, REALGetPropValueDouble, "DoubleValue");
}
