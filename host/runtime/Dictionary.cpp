// Dictionary.cpp: an ordered map from values to values.
#include "host/runtime/Dictionary.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Builtins.hpp"
#include "host/runtime/Exceptions.hpp"

#include <cmath>
#include <cstring>
#include <unordered_map>

namespace host {
namespace {

struct Entry {
    Value key, value;
};

struct DictionaryData {
    std::vector<Entry> entries;                         // in order of insertion
    std::unordered_map<std::string, std::size_t> index; // by keyText
};

// Equal keys have equal texts: text folded, whole numbers of every kind alike, objects by identity, dates by
// time.
std::string keyText(const Value& key) {
    if (key.isNil()) return "n";
    if (key.isString()) return "s" + foldCase(utf8Of(key.string()));
    if (key.isObject()) {
        if (isA(key.object(), "Date")) return "d" + std::to_string(key.toDouble());
        return "o" + std::to_string(reinterpret_cast<uintptr_t>(key.object()));
    }
    if (key.kind() == Kind::Boolean) return key.toBoolean() ? "b1" : "b0";
    if (key.kind() == Kind::UInt64) return "i" + std::to_string(key.toUInt64());
    if (key.isInteger()) return "i" + std::to_string(key.toInt64());
    const double real = key.toDouble();
    constexpr double kExact = 9007199254740992.0; // 2^53: whole numbers up to here are exact
    if (std::floor(real) == real && std::fabs(real) <= kExact)
        return "i" + std::to_string(static_cast<int64_t>(real));
    uint64_t bits = 0;
    std::memcpy(&bits, &real, sizeof bits);
    return "r" + std::to_string(bits);
}

std::string nameOfKey(const Value& key) {
    if (key.isString()) return "\"" + key.toText() + "\"";
    return key.isObject() || key.isNil() ? key.typeName() : key.toText();
}

DictionaryData& data(REALobject dictionary) { return dataOf<DictionaryData>(dictionary); }

[[noreturn]] void refuseKey(const Value& key) {
    raise("KeyNotFoundException", "the dictionary has no key " + nameOfKey(key));
}

Value listOf(REALobject dictionary, Value Entry::*part) {
    Ref list = newArray(typeNamed("Variant"));
    for (const auto& entry : data(dictionary).entries)
        arrayAppend(list.get(), entry.*part);
    return list;
}

void clear(REALobject dictionary) {
    DictionaryData gone; // what goes is dropped when the dictionary is already empty
    std::swap(gone, data(dictionary));
}

} // namespace

Ref newDictionary() { return Ref::adopt(newObject(requireClass("Dictionary"))); }

std::size_t dictionaryCount(REALobject dictionary) { return data(dictionary).entries.size(); }

bool dictionaryHas(REALobject dictionary, const Value& key) {
    return data(dictionary).index.contains(keyText(key));
}

Value dictionaryGet(REALobject dictionary, const Value& key) {
    const auto found = data(dictionary).index.find(keyText(key));
    if (found == data(dictionary).index.end()) refuseKey(key);
    return data(dictionary).entries[found->second].value;
}

void dictionarySet(REALobject dictionary, const Value& key, const Value& value) {
    auto& held = data(dictionary);
    const auto [found, isNew] = held.index.try_emplace(keyText(key), held.entries.size());
    if (isNew) {
        held.entries.push_back({key, value});
        return;
    }
    Value before = value;
    std::swap(before, held.entries[found->second].value);
}

void dictionaryRemove(REALobject dictionary, const Value& key) {
    auto& held = data(dictionary);
    const auto found = held.index.find(keyText(key));
    if (found == held.index.end()) refuseKey(key);
    const auto at = found->second;
    held.index.erase(found);
    const Entry gone = std::move(held.entries[at]);
    held.entries.erase(held.entries.begin() + static_cast<std::ptrdiff_t>(at));
    for (auto& [text, position] : held.index)
        if (position > at) --position;
}

Value dictionaryKey(REALobject dictionary, int64_t index) {
    const auto& entries = data(dictionary).entries;
    if (index < 0 || static_cast<uint64_t>(index) >= entries.size())
        raise("OutOfBoundsException", "index " + std::to_string(index) +
                                          " is out of bounds: the dictionary has " +
                                          std::to_string(entries.size()) + " keys");
    return entries[static_cast<std::size_t>(index)].key;
}

void defineDictionaryClass() {
    std::vector<MemberSpec> m;
    m.push_back(property("Count As Integer", [](REALobject self, Arguments) -> Value {
        return static_cast<int32_t>(dictionaryCount(self));
    }));
    m.push_back(method("KeyCount As Integer", [](REALobject self, Arguments) -> Value {
        return static_cast<int32_t>(dictionaryCount(self));
    }));
    m.push_back(method("Value(key As Variant) As Variant",
                       [](REALobject self, Arguments a) { return dictionaryGet(self, a[0]); }));
    m.push_back(
        method("Value(key As Variant, Assigns _value As Variant)", [](REALobject self, Arguments a) -> Value {
            dictionarySet(self, a[0], a[1]);
            return {};
        }));
    m.push_back(method("Key(index As Integer) As Variant",
                       [](REALobject self, Arguments a) { return dictionaryKey(self, a[0].toInt64()); }));
    m.push_back(method("HasKey(key As Variant) As Boolean",
                       [](REALobject self, Arguments a) -> Value { return dictionaryHas(self, a[0]); }));
    m.push_back(method("Lookup(key As Variant, defaultValue As Variant) As Variant",
                       [](REALobject self, Arguments a) {
                           return dictionaryHas(self, a[0]) ? dictionaryGet(self, a[0]) : a[1];
                       }));
    m.push_back(method("Remove(key As Variant)", [](REALobject self, Arguments a) -> Value {
        dictionaryRemove(self, a[0]);
        return {};
    }));
    for (const char* name : {"Clear", "RemoveAll"})
        m.push_back(method(name, [](REALobject self, Arguments) -> Value {
            clear(self);
            return {};
        }));
    m.push_back(
        method("Keys As Variant()", [](REALobject self, Arguments) { return listOf(self, &Entry::key); }));
    m.push_back(method("Values As Variant()",
                       [](REALobject self, Arguments) { return listOf(self, &Entry::value); }));
    m.push_back(method("Clone As Dictionary", [](REALobject self, Arguments) -> Value {
        Ref copy = newDictionary();
        for (const auto& entry : data(self).entries)
            dictionarySet(copy.get(), entry.key, entry.value);
        return copy;
    }));
    defineBuiltin(builtinWith<DictionaryData>("Dictionary", std::move(m)));
}

} // namespace host
