// Dictionaries.hpp: host dictionaries, reached through the methods that the host's own class declares.
#pragma once

#include "plugin/frame/PluginInterface.h"

// A new host "Dictionary" with one reference, or null.
REALdictionary NewDictionary();
bool IsDictionary(REALobject object);

// Each does nothing, or answers 0 or null, when the host's class lacks the method or property.
int32_t GetDictionaryCount(REALdictionary dictionary);
void SetDictionaryValue(REALdictionary dictionary, REALvariant key, REALvariant value);
REALvariant GetDictionaryValue(REALdictionary dictionary, REALvariant key);
REALvariant GetDictionaryKey(REALdictionary dictionary, int32_t index);
