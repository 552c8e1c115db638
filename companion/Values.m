// Values.m: strings, URLs, numbers, arrays and dictionaries become the host's; others go by their class's name.
#import "companion/Values.h"

#import "companion/Holders.h"
#import "companion/ObjectWrapper.h"
#import "companion/Registry.h"

#include <stdio.h>

// Collections that lie deeper than this become nil: a collection may contain itself.
enum { DeepestLevel = 32 };

static REALvariant newVariant(id object, int level);

static REALvariant newNumber(NSNumber* number) {
    const char* type = [number objCType];
    if (strcmp(type, [[NSNumber numberWithBool:YES] objCType]) == 0)
        return host.BooleanToVariant([number boolValue] != 0);
    if (*type == 'f' || *type == 'd')
        return host.DoubleToVariant([number doubleValue]);
    if (*type == 'Q' && [number unsignedLongLongValue] > INT64_MAX)
        return host.UInt64ToVariant([number unsignedLongLongValue]);
    const int64_t value = [number longLongValue];
    return value >= INT32_MIN && value <= INT32_MAX ? host.Int32ToVariant((int32_t)value)
                                                    : host.Int64ToVariant(value);
}

static REALvariant newText(NSString* text) {
    REALstring string = hostString(text);
    REALvariant made = host.StringToVariant(string);
    if (string != NULL)
        host.REALUnlockString(string);
    return made;
}

static REALvariant newArray(NSArray* array, int level) {
    REALarray made = host.RuntimeArrayCreateSingleDimBoundedArray(kREALArrayOfObjects, -1);
    const REALarrayInsertProc insert = made == NULL ? NULL : host.RuntimeArrayDirectGetInsertProc(made);
    if (insert == NULL)
        return (REALvariant)made;
    int32_t index = 0;
    for (id element in array) {
        REALvariant value = newVariant(element, level + 1);
        insert(made, index++, value);
        if (value != NULL)
            host.REALUnlockObject(value);
    }
    return (REALvariant)made;
}

static REALdictionary newDictionary(NSDictionary* dictionary, int level) {
    REALdictionary made = host.PluginNewInstance("Dictionary");
    if (made == NULL)
        return NULL;
    void (*set)(REALdictionary, REALvariant, REALvariant) =
        (__typeof__(set))host.REALLoadObjectMethod(made, "Value(key As Variant, Assigns _value As Variant)");
    if (set == NULL)
        return made;
    for (id key in dictionary) {
        REALvariant hostKey = newVariant(key, level + 1);
        REALvariant value = newVariant([dictionary objectForKey:key], level + 1);
        set(made, hostKey, value);
        if (hostKey != NULL)
            host.REALUnlockObject(hostKey);
        if (value != NULL)
            host.REALUnlockObject(value);
    }
    return made;
}

// The host object that wraps the object already, or one of the host class named after the object's class, or
// after the nearest of its superclasses.
static REALvariant newNamed(id object) {
    REALobject known = registeredWrapper(object);
    if (known != NULL) {
        host.REALLockObject(known);
        return known;
    }
    for (Class named = [object class]; named != Nil; named = [named superclass]) {
        char hostClass[256];
        const int length =
            snprintf(hostClass, sizeof hostClass, "%sQRX", [NSStringFromClass(named) UTF8String]);
        if (length < 0 || (size_t)length >= sizeof hostClass)
            continue;
        REALobject made = newHolder(hostClass, object);
        if (made != NULL)
            return made;
    }
    return NULL;
}

static REALvariant newVariant(id object, int level) {
    if (object == nil)
        return NULL;
    if ([object isKindOfClass:[NSString class]])
        return newText(object);
    if ([object isKindOfClass:[NSNumber class]])
        return newNumber(object);
    if ([object isKindOfClass:[NSDictionary class]])
        return level > DeepestLevel ? NULL : newDictionary(object, level);
    if ([object isKindOfClass:[NSArray class]])
        return level > DeepestLevel ? NULL : newArray(object, level);
    if ([object isKindOfClass:[NSURL class]])
        return newText([object absoluteString]);
    if ([object isKindOfClass:[QRXREALobjectWrapper class]])
        return [(QRXREALobjectWrapper*)object unwrap];
    return newNamed(object);
}

REALdictionary newHostDictionary(NSDictionary* dictionary) {
    return dictionary == nil ? NULL : newDictionary(dictionary, 0);
}
