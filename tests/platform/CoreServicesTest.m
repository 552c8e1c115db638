// CoreServicesTest: strings, dictionaries, URLs, file references and the application library.
// One file, though long: strings, references and URLs share the folder that they are tried in.
#import "CoreServices.h"
#import "Check.h"

#include <sys/stat.h>
#include <unistd.h>

static NSString* Text(const char* bytes, CFIndex count, CFStringEncoding encoding) {
    return
        [(NSString*)CFStringCreateWithBytes(NULL, (const UInt8*)bytes, count, encoding, false) autorelease];
}

static void TestDecoding(void) {
    SAME("UTF-8", Text("\xC3\xA9", 2, kCFStringEncodingUTF8), @"é");
    SAME("encoding 0 is MacRoman", Text("\x8E\xDB", 2, 0), @"é€");
    SAME("Windows Latin 1", Text("\x80", 1, kCFStringEncodingWindowsLatin1), @"€");
    SAME("ISO Latin 1", Text("\xE9", 1, kCFStringEncodingISOLatin1), @"é");
    SAME("NextStep Latin", Text("\xE9", 1, kCFStringEncodingNextStepLatin), @"Ø");
    SAME("ASCII", Text("abc", 3, kCFStringEncodingASCII), @"abc");
    SAME("non-lossy ASCII", Text("\\u00e9", 6, kCFStringEncodingNonLossyASCII), @"é");
    SAME("UTF-16, big end first", Text("\x20\xAC", 2, kCFStringEncodingUTF16BE), @"€");
    SAME("UTF-16, little end first", Text("\xAC\x20", 2, kCFStringEncodingUTF16LE), @"€");
    const UniChar native[] = {0x20AC, 0xD83D, 0xDE00};
    SAME("UTF-16 of the machine", Text((const char*)native, 6, kCFStringEncodingUnicode), @"€😀");
    const uint32_t wide[] = {0x20AC, 0x1F600};
    SAME("UTF-32 of the machine", Text((const char*)wide, 8, kCFStringEncodingUTF32), @"€😀");
    SAME("UTF-32, big end first", Text("\0\0\x20\xAC", 4, kCFStringEncodingUTF32BE), @"€");
    SAME("UTF-32, little end first", Text("\xAC\x20\0\0", 4, kCFStringEncodingUTF32LE), @"€");
    SAME("no bytes", Text("", 0, kCFStringEncodingUTF8), @"");
    SAME("zero characters stay", Text("a\0b", 3, kCFStringEncodingUTF8),
         Text("a\0b", 3, kCFStringEncodingASCII));
    PASS("and count", [Text("a\0b", 3, kCFStringEncodingUTF8) length] == 3);
    PASS("a byte order mark inside a program is a character",
         [Text("\xEF\xBB\xBFx", 4, kCFStringEncodingUTF8) length] == 2);
    NSString* outside = [(NSString*)CFStringCreateWithBytes(NULL, (const UInt8*)"\xEF\xBB\xBFx", 4,
                                                            kCFStringEncodingUTF8, true) autorelease];
    SAME("and from outside it is dropped", outside, @"x");
    SAME("a C string ends at its zero",
         [(NSString*)CFStringCreateWithCString(NULL, "abc", kCFStringEncodingUTF8) autorelease], @"abc");

    struct {
        const char* bytes;
        CFIndex count;
        CFStringEncoding encoding;
    } bad[] = {
        {"\xC0\x80", 2, kCFStringEncodingUTF8},
        {"\xED\xA0\x80", 3, kCFStringEncodingUTF8},
        {"a\xE2\x82", 3, kCFStringEncodingUTF8},
        {"\xFF", 1, kCFStringEncodingUTF8},
        {"\x80", 1, kCFStringEncodingASCII},
        {"\x81", 1, kCFStringEncodingWindowsLatin1},
        {"\xFE", 1, kCFStringEncodingNextStepLatin},
        {"\0\xD8x\0", 4, kCFStringEncodingUTF16LE},
        {"a\0b", 3, kCFStringEncodingUTF16LE},
        {"\0\0\x20\0", 4, kCFStringEncodingUTF32LE},
        {"abc", 3, 0xFFFFFFFF},
        {"abc", 3, 0xFFFF},
        {"abc", -1, kCFStringEncodingUTF8},
        {NULL, 3, kCFStringEncodingUTF8},
    };
    for (size_t i = 0; i < sizeof bad / sizeof *bad; i++) {
        SAME("bytes that are no text give null", Text(bad[i].bytes, bad[i].count, bad[i].encoding), nil);
    }
    PASS("no C string, no string", CFStringCreateWithCString(NULL, NULL, 0) == NULL);
    PASS("no characters, no string", CFStringCreateWithCharacters(NULL, NULL, 3) == NULL);
}

