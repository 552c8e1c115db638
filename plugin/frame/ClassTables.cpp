// ClassTables.cpp: fills the class record.
#include "plugin/frame/ClassTables.hpp"

namespace frame {

void DummyConstructor(REALobject) {}

namespace {

// The host reads a missing table as null and 0.
template <class Row>
Row* rowsOrNull(std::span<Row> rows) {
    return rows.empty() ? nullptr : rows.data();
}

} // namespace

REALclassDefinition makeClass(const ClassDescription& description) {
    REALclassDefinition record{};
    record.version = kREALPluginVersion;
    record.name = description.name;
    record.superName = description.superName;
    record.dataSize = description.dataSize;
    record.constructor = description.constructor;
    record.destructor = description.destructor;
    record.methods = rowsOrNull(description.methods);
    record.methodCount = description.methods.size();
    record.events = rowsOrNull(description.events);
    record.eventCount = description.events.size();
    record.constants = rowsOrNull(description.constants);
    record.constantCount = description.constants.size();
    record.flags = kREALClassFlags;
    record.sharedMethods = rowsOrNull(description.sharedMethods);
    record.sharedMethodCount = description.sharedMethods.size();
    return record;
}

} // namespace frame
