// FSObjectTest: names, properties, masks and links of files and folders.
#import "Check.h"
#import "DRFSObjectPrivate.h"
#import "DRFile.h"
#import "DRFolder.h"

#include <pthread.h>
#include <unistd.h>

// A file that another thread lets go of while one tells it, or is told by it, of a link's end or a target's.
@interface Meeting : DRFile
@end

static DRFile* letGoElsewhere;
static int isGone; // between threads
static BOOL wasThere;
static pthread_t elsewhere;

static void* LetGo(void* file) {
    GSRegisterCurrentThread();
    [(DRFile*)file release];
    GSUnregisterCurrentThread();
    return NULL;
}

// The other thread has time to go through with it, if nothing holds it.
static void LetGoElsewhere(void) {
    pthread_create(&elsewhere, NULL, LetGo, letGoElsewhere);
    for (int i = 0; i < 200 && !__atomic_load_n(&isGone, __ATOMIC_SEQ_CST); i++)
        usleep(1000);
    wasThere = !__atomic_load_n(&isGone, __ATOMIC_SEQ_CST);
}

@implementation Meeting
- (void)forgetTarget {
    LetGoElsewhere();
    if (wasThere)
        [super forgetTarget];
}
- (void)removeLink:(DRFSObject*)link {
    LetGoElsewhere();
    if (wasThere)
        [super removeLink:link];
}
- (void)dealloc {
    [super dealloc];
    __atomic_store_n(&isGone, 1, __ATOMIC_SEQ_CST);
}
@end

static void TestNames(void) {
    DRFile* file = [DRFile virtualFileWithName:@"this: is an unusual$ filename.with_extension" data:nil];
    SAME("derived", [file specificNameForFilesystem:DRISO9660LevelOne], @"THISISAN.WIT");
    SAME("the base name", [file specificNameForFilesystem:DRAllFilesystems], [file baseName]);
    [file setSpecificName:@"other/name.txt" forFilesystem:DRJoliet];
    SAME("made legal", [file specificNameForFilesystem:DRJoliet], @"othername.txt");
    [file setSpecificName:nil forFilesystem:DRJoliet];
    SAME("taken away", [file specificNameForFilesystem:DRJoliet],
         @"this: is an unusual filename.with_extension");
    [file setSpecificName:@"x" forFilesystem:DRUDF];
    [file setBaseName:@"y"];
    SAME("a new base name forgets specific ones", [file specificNameForFilesystem:DRUDF], @"y");
    RAISES("ISO 9660 has no names of its own", NSInvalidArgumentException, @"LevelOne",
           [file specificNameForFilesystem:DRISO9660]);
    RAISES("an unknown file system", NSInvalidArgumentException, @"no file system",
           [file setSpecificName:@"a" forFilesystem:@"FAT"]);
    RAISES("none", NSInvalidArgumentException, @"no file system", [file mangledNameForFilesystem:nil]);
    SAME("no mask, no names", [file specificNames], [NSDictionary dictionary]);
    [file setExplicitFilesystemMask:DRFilesystemInclusionMaskUDF | DRFilesystemInclusionMaskHFSPlus];
    SAME("names of the mask", [file specificNames],
         ([NSDictionary dictionaryWithObjectsAndKeys:@"y", DRUDF, @"y", DRHFSPlus, nil]));
    [file setSpecificNames:[NSDictionary
                               dictionaryWithObjectsAndKeys:@"u", DRUDF, @"b", DRAllFilesystems, nil]];
    PASS("several at once",
         [[file baseName] isEqual:@"b"] && [[file specificNameForFilesystem:DRUDF] isEqual:@"u"]);
    RAISES("no name but a text", NSInvalidArgumentException, @"is a text",
           [file setSpecificNames:[NSDictionary dictionaryWithObject:[NSNumber numberWithInt:1]
                                                              forKey:DRUDF]]);
    SAME("nothing changed", [file specificNameForFilesystem:DRUDF], @"u");
}

