// MessageBenchmark.cpp: what a message costs, bare and behind the plug-in's guard.
//
// The claim: a guarded message costs at most twice a bare one. Both are timed in one run, in turns.
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Guard.hpp"

#include <benchmark/benchmark.h>

namespace {

using objc::Id;

// The smallest method there is, so that nothing but the sending is timed.
unsigned int seven(Id, objc::Sel) { return 7; }

Id receiver() {
    static const Id object = [] {
        objc::ClassBuilder("NSObject", "BenchmarkReceiver").method<"seven", seven>().finish();
        return objc::sendClass<"BenchmarkReceiver", "new">();
    }();
    return object;
}

void BareMessage(benchmark::State& state) {
    const Id object = receiver();
    for (auto _ : state)
        benchmark::DoNotOptimize(objc::send<"seven", unsigned int>(object));
}

void GuardedMessage(benchmark::State& state) {
    const Id object = receiver();
    for (auto _ : state) {
        unsigned int result = 0;
        if (objc::caughtIn([&] { result = objc::send<"seven", unsigned int>(object); }))
            state.SkipWithError("raised");
        benchmark::DoNotOptimize(result);
    }
}

void MessageToNil(benchmark::State& state) {
    Id nil = nullptr;
    benchmark::DoNotOptimize(nil);
    for (auto _ : state)
        benchmark::DoNotOptimize(objc::send<"seven", unsigned int>(nil));
}

} // namespace

BENCHMARK(BareMessage);
BENCHMARK(GuardedMessage);
BENCHMARK(MessageToNil);

BENCHMARK_MAIN();
