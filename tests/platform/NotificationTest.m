// NotificationTest: drives that come, change and go, burns and erases, as observers on a run loop hear of them.
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif
#import "Check.h"
#import "DRBurn.h"
#import "DRErase.h"
#import "DRFile.h"
#import "DRNotificationCenter.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

static NSString* drives;

// Writes down what it is told.
@interface Listener : NSObject {
  @public
    NSMutableArray* names;
    NSMutableArray* objects;
    NSMutableArray* infos;
    NSThread* thread;
    BOOL raises;
    id removesItselfFrom;
}
- (void)hear:(NSNotification*)notification;
@end

@implementation Listener
- (id)init {
    self = [super init];
    names = [NSMutableArray new];
    objects = [NSMutableArray new];
    infos = [NSMutableArray new];
    return self;
}
- (void)dealloc {
    [names release];
    [objects release];
    [infos release];
    [super dealloc];
}
- (void)hear:(NSNotification*)notification {
    [names addObject:[notification name]];
    [objects addObject:[notification object]];
    [infos addObject:[notification userInfo]];
    thread = [NSThread currentThread];
    if (removesItselfFrom != nil)
        [removesItselfFrom removeObserver:self name:nil object:nil];
    if (raises)
        [NSException raise:@"Deaf" format:@"not listening"];
}
@end

static Listener* NewListener(void) { return [[[Listener alloc] init] autorelease]; }

static DRNotificationCenter* Center(void) { return [DRNotificationCenter currentRunLoopCenter]; }

// Lets the run loop run until so many notifications have come, or the time is over.
static BOOL Hear(Listener* listener, NSUInteger count, double seconds) {
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:seconds];
    while ([listener->names count]<count && [end timeIntervalSinceNow]> 0) {
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
    }
    return [listener->names count] >= count;
}

// The same until the last one has that name.
static BOOL HearName(Listener* listener, NSString* name) {
    NSUInteger before = [listener->names count];
    for (int i = 0; i < 200; i++) {
        NSUInteger heard = [listener->names count];
        if (heard > before && [[listener->names lastObject] isEqual:name])
            return YES;
        Hear(listener, heard + 1, 0.1);
    }
    return NO;
}

static void MakeDrive(NSString* name) {
    NSString* made = [drives stringByAppendingPathComponent:[@"." stringByAppendingString:name]];
    [[NSFileManager defaultManager] createDirectoryAtPath:made attributes:nil];
    [@"{\"format\": 1, \"vendor\": \"Virtual\", \"product\": \"Another\", \"firmwareRevision\": \"1.00\", "
     @"\"tray\": \"closed\"}" writeToFile:[made stringByAppendingPathComponent:@"drive.json"]
                               atomically:NO];
    // It appears whole.
    rename([made UTF8String], [[drives stringByAppendingPathComponent:name] UTF8String]);
}

static void TestCenters(void) {
    PASS("one center for a thread", Center() == Center());
    Listener* listener = NewListener();
    RAISES("an observer is needed", NSInvalidArgumentException, @"observer",
           [Center() addObserver:nil selector:@selector(hear:) name:nil object:nil]);
    [Center() addObserver:listener selector:@selector(hear:) name:@"Unheard" object:nil];
    PASS("nothing is posted under other names", !Hear(listener, 1, 0.1));
    [Center() removeObserver:listener name:nil object:nil];
}

