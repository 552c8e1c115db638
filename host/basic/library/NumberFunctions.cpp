// Functions on numbers.
#include "Numbers.hpp"
#include "Tables.hpp"

#include <algorithm>
#include <cmath>
#include <random>

namespace host::basic {

namespace {

std::mt19937_64& generator() {
    static std::mt19937_64 made{std::random_device{}()};
    return made;
}

template <double (*Function)(double)>
Value real(Context&, Arguments a) {
    return Value(Function(a[0].toDouble()));
}
template <typename Number>
Number as(const Value& value) {
    if constexpr (std::is_same_v<Number, double>)
        return value.toDouble();
    else
        return value.toInt64();
}
template <typename Number>
Value smallest(Context&, Arguments a) {
    Number best = as<Number>(a[0]);
    for (const Value& value : a)
        best = std::min(best, as<Number>(value));
    return Value(best);
}
template <typename Number>
Value largest(Context&, Arguments a) {
    Number best = as<Number>(a[0]);
    for (const Value& value : a)
        best = std::max(best, as<Number>(value));
    return Value(best);
}

constexpr NativeEntry kEntries[] = {
    {"Abs(value As Int64) As Int64",
     [](Context&, Arguments a) -> Value {
         const int64_t value = a[0].toInt64();
         return Value(value < 0 ? static_cast<int64_t>(0 - static_cast<uint64_t>(value)) : value);
     }},
    {"Abs(value As Double) As Double", real<std::fabs>},
    {"Min(first As Int64, second As Int64) As Int64", smallest<int64_t>},
    {"Min(first As Double, second As Double) As Double", smallest<double>},
    {"Min(first As Int64, second As Int64, third As Int64) As Int64", smallest<int64_t>},
    {"Min(first As Double, second As Double, third As Double) As Double", smallest<double>},
    {"Max(first As Int64, second As Int64) As Int64", largest<int64_t>},
    {"Max(first As Double, second As Double) As Double", largest<double>},
    {"Max(first As Int64, second As Int64, third As Int64) As Int64", largest<int64_t>},
    {"Max(first As Double, second As Double, third As Double) As Double", largest<double>},
    {"Sign(value As Double) As Integer",
     [](Context&, Arguments a) -> Value {
         const double v = a[0].toDouble();
         return Value(int32_t{v > 0 ? 1 : v < 0 ? -1 : 0});
     }},
    {"Round(value As Double) As Double", real<std::round>},
    {"Floor(value As Double) As Double", real<std::floor>},
    {"Ceil(value As Double) As Double", real<std::ceil>},
    {"Ceiling(value As Double) As Double", real<std::ceil>},
    {"Sqrt(value As Double) As Double", real<std::sqrt>},
    {"Sin(value As Double) As Double", real<std::sin>},
    {"Cos(value As Double) As Double", real<std::cos>},
    {"Tan(value As Double) As Double", real<std::tan>},
    {"Asin(value As Double) As Double", real<std::asin>},
    {"Acos(value As Double) As Double", real<std::acos>},
    {"Atn(value As Double) As Double", real<std::atan>},
    {"Atan(value As Double) As Double", real<std::atan>},
    {"Atan2(y As Double, x As Double) As Double",
     [](Context&, Arguments a) -> Value { return Value(std::atan2(a[0].toDouble(), a[1].toDouble())); }},
    {"Exp(value As Double) As Double", real<std::exp>},
    {"Log(value As Double) As Double", real<std::log>},
    {"Pow(base As Double, exponent As Double) As Double",
     [](Context&, Arguments a) -> Value { return Value(std::pow(a[0].toDouble(), a[1].toDouble())); }},
    {"Rnd As Double",
     [](Context&, Arguments) -> Value {
         return Value(std::uniform_real_distribution<double>(0, 1)(generator()));
     }},
    {"Hex(value As Int32) As String",
     [](Context&, Arguments a) -> Value { return Value(inBase(static_cast<uint32_t>(a[0].toInt64()), 16)); }},
    {"Hex(value As Int64) As String",
     [](Context&, Arguments a) -> Value { return Value(inBase(static_cast<uint64_t>(a[0].toInt64()), 16)); }},
    {"Hex(value As UInt64) As String",
     [](Context&, Arguments a) -> Value { return Value(inBase(static_cast<uint64_t>(a[0].toInt64()), 16)); }},
    {"Oct(value As Int32) As String",
     [](Context&, Arguments a) -> Value { return Value(inBase(static_cast<uint32_t>(a[0].toInt64()), 8)); }},
    {"Oct(value As Int64) As String",
     [](Context&, Arguments a) -> Value { return Value(inBase(static_cast<uint64_t>(a[0].toInt64()), 8)); }},
    {"Oct(value As UInt64) As String",
     [](Context&, Arguments a) -> Value { return Value(inBase(static_cast<uint64_t>(a[0].toInt64()), 8)); }},
    {"Bin(value As Int32) As String",
     [](Context&, Arguments a) -> Value { return Value(inBase(static_cast<uint32_t>(a[0].toInt64()), 2)); }},
    {"Bin(value As Int64) As String",
     [](Context&, Arguments a) -> Value { return Value(inBase(static_cast<uint64_t>(a[0].toInt64()), 2)); }},
    {"Bin(value As UInt64) As String",
     [](Context&, Arguments a) -> Value { return Value(inBase(static_cast<uint64_t>(a[0].toInt64()), 2)); }},
};

} // namespace

std::span<const NativeEntry> numberFunctions() { return kEntries; }

} // namespace host::basic
