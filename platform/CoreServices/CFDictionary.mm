// CFDictionary: dictionaries whose keys and values are what their call-backs say, or plain addresses.
#import "CoreServices.h"
#import <Foundation/Foundation.h>

#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace {

struct KeyRules {
    CFDictionaryKeyCallBacks calls;

    size_t operator()(const void* key) const {
        return calls.hash != nullptr ? calls.hash(key) : std::hash<const void*>{}(key);
    }
    bool operator()(const void* left, const void* right) const {
        return left == right || (calls.equal != nullptr && calls.equal(left, right));
    }
};

using Map = std::unordered_map<const void*, const void*, KeyRules, KeyRules>;

template <typename Calls> const void* taken(const Calls& calls, const void* value) {
    return calls.retain != nullptr ? calls.retain(nullptr, value) : value;
}

template <typename Calls> void dropped(const Calls& calls, const void* value) {
    if (calls.release != nullptr)
        calls.release(nullptr, value);
}

CFTypeRef retainObject(CFAllocatorRef, const void* object) { return CFRetain(object); }
void releaseObject(CFAllocatorRef, const void* object) { CFRelease(object); }
CFStringRef describeObject(const void* object) {
    return reinterpret_cast<CFStringRef>([[static_cast<id>(const_cast<void*>(object)) description] retain]);
}
Boolean equalObjects(const void* left, const void* right) {
    return [static_cast<id>(const_cast<void*>(left)) isEqual:static_cast<id>(const_cast<void*>(right))];
}
unsigned long hashObject(const void* object) { return [static_cast<id>(const_cast<void*>(object)) hash]; }

id objectOf(const void* value) { return static_cast<id>(const_cast<void*>(value)); }

} // namespace

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {
    0, retainObject, releaseObject, describeObject, equalObjects, hashObject};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, retainObject, releaseObject,
                                                                    describeObject, equalObjects};

// Lists the keys of a dictionary as they were when it was made.
@interface CFDictionaryKeyList : NSEnumerator {
  @private
    NSUInteger _next;
    NSUInteger _count;
    const void** _keys;
}
- (id)initWithMap:(const Map&)map;
@end

@implementation CFDictionaryKeyList

- (id)initWithMap:(const Map&)map {
    self = [super init];
    if (self == nil)
        return nil;
    _keys = new const void*[map.size()];
    for (const auto& entry : map) {
        _keys[_count++] = entry.first;
    }
    return self;
}

- (void)dealloc {
    delete[] _keys;
    [super dealloc];
}

- (id)nextObject {
    return _next < _count ? objectOf(_keys[_next++]) : nil;
}

@end

// Any number of threads may use one: plug-ins look wrappers up on the threads that events come on. The mutex is
// recursive, because call-backs that compare keys may look at the dictionary.
//
// As a Foundation dictionary it answers the messages of one, so far as its keys and values are objects.
@interface CFDictionaryMap : NSMutableDictionary {
  @private
    Map* _map;
    std::recursive_mutex* _mutex;
    CFDictionaryKeyCallBacks _keyCalls;
    CFDictionaryValueCallBacks _valueCalls;
}
- (id)initWithKeyCallBacks:(const CFDictionaryKeyCallBacks*)keyCalls
            valueCallBacks:(const CFDictionaryValueCallBacks*)valueCalls;
- (const void*)valueForAddress:(const void*)key;
- (void)setValue:(const void*)value forAddress:(const void*)key;
- (void)removeAddress:(const void*)key;
@end

@implementation CFDictionaryMap

- (id)initWithKeyCallBacks:(const CFDictionaryKeyCallBacks*)keyCalls
            valueCallBacks:(const CFDictionaryValueCallBacks*)valueCalls {
    self = [super init];
    if (self == nil)
        return nil;
    if (keyCalls != nullptr)
        _keyCalls = *keyCalls;
    if (valueCalls != nullptr)
        _valueCalls = *valueCalls;
    const KeyRules rules{_keyCalls};
    _map = new Map(16, rules, rules);
    _mutex = new std::recursive_mutex;
    return self;
}

- (id)init {
    return [self initWithKeyCallBacks:&kCFTypeDictionaryKeyCallBacks
                       valueCallBacks:&kCFTypeDictionaryValueCallBacks];
}

