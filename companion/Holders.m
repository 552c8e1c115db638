// Holders.m: makes, empties and describes the objects that hold a platform object.
#import "companion/Holders.h"

#import "companion/Exceptions.h"

REALobject newHolder(const char* className, id object) {
    if (object == nil)
        return NULL;
    REALobject made = host.PluginNewInstance(className);
    if (made != NULL)
        *slot(made) = [object retain];
    return made;
}

void destroyHolder(REALobject object) {
    id last = *slot(object);
    *slot(object) = nil;
    GUARDED_VOID([last release])
}

REALstring descriptionOf(REALobject object) { GUARDED(REALstring, hostString([held(object) description])) }