static void TestReading(void) {
    char buffer[16];
    CFStringRef euro = (CFStringRef) @"a€";
    PASS("writes UTF-8", CFStringGetCString(euro, buffer, sizeof buffer, kCFStringEncodingUTF8) &&
                             strcmp(buffer, "a\xE2\x82\xAC") == 0);
    PASS("writes MacRoman",
         CFStringGetCString(euro, buffer, sizeof buffer, 0) && strcmp(buffer, "a\xDB") == 0);
    PASS("just fits", CFStringGetCString(euro, buffer, 5, kCFStringEncodingUTF8));
    memset(buffer, 'x', sizeof buffer);
    PASS("does not fit", !CFStringGetCString(euro, buffer, 4, kCFStringEncodingUTF8));
    PASS("writes nothing past its size", buffer[4] == 'x' && buffer[0] == '\0');
    PASS("not in ASCII", !CFStringGetCString(euro, buffer, sizeof buffer, kCFStringEncodingASCII));
    PASS("not in an unknown encoding", !CFStringGetCString(euro, buffer, sizeof buffer, 12345));
    PASS("not without a buffer", !CFStringGetCString(euro, NULL, 10, kCFStringEncodingUTF8));
    PASS("not into nothing", !CFStringGetCString(euro, buffer, 0, kCFStringEncodingUTF8));
    PASS("not without a string",
         !CFStringGetCString(NULL, buffer, 10, kCFStringEncodingUTF8) && buffer[0] == '\0');
    PASS("an empty string",
         CFStringGetCString((CFStringRef) @"", buffer, 1, kCFStringEncodingUTF8) && buffer[0] == '\0');

    const UniChar lone[] = {'a', 0xD800, 'b'};
    CFStringRef wrong = CFStringCreateWithCharacters(NULL, lone, 3);
    PASS("a surrogate without its partner is kept", CFStringGetLength(wrong) == 3);
    UniChar back[3] = {0, 0, 0};
    CFStringGetCharacters(wrong, (CFRange){0, 3}, back);
    PASS("and comes back", memcmp(back, lone, sizeof lone) == 0);
    PASS("but is no UTF-8", !CFStringGetCString(wrong, buffer, sizeof buffer, kCFStringEncodingUTF8));
    CFMutableStringRef copy = CFStringCreateMutableCopy(NULL, 0, wrong);
    CFStringNormalize(copy, kCFStringNormalizationFormD);
    PASS("and stays when it is normalised", CFStringGetLength((CFStringRef)copy) == 3);
    CFRelease(copy);
    CFRelease(wrong);

    const UniChar marks[] = {0xFFFE, 0xFEFF, 'x'};
    CFStringRef marked = CFStringCreateWithCharacters(NULL, marks, 3);
    CFStringGetCharacters(marked, (CFRange){0, 3}, back);
    PASS("byte order marks are characters like others", memcmp(back, marks, sizeof marks) == 0);
    CFRelease(marked);

    UniChar units[2] = {7, 7};
    CFStringGetCharacters(euro, (CFRange){1, 1}, units);
    PASS("part of a string", units[0] == 0x20AC && units[1] == 7);
    CFStringGetCharacters(euro, (CFRange){1, 2}, units);
    CFStringGetCharacters(euro, (CFRange){-1, 1}, units);
    CFStringGetCharacters(NULL, (CFRange){0, 1}, units);
    PASS("a range outside copies nothing", units[0] == 0x20AC && units[1] == 7);
    PASS("null has no length", CFStringGetLength(NULL) == 0);
}