static void TestDrives(void) {
    DRDevice* device = [[DRDevice devices] objectAtIndex:0];
    Listener* listener = NewListener();
    [Center() addObserver:listener selector:@selector(hear:) name:DRDeviceAppearedNotification object:nil];
    PASS("not before the loop runs", [listener->names count] == 0);
    PASS("told of the drive that is there", Hear(listener, 1, 20));
    SAME("by name", [listener->names lastObject], DRDeviceAppearedNotification);
    PASS("the drive itself", [listener->objects lastObject] == device);
    SAME("with its info", [listener->infos lastObject], [device info]);
    PASS("on this thread", listener->thread == [NSThread currentThread]);

    Listener* late = NewListener();
    [Center() addObserver:late selector:@selector(hear:) name:nil object:nil];
    PASS("told again to who comes later", Hear(late, 1, 20));
    SAME("with a nil name, too", [late->names lastObject], DRDeviceAppearedNotification);
    PASS("but once only", !Hear(late, 2, 0.3) && [listener->names count] == 1);

    MakeDrive(@"drive-2");
    PASS("a drive comes", Hear(listener, 2, 20));
    DRDevice* second = [listener->objects lastObject];
    PASS("with the object that all get", [[DRDevice devices] containsObject:second]);
    SAME("named as it is", [second displayName], @"Virtual Another");
    PASS("late heard of it as well", Hear(late, 2, 20) && [late->objects lastObject] == second);

    Listener* ofSecond = NewListener();
    [Center() addObserver:ofSecond
                 selector:@selector(hear:)
                     name:DRDeviceStatusChangedNotification
                   object:second];
    PASS("its tray opens", [second openTray]);
    PASS("a change is told", Hear(ofSecond, 1, 20));
    SAME("by its name", [ofSecond->names lastObject], DRDeviceStatusChangedNotification);
    PASS("of that drive", [ofSecond->objects lastObject] == second);
    SAME("with its status", [[ofSecond->infos lastObject] objectForKey:DRDeviceIsTrayOpenKey],
         [NSNumber numberWithBool:YES]);
    NSUInteger before = [ofSecond->names count];
    PASS("the other drive's tray", [device ejectMedia]);
    Hear(late, [late->names count] + 1, 20);
    PASS("is told to who wants all", [[late->objects lastObject] isEqual:device]);
    PASS("and not to who wants the second only", [ofSecond->names count] == before);
    [device closeTray];

    Listener* going = NewListener();
    [Center() addObserver:going selector:@selector(hear:) name:DRDeviceDisappearedNotification object:nil];
    [[NSFileManager defaultManager] removeFileAtPath:[second ioRegistryEntryPath] handler:nil];
    PASS("a drive goes", Hear(going, 1, 20));
    PASS("it is that one", [going->objects lastObject] == second && ![second isValid]);
    SAME("with its info", [[going->infos lastObject] objectForKey:DRDeviceProductNameKey], @"Another");

    [Center() removeObserver:listener name:DRDeviceAppearedNotification object:nil];
    [Center() removeObserver:ofSecond name:nil object:second];
    [Center() removeObserver:going name:nil object:nil];
    NSUInteger heard = [listener->names count];
    MakeDrive(@"drive-3");
    PASS("the last one hears of the third", HearName(late, DRDeviceAppearedNotification));
    PASS("removed ones no more", [listener->names count] == heard);
    [Center() removeObserver:late name:nil object:nil];
}

// Another program writes to the drive, or keeps it for itself, until that ends.
static pid_t AnotherProgram(DRDevice* device) {
    NSString* lock = [[device ioRegistryEntryPath] stringByAppendingPathComponent:@"lock"];
    const char* path = [lock fileSystemRepresentation];
    int said[2];
    if (pipe(said) != 0)
        return -1;
    pid_t child = fork();
    if (child == 0) {
        struct flock all = {.l_type = F_WRLCK, .l_whence = SEEK_SET};
        int file = open(path, O_RDWR | O_CREAT, 0666);
        char ready = file >= 0 && fcntl(file, F_SETLK, &all) == 0;
        if (write(said[1], &ready, 1) == 1)
            pause();
        _exit(1);
    }
    char ready = 0;
    PASS("another program has the drive", read(said[0], &ready, 1) == 1 && ready);
    close(said[0]);
    close(said[1]);
    return child;
}

static BOOL HearBusy(Listener* listener, BOOL busy) {
    for (int i = 0; i < 600; i++) {
        if ([[[listener->infos lastObject] objectForKey:DRDeviceIsBusyKey]
                isEqual:[NSNumber numberWithBool:busy]])
            return YES;
        Hear(listener, [listener->names count] + 1, 0.1);
    }
    return NO;
}

static void TestAnotherProgram(void) {
    DRDevice* device = [[DRDevice devices] objectAtIndex:0];
    Listener* listener = NewListener();
    [Center() addObserver:listener
                 selector:@selector(hear:)
                     name:DRDeviceStatusChangedNotification
                   object:device];
    pid_t other = AnotherProgram(device);
    PASS("that it is busy is told", HearBusy(listener, YES));
    PASS("of that drive", [listener->objects lastObject] == device);
    int status = 0;
    PASS("it goes", kill(other, SIGKILL) == 0 && waitpid(other, &status, 0) == other);
    PASS("and that it is free again", HearBusy(listener, NO));
    [Center() removeObserver:listener name:nil object:nil];
}

static void TestReservation(void) {
    DRDevice* device = [[DRDevice devices] objectAtIndex:0];
    Listener* listener = NewListener();
    [Center() addObserver:listener
                 selector:@selector(hear:)
                     name:DRDeviceStatusChangedNotification
                   object:device];
    [device acquireMediaReservation];
    PASS("a reservation is told", Hear(listener, 1, 20));
    NSDictionary* media = [[listener->infos lastObject] objectForKey:DRDeviceMediaInfoKey];
    SAME("as reserved", [media objectForKey:DRDeviceMediaIsReservedKey], [NSNumber numberWithBool:YES]);
    [device releaseMediaReservation];
    PASS("and when it is given up", Hear(listener, 2, 20));
    media = [[listener->infos lastObject] objectForKey:DRDeviceMediaInfoKey];
    SAME("as not reserved", [media objectForKey:DRDeviceMediaIsReservedKey], [NSNumber numberWithBool:NO]);
    [Center() removeObserver:listener name:nil object:nil];
}

