// DictionariesTest.cpp: whole dictionaries and arrays of wrappers, there and back.
#include "plugin/bridge/Dictionaries.hpp"
#include "plugin/bridge/Nesting.hpp"
#include "plugin/bridge/Variants.hpp"
#include "plugin/objc/Guard.hpp"
#include "tests/plugin/HostClasses.hpp"
#include "tests/plugin/OwnResolver.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Dictionary.hpp"

#include <algorithm>

namespace {

using namespace test;
using objc::Id;
using objc::send;
using objc::sendClass;

using Dictionaries = LoadedTest;
using DictionariesWithout = PluginTest;

unsigned long countOf(Id collection) { return send<"count", unsigned long>(collection); }
Id valueFor(Id dictionary, const char* key) { return send<"objectForKey:">(dictionary, nsString(key)); }
bool isNull(Id value) { return value && value == sendClass<"NSNull", "null">(); }

std::size_t livingValues() {
    const auto living = harness::liveInstances();
    const auto found = living.find("Variant");
    return found == living.end() ? 0 : found->second;
}

Id platformDictionary() {
    const Id dictionary = sendClass<"NSMutableDictionary", "dictionary">();
    send<"setObject:forKey:", void>(dictionary, nsString("value"), nsString("text"));
    send<"setObject:forKey:", void>(dictionary, sendClass<"NSNumber", "numberWithInt:">(7),
                                    nsString("number"));
    send<"setObject:forKey:", void>(dictionary, sendClass<"NSNull", "null">(), nsString("nothing"));
    return dictionary;
}

// ---- to the host -------------------------------------------------------------------------------------

TEST_F(Dictionaries, NilIsNullAndAnEmptyOneIsEmpty) {
    EXPECT_EQ(NSDictionaryRB(nullptr), nullptr);
    const Ref empty = Ref::adopt(NSDictionaryRB(sendClass<"NSDictionary", "dictionary">()));
    ASSERT_TRUE(IsDictionary(empty.get()));
    EXPECT_EQ(GetDictionaryCount(empty.get()), 0);
}

TEST_F(Dictionaries, EveryEntryOfThePlatformsReachesTheHost) {
    const Ref dictionary = Ref::adopt(NSDictionaryRB(platformDictionary()));
    EXPECT_EQ(GetDictionaryCount(dictionary.get()), 3);
    EXPECT_EQ(host::dictionaryGet(dictionary.get(), "text").toText(), "value");
    EXPECT_EQ(host::dictionaryGet(dictionary.get(), "number").toInt32(), 7);
    EXPECT_TRUE(host::dictionaryHas(dictionary.get(), "nothing"));
    EXPECT_TRUE(host::dictionaryGet(dictionary.get(), "nothing").isNil());
}

TEST_F(Dictionaries, TheHostsDictionaryHoldsTheOnlyReferences) {
    objc::ClassBuilder("NSObject", "TestThing").finish();
    registerHolderClass("TestThingQRX");
    const Id dictionary = sendClass<"NSMutableDictionary", "dictionary">();
    send<"setObject:forKey:", void>(dictionary, objc::autoreleased(sendClass<"TestThing", "new">()),
                                    nsString("thing"));
    const Ref converted = Ref::adopt(NSDictionaryRB(dictionary));
    const Value thing = host::dictionaryGet(converted.get(), "thing");
    EXPECT_EQ(harness::references(thing.object()), 2u) << "the dictionary's and this look's";
}

TEST_F(Dictionaries, OneThatTheHostCannotMakeIsNull) {
    harness::failCreation("Dictionary");
    EXPECT_EQ(NSDictionaryRB(platformDictionary()), nullptr);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Dictionaries, KeysAndValuesThatConvertToNullAreStoredAsNil) {
    const Id unknown = sendClass<"NSValue", "valueWithPointer:">(nullptr); // of a type that nobody converts
    for (const Id key : {sendClass<"NSNull", "null">(), unknown}) {
        const Id dictionary = sendClass<"NSMutableDictionary", "dictionary">();
        send<"setObject:forKey:", void>(dictionary, nsString("value"), key);
        send<"setObject:forKey:", void>(dictionary, unknown, nsString("unknown"));
        const Ref converted = Ref::adopt(NSDictionaryRB(dictionary));
        ASSERT_EQ(host::dictionaryCount(converted.get()), 2u);
        ASSERT_TRUE(host::dictionaryHas(converted.get(), Value()));
        EXPECT_EQ(host::dictionaryGet(converted.get(), Value()).toText(), "value");
        ASSERT_TRUE(host::dictionaryHas(converted.get(), "unknown"));
        EXPECT_TRUE(host::dictionaryGet(converted.get(), "unknown").isNil());
    }
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Dictionaries, OneThatContainsItselfEndsAndIsNilThere) {
    const Id dictionary = platformDictionary();
    send<"setObject:forKey:", void>(dictionary, dictionary, nsString("self"));
    {
        const Ref converted = Ref::adopt(NSDictionaryRB(dictionary));
        EXPECT_EQ(GetDictionaryCount(converted.get()), 4);
        EXPECT_TRUE(host::dictionaryGet(converted.get(), "self").isNil());
    }
    send<"removeAllObjects", void>(dictionary);
}

// ---- to the platform ---------------------------------------------------------------------------------

Ref dictionaryOf(std::initializer_list<std::pair<Value, Value>> entries) {
    Ref made = host::newDictionary();
    for (const auto& [key, value] : entries)
        host::dictionarySet(made.get(), key, value);
    return made;
}

TEST_F(Dictionaries, NullIsNilAndAnEmptyHostDictionaryIsAnEmptyImmutableOne) {
    EXPECT_EQ(NewNSDictionary(nullptr), nullptr);
    const Id empty = NewNSDictionary(make("Dictionary").get());
    ASSERT_TRUE(objc::isKindOf<"NSDictionary">(empty));
    EXPECT_EQ(countOf(empty), 0u);
    EXPECT_FALSE(objc::isKindOf<"NSMutableDictionary">(empty));
}

TEST_F(Dictionaries, EveryEntryOfTheHostsReachesThePlatform) {
    const Ref inner = dictionaryOf({{"deep", true}});
    const Id dictionary =
        NewNSDictionary(dictionaryOf({{"text", "value"}, {7, 0.5}, {"inner", Value(inner)}}).get());
    EXPECT_TRUE(objc::isKindOf<"NSMutableDictionary">(dictionary));
    EXPECT_EQ(countOf(dictionary), 3u);
    EXPECT_EQ(text(valueFor(dictionary, "text")), "value");
    EXPECT_EQ((send<"doubleValue", double>(
                  send<"objectForKey:">(dictionary, sendClass<"NSNumber", "numberWithInt:">(7)))),
              0.5);
    EXPECT_TRUE((send<"boolValue", objc::Boolean>(valueFor(valueFor(dictionary, "inner"), "deep"))));
    EXPECT_EQ(harness::references(inner.get()), 1u);
}

TEST_F(Dictionaries, ANilValueBecomesThePlatformsNullAndAnEntryWithANilKeyIsSkipped) {
    const Id dictionary = NewNSDictionary(dictionaryOf({{"nothing", Value()}, {Value(), "skipped"}}).get());
    EXPECT_EQ(countOf(dictionary), 1u);
    EXPECT_TRUE(isNull(valueFor(dictionary, "nothing")));
}

TEST_F(Dictionaries, KeysAndValuesThatConvertToNilBecomeThePlatformsNull) {
    const Ref key = make("DRDeviceQRX"), value = make("DRTrackQRX"); // nobody boxes them
    const Id dictionary = NewNSDictionary(dictionaryOf({{Value(key), Value(value)}}).get());
    ASSERT_EQ(countOf(dictionary), 1u);
    EXPECT_TRUE(isNull(send<"objectForKey:">(dictionary, sendClass<"NSNull", "null">())));
    EXPECT_EQ(harness::references(key.get()), 1u);
    EXPECT_EQ(harness::references(value.get()), 1u);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(Dictionaries, AHostDictionaryThatContainsItselfEnds) {
    const Ref dictionary = dictionaryOf({{"text", "value"}});
    const Ref other = dictionaryOf({{"outer", Value(dictionary)}});
    host::dictionarySet(dictionary.get(), "other", Value(other));
    const Id converted = NewNSDictionary(dictionary.get());
    EXPECT_EQ(text(valueFor(converted, "text")), "value");
    EXPECT_TRUE(isNull(valueFor(valueFor(converted, "other"), "outer")));
    EXPECT_EQ(raised(), std::nullopt);
    host::dictionaryRemove(dictionary.get(), "other");
}

TEST_F(Dictionaries, TheSameDictionaryTwiceSideBySideIsNoCycle) {
    const Ref inner = dictionaryOf({{"a", 1}});
    const Id dictionary = NewNSDictionary(dictionaryOf({{"one", Value(inner)}, {"two", Value(inner)}}).get());
    EXPECT_EQ(countOf(valueFor(dictionary, "one")), 1u);
    EXPECT_EQ(countOf(valueFor(dictionary, "two")), 1u);
}

TEST_F(Dictionaries, NestingDeeperThanTheBoundEndsInTheNull) {
    constexpr int levels = Nesting::deepest + 200;
    Ref dictionary = dictionaryOf({{"last", true}});
    for (int i = 1; i < levels; ++i)
        dictionary = dictionaryOf({{"inner", Value(dictionary)}});
    Id converted = NewNSDictionary(dictionary.get());
    int depth = 0;
    while (objc::isKindOf<"NSDictionary">(converted)) {
        converted = valueFor(converted, "inner");
        ++depth;
    }
    EXPECT_EQ(depth, Nesting::deepest);
    EXPECT_TRUE(isNull(converted));
}

TEST_F(Dictionaries, ManyThatAllContainEachOtherEndSoon) {
    std::vector<Ref> all(12);
    for (Ref& one : all)
        one = host::newDictionary();
    for (int i = 0; i < 12; ++i)
        for (int j = 0; j < 12; ++j)
            host::dictionarySet(all[static_cast<std::size_t>(i)].get(), j,
                                Value(all[static_cast<std::size_t>(j)]));
    EXPECT_EQ(countOf(NewNSDictionary(all[0].get())), 12u) << "12! would take hours";
    EXPECT_EQ(countOf(NewNSDictionary(dictionaryOf({{1, Value(dictionaryOf({}))}}).get())), 1u);
    for (const Ref& one : all)
        for (int j = 0; j < 12; ++j)
            host::dictionaryRemove(one.get(), j);
}

// ---- the methods of the host's class -----------------------------------------------------------------

TEST_F(DictionariesWithout, MethodsEveryAccessorDoesNothing) {
    harness::withdraw("REALLoadObjectMethod");
    load();
    const Ref dictionary = dictionaryOf({{"text", "value"}});
    const Ref key = variant("text");
    SetDictionaryValue(dictionary.get(), key.get(), nullptr);
    EXPECT_EQ(host::dictionaryGet(dictionary.get(), "text").toText(), "value");
    EXPECT_EQ(GetDictionaryValue(dictionary.get(), key.get()), nullptr);
    EXPECT_EQ(GetDictionaryKey(dictionary.get(), 0), nullptr);
    const Id converted = NewNSDictionary(dictionary.get());
    EXPECT_EQ(countOf(converted), 0u);
    const Ref back = Ref::adopt(NSDictionaryRB(platformDictionary()));
    EXPECT_EQ(host::dictionaryCount(back.get()), 0u);
    EXPECT_EQ(raised(), std::nullopt);
}

TEST_F(DictionariesWithout, ACountThatCannotBeReadOneIsEmpty) {
    harness::withdraw("REALGetPropValueInt");
    load();
    const Ref dictionary = dictionaryOf({{"text", "value"}});
    EXPECT_EQ(GetDictionaryCount(dictionary.get()), 0);
    EXPECT_EQ(countOf(NewNSDictionary(dictionary.get())), 0u);
}

// A method that the host does not load is asked for by one look-up each time, which shows the loads.
TEST_F(DictionariesWithout, MethodsTheyAreAskedForOncePerDictionaryByWhicheverAccessorIsFirst) {
    harness::withdraw("REALLoadObjectMethod");
    load();
    const auto loads = [] {
        const auto names = harness::lookups();
        return std::count(names.begin(), names.end(), "REALLoadObjectMethod");
    };
    const Ref first = make("Dictionary"), second = make("Dictionary"), third = make("Dictionary");
    const auto before = loads();
    GetDictionaryKey(first.get(), 0);
    EXPECT_EQ(loads() - before, 3);
    GetDictionaryValue(first.get(), nullptr);
    SetDictionaryValue(first.get(), nullptr, nullptr);
    EXPECT_EQ(loads() - before, 3) << "the same dictionary";
    GetDictionaryValue(second.get(), nullptr);
    EXPECT_EQ(loads() - before, 6);
    SetDictionaryValue(third.get(), nullptr, nullptr);
    EXPECT_EQ(loads() - before, 9);
}

template <char name>
REALvariant keyOf(REALobject, int32_t) {
    return host::boxVariant(std::string(1, name));
}

void registerLookalike(const char* className, REALvariant (*key)(REALobject, int32_t)) {
    static std::deque<REALmethodDefinition> rows;
    rows.push_back(
        {reinterpret_cast<REALproc>(key), nullptr, "Key(index As Integer) As Variant", kREALMemberFlags});
    registerHostClass(className, 0, nullptr, &rows.back(), 1);
}

TEST_F(Dictionaries, AnotherDictionaryHasItsMethodsLoadedAnew) {
    registerLookalike("TestA", keyOf<'a'>);
    registerLookalike("TestB", keyOf<'b'>);
    const Ref a = make("TestA"), b = make("TestB");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(valueOf(Ref::adopt(GetDictionaryKey(a.get(), 0))).toText(), "a");
        EXPECT_EQ(valueOf(Ref::adopt(GetDictionaryKey(a.get(), 1))).toText(), "a");
        EXPECT_EQ(valueOf(Ref::adopt(GetDictionaryKey(b.get(), 0))).toText(), "b");
        EXPECT_EQ(GetDictionaryValue(b.get(), nullptr), nullptr);
    }
}

// Methods of the test's own, loaded for any dictionary; they never look at it.
int methodsLoaded, nilKeysAsked;
char keyGiven;

template <char name>
REALvariant nextKey(REALdictionary, int32_t index) {
    keyGiven = name;
    return index == 0 ? host::boxVariant(std::string(1, name)) : nullptr;
}
REALvariant valueOfAnyKey(REALdictionary, REALvariant key) {
    nilKeysAsked += !key;
    return host::boxVariant("value");
}

template <char name>
REALproc loadOwn(REALobject, const char* declaration) {
    ++methodsLoaded;
    const std::string wanted = declaration;
    if (wanted.starts_with("Key(")) return reinterpret_cast<REALproc>(nextKey<name>);
    return wanted.ends_with("As Variant") ? reinterpret_cast<REALproc>(valueOfAnyKey) : nullptr;
}

REALproc (*loader)(REALobject, const char*) = loadOwn<'a'>;
REALproc loadMethod(REALobject object, const char* declaration) { return loader(object, declaration); }

TEST_F(DictionariesWithout, AKeyItsValueIsFetchedAllTheSame) {
    OwnServices::put("REALLoadObjectMethod", loadMethod);
    REALPluginMain(OwnServices::resolve);
    const Id converted = NewNSDictionary(dictionaryOf({{"one", 1}, {"two", 2}, {"three", 3}}).get());
    EXPECT_EQ(countOf(converted), 1u);
    EXPECT_EQ(text(valueFor(converted, "a")), "value");
    EXPECT_EQ(nilKeysAsked, 2);
    const Ref counted = variant("value");
    EXPECT_EQ(livingValues(), 1u) << "what was fetched is dropped";
}

// Deliberate: which dictionary it was is told by the address alone. All of a host's are of one class.
TEST_F(DictionariesWithout, AnotherAddressMethodsAreNotLoadedAnewForANewDictionary) {
    OwnServices::put("REALLoadObjectMethod", loadMethod);
    REALPluginMain(OwnServices::resolve);
    REALobjectStruct place{}, otherPlace{};
    Ref::adopt(GetDictionaryKey(&place, 0));
    EXPECT_EQ(keyGiven, 'a');
    EXPECT_EQ(methodsLoaded, 3);
    loader = loadOwn<'b'>; // as of another class, at the same address
    Ref::adopt(GetDictionaryKey(&place, 0));
    EXPECT_EQ(keyGiven, 'a') << "the old entry";
    EXPECT_EQ(methodsLoaded, 3);
    Ref::adopt(GetDictionaryKey(&otherPlace, 0));
    EXPECT_EQ(keyGiven, 'b');
    EXPECT_EQ(methodsLoaded, 6);
}

// ---- arrays of wrappers ------------------------------------------------------------------------------

TEST_F(Dictionaries, AnArrayOfWrappersIsAnArrayOfWhatTheyHold) {
    const objc::Adopted one(sendClass<"NSObject", "new">()), two(sendClass<"NSObject", "new">());
    const Ref first = Ref::adopt(NewDRMSFQRX(one.get())), empty = make("DRMSFQRX"),
              last = Ref::adopt(NewDRMSFQRX(two.get()));
    const Ref array = host::newArray(host::typeNamed("Object"));
    for (const Value& element : {Value(first), Value(), Value(empty), Value(last)})
        host::arrayAppend(array.get(), element);
    const Id converted = CreateNSObjectArray(handleOf(array), true);
    ASSERT_TRUE(objc::isKindOf<"NSMutableArray">(converted));
    ASSERT_EQ(countOf(converted), 2u) << "nil elements and empty wrappers are left out";
    EXPECT_EQ(send<"objectAtIndex:">(converted, 0ul), one.get());
    EXPECT_EQ(send<"objectAtIndex:">(converted, 1ul), two.get());
    EXPECT_EQ(harness::references(first.get()), 2u) << "the array's and the test's";
    EXPECT_EQ(harness::references(empty.get()), 2u);
}

TEST_F(Dictionaries, AnEmptyArrayOfWrappersIsNilOnlyWhereThatIsWanted) {
    EXPECT_EQ(CreateNSObjectArray(nullptr, false), nullptr);
    const Ref array = host::newArray(host::typeNamed("Object"));
    EXPECT_EQ(CreateNSObjectArray(handleOf(array), true), nullptr);
    const Id converted = CreateNSObjectArray(handleOf(array), false);
    ASSERT_TRUE(objc::isKindOf<"NSMutableArray">(converted));
    EXPECT_EQ(countOf(converted), 0u);
}

} // namespace