static NSString* Normal(NSString* text, CFStringNormalizationForm form) {
    CFMutableStringRef copy = CFStringCreateMutableCopy(NULL, 0, (CFStringRef)text);
    CFStringNormalize(copy, form);
    return [(NSString*)copy autorelease];
}

static void TestNormalising(void) {
    const unichar decomposed[] = {'e', 0x0301, 0xFB01};
    const unichar composed[] = {0x00E9, 0xFB01};
    NSString* apart = [NSString stringWithCharacters:decomposed length:3];
    NSString* together = [NSString stringWithCharacters:composed length:2];
    PASS("form D takes apart", [Normal(together, kCFStringNormalizationFormD) isEqualToString:apart] &&
                                   [Normal(together, kCFStringNormalizationFormD) length] == 3);
    PASS("form C puts together", [Normal(apart, kCFStringNormalizationFormC) length] == 2);
    SAME("form KD replaces a ligature", Normal(together, kCFStringNormalizationFormKD), @"e\u0301fi");
    PASS("form KC too", [Normal(apart, kCFStringNormalizationFormKC) length] == 3);
    CFStringNormalize(NULL, kCFStringNormalizationFormD);
    PASS("null has no copy", CFStringCreateMutableCopy(NULL, 0, NULL) == NULL);
}

static void TestReferences(void) {
    NSObject* object = [NSObject new];
    PASS("retains", CFRetain(object) == object && [object retainCount] == 2);
    CFRelease(object);
    PASS("releases", [object retainCount] == 1);
    CFRelease(object);
    PASS("null is harmless", CFRetain(NULL) == NULL);
    CFRelease(NULL);
}

static void TestRegistry(void) {
    // Plain addresses: what they point at is never touched.
    CFMutableDictionaryRef registry = CFDictionaryCreateMutable(NULL, 0, NULL, NULL);
    int keys[1000], values[1000];
    for (int i = 0; i < 1000; i++) {
        CFDictionarySetValue(registry, &keys[i], &values[i]);
    }
    PASS("holds them all", CFDictionaryGetCount((CFDictionaryRef)registry) == 1000);
    BOOL right = YES;
    for (int i = 0; i < 1000; i++) {
        right &= CFDictionaryGetValue((CFDictionaryRef)registry, &keys[i]) == &values[i];
    }
    PASS("finds each", right);
    PASS("does not find others", CFDictionaryGetValue((CFDictionaryRef)registry, &values[0]) == NULL);
    CFDictionarySetValue(registry, &keys[0], &values[5]);
    PASS("replaces", CFDictionaryGetValue((CFDictionaryRef)registry, &keys[0]) == &values[5] &&
                         CFDictionaryGetCount((CFDictionaryRef)registry) == 1000);
    CFDictionaryRemoveValue(registry, &keys[0]);
    CFDictionaryRemoveValue(registry, &keys[0]);
    PASS("removes", CFDictionaryGetValue((CFDictionaryRef)registry, &keys[0]) == NULL &&
                        CFDictionaryGetCount((CFDictionaryRef)registry) == 999);
    CFDictionarySetValue(registry, NULL, &values[0]);
    CFDictionaryRemoveValue(registry, NULL);
    PASS("a null key is harmless", CFDictionaryGetValue((CFDictionaryRef)registry, NULL) == NULL &&
                                       CFDictionaryGetCount((CFDictionaryRef)registry) == 999);
    NSNumber* one = [NSNumber numberWithLongLong:1ll << 60];
    NSNumber* same = [NSNumber numberWithLongLong:1ll << 60];
    CFDictionarySetValue(registry, one, &values[1]);
    PASS("keys are told apart by address",
         one != same && CFDictionaryGetValue((CFDictionaryRef)registry, same) == NULL);
    PASS("and not retained", [one retainCount] == [same retainCount]);
    CFRelease(registry);

    PASS("no dictionary, nothing",
         CFDictionaryGetValue(NULL, &keys[0]) == NULL && CFDictionaryGetCount(NULL) == 0);
    CFDictionarySetValue(NULL, &keys[0], &values[0]);
    CFDictionaryRemoveValue(NULL, &keys[0]);
}

