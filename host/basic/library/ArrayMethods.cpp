// What arrays can do.
#include "Library.hpp"
#include "host/runtime/Array.hpp"

#include <algorithm>
#include <string>

namespace host::basic {

namespace {

REALobject listOf(const Value& array) {
    if (array.isNil()) raise("NilObjectException", "the array is nil");
    return array.object();
}

Value append(Context&, Arguments a) {
    arrayAppend(listOf(a[0]), a[1]);
    return {};
}
Value insert(Context&, Arguments a) {
    arrayInsert(listOf(a[0]), a[1].toInt64(), a[2]);
    return {};
}
Value removeAt(Context&, Arguments a) {
    arrayRemove(listOf(a[0]), a[1].toInt64());
    return {};
}
Value removeAll(Context&, Arguments a) {
    arrayResize(listOf(a[0]), -1);
    return {};
}
Value lastIndex(Context&, Arguments a) { return Value(upperBound(listOf(a[0]))); }
Value count(Context&, Arguments a) { return Value(upperBound(listOf(a[0])) + 1); }
Value indexOf(Context&, Arguments a) {
    return Value(arrayIndexOf(listOf(a[0]), a[1], a.size() > 2 ? a[2].toInt32() : 0));
}
Value contains(Context&, Arguments a) { return Value(arrayIndexOf(listOf(a[0]), a[1]) >= 0); }
Value resize(Context&, Arguments a) {
    arrayResize(listOf(a[0]), a[1].toInt64());
    return {};
}
Value pop(Context&, Arguments a) {
    REALobject list = listOf(a[0]);
    const int32_t last = upperBound(list);
    if (last < 0) raise("OutOfBoundsException", "the array is empty");
    Value value = arrayGet(list, last);
    arrayRemove(list, last);
    return value;
}

std::vector<Value> elements(REALobject list) {
    std::vector<Value> values;
    for (int32_t i = 0; i <= upperBound(list); ++i)
        values.push_back(arrayGet(list, i));
    return values;
}

void setElements(REALobject list, const std::vector<Value>& values) {
    for (size_t i = 0; i < values.size(); ++i)
        arraySet(list, static_cast<int64_t>(i), values[i]);
}

Value sort(Context&, Arguments a) {
    REALobject list = listOf(a[0]);
    std::vector<Value> values = elements(list);
    std::stable_sort(values.begin(), values.end(),
                     [](const Value& x, const Value& y) { return compareValues(x, y) < 0; });
    setElements(list, values);
    return {};
}
Value reverse(Context&, Arguments a) {
    REALobject list = listOf(a[0]);
    std::vector<Value> values = elements(list);
    std::reverse(values.begin(), values.end());
    setElements(list, values);
    return {};
}
Value clone(Context&, Arguments a) {
    REALobject list = listOf(a[0]);
    const Ref made = newArray(elementType(list));
    for (const Value& value : elements(list))
        arrayAppend(made.get(), value);
    return Value::borrow(made.get());
}
Value join(Context&, Arguments a) {
    const std::string separator = a.size() > 1 ? a[1].toText() : " ";
    std::string text;
    bool first = true;
    for (const Value& value : elements(listOf(a[0]))) {
        if (!first) text += separator;
        first = false;
        text += value.toText();
    }
    return Value(text);
}

constexpr ArrayMethod kMethods[] = {
    {"append", "E", '-', append},
    {"add", "E", '-', append},
    {"addrow", "E", '-', append},
    {"insert", "IE", '-', insert},
    {"addat", "IE", '-', insert},
    {"remove", "I", '-', removeAt},
    {"removeat", "I", '-', removeAt},
    {"removerowat", "I", '-', removeAt},
    {"removeall", "", '-', removeAll},
    {"ubound", "", 'I', lastIndex},
    {"lastindex", "", 'I', lastIndex},
    {"lastrowindex", "", 'I', lastIndex},
    {"count", "", 'I', count},
    {"indexof", "Ei", 'I', indexOf},
    {"contains", "E", 'B', contains},
    {"resizeto", "I", '-', resize},
    {"pop", "", 'E', pop},
    {"sort", "", '-', sort},
    {"reverse", "", '-', reverse},
    {"clone", "", 'A', clone},
    {"join", "s", 'S', join},
};

} // namespace

const ArrayMethod* findArrayMethod(std::string_view lower, size_t arguments) {
    for (const ArrayMethod& method : kMethods) {
        if (lower != method.name) continue;
        const std::string_view parameters = method.parameters;
        const auto needed = static_cast<size_t>(
            std::count_if(parameters.begin(), parameters.end(), [](char c) { return c >= 'A' && c <= 'Z'; }));
        if (arguments >= needed && arguments <= parameters.size()) return &method;
    }
    return nullptr;
}

bool isArrayMethod(std::string_view lower) {
    return std::any_of(std::begin(kMethods), std::end(kMethods),
                       [&](const ArrayMethod& method) { return lower == method.name; });
}

} // namespace host::basic
