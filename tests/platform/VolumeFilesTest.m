// VolumeFilesTest: files of the root that the volume's descriptor names: what isoinfo reads of them, and what can't be named.
#import "FolderBurns.h"

static DRTrack* TrackWith(DRFolder* root, int level, NSString* key, id value) {
    DRTrack* track = [DRTrack trackForRootFolder:root];
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:[track properties]];
    [properties setObject:[NSNumber numberWithInt:level] forKey:DRISOLevel];
    [properties setObject:value forKey:key];
    [track setProperties:properties];
    return track;
}

static DRFile* Named(NSString* name) { return [DRFile virtualFileWithName:name data:[NSData data]]; }

// What isoinfo says of the volume, and then which files are on it.
static NSString* Told(DRDevice* device) {
    NSString* out = [place stringByAppendingPathComponent:@"told"];
    PASS("another program reads the volume",
         Run(@"image=$(find '%@' -name '*.iso') && { isoinfo -d -i $image; isoinfo -f -i $image; } > '%@'",
             [device ioRegistryEntryPath], out));
    return [NSString stringWithContentsOfFile:out];
}

static void CheckNamed(DRFolder* root, int level, NSString* key, DRFile* file, NSString* label,
                       NSString* identifier) {
    DRDevice* device = FreshDevice();
    DRBurn* burn = BurnThatStays(device);
    [burn writeLayout:TrackWith(root, level, key, file)];
    Await(burn);
    SAME("it is burned", State(burn), DRStatusStateDone);
    NSString* told = Told(device);
    NSString* said = [NSString stringWithFormat:@"%@: %@\n", label, identifier];
    PASS("the descriptor names the file", [told rangeOfString:said].length != 0);
    NSString* listed = [NSString stringWithFormat:@"\n/%@\n", identifier];
    PASS("and it is there", [told rangeOfString:listed].length != 0);
}

static void CheckRefused(DRFolder* root, id value) {
    DRDevice* device = FreshDevice();
    DRBurn* burn = BurnThatStays(device);
    [burn writeLayout:TrackWith(root, 2, DRAbstractFile, value)];
    Await(burn);
    PASS("no file of the root", (unsigned)ErrorOf(burn) == 0x80020065);
    SAME("and it is said", SentenceOf(burn),
         @"The track's DRAbstractFile is to be a text, or a file in the root that is in ISO 9660.");
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* source = BeginTest();
    DRFolder* root = [DRFolder virtualFolderWithName:@"Disc"];
    DRFolder* sub = [DRFolder virtualFolderWithName:@"sub"];
    DRFile* inner = Named(@"inner");
    [sub addChild:inner];
    [root addChild:sub];
    DRFile* real = [DRFile fileWithPath:[source stringByAppendingPathComponent:@"a.txt"]];
    DRFile* first = Named(@"measurement 1.txt");
    DRFile* second = Named(@"measurement 2.txt");
    DRFile* plain = Named(@"Legal terms");
    DRFile* other = Named(@"other");
    DRFile* files[] = {real, first, second, plain, other};
    for (size_t i = 0; i < sizeof files / sizeof *files; i++)
        [root addChild:files[i]];
    [other setExplicitFilesystemMask:DRFilesystemInclusionMaskJoliet];

    CheckNamed(root, 2, DRCopyrightFile, plain, @"Copyright File id", @"LEGAL TERMS.;1");
    CheckNamed(root, 1, DRAbstractFile, second, @"Abstract File id", @"MEAS_001.TXT;1");
    CheckNamed(root, 3, DRBibliographicFile, real, @"Bibliographic File id", @"A.TXT;1");

    id wrong[] = {inner, other, sub, root, Named(@"nowhere"), [NSNumber numberWithInt:1]};
    for (size_t i = 0; i < sizeof wrong / sizeof *wrong; i++)
        CheckRefused(root, wrong[i]);
    return EndTest(pool);
}
