// Wrappers.m: platform objects that programs meet in property dictionaries and have no counterpart in the host.
//
// The plug-in makes such an object by the name of the platform class. Attributed strings, character sets and
// index sets it also hands back to the platform as what they are.
#import "companion/Classes.h"
#import "companion/Exceptions.h"
#import "companion/Geometry.h"
#import "companion/Values.h"

// ---- errors --------------------------------------------------------------------------------------------

static NSError* errorOf(REALobject self) { return held(self); }
static REALstring domain(REALobject self) { GUARDED(REALstring, hostString([errorOf(self) domain])) }
static int64_t code(REALobject self) { GUARDED(int64_t, [errorOf(self) code]) }
static REALstring sentence(REALobject self) {
    GUARDED(REALstring, hostString([errorOf(self) localizedDescription]))
}
static REALdictionary userInfo(REALobject self) {
    GUARDED(REALdictionary, newHostDictionary([errorOf(self) userInfo]))
}

static REALmethodDefinition errorMethods[] = {
    METHOD(domain, "domain as string"),
    METHOD(code, "code as Int64"),
    METHOD(sentence, "localizedDescription as string"),
    METHOD(userInfo, "userInfo as dictionary"),
    METHOD(descriptionOf, "description as string"),
};

REALclassDefinition NSErrorQRXClass = HOLDER_CLASS("NSErrorQRX", errorMethods);

// ---- index sets ----------------------------------------------------------------------------------------

static NSIndexSet* indexesOf(REALobject self) { return held(self); }

static void constructIndexes(REALobject self, NSUInteger first, NSUInteger count) {
    if (held(self) != nil)
        return raiseConstructedTwice();
    // A range that goes too far is refused before anything is made.
    GUARDED_VOID(*slot(self) = [[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(first, count)] retain])
}

static NSUInteger indexCount(REALobject self) { GUARDED(NSUInteger, [indexesOf(self) count]) }
static NSUInteger firstIndex(REALobject self) { GUARDED(NSUInteger, [indexesOf(self) firstIndex]) }
static NSUInteger lastIndex(REALobject self) { GUARDED(NSUInteger, [indexesOf(self) lastIndex]) }
static uint8_t containsIndex(REALobject self, NSUInteger index) {
    GUARDED(uint8_t, [indexesOf(self) containsIndex:index] != 0)
}

static REALmethodDefinition indexMethods[] = {
    METHOD(constructIndexes, "Constructor(first as " HOST_NSUINTEGER ", count as " HOST_NSUINTEGER ")"),
    METHOD(indexCount, "count as " HOST_NSUINTEGER),
    METHOD(firstIndex, "firstIndex as " HOST_NSUINTEGER),
    METHOD(lastIndex, "lastIndex as " HOST_NSUINTEGER),
    METHOD(containsIndex, "containsIndex(index as " HOST_NSUINTEGER ") as boolean"),
    METHOD(descriptionOf, "description as string"),
};

REALclassDefinition NSIndexSetQRXClass = HOLDER_CLASS("NSIndexSetQRX", indexMethods);

// ---- attributed strings --------------------------------------------------------------------------------

static void constructText(REALobject self, REALstring text) {
    if (held(self) != nil)
        return raiseConstructedTwice();
    GUARDED_VOID(*slot(self) = [[NSAttributedString alloc] initWithString:platformString(text)])
}

static REALstring plainText(REALobject self) {
    GUARDED(REALstring, hostString([(NSAttributedString*)held(self) string]))
}

static REALmethodDefinition attributedMethods[] = {
    METHOD(constructText, "Constructor(text as string)"),
    METHOD(plainText, "text as string"),
    METHOD(descriptionOf, "description as string"),
};

REALclassDefinition NSAttributedStringQRXClass = HOLDER_CLASS("NSAttributedStringQRX", attributedMethods);

// ---- character sets ------------------------------------------------------------------------------------

static void constructCharacters(REALobject self, REALstring characters) {
    if (held(self) != nil)
        return raiseConstructedTwice();
    GUARDED_VOID(*slot(self) =
                     [[NSCharacterSet characterSetWithCharactersInString:platformString(characters)] retain])
}

// Whether the text is not empty and all of it is in the set.
static BOOL hasAll(NSCharacterSet* set, NSString* text) {
    return set != nil && [text length] > 0 &&
           [text rangeOfCharacterFromSet:[set invertedSet]].location == NSNotFound;
}

static uint8_t containsAll(REALobject self, REALstring text) {
    GUARDED(uint8_t, hasAll(held(self), platformString(text)) != 0)
}

static REALmethodDefinition characterMethods[] = {
    METHOD(constructCharacters, "Constructor(characters as string)"),
    METHOD(containsAll, "containsAll(text as string) as boolean"),
    METHOD(descriptionOf, "description as string"),
};

REALclassDefinition NSCharacterSetQRXClass = HOLDER_CLASS("NSCharacterSetQRX", characterMethods);