static void TestMangling(void) {
    DRFolder* folder = [DRFolder virtualFolderWithName:@"folder"];
    DRFile* first = [DRFile virtualFileWithName:@"same.txt" data:nil];
    DRFile* second = [DRFile virtualFileWithName:@"same.txt" data:nil];
    SAME("alone", [second mangledNameForFilesystem:DRJoliet], @"same.txt");
    [folder addChild:first];
    [folder addChild:second];
    SAME("the first keeps it", [first mangledNameForFilesystem:DRJoliet], @"same.txt");
    SAME("the second not", [second mangledNameForFilesystem:DRJoliet], @"same_001.txt");
    [first setSpecificName:@"else.txt" forFilesystem:DRJoliet];
    SAME("changes with its siblings", [second mangledNameForFilesystem:DRJoliet], @"same.txt");
    SAME("only there", [second mangledNameForFilesystem:DRUDF], @"same_001.txt");
    [first setExplicitFilesystemMask:DRFilesystemInclusionMaskJoliet];
    SAME("only among those that are in it", [second mangledNameForFilesystem:DRUDF], @"same.txt");
    [first setExplicitFilesystemMask:0];
    [folder removeChild:first];
    SAME("who leaves is no sibling", [second mangledNameForFilesystem:DRUDF], @"same.txt");
}

static void TestProperties(void) {
    DRFile* file = [DRFile virtualFileWithName:@"f" data:nil];
    SAME("empty at first", [file propertiesForFilesystem:DRUDF mergeWithOtherFilesystems:YES],
         [NSDictionary dictionary]);
    [file setProperty:[NSNumber numberWithInt:1] forKey:DRPosixUID inFilesystem:DRAllFilesystems];
    [file setProperty:[NSNumber numberWithInt:2] forKey:DRPosixUID inFilesystem:DRISO9660LevelTwo];
    SAME("a level is ISO 9660",
         [file propertyForKey:DRPosixUID inFilesystem:DRISO9660 mergeWithOtherFilesystems:NO],
         [NSNumber numberWithInt:2]);
    SAME("the base", [file propertyForKey:DRPosixUID inFilesystem:DRUDF mergeWithOtherFilesystems:YES],
         [NSNumber numberWithInt:1]);
    SAME("not merged", [file propertyForKey:DRPosixUID inFilesystem:DRUDF mergeWithOtherFilesystems:NO], nil);
    SAME("overlaid", [file propertiesForFilesystem:DRISO9660 mergeWithOtherFilesystems:YES],
         [NSDictionary dictionaryWithObject:[NSNumber numberWithInt:2] forKey:DRPosixUID]);
    RAISES("a wrong type", NSInvalidArgumentException, @"NSDate",
           [file setProperty:@"now" forKey:DRCreationDate inFilesystem:DRUDF]);
    RAISES("in a set", NSInvalidArgumentException, @"NSNumber",
           [file setProperties:[NSDictionary dictionaryWithObject:@"x" forKey:DRPosixGID]
                  inFilesystem:DRAllFilesystems]);
    SAME("changed nothing", [file propertyForKey:DRPosixUID inFilesystem:DRUDF mergeWithOtherFilesystems:YES],
         [NSNumber numberWithInt:1]);
    RAISES("a nil key", NSInvalidArgumentException, @"key",
           [file setProperty:@"x" forKey:nil inFilesystem:DRUDF]);
    [file setProperty:nil forKey:DRPosixUID inFilesystem:DRISO9660];
    SAME("taken away", [file propertyForKey:DRPosixUID inFilesystem:DRISO9660 mergeWithOtherFilesystems:NO],
         nil);
    [file setProperties:nil inFilesystem:DRAllFilesystems];
    SAME("all gone", [file propertiesForFilesystem:DRUDF mergeWithOtherFilesystems:YES],
         [NSDictionary dictionary]);
}

