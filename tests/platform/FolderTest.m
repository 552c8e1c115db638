// FolderTest: files and folders of a disc's content, real and virtual.
#import "Check.h"
#import "DRFile.h"
#import "DRFolder.h"

#include <sys/stat.h>
#include <unistd.h>

static int freed;

@interface CountedFolder : DRFolder
@end
@implementation CountedFolder
- (void)dealloc {
    freed++;
    [super dealloc];
}
@end

static void TestNames(void) {
    DRFolder* real = [DRFolder folderWithPath:@"/some/where/Photos/"];
    SAME("a real folder is named as on disk", [real baseName], @"Photos");
    SAME("its path is kept", [real sourcePath], @"/some/where/Photos/");
    PASS("it is real", ![real isVirtual]);
    SAME("the root is named /", [[DRFolder folderWithPath:@"/"] baseName], @"/");
    SAME("a path without folders is its own name", [[DRFile fileWithPath:@"a.txt"] baseName], @"a.txt");
    DRFolder* virtual = [DRFolder virtualFolderWithName:@"Disc"];
    SAME("a virtual folder has its name", [virtual baseName], @"Disc");
    SAME("and no path", [virtual sourcePath], nil);
    PASS("and is virtual", [virtual isVirtual]);
    [virtual setBaseName:@"Other"];
    SAME("the name can be changed", [virtual baseName], @"Other");
    [virtual setBaseName:nil];
    SAME("a nil name is the empty one", [virtual baseName], @"");
    SAME("also at the start", [[DRFolder virtualFolderWithName:nil] baseName], @"");
    DRFile* file = [DRFile virtualFileWithName:@"a.txt" data:nil];
    PASS("a virtual file", [file isVirtual] && [[file baseName] isEqual:@"a.txt"] && [file parent] == nil);
    PASS("a nil path stays a real object", ![[DRFile fileWithPath:nil] isVirtual]);
}

static void TestChildren(void) {
    DRFolder* root = [DRFolder virtualFolderWithName:@"root"];
    DRFolder* sub = [DRFolder virtualFolderWithName:@"sub"];
    DRFile* file = [DRFile fileWithPath:@"/etc/passwd"];
    PASS("starts empty", [root count] == 0 && [[root children] count] == 0);
    [root addChild:sub];
    [root addChild:file];
    PASS("counts its children", [root count] == 2);
    SAME("lists them", [root children], ([NSArray arrayWithObjects:sub, file, nil]));
    PASS("is their parent", [sub parent] == root && [file parent] == root && [root parent] == nil);
    [root addChild:sub];
    PASS("adding again changes nothing", [root count] == 2);
    [sub addChild:file];
    PASS("a child of another moves", [root count] == 1 && [sub count] == 1 && [file parent] == sub);
    [sub removeChild:root];
    [sub removeChild:nil];
    [sub addChild:nil];
    PASS("nil and strangers do nothing", [sub count] == 1);
    NSArray* before = [sub children];
    [sub removeChild:file];
    PASS("removing removes", [sub count] == 0 && [file parent] == nil);
    PASS("a list given out does not change", [before count] == 1);
    RAISES("a folder can't be put into itself", NSInvalidArgumentException, @"into itself",
           [root addChild:root]);
    RAISES("nor into one inside it", NSInvalidArgumentException, @"into itself", [sub addChild:root]);
    RAISES("only files and folders go in", NSInvalidArgumentException, @"files and folders only",
           [root addChild:(DRFSObject*)@"text"]);
}

static void TestRealFolders(void) {
    DRFolder* real = [DRFolder folderWithPath:@"/tmp"];
    DRFile* file = [DRFile virtualFileWithName:@"f" data:nil];
    PASS("a real folder tells no children", [real children] == nil && [real count] == 0);
    RAISES("a real folder takes no child", NSInternalInconsistencyException, @"real folder",
           [real addChild:file]);
    RAISES("a real folder loses no child", NSInternalInconsistencyException, @"real folder",
           [real removeChild:file]);
    PASS("the file has no parent", [file parent] == nil);
}