static void TestObjectDictionaries(void) {
    NSMutableString* value = [NSMutableString stringWithString:@"value"];
    NSUInteger before = [value retainCount];
    CFMutableDictionaryRef table =
        CFDictionaryCreateMutable(NULL, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(table, [NSString stringWithFormat:@"%d", 1], value);
    PASS("equal keys find", CFDictionaryGetValue((CFDictionaryRef)table, @"1") == value);
    PASS("values are retained", [value retainCount] == before + 1);
    NSMutableDictionary* foundation = (NSMutableDictionary*)table;
    [foundation setObject:@"two" forKey:@"2"];
    PASS("is a Foundation dictionary", [foundation isKindOfClass:[NSMutableDictionary class]] &&
                                           [foundation count] == 2 &&
                                           [[foundation objectForKey:@"2"] isEqual:@"two"]);
    SAME("lists its keys", [[foundation allKeys] sortedArrayUsingSelector:@selector(compare:)],
         ([NSArray arrayWithObjects:@"1", @"2", nil]));
    RAISES("refuses nil", NSInvalidArgumentException, @"nil", [foundation setObject:nil forKey:@"3"]);
    CFDictionarySetValue(table, @"1", @"other");
    PASS("a replaced value is released", [value retainCount] == before);
    CFRelease(table);

    NSMutableDictionary* theirs = [NSMutableDictionary dictionary];
    CFDictionarySetValue((CFMutableDictionaryRef)theirs, @"k", @"v");
    PASS("takes Foundation's own",
         CFDictionaryGetValue((CFDictionaryRef)theirs, @"k") == (const void*)[theirs objectForKey:@"k"] &&
             CFDictionaryGetCount((CFDictionaryRef)theirs) == 1);
    CFDictionaryRemoveValue((CFMutableDictionaryRef)theirs, @"k");
    PASS("and removes from it", [theirs count] == 0);
}

// A path inside a folder; it lives as long as the surrounding pool.
static const char* In(const char* folder, const char* name) {
    NSMutableData* path = [NSMutableData dataWithLength:strlen(folder) + strlen(name) + 2];
    sprintf([path mutableBytes], "%s/%s", folder, name);
    return [path bytes];
}

static const char* PathOf(const FSRef* ref) {
    static UInt8 path[4096];
    return FSRefMakePath(ref, path, sizeof path) == noErr ? (const char*)path : "(none)";
}

static FSRef RefOf(const char* path) {
    FSRef ref;
    memset(&ref, 0xAA, sizeof ref);
    PASS("a reference is made", FSPathMakeRef((const UInt8*)path, &ref, NULL) == noErr);
    return ref;
}

static void Touch(const char* path) {
    FILE* file = fopen(path, "w");
    PASS("a file is made", file != NULL);
    if (file != NULL)
        fclose(file);
}

static void TestFileReferences(const char* folder) {
    const char* file = In(folder, "file");
    Touch(file);
    FSRef ref, again, parent;
    Boolean isDirectory = true;
    PASS("makes a reference", FSPathMakeRef((const UInt8*)file, &ref, &isDirectory) == noErr && !isDirectory);
    PASS("gives its path back", strcmp(PathOf(&ref), file) == 0);
    PASS("an untidy path is the same",
         FSPathMakeRef((const UInt8*)In(folder, "./file//"), &again, NULL) == noErr &&
             memcmp(&ref, &again, sizeof ref) == 0);
    PASS("a folder is one",
         FSPathMakeRef((const UInt8*)folder, &again, &isDirectory) == noErr && isDirectory);
    PASS("no such file", FSPathMakeRef((const UInt8*)In(folder, "none"), &again, NULL) == fnfErr);
    PASS("no such folder", FSPathMakeRef((const UInt8*)In(folder, "none/none"), &again, NULL) == dirNFErr);
    PASS("a relative path", FSPathMakeRef((const UInt8*)"file", &again, NULL) == bdNamErr);
    PASS("an empty path", FSPathMakeRef((const UInt8*)"", &again, NULL) == bdNamErr);
    PASS("null", FSPathMakeRef(NULL, &again, NULL) == paramErr &&
                     FSPathMakeRef((const UInt8*)file, NULL, NULL) == paramErr);
    UInt8 small[4];
    PASS("a path that does not fit", FSRefMakePath(&ref, small, sizeof small) == pathTooLongErr);
    memset(&again, 0x55, sizeof again);
    PASS("rubbish is no reference", FSRefMakePath(&again, small, sizeof small) == paramErr &&
                                        FSGetCatalogInfo(&again, 0, NULL, NULL, NULL, NULL) == paramErr);

    FSCatalogInfo info;
    HFSUniStr255 name;
    memset(&info, 0, sizeof info);
    PASS("tells about itself",
         FSGetCatalogInfo(&ref, kFSCatInfoNodeID | kFSCatInfoParentDirID | kFSCatInfoNodeFlags, &info, &name,
                          NULL, &parent) == noErr);
    PASS("its parent", strcmp(PathOf(&parent), folder) == 0);
    PASS("its name", name.length == 4 && name.unicode[0] == 'f' && name.unicode[3] == 'e');
    PASS("its node is its own", info.nodeID >= 16 && (info.nodeFlags & kFSNodeIsDirectoryMask) == 0);
    UInt32 folderNode = info.parentDirID;
    PASS("its parent's node",
         FSGetCatalogInfo(&parent, kFSCatInfoNodeID | kFSCatInfoNodeFlags, &info, NULL, NULL, NULL) ==
                 noErr &&
             info.nodeID == folderNode && (info.nodeFlags & kFSNodeIsDirectoryMask) != 0);
    PASS("what it can't tell is refused",
         FSGetCatalogInfo(&ref, 0x2000, &info, NULL, NULL, NULL) == paramErr);
    PASS("what has no place is refused",
         FSGetCatalogInfo(&ref, kFSCatInfoNodeID, NULL, NULL, NULL, NULL) == paramErr);

    FSRef root = RefOf("/");
    PASS("the root folder of a volume is 2", FSGetCatalogInfo(&root, kFSCatInfoNodeID | kFSCatInfoParentDirID,
                                                              &info, NULL, NULL, &parent) == noErr &&
                                                 info.nodeID == 2 && info.parentDirID == 1);
    FSRef zeros;
    memset(&zeros, 0, sizeof zeros);
    PASS("and has no parent", memcmp(&parent, &zeros, sizeof zeros) == 0);
    PASS("nothing is not a reference", FSGetCatalogInfo(&zeros, 0, NULL, NULL, NULL, NULL) == paramErr);
    FSRef proc = RefOf("/proc");
    PASS("a mounted volume has a root folder too",
         FSGetCatalogInfo(&proc, kFSCatInfoNodeID, &info, NULL, NULL, NULL) == noErr && info.nodeID == 2);

    unlink(file);
    PASS("what is gone is not found", FSGetCatalogInfo(&ref, 0, NULL, NULL, NULL, NULL) == fnfErr);
    Touch(file);
    PASS("and found when it is back", FSGetCatalogInfo(&ref, 0, NULL, NULL, NULL, NULL) == noErr);
    const char* link = In(folder, "link");
    PASS("a link is made", symlink("/nowhere", link) == 0);
    PASS("a link is itself", FSPathMakeRef((const UInt8*)link, &again, NULL) == noErr);
    unlink(link);
    unlink(file);
}

static void TestSpecifications(const char* folder) {
    const char* names[] = {"file", "n\xC3\xB6n", "b\xFF",
                           "A name of exactly sixty-three bytes, the most that one can hold. ."};
    FSSpec spec;
    FSRef ref;
    for (size_t i = 0; i < sizeof names / sizeof *names; i++) {
        const char* path = In(folder, names[i]);
        Touch(path);
        FSRef from = RefOf(path);
        PASS("has an FSSpec", FSGetCatalogInfo(&from, 0, NULL, NULL, &spec, NULL) == noErr);
        PASS("that leads back", FSpMakeFSRef(&spec, &ref) == noErr && strcmp(PathOf(&ref), path) == 0);
        unlink(path);
        PASS("only while the file is there", FSpMakeFSRef(&spec, &ref) == fnfErr);
    }
    const char* one =
        In(folder, "A long name that is cut somewhere, for it is more than sixty-three bytes: one");
    const char* two =
        In(folder, "A long name that is cut somewhere, for it is more than sixty-three bytes: two");
    Touch(one);
    Touch(two);
    FSRef refOne = RefOf(one), refTwo = RefOf(two);
    PASS("long names are told apart",
         FSGetCatalogInfo(&refOne, 0, NULL, NULL, &spec, NULL) == noErr && spec.name[0] == 63 &&
             FSpMakeFSRef(&spec, &ref) == noErr && strcmp(PathOf(&ref), one) == 0 &&
             FSGetCatalogInfo(&refTwo, 0, NULL, NULL, &spec, NULL) == noErr &&
             FSpMakeFSRef(&spec, &ref) == noErr && strcmp(PathOf(&ref), two) == 0);
    unlink(one);
    unlink(two);
    FSRef root = RefOf("/");
    PASS("a volume's root leads back", FSGetCatalogInfo(&root, 0, NULL, NULL, &spec, NULL) == noErr &&
                                           FSpMakeFSRef(&spec, &ref) == noErr &&
                                           strcmp(PathOf(&ref), "/") == 0);
    FSRef tmp = RefOf("/usr");
    PASS("so does what lies in it", FSGetCatalogInfo(&tmp, 0, NULL, NULL, &spec, NULL) == noErr &&
                                        spec.parID == 2 && FSpMakeFSRef(&spec, &ref) == noErr &&
                                        strcmp(PathOf(&ref), "/usr") == 0);
    memcpy(spec.name, "\2..", 3);
    PASS("a name may not lead elsewhere", FSpMakeFSRef(&spec, &ref) == bdNamErr);
    memcpy(spec.name, "\3a/b", 4);
    PASS("nor be a path", FSpMakeFSRef(&spec, &ref) == bdNamErr);
    spec.parID = 999999;
    PASS("a folder nobody knows", FSpMakeFSRef(&spec, &ref) == dirNFErr);
    spec.vRefNum = 17;
    PASS("a volume nobody knows", FSpMakeFSRef(&spec, &ref) == dirNFErr);
    PASS("null", FSpMakeFSRef(NULL, &ref) == paramErr);
}

static NSString* PathOfURL(CFURLRef url) {
    return [(NSString*)CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle) autorelease];
}