static void TestMasks(void) {
    DRFolder* root = [DRFolder virtualFolderWithName:@"root"];
    DRFolder* folder = [DRFolder virtualFolderWithName:@"folder"];
    DRFile* file = [DRFile virtualFileWithName:@"f" data:nil];
    [root addChild:folder];
    [folder addChild:file];
    PASS("unset", [root effectiveFilesystemMask] == 0 && [file effectiveFilesystemMask] == 0);
    [file setExplicitFilesystemMask:4];
    PASS("nothing without the root's", [file effectiveFilesystemMask] == 0);
    [root setExplicitFilesystemMask:7];
    PASS("inherited", [folder effectiveFilesystemMask] == 7 && [file effectiveFilesystemMask] == 4);
    [folder setExplicitFilesystemMask:3];
    PASS("restricted", [file effectiveFilesystemMask] == 0);
    [folder setExplicitFilesystemMask:UINT32_MAX];
    PASS("all", [folder effectiveFilesystemMask] == 7 && [folder explicitFilesystemMask] == UINT32_MAX);
    RAISES("unknown bits", NSInvalidArgumentException, @"no file system",
           [folder setExplicitFilesystemMask:16]);
    PASS("changed nothing", [folder explicitFilesystemMask] == UINT32_MAX);
}

static void TestLinks(void) {
    DRFile* file = [DRFile virtualFileWithName:@"file" data:nil];
    DRFolder* folder = [DRFolder virtualFolderWithName:@"folder"];
    DRFile* link = [DRFile symLinkPointingTo:folder inFilesystem:DRISO9660];
    PASS("a link",
         [link isVirtual] && [[link baseName] isEqual:@"folder"] && [link explicitFilesystemMask] == 1);
    PASS("a hard link in Joliet", [[DRFile hardLinkPointingTo:file
                                                 inFilesystem:DRJoliet] explicitFilesystemMask] == 2);
    PASS("an alias", [[DRFile finderAliasPointingTo:folder
                                       inFilesystem:DRHFSPlus] explicitFilesystemMask] == 8);
    RAISES("an alias elsewhere", NSInvalidArgumentException, @"HFS+",
           [DRFile finderAliasPointingTo:file inFilesystem:DRUDF]);
    RAISES("a symbolic link in Joliet", NSInvalidArgumentException, @"Joliet",
           [DRFile symLinkPointingTo:file inFilesystem:DRJoliet]);
    RAISES("a hard link to a folder", NSInvalidArgumentException, @"file only",
           [DRFile hardLinkPointingTo:(DRFile*)folder inFilesystem:DRUDF]);
    RAISES("for all", NSInvalidArgumentException, @"one file system",
           [DRFile hardLinkPointingTo:file inFilesystem:DRAllFilesystems]);
    RAISES("to nothing", NSInvalidArgumentException, @"points at",
           [DRFile symLinkPointingTo:nil inFilesystem:DRUDF]);
    RAISES("of no kind", NSInvalidArgumentException, @"link type",
           [[DRFile alloc] initWithLinkType:@"rope" pointingTo:file inFilesystem:DRUDF]);
    // Neither keeps the other alive.
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    DRFolder* around = [[DRFolder alloc] initWithName:@"around"];
    DRFile* inside = [[DRFile alloc] initWithLinkType:DRLinkTypeSymbolicLink
                                           pointingTo:around
                                         inFilesystem:DRUDF];
    [around addChild:inside];
    [pool release];
    PASS("a link does not keep its target", [around retainCount] == 1);
    [around release];
    SAME("and outlives it", [inside baseName], @"around");
    [inside release];
}

// A burn's threads let go of files while the program drops their tree.
static void TestLinksAndTargetsThatGoOnTwoThreads(void) {
    DRFile* target = [[DRFile alloc] initWithName:@"target" data:nil];
    letGoElsewhere = [[Meeting alloc] initWithLinkType:DRLinkTypeSymbolicLink
                                            pointingTo:target
                                          inFilesystem:DRUDF];
    [target release];
    PASS("a link is there as long as it is told that its target goes", wasThere);
    pthread_join(elsewhere, NULL);
    PASS("and then goes", isGone);

    isGone = 0;
    letGoElsewhere = [[Meeting alloc] initWithName:@"target" data:nil];
    DRFile* link = [[DRFile alloc] initWithLinkType:DRLinkTypeSymbolicLink
                                         pointingTo:letGoElsewhere
                                       inFilesystem:DRUDF];
    [link release];
    PASS("a target is there as long as it is told that a link goes", wasThere);
    pthread_join(elsewhere, NULL);
    PASS("and then goes", isGone);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    TestNames();
    TestMangling();
    TestProperties();
    TestMasks();
    TestLinks();
    TestLinksAndTargetsThatGoOnTwoThreads();
    [pool release];
    return Finish();
}