static void TestMakeVirtual(void) {
    NSString* path = NewFolder();
    const char* base = [path UTF8String];
    char* name = NULL;
    PASS("made", asprintf(&name, "%s/sub", base) > 0 && mkdir(name, 0755) == 0);
    rmdir(name);
    mkdir(name, 0755);
    free(name);
    NSString* file = [path stringByAppendingPathComponent:@"b.txt"];
    PASS("written", [@"hello" writeToFile:file atomically:NO]);
    // A name that is not UTF-8.
    PASS("made", asprintf(&name, "%s/a\xff", base) > 0);
    FILE* odd = fopen(name, "w");
    PASS("a file with a name that is no UTF-8", odd != NULL);
    if (odd != NULL)
        fclose(odd);

    DRFolder* folder = [DRFolder folderWithPath:path];
    [folder setBaseName:@"Renamed"];
    [folder makeVirtual];
    PASS("is virtual", [folder isVirtual] && [folder sourcePath] == nil);
    SAME("keeps its name", [folder baseName], @"Renamed");
    PASS("has the items on disk", [folder count] == 3);
    NSArray* children = [folder children];
    const unichar escaped[] = {'a', 0xEFFF};
    SAME("a byte that is no UTF-8 has its character", [[children objectAtIndex:0] baseName],
         [NSString stringWithCharacters:escaped length:2]);
    SAME("real children", [[children objectAtIndex:1] sourcePath], file);
    PASS("files are files", [[children objectAtIndex:1] isKindOfClass:[DRFile class]]);
    PASS("folders are folders", [[children objectAtIndex:2] isKindOfClass:[DRFolder class]]);
    PASS("their parent",
         [(DRFolder*)[children objectAtIndex:2] parent] == folder && ![[children objectAtIndex:2] isVirtual]);
    [folder makeVirtual];
    PASS("again does nothing", [folder count] == 3);
    [folder removeChild:[children objectAtIndex:1]];
    PASS("children can be taken out", [folder count] == 2);

    DRFolder* missing = [DRFolder folderWithPath:@"/no/such/folder"];
    RAISES("a folder that can't be read", NSInternalInconsistencyException, @"No such file",
           [missing makeVirtual]);
    PASS("stays real", ![missing isVirtual]);
    unlink(name);
    free(name);
    [[NSFileManager defaultManager] removeFileAtPath:path handler:nil];
}

static void TestOwnership(void) {
    DRFile* file = [[DRFile alloc] initWithName:@"f" data:[@"x" dataUsingEncoding:NSUTF8StringEncoding]];
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    CountedFolder* outer = [[CountedFolder alloc] initWithName:@"outer"];
    CountedFolder* inner = [[CountedFolder alloc] initWithName:@"inner"];
    [outer addChild:inner];
    [inner addChild:file];
    [inner release];
    PASS("a parent keeps its child", freed == 0 && [outer count] == 1);
    [outer release];
    [pool release];
    PASS("a tree goes with its root", freed == 2);
    PASS("what lives on has no parent", [file parent] == nil);
    [file release];

    CountedFolder* holder = [[CountedFolder alloc] initWithName:@"holder"];
    CountedFolder* only = [[CountedFolder alloc] initWithName:@"only"];
    CountedFolder* next = [[CountedFolder alloc] initWithName:@"next"];
    [holder addChild:only];
    [only release];
    [next addChild:only];
    PASS("moving a child that only its parent held keeps it", freed == 2 && [next count] == 1);
    [holder release];
    [next release];
    PASS("all gone", freed == 5);
}

// From the inside out: the other way each new folder would be asked for all that it lies in.
static void TestDeepTrees(void) {
    enum { levels = 100000 };
    freed = 0;
    DRFile* file = [[DRFile alloc] initWithName:@"deepest" data:nil];
    DRFolder* root = [[CountedFolder alloc] initWithName:@"level"];
    [root addChild:file];
    for (int level = 1; level < levels; level++) {
        DRFolder* above = [[CountedFolder alloc] initWithName:@"level"];
        [above addChild:root];
        [root release];
        root = above;
    }
    PASS("a deep tree is kept", freed == 0 && [file parent] != nil);
    [root release];
    PASS("and goes with its root", freed == levels && [file parent] == nil);
    [file release];
}