static NSString* LastOfURL(CFURLRef url) { return [(NSString*)CFURLCopyLastPathComponent(url) autorelease]; }

static void TestURLs(const char* folder) {
    NSString* base = [NSString stringWithUTF8String:folder];
    const char* file = In(folder, "a b%?#\xC3\xA9");
    Touch(file);
    FSRef ref = RefOf(file), again;
    CFURLRef url = CFURLCreateFromFSRef(NULL, &ref);
    SAME("the path of a reference's URL", PathOfURL(url), ([base stringByAppendingString:@"/a b%?#é"]));
    SAME("its last component", LastOfURL(url), @"a b%?#é");
    PASS("it is Foundation's",
         [(NSURL*)url isFileURL] && [[(NSURL*)url absoluteString] hasSuffix:@"/a%20b%25%3F%23%C3%A9"]);
    PASS("and leads back", CFURLGetFSRef(url, &again) && memcmp(&ref, &again, sizeof ref) == 0);
    CFURLRef above = CFURLCreateCopyDeletingLastPathComponent(NULL, url);
    SAME("the folder above", PathOfURL(above), base);
    PASS("is marked as a folder", [[(NSURL*)above absoluteString] hasSuffix:@"/"]);
    CFURLRef below = CFURLCreateCopyAppendingPathComponent(NULL, above, (CFStringRef) @"a b%?#é", false);
    SAME("and back", PathOfURL(below), PathOfURL(url));
    CFURLRef sub = CFURLCreateCopyAppendingPathComponent(NULL, above, (CFStringRef) @"not yet", true);
    PASS("a folder's URL ends in /", [[(NSURL*)sub absoluteString] hasSuffix:@"/not%20yet/"]);
    SAME("its path does not", PathOfURL(sub), [base stringByAppendingString:@"/not yet"]);
    SAME("nor its last component", LastOfURL(sub), @"not yet");
    PASS("what is not there has no reference", !CFURLGetFSRef(sub, &again));
    CFRelease(sub);
    CFRelease(below);
    CFRelease(above);
    CFRelease(url);
    unlink(file);
    PASS("what is gone has no URL", CFURLCreateFromFSRef(NULL, &ref) == NULL);

    const char* odd = In(folder, "x\xFF\xC3");
    Touch(odd);
    ref = RefOf(odd);
    url = CFURLCreateFromFSRef(NULL, &ref);
    PASS("a name of any bytes has a URL that leads back",
         url != NULL && CFURLGetFSRef(url, &again) && strcmp(PathOf(&again), odd) == 0);
    CFRelease(url);
    unlink(odd);

    FSRef root = RefOf("/");
    url = CFURLCreateFromFSRef(NULL, &root);
    SAME("the root's path keeps its /", PathOfURL(url), @"/");
    below = CFURLCreateCopyAppendingPathComponent(NULL, url, (CFStringRef) @"usr", true);
    SAME("below the root", PathOfURL(below), @"/usr");
    above = CFURLCreateCopyDeletingLastPathComponent(NULL, below);
    SAME("and above", PathOfURL(above), @"/");
    CFRelease(above);
    CFRelease(below);
    const UniChar lone[] = {0xD800};
    CFStringRef wrong = CFStringCreateWithCharacters(NULL, lone, 1);
    below = CFURLCreateCopyAppendingPathComponent(NULL, url, wrong, false);
    PASS("a name that is no text gives no URL", below == NULL);
    CFRelease(wrong);
    CFRelease(url);

    NSURL* web = [NSURL URLWithString:@"http://example.org/a"];
    PASS("a URL of no file has no reference", !CFURLGetFSRef((CFURLRef)web, &again));
    PASS("null is harmless", CFURLCreateFromFSRef(NULL, NULL) == NULL && !CFURLGetFSRef(NULL, &again) &&
                                 CFURLCreateCopyAppendingPathComponent(NULL, NULL, NULL, 0) == NULL &&
                                 CFURLCreateCopyDeletingLastPathComponent(NULL, NULL) == NULL &&
                                 CFURLCopyLastPathComponent(NULL) == NULL &&
                                 CFURLCopyFileSystemPath(NULL, 0) == NULL);
    PASS("only POSIX paths", CFURLCopyFileSystemPath((CFURLRef)[NSURL fileURLWithPath:@"/usr"], 1) == NULL);
}

static void TestApplication(void) {
    unsetenv("DISPLAY");
    PASS("no display, no application", !NSApplicationLoad());
    PASS("the class stays absent", NSClassFromString(@"NSApplication") == Nil);
    setenv("DISPLAY", ":731", 1);
    PASS("a display that does not answer is none", !NSApplicationLoad());
    setenv("DISPLAY", "no such display", 1);
    PASS("nor is a name of nothing", !NSApplicationLoad());
    setenv("DISPLAY", "", 1);
    PASS("nor an empty one", !NSApplicationLoad());
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    char folder[4096];
    snprintf(folder, sizeof folder, "%s", [NewFolder() UTF8String]);
    TestDecoding();
    TestReading();
    TestNormalising();
    TestReferences();
    TestRegistry();
    TestObjectDictionaries();
    TestFileReferences(folder);
    TestSpecifications(folder);
    TestURLs(folder);
    TestApplication();
    PASS("the folder is empty at the end", rmdir(folder) == 0);
    [pool release];
    return Finish();
}
