// Values.m: strings, URLs, numbers, dates, data, geometry, arrays and dictionaries become the host's; others go by
// their class's name.
#import "companion/Values.h"

#import "companion/Geometry.h"
#import "companion/Holders.h"
#import "companion/ObjectWrapper.h"
#import "companion/Registry.h"

#include <stdio.h>

// Collections that lie deeper than this become nil, and so does what follows the last of the most that are made:
// collections may contain each other in more ways than anybody can wait for.
enum { DeepestLevel = 32, MostCollections = 10000 };

// A collection that is being made, and those that it lies in. A collection in itself is nil there.
struct Chain {
    id collection; // nil in the outermost link, in which nothing lies yet
    const struct Chain* outer;
    int level;
    int* made; // how many so far, in the whole value
};

static REALvariant newVariant(id object, const struct Chain* chain);

// Whether one more collection may be made.
static BOOL mayMake(id collection, const struct Chain* chain) {
    if (chain->level > DeepestLevel || *chain->made >= MostCollections)
        return NO;
    for (const struct Chain* link = chain; link != NULL; link = link->outer)
        if (link->collection == collection)
            return NO;
    return YES;
}

static struct Chain inside(id collection, const struct Chain* chain) {
    ++*chain->made;
    return (struct Chain){collection, chain, chain->level + 1, chain->made};
}

static void letGo(REALobject object) {
    if (object != NULL)
        host.REALUnlockObject(object);
}

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

// A new local date in whole seconds; null for one that no calendar of the host's reaches, and for no number.
static REALvariant newDate(NSDate* date) {
    const NSTimeInterval interval = [date timeIntervalSinceReferenceDate];
    if (!(interval >= [[NSDate distantPast] timeIntervalSinceReferenceDate] &&
          interval <= [[NSDate distantFuture] timeIntervalSinceReferenceDate]))
        return NULL;
    NSCalendarDate* local = [NSCalendarDate dateWithTimeIntervalSinceReferenceDate:interval];
    // The first of the month comes first: on the 31st a shorter month would roll over into the next.
    const struct {
        const char* name;
        NSInteger value;
    } parts[] = {{"Day", 1},
                 {"Year", [local yearOfCommonEra]},
                 {"Month", [local monthOfYear]},
                 {"Day", [local dayOfMonth]},
                 {"Hour", [local hourOfDay]},
                 {"Minute", [local minuteOfHour]},
                 {"Second", [local secondOfMinute]}};
    REALobject made = host.PluginNewInstance("Date");
    if (made == NULL)
        return NULL;
    for (size_t i = 0; i < COUNT_OF(parts); ++i)
        host.REALSetPropValueInt(made, parts[i].name, (int32_t)parts[i].value);
    return made;
}

// A new memory block with a copy of the bytes; null when there is no memory for it, or for 2 GiB and more.
static REALvariant newBlock(NSData* data) {
    const NSUInteger length = [data length];
    const void* bytes = [data bytes];
    if (length > INT32_MAX || (bytes == NULL && length > 0))
        return NULL;
    REALmemoryBlock made = host.newMemoryBlock((int32_t)length);
    if (made == NULL || length == 0)
        return made;
    void* target = host.memoryBlockGetPtr(made);
    if (target == NULL) {
        letGo(made);
        return NULL;
    }
    memcpy(target, bytes, length);
    return made;
}

static REALvariant newArray(NSArray* array, const struct Chain* outer) {
    REALarray made = host.RuntimeArrayCreateSingleDimBoundedArray(kREALArrayOfObjects, -1);
    const REALarrayInsertProc insert = made == NULL ? NULL : host.RuntimeArrayDirectGetInsertProc(made);
    if (insert == NULL)
        return (REALvariant)made;
    const struct Chain chain = inside(array, outer);
    BOOL complete = NO;
    @try {
        int32_t index = 0;
        for (id element in array) {
            REALvariant value = newVariant(element, &chain);
            insert(made, index++, value);
            letGo(value);
        }
        complete = YES;
    } @finally {
        if (!complete)
            letGo((REALobject)made);
    }
    return (REALvariant)made;
}

static REALdictionary newDictionary(NSDictionary* dictionary, const struct Chain* outer) {
    REALdictionary made = host.PluginNewInstance("Dictionary");
    if (made == NULL)
        return NULL;
    void (*set)(REALdictionary, REALvariant, REALvariant) =
        (__typeof__(set))host.REALLoadObjectMethod(made, "Value(key As Variant, Assigns _value As Variant)");
    if (set == NULL)
        return made;
    const struct Chain chain = inside(dictionary, outer);
    REALvariant hostKey = NULL;
    BOOL complete = NO;
    @try {
        for (id key in dictionary) {
            hostKey = newVariant(key, &chain);
            REALvariant value = newVariant([dictionary objectForKey:key], &chain);
            set(made, hostKey, value);
            letGo(value);
            letGo(hostKey);
            hostKey = NULL;
        }
        complete = YES;
    } @finally {
        letGo(hostKey);
        if (!complete)
            letGo(made);
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

static REALvariant newVariant(id object, const struct Chain* chain) {
    if (object == nil)
        return NULL;
    if ([object isKindOfClass:[NSString class]])
        return newText(object);
    if ([object isKindOfClass:[NSNumber class]])
        return newNumber(object);
    if ([object isKindOfClass:[NSValue class]])
        return newHostGeometry(object);
    if ([object isKindOfClass:[NSDate class]])
        return newDate(object);
    if ([object isKindOfClass:[NSData class]])
        return newBlock(object);
    if ([object isKindOfClass:[NSDictionary class]])
        return mayMake(object, chain) ? newDictionary(object, chain) : NULL;
    if ([object isKindOfClass:[NSArray class]])
        return mayMake(object, chain) ? newArray(object, chain) : NULL;
    if ([object isKindOfClass:[NSURL class]])
        return newText([object absoluteString]);
    if ([object isKindOfClass:[QRXREALobjectWrapper class]])
        return [(QRXREALobjectWrapper*)object unwrap];
    return newNamed(object);
}

REALdictionary newHostDictionary(NSDictionary* dictionary) {
    int made = 0;
    const struct Chain outermost = {nil, NULL, 0, &made};
    return dictionary == nil ? NULL : newDictionary(dictionary, &outermost);
}
