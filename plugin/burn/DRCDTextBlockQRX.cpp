// DRCDTextBlockQRX.cpp: the CD-Text of a disc in one language, to be read.
//
// Blocks come out of property dictionaries; one that a program makes itself stays empty.
#include "plugin/bridge/Member.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"

namespace {

using namespace bridge;

// The platform's string encoding number, unchanged.
using Encoding = Number<unsigned long, int32_t>;

REALstring language(REALobject self) { return ask<String, "language">(self); }
int32_t encoding(REALobject self) { return ask<Encoding, "encoding">(self); }

void DRCDTextBlockConstructor(REALobject self) { constructWrapper(self); }
void DRCDTextBlockDestructor(REALobject self) { destroyWrapper(self); }

REALmethodDefinition methods[] = {
    frame::placeholderConstructor(),
    frame::method<"language as string", language>(),
    frame::method<"encoding as integer", encoding>(),
};

} // namespace

REALclassDefinition DRCDTextBlockQRXClass = frame::makeClass({.name = "DRCDTextBlockQRX",
                                                              .dataSize = frame::platformObjectSize,
                                                              .constructor = DRCDTextBlockConstructor,
                                                              .destructor = DRCDTextBlockDestructor,
                                                              .methods = methods});
