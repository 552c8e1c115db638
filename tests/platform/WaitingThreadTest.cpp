// A thread that waits for a burn does what the burn's threads have to call.
#include "WaitingThread.hpp"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

using namespace discrecording;

TEST(WaitingThread, CallsAreMadeOnIt) {
    std::thread::id where;
    WaitingThread waiting;
    std::thread other([&] {
        callWhereWaited([&] { where = std::this_thread::get_id(); });
        waiting.end();
    });
    waiting.run();
    other.join();
    EXPECT_EQ(where, std::this_thread::get_id());
}

// Such as that of a layout which is refused: its files are let go of beside any burn.
TEST(WaitingThread, ItsOwnCallsAreMadeAtOnce) {
    int calls = 0;
    const WaitingThread waiting;
    callWhereWaited([&] { ++calls; });
    EXPECT_EQ(calls, 1);
}

// Such as an event that asks how long a track with produced files will be.
TEST(WaitingThread, ACallFromWithinACallIsMadeAtOnce) {
    int calls = 0;
    WaitingThread waiting;
    std::thread other([&] {
        callWhereWaited([&] { callWhereWaited([&] { ++calls; }); });
        waiting.end();
    });
    waiting.run();
    other.join();
    EXPECT_EQ(calls, 1);
}

TEST(WaitingThread, WithoutOneCallsAreMadeWhereTheyAre) {
    std::thread::id where;
    std::thread([&] {
        callWhereWaited([&] { where = std::this_thread::get_id(); });
        EXPECT_EQ(where, std::this_thread::get_id());
    }).join();
}

// Another burn calls just when the one that is waited for has ended: the call is made, by whomever.
TEST(WaitingThread, NoCallIsLeftBehindAtTheEnd) {
    int made = 0;
    for (int round = 0; round < 12000; ++round) {
        std::atomic<bool> ends{false};
        std::thread other([&] {
            while (!ends) {
            }
            for (std::atomic<int> pause{0}; pause < round % 200; ++pause) {
            }
            callWhereWaited([&] { ++made; });
        });
        {
            WaitingThread waiting;
            ends = true;
        }
        other.join();
    }
    EXPECT_EQ(made, 12000);
}
