// HostArrays.cpp: reading and inserting array elements through the host's procedures, or directly.
#include "plugin/frame/HostServices.hpp"
#include "plugin/frame/Resolver.hpp"

namespace {

using frame::HostCell;

using GetProcFactory = frame::entry::RuntimeArrayDirectGetGetProc;

template <class Element>
using GetProc = Element (*)(REALarray, int32_t);

// The plug-in's own get procedures read the packed elements behind the array's third word, without bounds
// check.
template <class Element>
Element elementAt(REALarray array, int32_t index) {
    return static_cast<Element*>(array->elements)[index];
}

// A reference that comes out of an array belongs to the caller, whichever way it was read.
REALobject GetArrayValueProcObject(REALarray array, int32_t index) {
    const auto element = elementAt<REALobject>(array, index);
    if (element) REALLockObject(element);
    return element;
}

REALstring GetArrayValueProcString(REALarray array, int32_t index) {
    const auto element = elementAt<REALstring>(array, index);
    if (element) REALLockString(element);
    return element;
}

int32_t GetArrayValueProcInt32(REALarray array, int32_t index) { return elementAt<int32_t>(array, index); }
uint8_t GetArrayValueProcInt8(REALarray array, int32_t index) { return elementAt<uint8_t>(array, index); }
float GetArrayValueProcFloat(REALarray array, int32_t index) { return elementAt<float>(array, index); }
double GetArrayValueProcDouble(REALarray array, int32_t index) { return elementAt<double>(array, index); }
int64_t GetArrayValueProcInt64(REALarray array, int32_t index) { return elementAt<int64_t>(array, index); }

// These stand in for "RuntimeArrayDirectGetGetProc" on hosts that lack it.
REALproc MyRuntimeArrayDirectGetGetProcObject(REALarray) {
    return reinterpret_cast<REALproc>(GetArrayValueProcObject);
}
REALproc MyRuntimeArrayDirectGetGetProcString(REALarray) {
    return reinterpret_cast<REALproc>(GetArrayValueProcString);
}
REALproc MyRuntimeArrayDirectGetGetProcInt32(REALarray) {
    return reinterpret_cast<REALproc>(GetArrayValueProcInt32);
}
REALproc MyRuntimeArrayDirectGetGetProcInt8(REALarray) {
    return reinterpret_cast<REALproc>(GetArrayValueProcInt8);
}
REALproc MyRuntimeArrayDirectGetGetProcFloat(REALarray) {
    return reinterpret_cast<REALproc>(GetArrayValueProcFloat);
}
REALproc MyRuntimeArrayDirectGetGetProcDouble(REALarray) {
    return reinterpret_cast<REALproc>(GetArrayValueProcDouble);
}
REALproc MyRuntimeArrayDirectGetGetProcInt64(REALarray) {
    return reinterpret_cast<REALproc>(GetArrayValueProcInt64);
}

// One cell for each element type: a substitute, once chosen, stays.
template <auto substitute, class Element>
void readElement(REALarray array, int32_t index, Element* out) {
    static constinit HostCell<GetProcFactory> cell("RuntimeArrayDirectGetGetProc");
    GetProcFactory* factory = cell.get();
    if (!factory) cell.keep(factory = substitute);
    const auto read = reinterpret_cast<GetProc<Element>>(factory(array));
    if (!read || !out) return;
    *out = read(array, index);
}

} // namespace

void REALGetArrayValueObject(REALarray array, int32_t index, REALobject* out) {
    readElement<MyRuntimeArrayDirectGetGetProcObject>(array, index, out);
}
void REALGetArrayValueString(REALarray array, int32_t index, REALstring* out) {
    readElement<MyRuntimeArrayDirectGetGetProcString>(array, index, out);
}
void REALGetArrayValueInt32(REALarray array, int32_t index, int32_t* out) {
    readElement<MyRuntimeArrayDirectGetGetProcInt32>(array, index, out);
}
void REALGetArrayValueUInt8(REALarray array, int32_t index, uint8_t* out) {
    readElement<MyRuntimeArrayDirectGetGetProcInt8>(array, index, out);
}
void REALGetArrayValueSingle(REALarray array, int32_t index, float* out) {
    readElement<MyRuntimeArrayDirectGetGetProcFloat>(array, index, out);
}
void REALGetArrayValueDouble(REALarray array, int32_t index, double* out) {
    readElement<MyRuntimeArrayDirectGetGetProcDouble>(array, index, out);
}
void REALGetArrayValueInt64(REALarray array, int32_t index, int64_t* out) {
    readElement<MyRuntimeArrayDirectGetGetProcInt64>(array, index, out);
}

void REALInsertArrayValueObject(REALarray array, int32_t index, REALobject value) {
    static constinit HostCell<frame::entry::RuntimeArrayDirectGetInsertProc> cell(
        "RuntimeArrayDirectGetInsertProc");
    auto* factory = cell.get();
    if (!factory) return;
    if (const REALarrayInsertProc insert = factory(array)) insert(array, index, value);
}
