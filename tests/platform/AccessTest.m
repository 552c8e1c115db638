// AccessTest: exclusive access and reservations of a drive between two processes.
//
//     AccessTest                     the test; it starts itself as the other process
//     AccessTest exclusive|reserve   takes that, says what came of it, and holds it until a line comes in
#import "Burning.h"
#import "DRErasePrivate.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char** environ;

// The other process.
typedef struct {
    pid_t process;
    FILE *toIt, *fromIt;
} Other;

static Other Start(const char* what) {
    int to[2], from[2];
    Other other = {0, NULL, NULL};
    if (pipe(to) != 0 || pipe(from) != 0)
        abort();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, to[0], 0);
    posix_spawn_file_actions_adddup2(&actions, from[1], 1);
    for (int i = 0; i < 2; i++) {
        posix_spawn_file_actions_addclose(&actions, to[i]);
        posix_spawn_file_actions_addclose(&actions, from[i]);
    }
    char* arguments[] = {(char[]){"AccessTest"}, strdup(what), NULL};
    if (posix_spawn(&other.process, "/proc/self/exe", &actions, NULL, arguments, environ) != 0)
        abort();
    posix_spawn_file_actions_destroy(&actions);
    free(arguments[1]);
    close(to[0]);
    close(from[1]);
    other.toIt = fdopen(to[1], "w");
    other.fromIt = fdopen(from[0], "r");
    return other;
}

static NSString* Said(Other other) {
    char line[100] = "";
    if (fgets(line, sizeof line, other.fromIt) == NULL)
        return @"nothing";
    line[strcspn(line, "\n")] = 0;
    return [NSString stringWithUTF8String:line];
}

static void Finished(Other other) {
    fclose(other.toIt);
    fclose(other.fromIt);
    int status = -1;
    PASS("the other process has ended", waitpid(other.process, &status, 0) == other.process);
}

static void Killed(Other other) {
    kill(other.process, SIGKILL);
    Finished(other);
}

static int OtherProcess(const char* what) {
    DRDevice* device = [[DRDevice devices] objectAtIndex:0];
    if (strcmp(what, "exclusive") == 0) {
        printf("%s\n", [device acquireExclusiveAccess] ? "taken" : "refused");
    } else {
        [device acquireMediaReservation];
        printf("%s\n", [device mediaIsReserved] ? "taken" : "refused");
    }
    fflush(stdout);
    char line[10];
    if (fgets(line, sizeof line, stdin) != NULL && strcmp(what, "exclusive") == 0)
        [device releaseExclusiveAccess];
    return 0;
}

static DRTrack* Track(void) { return [DRTrack trackForRootFolder:[DRFolder virtualFolderWithName:@"Disc"]]; }

static void CheckOther(const char* sentence, NSString* expected) {
    Other other = Start("exclusive");
    SAME(sentence, Said(other), expected);
    Finished(other);
}

static void Await(DRErase* erase) {
    for (int naps = 0; naps < 3000; naps++) {
        NSString* state = [[erase status] objectForKey:DRStatusStateKey];
        if ([state isEqual:DRStatusStateFailed] || [state isEqual:DRStatusStateDone])
            break;
        struct timespec nap = {0, 10000000};
        nanosleep(&nap, NULL);
    }
}

static void CheckKeptOut(DRDevice* device) {
    PASS("no exclusive access for a second one", ![device acquireExclusiveAccess]);
    PASS("who sees that the drive is busy",
         [device mediaIsBusy] && [[[device status] objectForKey:DRDeviceIsBusyKey] boolValue]);
    PASS("neither ejects", ![device ejectMedia] && ![device trayIsOpen]);
    ExpectError("nor burns", BurnOn(device, Track(), nil), 0x80020021, @"in use by another program");
    DRErase* erase = [DRErase eraseForDevice:device];
    [erase start];
    Await(erase);
    ExpectError("nor erases", [erase status], 0x80020021, @"in use by another program");
    PASS("and all is as it was", [device mediaIsPresent] && [device mediaIsBlank]);
}