- (id)initWithCapacity:(NSUInteger)capacity {
    return [self init];
}

- (void)dealloc {
    // Call-backs may look at the dictionary while they run: it is emptied before they are called.
    if (_map != nullptr) {
        const Map entries = std::exchange(*_map, Map(0, KeyRules{_keyCalls}, KeyRules{_keyCalls}));
        for (const auto& [key, value] : entries) {
            dropped(_keyCalls, key);
            dropped(_valueCalls, value);
        }
        delete _map;
        delete _mutex;
    }
    [super dealloc];
}

- (const void*)valueForAddress:(const void*)key {
    const std::lock_guard guard(*_mutex);
    const auto found = _map->find(key);
    return found == _map->end() ? nullptr : found->second;
}

- (void)setValue:(const void*)value forAddress:(const void*)key {
    const void* held = taken(_valueCalls, value);
    std::unique_lock guard(*_mutex);
    const auto found = _map->find(key);
    if (found != _map->end()) {
        const void* old = std::exchange(found->second, held);
        guard.unlock();
        dropped(_valueCalls, old);
    } else {
        _map->emplace(taken(_keyCalls, key), held);
    }
}

- (void)removeAddress:(const void*)key {
    std::unique_lock guard(*_mutex);
    const auto found = _map->find(key);
    if (found == _map->end())
        return;
    const auto entry = *found;
    _map->erase(found);
    guard.unlock();
    dropped(_keyCalls, entry.first);
    dropped(_valueCalls, entry.second);
}

- (NSUInteger)count {
    const std::lock_guard guard(*_mutex);
    return _map->size();
}

- (id)objectForKey:(id)key {
    return key == nil ? nil : objectOf([self valueForAddress:key]);
}

- (NSEnumerator*)keyEnumerator {
    const std::lock_guard guard(*_mutex);
    return [[[CFDictionaryKeyList alloc] initWithMap:*_map] autorelease];
}

- (void)setObject:(id)object forKey:(id)key {
    if (object == nil || key == nil) {
        [NSException raise:NSInvalidArgumentException
                    format:@"A dictionary can't hold nil: give both an object and a key."];
    }
    [self setValue:object forAddress:key];
}

- (void)removeObjectForKey:(id)key {
    if (key != nil)
        [self removeAddress:key];
}

@end

namespace {

// Ours by its exact class: messages about addresses that aren't objects must not reach any other.
CFDictionaryMap* oursOrNil(const void* dictionary) {
    const id object = objectOf(dictionary);
    return object_getClass(object) == [CFDictionaryMap class] ? static_cast<CFDictionaryMap*>(object) : nil;
}

} // namespace

extern "C" CFMutableDictionaryRef
CFDictionaryCreateMutable(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks* keyCallBacks,
                          const CFDictionaryValueCallBacks* valueCallBacks) {
    return reinterpret_cast<CFMutableDictionaryRef>(
        [[CFDictionaryMap alloc] initWithKeyCallBacks:keyCallBacks valueCallBacks:valueCallBacks]);
}

extern "C" void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    if (dictionary == nullptr || key == nullptr)
        return;
    if (CFDictionaryMap* ours = oursOrNil(dictionary)) {
        [ours setValue:value forAddress:key];
    } else if (value != nullptr) {
        [static_cast<NSMutableDictionary*>(objectOf(dictionary)) setObject:objectOf(value)
                                                                    forKey:objectOf(key)];
    }
}

extern "C" void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
    if (dictionary == nullptr || key == nullptr)
        return;
    if (CFDictionaryMap* ours = oursOrNil(dictionary)) {
        [ours removeAddress:key];
    } else {
        [static_cast<NSMutableDictionary*>(objectOf(dictionary)) removeObjectForKey:objectOf(key)];
    }
}

extern "C" const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    if (dictionary == nullptr || key == nullptr)
        return nullptr;
    if (CFDictionaryMap* ours = oursOrNil(dictionary))
        return [ours valueForAddress:key];
    return [static_cast<NSDictionary*>(objectOf(dictionary)) objectForKey:objectOf(key)];
}

extern "C" CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    return static_cast<CFIndex>([static_cast<NSDictionary*>(objectOf(dictionary)) count]);
}
