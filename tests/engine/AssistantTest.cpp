// The second thread for work that can be halved, and what is done when it is not to be had.
#include "Assistant.hpp"
#include "Background.hpp"
#include "Failure.hpp"
#include "NoThreads.hpp"

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

using namespace engine;

namespace {

// Comes back only when the second thread has come.
void expectTwoThreads(Assistant& assistant) {
    std::promise<std::thread::id> other;
    assistant.share([&] { EXPECT_NE(other.get_future().get(), std::this_thread::get_id()); },
                    [&] { other.set_value(std::this_thread::get_id()); });
}

} // namespace

TEST(AssistantTest, sharesBetweenTwoThreads) {
    Assistant assistant;
    expectTwoThreads(assistant);
    expectTwoThreads(assistant);
}

TEST(AssistantTest, doesItsOwnWhenNoThreadIsToBeHadAndAsksAgainForOne) {
    Assistant assistant;
    {
        const NoThreads none;
        EXPECT_THROW(runInBackground("none", [] {}), Failure);
        std::string done;
        assistant.share([&] { done += "own "; }, [&] { done += "other "; });
        assistant.share([&] { done += "own "; }, [&] { done += "other "; });
        EXPECT_EQ(done, "own own ");
    }
    expectTwoThreads(assistant);
}

TEST(AssistantTest, bothAreDoneWithAndWithoutASecondThread) {
    for (const bool isAlone : {false, true}) {
        std::unique_ptr<NoThreads> none;
        if (isAlone) none = std::make_unique<NoThreads>();
        std::atomic<int> done = 0;
        doBoth(
            5000, [&] { ++done; }, [&] { ++done; });
        EXPECT_EQ(done, 2);
        // The first problem is told, whichever came first.
        const auto torn = [](const char* what) { return [what] { throw std::runtime_error(what); }; };
        try {
            doBoth(5000, torn("first"), torn("second"));
            ADD_FAILURE() << "nothing thrown";
        } catch (const std::runtime_error& problem) {
            EXPECT_STREQ(problem.what(), "first");
        }
        EXPECT_THROW(doBoth(
                         5000, [] {}, torn("second")),
                     std::runtime_error);
    }
}
