// Burns in a process of their own, which is killed.
#pragma once

#include "Fixture.hpp"

#include <csignal>
#include <sys/wait.h>
#include <thread>

class PhysicalKilled : public PhysicalTest {
  protected:
    /// Burns the source in a process of its own and kills it in the middle. `how`: "closed" or "appendable", over what is
    /// there, or "appended" to it.
    void killWhileItWrites(const char* how) {
        const int64_t before = state().value("writes", 0);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::execl("/proc/self/exe", "physical_tests", "--burn", source.c_str(), how, nullptr);
            ::_exit(127);
        }
        int status = 0;
        bool isOver = false;
        while (!isOver && state().value("writes", 0) < before + 40) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            isOver = ::waitpid(child, &status, WNOHANG) == child;
        }
        ASSERT_FALSE(isOver) << "ended with " << status;
        ::kill(child, SIGKILL);
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "in the middle of the burn";
        change("faults", Json::object());
    }
};
