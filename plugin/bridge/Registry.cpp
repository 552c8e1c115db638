// Registry.cpp: the three operations on the table of wrappers.
#include "plugin/bridge/Registry.hpp"

CFMutableDictionaryRef instances = nullptr;

void RegisterInstance(REALobject hostObject, objc::Id platformObject) {
    if (platformObject && instances) CFDictionarySetValue(instances, platformObject, hostObject);
}

void UnregisterInstance(objc::Id platformObject) {
    if (instances) CFDictionaryRemoveValue(instances, platformObject);
}

REALobject FindInstance(objc::Id platformObject) {
    if (!instances || !platformObject) return nullptr;
    return static_cast<REALobject>(const_cast<void*>(CFDictionaryGetValue(instances, platformObject)));
}
