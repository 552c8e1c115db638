// Array.cpp: packed arrays and their classes, one for each element type.
#include "host/runtime/Array.hpp"

#include "host/plugin/Marshal.hpp"
#include "host/runtime/Builtins.hpp"
#include "host/runtime/Exceptions.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>

namespace host {
namespace {

// The instance data of an array; the elements lie where the header's third word points.
struct ArrayData {
    Type element;
    std::size_t count = 0;
    std::size_t capacity = 0;
};

constexpr auto kMostElements = static_cast<std::size_t>(std::numeric_limits<int32_t>::max());

char* elementsOf(REALobject array) { return static_cast<char*>(arrayHandle(array)->elements); }
std::size_t widthOf(REALobject array) { return sizeOf(dataOf<ArrayData>(array).element.kind); }
char* elementAt(REALobject array, std::size_t index) { return elementsOf(array) + index * widthOf(array); }

Slot loadSlot(REALobject array, std::size_t index) {
    Slot slot{};
    std::memcpy(&slot, elementAt(array, index), widthOf(array));
    return slot;
}

void destroyArray(REALobject array) {
    auto& data = dataOf<ArrayData>(array);
    for (std::size_t i = 0; i < data.count; ++i)
        dropSlot(data.element, loadSlot(array, i));
    std::free(arrayHandle(array)->elements);
    data.~ArrayData();
}

void reserve(REALobject array, std::size_t count) {
    auto& data = dataOf<ArrayData>(array);
    if (count <= data.capacity) return;
    if (count > kMostElements) raise("OutOfMemoryException", "the array can't have that many elements");
    const std::size_t capacity = std::max(count, data.capacity + data.capacity / 2 + 4);
    void* moved = std::realloc(elementsOf(array), capacity * widthOf(array));
    if (!moved)
        raise("OutOfMemoryException",
              "there is no memory for an array of " + std::to_string(count) + " elements");
    arrayHandle(array)->elements = moved;
    data.capacity = capacity;
}

std::size_t checkedIndex(REALobject array, int64_t index, std::size_t count) {
    if (index >= 0 && static_cast<uint64_t>(index) < count) return static_cast<std::size_t>(index);
    const auto last = upperBound(array);
    raise("OutOfBoundsException", "index " + std::to_string(index) + " is out of bounds: " +
                                      (last < 0 ? std::string("the array is empty")
                                                : "the array's last index is " + std::to_string(last)));
}

Slot fittingSlot(REALobject array, const Value& value) {
    const Type& element = dataOf<ArrayData>(array).element;
    Slot slot{};
    storeSlot(convert(value, element, "an element of the array"), element, slot);
    return slot;
}

BuiltinSpec arraySpec(const Type& element) {
    BuiltinSpec builtin = builtinWith<ArrayData>(Type{element.kind, element.className, true}.text(), {});
    builtin.destructor = destroyArray;
    const std::string type = element.text();
    auto& members = builtin.spec.members;
    const auto append = [](REALobject self, Arguments a) -> Value {
        return arrayAppend(self, a[0]), Value();
    };
    const auto insert = [](REALobject self, Arguments a) -> Value {
        return arrayInsert(self, a[0].toInt64(), a[1]), Value();
    };
    const auto remove = [](REALobject self, Arguments a) -> Value {
        return arrayRemove(self, a[0].toInt64()), Value();
    };
    const auto last = [](REALobject self, Arguments) -> Value { return upperBound(self); };
    for (const char* name : {"Append", "Add"})
        members.push_back(method(std::string(name) + "(value As " + type + ")", append));
    for (const char* name : {"Insert", "AddAt"})
        members.push_back(method(std::string(name) + "(index As Int32, value As " + type + ")", insert));
    for (const char* name : {"Remove", "RemoveAt"})
        members.push_back(method(std::string(name) + "(index As Int32)", remove));
    for (const char* name : {"Ubound", "LastIndex", "LastRowIndex"})
        members.push_back(method(std::string(name) + " As Int32", last));
    members.push_back(
        method("Count As Int32", [](REALobject self, Arguments) -> Value { return upperBound(self) + 1; }));
    members.push_back(method(
        "RemoveAll", [](REALobject self, Arguments) -> Value { return arrayResize(self, -1), Value(); }));
    members.push_back(method("ResizeTo(upperBound As Int32)", [](REALobject self, Arguments a) -> Value {
        return arrayResize(self, a[0].toInt64()), Value();
    }));
    members.push_back(method(
        "IndexOf(value As " + type + ", Optional from As Int32) As Int32",
        [](REALobject self, Arguments a) -> Value { return arrayIndexOf(self, a[0], a[1].toInt32()); }));
    members.push_back(method("Pop As " + type, [](REALobject self, Arguments) -> Value {
        const auto index = upperBound(self);
        Value value = arrayGet(self, index);
        arrayRemove(self, index);
        return value;
    }));
    return builtin;
}

Class& arrayClass(const Type& element) {
    static std::mutex mutex;
    static auto& classes = *new std::map<std::string, Class*, NameLess>;
    const auto name = element.text();
    {
        std::lock_guard guard(mutex);
        if (const auto found = classes.find(name); found != classes.end()) return *found->second;
    }
    Class& made = defineHidden(arraySpec(element)); // outside of the lock: it takes the registry's
    std::lock_guard guard(mutex);
    return *classes.try_emplace(name, &made).first->second;
}

} // namespace

Ref newArray(const Type& element, int32_t upperBound) {
    Ref array = Ref::adopt(newObject(arrayClass(element)));
    dataOf<ArrayData>(array.get()).element = element;
    arrayResize(array.get(), upperBound);
    return array;
}

REALarray arrayHandle(REALobject array) { return reinterpret_cast<REALarray>(array); }
REALobject arrayObject(REALarray array) { return reinterpret_cast<REALobject>(array); }

Type elementType(REALobject array) {
    if (!array || classOf(array).nativeDestructor() != destroyArray) return {};
    return dataOf<ArrayData>(array).element;
}

int32_t upperBound(REALobject array) { return static_cast<int32_t>(dataOf<ArrayData>(array).count) - 1; }

Value arrayGet(REALobject array, int64_t index) {
    const auto& data = dataOf<ArrayData>(array);
    return peekSlot(data.element, loadSlot(array, checkedIndex(array, index, data.count)));
}

void arraySet(REALobject array, int64_t index, const Value& value) {
    const auto& data = dataOf<ArrayData>(array);
    const auto at = checkedIndex(array, index, data.count);
    const Slot slot = fittingSlot(array, value);
    const Slot before = loadSlot(array, at);
    std::memcpy(elementAt(array, at), &slot, widthOf(array));
    dropSlot(data.element, before);
}

void arrayInsert(REALobject array, int64_t index, const Value& value) {
    auto& data = dataOf<ArrayData>(array);
    const auto at = checkedIndex(array, index, data.count + 1);
    reserve(array, data.count + 1);
    const Slot slot = fittingSlot(array, value);
    std::memmove(elementAt(array, at) + widthOf(array), elementAt(array, at),
                 (data.count - at) * widthOf(array));
    std::memcpy(elementAt(array, at), &slot, widthOf(array));
    ++data.count;
}

void arrayAppend(REALobject array, const Value& value) {
    arrayInsert(array, static_cast<int64_t>(dataOf<ArrayData>(array).count), value);
}

void arrayRemove(REALobject array, int64_t index) {
    auto& data = dataOf<ArrayData>(array);
    const auto at = checkedIndex(array, index, data.count);
    const Slot gone = loadSlot(array, at);
    --data.count;
    std::memmove(elementAt(array, at), elementAt(array, at) + widthOf(array),
                 (data.count - at) * widthOf(array));
    dropSlot(data.element, gone);
}

void arrayResize(REALobject array, int64_t upperBound) {
    auto& data = dataOf<ArrayData>(array);
    if (upperBound < -1)
        raise("OutOfBoundsException", "an array's upper bound can't be " + std::to_string(upperBound));
    const auto count = static_cast<std::size_t>(upperBound + 1);
    reserve(array, count);
    while (data.count > count) { // one at a time: a destructor may look at the array
        const Slot gone = loadSlot(array, data.count - 1);
        --data.count;
        dropSlot(data.element, gone);
    }
    if (count == data.count) return;
    // Every element type's default is all zeros.
    std::memset(elementAt(array, data.count), 0, (count - data.count) * widthOf(array));
    data.count = count;
}

int32_t arrayIndexOf(REALobject array, const Value& value, int32_t from) {
    for (int32_t i = std::max(from, 0); i <= upperBound(array); ++i)
        if (equalValues(arrayGet(array, i), value)) return i;
    return -1;
}

void setElementClass(REALobject array, const Type& element) {
    auto& data = dataOf<ArrayData>(array);
    if (data.element.kind == Kind::Object && element.kind == Kind::Object && data.element.className.empty()) {
        Class& before = classOf(array);
        Class& after = arrayClass(element);
        array->header[0] = &after;
        --before.liveCount;
        ++after.liveCount;
        data.element = element;
    }
}

} // namespace host