static void TestExclusiveAccess(void) {
    DRDevice* device = Device("DVD+RW");
    Other other = Start("exclusive");
    SAME("the other process takes the drive", Said(other), @"taken");
    CheckKeptOut(device);
    Finished(other); // which closes its input: it ends as a program does
    PASS("free when the other one has ended", ![device mediaIsBusy] && [device acquireExclusiveAccess]);
    other = Start("exclusive");
    SAME("the other way round", Said(other), @"refused");
    Finished(other);
    ExpectDone("who has the drive burns", BurnOn(device, Track(), nil));
    PASS("and keeps it", [device mediaIsBusy]);
    [device releaseExclusiveAccess];

    device = Device("DVD+RW");
    other = Start("exclusive");
    SAME("taken once more", Said(other), @"taken");
    PASS("kept out", ![device acquireExclusiveAccess]);
    Killed(other);
    PASS("free when its holder was killed", ![device mediaIsBusy] && [device acquireExclusiveAccess]);
    [device releaseExclusiveAccess];
    ExpectDone("and good for a burn", BurnOn(device, Track(), nil));

    device = Device("DVD+RW");
    other = Start("exclusive");
    SAME("taken to be given back", Said(other), @"taken");
    fputs("\n", other.toIt);
    fclose(other.toIt);
    char end;
    PASS("it has given it back", fread(&end, 1, 1, other.fromIt) == 0);
    other.toIt = fopen("/dev/null", "w");
    Finished(other);
    PASS("free when it was released", [device acquireExclusiveAccess]);
    [device releaseExclusiveAccess];
}

// As a panel does it, so that nobody comes between a person's choice and the erase.
static void TestKeptForAnErase(void) {
    DRDevice* device = Device("DVD+RW");
    DRErase* erase = [[DRErase alloc] initWithDevice:device];
    PASS("an erase keeps its drive", [erase keepDevice] && [erase keepDevice] && [device mediaIsBusy]);
    CheckOther("from everybody else", @"refused");
    [erase start];
    Await(erase);
    SAME("and erases", [[erase status] objectForKey:DRStatusStateKey], DRStatusStateDone);
    CheckOther("and lets go when it is done", @"taken");
    PASS("and keeps no more", ![erase keepDevice] && ![device mediaIsBusy]);
    [erase release];

    erase = [[DRErase alloc] initWithDevice:device];
    PASS("one that is never started keeps it, too", [erase keepDevice]);
    CheckOther("as long as it is there", @"refused");
    [erase release];
    CheckOther("and no longer", @"taken");

    erase = [[DRErase alloc] initWithDevice:device];
    [erase setEraseType:@"thorough"];
    PASS("one that can't be begun", [erase keepDevice]);
    [erase start];
    CheckOther("keeps nothing", @"taken");
    [erase release];

    Other other = Start("exclusive");
    SAME("the other one was first", Said(other), @"taken");
    erase = [[DRErase alloc] initWithDevice:device];
    PASS("so it can't be had", ![erase keepDevice]);
    [erase release];
    Finished(other);
    PASS("nor can none", ![[DRErase eraseForDevice:nil] keepDevice]);
}

static void TestReservation(void) {
    DRDevice* device = Device("CD-R");
    Other other = Start("reserve");
    SAME("the other process has the reservation", Said(other), @"taken");
    [device acquireMediaReservation];
    PASS("one has it at a time", ![device mediaIsReserved]);
    PASS("as the status says", ![[[[device status] objectForKey:DRDeviceMediaInfoKey]
                                   objectForKey:DRDeviceMediaIsReservedKey] boolValue]);
    PASS("a reservation keeps nobody from the drive", ![device mediaIsBusy] && [device mediaIsBlank]);
    Killed(other);
    PASS("it passes on when its holder was killed", [device mediaIsReserved]);
    other = Start("reserve");
    SAME("and now the other one has to wait", Said(other), @"refused");
    [device releaseMediaReservation];
    PASS("given back", ![device mediaIsReserved]);
    Finished(other);
    other = Start("reserve");
    SAME("then the other one gets it", Said(other), @"taken");
    Finished(other);
}

int main(int count, char** arguments) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    if (count > 1)
        return OtherProcess(arguments[1]);
    signal(SIGPIPE, SIG_IGN);
    NSString* place = NewFolder();
    drives = [place stringByAppendingPathComponent:@"drives"];
    setenv("DISC_DRIVES", [drives UTF8String], 1);
    TestExclusiveAccess();
    TestKeptForAnErase();
    TestReservation();
    [[NSFileManager defaultManager] removeFileAtPath:place handler:nil];
    [pool release];
    return Finish();
}