static DRTrack* SmallTrack(void) {
    DRFolder* root = [DRFolder virtualFolderWithName:@"Disc"];
    [root addChild:[DRFile virtualFileWithName:@"file" data:[NSMutableData dataWithLength:3000000]]];
    return [DRTrack trackForRootFolder:root];
}

static NSDictionary* Staying(void) {
    return [NSDictionary dictionaryWithObjectsAndKeys:DRBurnCompletionActionMount, DRBurnCompletionActionKey,
                                                      [NSNumber numberWithBool:YES], DRBurnOverwriteDiscKey,
                                                      nil];
}

static BOOL IsFinal(NSDictionary* status) {
    NSString* state = [status objectForKey:DRStatusStateKey];
    return [state isEqual:DRStatusStateDone] || [state isEqual:DRStatusStateFailed];
}

static void HearTheEnd(Listener* listener) {
    for (int i = 0; i < 600 && !IsFinal([listener->infos lastObject]); i++)
        Hear(listener, [listener->names count] + 1, 0.1);
}

static NSArray* StatesOf(Listener* listener) {
    NSMutableArray* states = [NSMutableArray array];
    for (NSUInteger i = 0; i < [listener->infos count]; i++) {
        NSString* state = [[listener->infos objectAtIndex:i] objectForKey:DRStatusStateKey];
        if (![[states lastObject] isEqual:state])
            [states addObject:state];
    }
    return states;
}

static void TestBurn(void) {
    DRDevice* device = [[DRDevice devices] objectAtIndex:0];
    DRBurn* burn = [DRBurn burnForDevice:device];
    DRBurn* other = [DRBurn burnForDevice:device];
    [burn setProperties:Staying()];
    Listener *listener = NewListener(), *ofOther = NewListener();
    [Center() addObserver:listener
                 selector:@selector(hear:)
                     name:DRBurnStatusChangedNotification
                   object:burn];
    [Center() addObserver:ofOther
                 selector:@selector(hear:)
                     name:DRBurnStatusChangedNotification
                   object:other];
    [burn writeLayout:SmallTrack()];
    HearTheEnd(listener);
    // Every state is told, short ones too, in order.
    NSArray* states =
        [NSArray arrayWithObjects:DRStatusStatePreparing, DRStatusStateSessionOpen, DRStatusStateTrackOpen,
                                  DRStatusStateTrackWrite, DRStatusStateTrackClose, DRStatusStateSessionClose,
                                  DRStatusStateFinishing, DRStatusStateDone, nil];
    SAME("all states", StatesOf(listener), states);
    PASS("of that burn", [listener->objects lastObject] == burn);
    SAME("the last is what the burn says", [listener->infos lastObject], [burn status]);
    PASS("nothing of the other", [ofOther->names count] == 0);

    [other writeLayout:SmallTrack()];
    HearTheEnd(ofOther);
    SAME("a failure is told", [[ofOther->infos lastObject] objectForKey:DRStatusStateKey],
         DRStatusStateFailed);
    PASS("with its error", [[ofOther->infos lastObject] objectForKey:DRErrorStatusKey] != nil);
    [Center() removeObserver:listener name:nil object:nil];
    [Center() removeObserver:ofOther name:nil object:nil];

    // Another one ejects: Done is told when it has.
    [device closeTray];
    DRBurn* ejecting = [DRBurn burnForDevice:device];
    [ejecting setProperties:[NSDictionary dictionaryWithObject:[NSNumber numberWithBool:YES]
                                                        forKey:DRBurnOverwriteDiscKey]];
    Listener* ofEjecting = NewListener();
    [Center() addObserver:ofEjecting selector:@selector(hear:) name:nil object:ejecting];
    [ejecting writeLayout:SmallTrack()];
    for (int i = 0; i < 60000 && !IsFinal([ejecting status]); i++)
        usleep(1000);
    PASS("the tray is open at the end", [device trayIsOpen]);
    HearTheEnd(ofEjecting);
    SAME("states that nobody waited for are told all the same", StatesOf(ofEjecting), states);
    [Center() removeObserver:ofEjecting name:nil object:nil];
    [device closeTray];

    Listener* quiet = NewListener();
    DRBurn* waiting = [DRBurn burnForDevice:device];
    NSMutableDictionary* properties = [NSMutableDictionary dictionaryWithDictionary:Staying()];
    [properties setObject:[NSNumber numberWithBool:YES] forKey:DRSynchronousBehaviorKey];
    [waiting setProperties:properties];
    [Center() addObserver:quiet selector:@selector(hear:) name:DRBurnStatusChangedNotification object:nil];
    [waiting writeLayout:SmallTrack()];
    SAME("who waits has it done", [[waiting status] objectForKey:DRStatusStateKey], DRStatusStateDone);
    PASS("and is told nothing", !Hear(quiet, 1, 0.2));
    [Center() removeObserver:quiet name:nil object:nil];
}