// Names that become the same in one file system or another, with numbers or without.
static NSString* AnyName(void) {
    NSString* const stems[] = {
        @"a", @"A", @"a_001", @"\u0142", @"\u0141", @"a#", @"measurement 1", @"measurement 2", @"b", @"_"};
    NSString* const extensions[] = {@"", @"", @".txt", @".TXT"};
    return [stems[(size_t)random() % 10] stringByAppendingString:extensions[(size_t)random() % 4]];
}

// What a folder that is asked all the time answers is what one answers that is asked for the first time.
static void TestNamesThatAreAskedBetweenChanges(void) {
    NSString* const filesystems[] = {DRISO9660LevelOne, DRISO9660LevelTwo, DRJoliet, DRUDF, DRHFSPlus};
    const uint32_t masks[] = {0, 0, 0, 1, 2, 4, 8, 15, 6};
    srandom(7);
    int asked = 0, numbered = 0, wrong = 0;
    for (int round = 0; round < 60; round++) {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        DRFolder* folder = [DRFolder virtualFolderWithName:@"asked"];
        for (int step = 0; step < 40; step++) {
            NSArray* children = [folder children];
            DRFSObject* one = [children count] == 0
                                  ? nil
                                  : [children objectAtIndex:(NSUInteger)random() % [children count]];
            const long action = random() % 12;
            if (one == nil || action < 7) {
                DRFSObject* child = random() % 4 == 0
                                        ? (DRFSObject*)[DRFolder virtualFolderWithName:AnyName()]
                                        : [DRFile virtualFileWithName:AnyName() data:nil];
                [child setExplicitFilesystemMask:masks[(size_t)random() % 9]];
                [folder addChild:child];
            } else if (action == 7) {
                [folder removeChild:one];
            } else if (action == 8) {
                [one setBaseName:AnyName()];
            } else if (action == 9) {
                [one setExplicitFilesystemMask:masks[(size_t)random() % 9]];
            } else {
                [one setSpecificName:AnyName() forFilesystem:filesystems[(size_t)random() % 5]];
            }
            if (random() % 3 == 0)
                continue; // several changes at once
            children = [folder children];
            NSString* filesystem = filesystems[(size_t)random() % 5];
            NSMutableArray* told = [NSMutableArray array];
            for (DRFSObject* child in children)
                [told addObject:[child mangledNameForFilesystem:filesystem]];
            DRFolder* fresh = [DRFolder virtualFolderWithName:@"fresh"];
            for (DRFSObject* child in children) {
                DRFSObject* copy = [child isKindOfClass:[DRFolder class]]
                                       ? (DRFSObject*)[DRFolder virtualFolderWithName:[child baseName]]
                                       : [DRFile virtualFileWithName:[child baseName] data:nil];
                [copy setExplicitFilesystemMask:[child explicitFilesystemMask]];
                [copy setSpecificName:[child specificNameForFilesystem:filesystem] forFilesystem:filesystem];
                [fresh addChild:copy];
            }
            for (NSUInteger i = 0; i < [children count]; i++) {
                NSString* wanted = [[[fresh children] objectAtIndex:i] mangledNameForFilesystem:filesystem];
                asked++;
                wrong += ![[told objectAtIndex:i] isEqual:wanted];
                numbered +=
                    ![wanted isEqual:[[children objectAtIndex:i] specificNameForFilesystem:filesystem]];
            }
        }
        [pool release];
    }
    PASS("names are the same however often they are asked", wrong == 0);
    PASS("many of them have numbers, and many don't", numbered > 1000 && asked > 3 * numbered);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    TestNames();
    TestNamesThatAreAskedBetweenChanges();
    TestChildren();
    TestRealFolders();
    TestMakeVirtual();
    TestOwnership();
    TestDeepTrees();
    [pool release];
    return Finish();
}
