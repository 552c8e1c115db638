// TestPlugin.cpp: a plug-in whose members take, answer and change values of every type, for the host's tests.
#include "plugin/frame/PluginInterface.h"

#include <cstring>
#include <initializer_list>
#include <pthread.h>

namespace {

#define TEST_CELL(Result, name, parameters) Result(*name) parameters = nullptr;
struct HostTable {
    REAL_HOST_ENTRIES(TEST_CELL)
} theHost;
#undef TEST_CELL

// ---- TestBase: instance data of 32 bytes -------------------------------------------------------------

struct BaseData {
    int32_t number;
    int32_t constructions;
    REALstring text;
    REALobject friendObject;
};

BaseData& dataOf(REALobject object) { return *reinterpret_cast<BaseData*>(object + 1); }

int32_t baseDestructions = 0, shapeDestructions = 0, destroyedInOrder = 0;

void constructBase(REALobject object) { dataOf(object).constructions = 1; }
void destroyBase(REALobject object) {
    ++baseDestructions;
    theHost.REALUnlockString(dataOf(object).text);
    theHost.REALUnlockObject(dataOf(object).friendObject);
}
// The base is built before and destroyed after.
void constructShape(REALobject object) {
    if (dataOf(object).constructions == 1) dataOf(object).constructions = 2;
}
void destroyShape(REALobject) {
    ++shapeDestructions;
    if (shapeDestructions == baseDestructions + 1) ++destroyedInOrder;
}

REALstring text(const char* utf8) {
    REALstring made = theHost.REALBuildString(utf8, static_cast<int32_t>(std::strlen(utf8)));
    theHost.REALSetStringEncoding(made, kREALEncodingUTF8);
    return made;
}

template <class T>
T echo(REALobject, T value) {
    return value;
}
REALstring echoString(REALobject, REALstring value) {
    theHost.REALLockString(value);
    return value;
}
REALobject echoObject(REALobject, REALobject value) {
    theHost.REALLockObject(value);
    return value;
}
// Ten arguments: more than there are registers for integers and for reals.
double sumOfAll(REALobject, int8_t a, uint8_t b, int16_t c, uint16_t d, int32_t e, uint32_t f, int64_t g,
                uint64_t h, float i, double j) {
    return a + b + c + d + e + static_cast<double>(f) + static_cast<double>(g) + static_cast<double>(h) +
           static_cast<double>(i) + j;
}

int32_t sumIntegers(REALobject, REALarray numbers) {
    int32_t sum = 0;
    const auto get =
        reinterpret_cast<int32_t (*)(REALarray, int32_t)>(theHost.RuntimeArrayDirectGetGetProc(numbers));
    for (int32_t i = 0; get && i <= theHost.RuntimeUBound(numbers); ++i)
        sum += get(numbers, i);
    return sum;
}
REALstring firstText(REALobject, REALarray texts) {
    const auto get =
        reinterpret_cast<REALstring (*)(REALarray, int32_t)>(theHost.RuntimeArrayDirectGetGetProc(texts));
    return get(texts, 0);
}
int32_t countShapes(REALobject, REALarray shapes) { return theHost.RuntimeUBound(shapes) + 1; }
REALarray makeShapes(REALobject, int32_t count) {
    REALarray shapes = theHost.RuntimeArrayCreateSingleDimBoundedArray(kREALArrayOfObjects, -1);
    const auto insert = theHost.RuntimeArrayDirectGetInsertProc(shapes);
    for (int32_t i = 0; i < count; ++i) {
        REALobject shape = theHost.PluginNewInstance("TestShape");
        dataOf(shape).number = i;
        insert(shapes, i, shape);
        theHost.REALUnlockObject(shape);
    }
    return shapes;
}

void bumpAll(REALobject, int8_t* a, uint16_t* b, int32_t* c, uint64_t* d, float* e, double* f, uint8_t* g) {
    *a = static_cast<int8_t>(*a + 1);
    *b = static_cast<uint16_t>(*b + 1);
    *c += 1;
    *d += 1;
    *e += 1;
    *f += 1;
    *g = !*g;
}
void swapTexts(REALobject, REALstring* a, REALstring* b) {
    REALstring kept = *a;
    *a = *b;
    *b = kept;
}
void replaceText(REALobject, REALstring* a) {
    theHost.REALUnlockString(*a);
    *a = text("replaced");
}
void makeFriend(REALobject, REALobject* made) {
    theHost.REALUnlockObject(*made);
    *made = theHost.PluginNewInstance("TestShape");
}

int32_t getNumber(REALobject object) { return dataOf(object).number; }
void setNumber(REALobject object, int32_t value) { dataOf(object).number = value; }
int32_t getConstructions(REALobject object) { return dataOf(object).constructions; }
REALstring getText(REALobject object) {
    theHost.REALLockString(dataOf(object).text);
    return dataOf(object).text;
}
void setText(REALobject object, REALstring value) {
    theHost.REALLockString(value);
    theHost.REALUnlockString(dataOf(object).text);
    dataOf(object).text = value;
}
REALstring getNamed(REALobject object, REALstring key) {
    return dataOf(object).number == 99 ? getText(object) : echoString(object, key);
}
void setNamed(REALobject object, REALstring key, REALstring value) {
    if (theHost.StringGetCString(key)[0] == 'k') setText(object, value);
    dataOf(object).number = 99;
}
REALobject getFriend(REALobject object) { return echoObject(object, dataOf(object).friendObject); }
void setFriend(REALobject object, REALobject value) {
    theHost.REALLockObject(value);
    theHost.REALUnlockObject(dataOf(object).friendObject);
    dataOf(object).friendObject = value;
}

void constructWithNumber(REALobject object, int32_t number) { dataOf(object).number = number; }
void constructWithText(REALobject object, REALstring value) { setText(object, value); }
void constructHidden(REALobject) {}

int32_t raiseIt(REALobject, REALstring className, REALstring message) {
    REALobject exception = theHost.PluginNewInstance(theHost.StringGetCString(className));
    if (!exception) exception = theHost.PluginNewInstance("RuntimeException");
    theHost.REALSetPropValueString(exception, "Message", message);
    theHost.RuntimeRaiseException(exception);
    theHost.REALUnlockObject(exception);
    return 7;
}

REALstring pickInteger(REALobject, int32_t) { return text("integer"); }
REALstring pickInt64(REALobject, int64_t) { return text("int64"); }
REALstring pickDouble(REALobject, double) { return text("double"); }
REALstring pickText(REALobject, REALstring) { return text("string"); }
REALstring pickItem(REALobject, REALobject) { return text("folderitem"); }
REALstring pickBase(REALobject, REALobject) { return text("TestBase"); }
REALstring pickShape(REALobject, REALobject) { return text("TestShape"); }
REALstring pickShapes(REALobject, REALarray) { return text("TestShape()"); }
REALstring pickTwo(REALobject, int32_t, REALstring) { return text("two"); }

// ---- events ------------------------------------------------------------------------------------------

REALevent baseEvents[] = {
    {"compute(a as uint32, byref flags as uint32, note as string) as uint64", 0},
    {"notify", 0},
    {"choose(a as TestBase, b as TestBase) as TestBase", 0},
    {"isReady as boolean", 0},
    {"scale(x as double, y as single, z as int8) as single", 0},
    {"rename(byref prompt as string) as boolean", 0},
    {"fill(buffer as memoryblock, length as uint32) as int16", 0},
};

template <class Signature>
Signature* handler(REALobject object, int event) {
    return reinterpret_cast<Signature*>(theHost.GetEventInstance(object, baseEvents[event].identity));
}

uint64_t fireCompute(REALobject object, uint32_t a, uint32_t* flags) {
    auto* handle = handler<uint64_t(REALobject, uint32_t, uint32_t*, REALstring)>(object, 0);
    if (!handle) return 0xFFFFFFFFFFu;
    REALstring note = text("note");
    const uint64_t result = handle(object, a, flags, note);
    theHost.REALUnlockString(note);
    return result;
}
void fireNotify(REALobject object) {
    if (auto* handle = handler<void(REALobject)>(object, 1)) handle(object);
}
REALobject fireChoose(REALobject object, REALobject a, REALobject b) {
    auto* handle = handler<REALobject(REALobject, REALobject, REALobject)>(object, 2);
    return handle ? handle(object, a, b) : nullptr;
}
uint8_t fireIsReady(REALobject object) {
    auto* handle = handler<uint8_t(REALobject)>(object, 3);
    return handle ? handle(object) : 0;
}
float fireScale(REALobject object) {
    auto* handle = handler<float(REALobject, double, float, int8_t)>(object, 4);
    return handle ? handle(object, 1.5, 2.5f, -3) : 0;
}
REALstring fireRename(REALobject object, REALstring before) {
    auto* handle = handler<uint8_t(REALobject, REALstring*)>(object, 5);
    theHost.REALLockString(before);
    if (handle) handle(object, &before);
    return before;
}
int32_t fireFill(REALobject object) {
    auto* handle = handler<int16_t(REALobject, REALmemoryBlock, uint32_t)>(object, 6);
    if (!handle) return -1;
    unsigned char buffer[16] = {};
    REALmemoryBlock block = theHost.PtrToMemoryBlock(buffer);
    const int16_t result = handle(object, block, sizeof buffer);
    theHost.REALUnlockObject(block);
    return result * 1000 + buffer[3];
}

// Raises, then runs an event: the event's own calls must not meet the exception that waits for this
// function's end.
void raiseThenNotify(REALobject object) {
    REALobject exception = theHost.PluginNewInstance("IOException");
    theHost.RuntimeRaiseException(exception);
    theHost.REALUnlockObject(exception);
    fireNotify(object);
}

pthread_t thread;
bool hasThread = false;
REALobject threadObject = nullptr;
void* runThread(void*) {
    fireNotify(threadObject);
    return nullptr;
}
uint8_t startThread(REALobject object) {
    threadObject = object;
    hasThread = pthread_create(&thread, nullptr, runThread, nullptr) == 0;
    return hasThread;
}
void joinThread(REALobject) {
    if (hasThread) pthread_join(thread, nullptr);
    hasThread = false;
}

// ---- shared members ----------------------------------------------------------------------------------

int32_t sharedAnswer() { return 42; }
REALstring sharedJoin(REALstring a, int32_t b) {
    REALstring joined = theHost.REALBuildString("", 0);
    theHost.REALUnlockString(joined);
    return b == 2 ? echoString(nullptr, a) : text("?");
}
int32_t sharedDestructions() { return baseDestructions; }
int32_t sharedDestroyedInOrder() { return destroyedInOrder; }

#define FUNCTION(f) reinterpret_cast<REALproc>(f), nullptr
#define METHOD(f, declaration)                                                                               \
    { FUNCTION(f), declaration, kREALMemberFlags }
#define PROPERTY(get, set, declaration)                                                                      \
    { reinterpret_cast<REALproc>(get), reinterpret_cast<REALproc>(set), declaration, kREALMemberFlags }

REALmethodDefinition baseMethods[] = {
    METHOD(echo<int8_t>, "echoInt8(v as Int8) as Int8"),
    METHOD(echo<int16_t>, "echoInt16(v as Int16) as Int16"),
    METHOD(echo<int32_t>, "echoInt32(v as Int32) as Int32"),
    METHOD(echo<int64_t>, "echoInt64(v as Int64) as Int64"),
    METHOD(echo<uint8_t>, "echoUInt8(v as UInt8) as UInt8"),
    METHOD(echo<uint16_t>, "echoUInt16(v as UInt16) as UInt16"),
    METHOD(echo<uint32_t>, "echoUInt32(v as UInt32) as UInt32"),
    METHOD(echo<uint64_t>, "echoUInt64(v as UInt64) as UInt64"),
    METHOD(echo<int32_t>, "echoInteger(v as integer) as integer"),
    METHOD(echo<float>, "echoSingle(v as single) as single"),
    METHOD(echo<double>, "echoDouble(v as double) as double"),
    METHOD(echo<uint8_t>, "echoBoolean(v as boolean) as boolean"),
    METHOD(echoString, "echoString(v as string) as string"),
    METHOD(echoObject, "echoVariant(v as variant) as variant"),
    METHOD(echoObject, "echoMemoryBlock(v as memoryblock) as memoryblock"),
    METHOD(echoObject, "echoFolderItem(v as folderitem) as folderitem"),
    METHOD(echoObject, "echoDictionary(v as dictionary) as dictionary"),
    METHOD(echoObject, "echoDate(v as date) as date"),
    METHOD(echoObject, "echoBase(v as TestBase) as TestBase"),
    METHOD(echoObject, "echoTexts(v() as string) as string()"),
    METHOD(sumOfAll,
           "sumOfAll(a as Int8, b as UInt8, c as Int16, d as UInt16, e as Int32, f as UInt32, g as Int64, h "
           "as UInt64, i as single, j as double) as double"),
    METHOD(sumIntegers, "sumIntegers(v() as integer) as integer"),
    METHOD(firstText, "firstText(v() as string) as string"),
    METHOD(countShapes, "countShapes(v() as TestShape) as integer"),
    METHOD(makeShapes, "makeShapes(count as integer) as TestShape()"),
    METHOD(bumpAll,
           "bumpAll(byref a as Int8, byref b as UInt16, byref c as integer, byref d as UInt64, byref e as "
           "single, byref f as double, byref g as boolean)"),
    METHOD(swapTexts, "swapTexts(byref a as string, byref b as string)"),
    METHOD(replaceText, "replaceText(byref a as string)"),
    METHOD(makeFriend, "makeFriend(byref made as TestBase)"),
    METHOD(getConstructions, "constructions as integer"),
    PROPERTY(getNumber, setNumber, "number as integer"),
    PROPERTY(getText, setText, "text as string"),
    PROPERTY(getNamed, setNamed, "named(key as string) as string"),
    PROPERTY(getFriend, setFriend, "friend as TestBase"),
    METHOD(constructWithNumber, "Constructor(number as integer)"),
    METHOD(constructWithText, "Constructor(s as string)"),
    METHOD(raiseIt, "raiseIt(className as string, message as string) as integer"),
    METHOD(pickInteger, "pick(a as integer) as string"),
    METHOD(pickInt64, "pick(a as int64) as string"),
    METHOD(pickDouble, "pick(a as double) as string"),
    METHOD(pickText, "pick(a as string) as string"),
    METHOD(pickItem, "pick(a as folderitem) as string"),
    METHOD(pickBase, "pick(a as TestBase) as string"),
    METHOD(pickShape, "pick(a as TestShape) as string"),
    METHOD(pickShapes, "pick(a() as TestShape) as string"),
    METHOD(pickTwo, "pick(a as integer, b as string) as string"),
    METHOD(fireCompute, "fireCompute(a as uint32, byref flags as uint32) as uint64"),
    METHOD(fireNotify, "fireNotify"),
    METHOD(fireChoose, "fireChoose(a as TestBase, b as TestBase) as TestBase"),
    METHOD(fireIsReady, "fireIsReady as boolean"),
    METHOD(fireScale, "fireScale as single"),
    METHOD(fireRename, "fireRename(before as string) as string"),
    METHOD(fireFill, "fireFill as integer"),
    METHOD(raiseThenNotify, "raiseThenNotify"),
    METHOD(startThread, "startThread as boolean"),
    METHOD(joinThread, "joinThread"),
    METHOD(getNumber, "broken(a as"),
    METHOD(getNumber, nullptr),
};
REALmethodDefinition baseShared[] = {
    METHOD(sharedAnswer, "answer as integer"),
    METHOD(sharedJoin, "join(a as string, b as integer) as string"),
    METHOD(sharedDestructions, "destructions as integer"),
    METHOD(sharedDestroyedInOrder, "destroyedInOrder as integer"),
};
REALmethodDefinition shapeMethods[] = {
    METHOD(getConstructions, "corners as integer"),
    METHOD(pickShape, "pick(a as TestShape) as string"),
};
REALmethodDefinition hiddenMethods[] = {
    {FUNCTION(constructHidden), "Constructor", kREALMemberFlags | kREALMemberNotForPrograms},
};
REALconstant baseConstants[] = {
    {"kSize = 2352", {}},     {"kMask = &hFF", {}}, {"kRate = 44.1", {}},
    {"kName = \"disc\"", {}}, {"kIsOn = true", {}}, {"kBad = what", {}},
};

template <std::size_t n>
uintptr_t count(REALmethodDefinition (&)[n]) {
    return n;
}

REALclassDefinition baseClass, shapeClass, orphanClass, hiddenClass, childClass;

void fillBase() {
    baseClass.version = kREALPluginVersion;
    baseClass.name = "TestBase";
    baseClass.dataSize = 32;
    baseClass.constructor = constructBase;
    baseClass.destructor = destroyBase;
    baseClass.methods = baseMethods;
    baseClass.methodCount = count(baseMethods);
    baseClass.events = baseEvents;
    baseClass.eventCount = sizeof baseEvents / sizeof *baseEvents;
    baseClass.constants = baseConstants;
    baseClass.constantCount = sizeof baseConstants / sizeof *baseConstants;
    baseClass.sharedMethods = baseShared;
    baseClass.sharedMethodCount = count(baseShared);
    baseClass.flags = kREALClassFlags;
}

void fillOthers() {
    shapeClass.version = kREALPluginVersion;
    shapeClass.name = "TestShape";
    shapeClass.superName = "TestBase";
    shapeClass.constructor = constructShape;
    shapeClass.destructor = destroyShape;
    shapeClass.methods = shapeMethods;
    shapeClass.methodCount = count(shapeMethods);
    orphanClass.version = kREALPluginVersion;
    orphanClass.name = "TestOrphan";
    orphanClass.superName = "TestMissing";
    childClass.version = kREALPluginVersion;
    childClass.name = "TestChildOfOrphan";
    childClass.superName = "TestOrphan";
    hiddenClass.version = kREALPluginVersion;
    hiddenClass.name = "TestHidden";
    hiddenClass.methods = hiddenMethods;
    hiddenClass.methodCount = count(hiddenMethods);
}

} // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver resolve) {
#define TEST_RESOLVE(Result, name, parameters)                                                               \
    theHost.name = reinterpret_cast<Result(*) parameters>(resolve(#name));
    REAL_HOST_ENTRIES(TEST_RESOLVE)
#undef TEST_RESOLVE
    theHost.RegisterPluginVersion(kREALPluginVersion);
    fillBase();
    fillOthers();
    // The subclass before its superclass: hosts find superclasses late.
    for (auto* definition : {&shapeClass, &baseClass, &orphanClass, &childClass, &hiddenClass, &hiddenClass})
        theHost.PluginRegisterClass(definition);
}