static void TestErase(void) {
    DRDevice* device = [[DRDevice devices] objectAtIndex:0];
    DRErase* erase = [DRErase eraseForDevice:device];
    [erase setEraseType:DREraseTypeComplete];
    Listener* listener = NewListener();
    [Center() addObserver:listener
                 selector:@selector(hear:)
                     name:DREraseStatusChangedNotification
                   object:erase];
    [erase start];
    HearTheEnd(listener);
    NSArray* states = [NSArray arrayWithObjects:DRStatusStatePreparing, DRStatusStateErasing,
                                                DRStatusStateFinishing, DRStatusStateDone, nil];
    SAME("all states", StatesOf(listener), states);
    PASS("of that erase", [listener->objects lastObject] == erase);
    SAME("with its type", [[listener->infos lastObject] objectForKey:DRStatusEraseTypeKey],
         DREraseTypeComplete);
    [Center() removeObserver:listener name:nil object:nil];
}

// An observer that raises, one that goes while it is told, and a burn that is gone before it is told of.
static void TestMishaps(void) {
    DRDevice* device = [[DRDevice devices] objectAtIndex:0];
    Listener *loud = NewListener(), *shy = NewListener(), *last = NewListener();
    loud->raises = YES;
    shy->removesItselfFrom = Center();
    [Center() addObserver:shy selector:@selector(hear:) name:DREraseStatusChangedNotification object:nil];
    [Center() addObserver:last selector:@selector(hear:) name:DREraseStatusChangedNotification object:nil];
    [Center() addObserver:loud selector:@selector(hear:) name:DREraseStatusChangedNotification object:nil];
    DRErase* erase = [DRErase eraseForDevice:device];
    [erase start];
    int raised = 0;
#ifdef __SANITIZE_ADDRESS__
    __lsan_disable(); // an exception that leaves the platform's run loop leaves what that had allocated for its run
#endif
    for (int i = 0; i < 600 && !IsFinal([last->infos lastObject]); i++) {
        @try {
            Hear(last, [last->names count] + 1, 0.1);
        } @catch (NSException* exception) {
            raised++;
        }
    }
#ifdef __SANITIZE_ADDRESS__
    __lsan_enable();
#endif
    PASS("what an observer raises reaches the run loop", raised > 0);
    PASS("the others hear all", IsFinal([last->infos lastObject]));
    PASS("who removes itself hears no more", [shy->names count] == 1);
    [Center() removeObserver:loud name:nil object:nil];

    Listener* ofBurns = NewListener();
    [Center() addObserver:ofBurns selector:@selector(hear:) name:DRBurnStatusChangedNotification object:nil];
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    DRBurn* burn = [[DRBurn alloc] initWithDevice:device];
    [burn setProperties:Staying()];
    [burn writeLayout:SmallTrack()];
    [burn release];
    [pool release];
    PASS("what is gone is told of no more", !Hear(ofBurns, 1, 0.3));
    [Center() removeObserver:ofBurns name:nil object:nil];
    [Center() removeObserver:last name:nil object:nil];
}

// Two run loops: each hears on its own thread.
static void* OtherThread(void* result) {
    GSRegisterCurrentThread();
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    Listener* listener = NewListener();
    PASS("another center", [DRNotificationCenter currentRunLoopCenter] != nil);
    [Center() addObserver:listener selector:@selector(hear:) name:DRDeviceAppearedNotification object:nil];
    BOOL heard = Hear(listener, 1, 20) && listener->thread == [NSThread currentThread];
    [Center() removeObserver:listener name:nil object:nil];
    *(BOOL*)result = heard;
    [pool release];
    GSUnregisterCurrentThread();
    return NULL;
}

static void TestThreads(void) {
    BOOL heard = NO;
    pthread_t thread;
    pthread_create(&thread, NULL, OtherThread, &heard);
    pthread_join(thread, NULL);
    PASS("heard on its own thread", heard);
}

int main(void) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSString* place = NewFolder();
    drives = [place stringByAppendingPathComponent:@"drives"];
    [[NSFileManager defaultManager] createDirectoryAtPath:drives attributes:nil];
    setenv("DISC_DRIVES", [drives UTF8String], 1);
    TestCenters();
    TestDrives();
    TestAnotherProgram();
    TestReservation();
    TestBurn();
    TestErase();
    TestMishaps();
    TestThreads();
    [[NSFileManager defaultManager] removeFileAtPath:place handler:nil];
    [pool release];
    return Finish();
}
