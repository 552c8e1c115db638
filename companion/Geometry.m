// Geometry.m: NSRangeQRX, NSRectQRX, NSSizeQRX and NSPointQRX.
//
// The structures are those of the machine: two 32-bit integers or 32-bit floats where the platform has those,
// 64-bit ones where it has these. The declarations name the same types, so nothing is cut on the way.
#import "companion/Geometry.h"

#import "companion/Classes.h"

#define DATA(object, Structure) ((Structure*)instanceData(object))

// The getter and the setter of one number.
#define FIELD(prefix, Structure, Number, field, member)                                                      \
    static Number prefix##Get_##field(REALobject self) { return DATA(self, Structure)->member; }             \
    static void prefix##Set_##field(REALobject self, Number value) { DATA(self, Structure)->member = value; }
#define FIELD_ROW(prefix, field, type) PROPERTY(prefix##Get_##field, prefix##Set_##field, #field " as " type)

// New objects are zero: the host gives instance data that way.
static void constructEmpty(REALobject self) {}
#define EMPTY_CONSTRUCTOR METHOD(constructEmpty, "Constructor")

#define GEOMETRY_CLASS(className, Structure, rows)                                                           \
    {                                                                                                        \
        CLASS_BASICS, .name = (className), .dataSize = sizeof(Structure), .methods = (rows),                 \
                      .methodCount = COUNT_OF(rows)                                                          \
    }

// ---- range ---------------------------------------------------------------------------------------------

FIELD(range, NSRange, NSUInteger, location, location)
FIELD(range, NSRange, NSUInteger, length, length)

static void constructRange(REALobject self, NSUInteger location, NSUInteger length) {
    // Not NSMakeRange, which refuses some: the numbers are the program's business.
    *DATA(self, NSRange) = (NSRange){location, length};
}

static REALmethodDefinition rangeMethods[] = {
    EMPTY_CONSTRUCTOR,
    METHOD(constructRange, "Constructor(location as " HOST_NSUINTEGER ", length as " HOST_NSUINTEGER ")"),
    FIELD_ROW(range, location, HOST_NSUINTEGER),
    FIELD_ROW(range, length, HOST_NSUINTEGER),
};

REALclassDefinition NSRangeQRXClass = GEOMETRY_CLASS("NSRangeQRX", NSRange, rangeMethods);

// ---- rectangle -----------------------------------------------------------------------------------------

FIELD(rect, NSRect, CGFloat, x, origin.x)
FIELD(rect, NSRect, CGFloat, y, origin.y)
FIELD(rect, NSRect, CGFloat, width, size.width)
FIELD(rect, NSRect, CGFloat, height, size.height)

static void constructRect(REALobject self, CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    *DATA(self, NSRect) = NSMakeRect(x, y, width, height);
}

static REALmethodDefinition rectMethods[] = {
    EMPTY_CONSTRUCTOR,
    METHOD(constructRect, "Constructor(x as " HOST_CGFLOAT ", y as " HOST_CGFLOAT ", width as " HOST_CGFLOAT
                          ", height as " HOST_CGFLOAT ")"),
    FIELD_ROW(rect, x, HOST_CGFLOAT),
    FIELD_ROW(rect, y, HOST_CGFLOAT),
    FIELD_ROW(rect, width, HOST_CGFLOAT),
    FIELD_ROW(rect, height, HOST_CGFLOAT),
};

REALclassDefinition NSRectQRXClass = GEOMETRY_CLASS("NSRectQRX", NSRect, rectMethods);

REALobject newHostRect(NSRect rect) {
    REALobject made = host.PluginNewInstance("NSRectQRX");
    if (made != NULL)
        *DATA(made, NSRect) = rect;
    return made;
}

NSRect rectOf(REALobject object) { return object == NULL ? NSZeroRect : *DATA(object, NSRect); }

// ---- size ----------------------------------------------------------------------------------------------

FIELD(size, NSSize, CGFloat, width, width)
FIELD(size, NSSize, CGFloat, height, height)

static void constructSize(REALobject self, CGFloat width, CGFloat height) {
    *DATA(self, NSSize) = NSMakeSize(width, height);
}

static REALmethodDefinition sizeMethods[] = {
    EMPTY_CONSTRUCTOR,
    METHOD(constructSize, "Constructor(width as " HOST_CGFLOAT ", height as " HOST_CGFLOAT ")"),
    FIELD_ROW(size, width, HOST_CGFLOAT),
    FIELD_ROW(size, height, HOST_CGFLOAT),
};

REALclassDefinition NSSizeQRXClass = GEOMETRY_CLASS("NSSizeQRX", NSSize, sizeMethods);

// ---- point ---------------------------------------------------------------------------------------------

FIELD(point, NSPoint, CGFloat, x, x)
FIELD(point, NSPoint, CGFloat, y, y)

static void constructPoint(REALobject self, CGFloat x, CGFloat y) {
    *DATA(self, NSPoint) = NSMakePoint(x, y);
}

static REALmethodDefinition pointMethods[] = {
    EMPTY_CONSTRUCTOR,
    METHOD(constructPoint, "Constructor(x as " HOST_CGFLOAT ", y as " HOST_CGFLOAT ")"),
    FIELD_ROW(point, x, HOST_CGFLOAT),
    FIELD_ROW(point, y, HOST_CGFLOAT),
};

REALclassDefinition NSPointQRXClass = GEOMETRY_CLASS("NSPointQRX", NSPoint, pointMethods);

// ---- of a platform value -------------------------------------------------------------------------------

REALobject newHostGeometry(NSValue* value) {
    const char* type = [value objCType];
    if (strcmp(type, @encode(NSRect)) == 0)
        return newHostRect([value rectValue]);
    const BOOL isRange = strcmp(type, @encode(NSRange)) == 0;
    const BOOL isSize = strcmp(type, @encode(NSSize)) == 0;
    if (!isRange && !isSize && strcmp(type, @encode(NSPoint)) != 0)
        return NULL;
    REALobject made = host.PluginNewInstance(isRange ? "NSRangeQRX" : isSize ? "NSSizeQRX" : "NSPointQRX");
    if (made == NULL)
        return NULL;
    if (isRange)
        *DATA(made, NSRange) = [value rangeValue];
    else if (isSize)
        *DATA(made, NSSize) = [value sizeValue];
    else
        *DATA(made, NSPoint) = [value pointValue];
    return made;
}
