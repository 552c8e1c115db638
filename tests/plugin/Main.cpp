// Main.cpp: runs the tests, and looks for leaks before Foundation, on its way out, forgets objects that it
// kept.
#include <gtest/gtest.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const int failed = RUN_ALL_TESTS();
#if defined(__SANITIZE_ADDRESS__)
    __lsan_do_leak_check();
#endif
    return failed;
}
