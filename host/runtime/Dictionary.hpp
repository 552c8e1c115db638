// Dictionary.hpp: values by key, in order of insertion; text keys are the same in any case, 1 and 1.0 are one
// key.
//
// Class "Dictionary": Count, Value(key) (read raises KeyNotFoundException), HasKey, Lookup(key, default),
// Remove, Clear (also RemoveAll), Key(index), Keys, Values, Clone.
#pragma once

#include "host/runtime/Value.hpp"

#include <cstddef>

namespace host {

Ref newDictionary();
std::size_t dictionaryCount(REALobject dictionary);
bool dictionaryHas(REALobject dictionary, const Value& key);
Value dictionaryGet(REALobject dictionary, const Value& key); // raises KeyNotFoundException
void dictionarySet(REALobject dictionary, const Value& key, const Value& value);
void dictionaryRemove(REALobject dictionary, const Value& key); // raises KeyNotFoundException
Value dictionaryKey(REALobject dictionary, int64_t index);      // raises OutOfBoundsException

} // namespace host
