// DREraseQRX.cpp: one erase of a re-writable disc in one drive.
#include "plugin/bridge/Member.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"

namespace {

void DREraseConstructor(REALobject self) { bridge::constructWrapper(self); }
void DREraseDestructor(REALobject self) { bridge::destroyWrapper(self); }

} // namespace

REALclassDefinition DREraseQRXClass = frame::makeClass({.name = "DREraseQRX",
                                                        .dataSize = frame::platformObjectSize,
                                                        .constructor = DREraseConstructor,
                                                        .destructor = DREraseDestructor});
