// Check.h: the few words that the platform's test programs are written in.
#ifndef TESTS_PLATFORM_CHECK_H
#define TESTS_PLATFORM_CHECK_H

#import <Foundation/Foundation.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int checksMade, checksFailed;

static inline void Check(BOOL holds, const char* sentence, const char* file, int line) {
    checksMade++;
    if (holds)
        return;
    checksFailed++;
    fprintf(stderr, "%s:%d: NOT SO: %s\n", file, line, sentence);
}

// One thing that must be so, as a sentence.
#define PASS(sentence, condition) Check((condition) ? YES : NO, (sentence), __FILE__, __LINE__)

// Two Foundation objects that must be equal; says what came instead.
#define SAME(sentence, got, expected)                                                                        \
    do {                                                                                                     \
        id got_ = (got), expected_ = (expected);                                                             \
        BOOL same_ = got_ == expected_ || [got_ isEqual:expected_];                                          \
        PASS(sentence, same_);                                                                               \
        if (!same_)                                                                                          \
            fprintf(stderr, "    got %s, not %s\n", [[got_ description] UTF8String],                         \
                    [[expected_ description] UTF8String]);                                                   \
    } while (0)

// A statement that must raise that exception, with a reason that has that text in it.
#define RAISES(sentence, exceptionName, text, ...)                                                           \
    do {                                                                                                     \
        NSException* raised_ = nil;                                                                          \
        @try {                                                                                               \
            __VA_ARGS__;                                                                                     \
        } @catch (NSException * caught_) {                                                                   \
            raised_ = caught_;                                                                               \
        }                                                                                                    \
        SAME(sentence, [raised_ name], exceptionName);                                                       \
        PASS(sentence " (reason)", [[raised_ reason] rangeOfString:(text)].length != 0);                     \
    } while (0)

#if defined(__SANITIZE_ADDRESS__)
void __lsan_do_leak_check(void);
// Leaks are looked for before the process winds up: on its way out Foundation forgets, but does not free,
// objects that it has kept from the start.
#define LOOK_FOR_LEAKS() __lsan_do_leak_check()
#else
#define LOOK_FOR_LEAKS() ((void)0)
#endif

// The end of a test program: its exit status. A program that checked nothing has failed.
static inline int Finish(void) {
    LOOK_FOR_LEAKS();
    printf("%d checks, %d failed\n", checksMade, checksFailed);
    return checksMade == 0 || checksFailed != 0;
}

// A new folder of the test's own; its path ends without "/".
static inline NSString* NewFolder(void) {
    const char* base = getenv("TMPDIR");
    char* path = NULL;
    if (asprintf(&path, "%s/platform-test-XXXXXX", base != NULL ? base : "/tmp") < 0 ||
        mkdtemp(path) == NULL) {
        perror("no folder to test in");
        exit(1);
    }
    NSString* text = [NSString stringWithUTF8String:path];
    free(path);
    return text;
}

#endif
