// Holders.h: host objects whose instance data begins with one retained platform object.
//
// Every class of the companion that is named after a platform class is of this kind: the plug-in makes such
// objects by the platform class's name, stores the platform object and knows no more of them.
#import "companion/Host.h"

// What follows the header: the data of the root plug-in class.
static inline void* instanceData(REALobject object) { return object + 1; }
// The platform object, nil while there is none. The slot owns one reference.
static inline id* slot(REALobject object) { return (id*)instanceData(object); }
// Of an argument: nil for a nil host object, too.
static inline id held(REALobject object) { return object == NULL ? nil : *slot(object); }

// A new object of the class with the platform object retained in its slot; null for nil and where the host
// has no such class.
REALobject newHolder(const char* className, id object);
// The destructor of every such class: releases what the slot holds and empties it.
void destroyHolder(REALobject object);
// The member "description as string".
REALstring descriptionOf(REALobject object);

// The record of such a class.
#define HOLDER_CLASS(className, rows)                                                                        \
    {                                                                                                        \
        CLASS_BASICS, .name = (className), .dataSize = sizeof(id), .destructor = destroyHolder,              \
                      .methods = (rows), .methodCount = COUNT_OF(rows)                                       \
    }
