// The cost of reading a field of a request record, for a host; the floor is a Ping to the same process by the
// same library. The record is from a request started by a click.
#include <benchmark/benchmark.h>

#include <cstdio>

#include "Dialog.h"
#include "Host.h"

namespace {

constexpr int reads = 10'000;
bench::Host* host = nullptr;

void Ping(benchmark::State& state) {
    for (auto _ : state) bench::Ping(host->Connection(), *host->Record());
}

void ReadField(benchmark::State& state) {
    constexpr const char *fields[] = {"PBXName", "Tag", "LoginID"},
                         *lists[] = {"CMD", "FirstData", "SecondData"};
    std::size_t next = 0;
    for (auto _ : state) {
        const std::size_t which = next++ % 6;
        if (which < 3)
            Invoke(host->Connection(), *host->Record(), fields[which], bench::Read, "av", 0);
        else
            Invoke(host->Connection(), *host->Record(), lists[which - 3], bench::Read, "av", 1, "n", 1);
    }
}

}  // namespace

BENCHMARK(Ping)->Iterations(reads)->UseRealTime();
BENCHMARK(ReadField)->Iterations(reads)->UseRealTime();

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return EXIT_FAILURE;
    try {
        bench::Host refusing(bench::Host::Manner::Refuses);
        bench::Dialog dialog(refusing);
        dialog.Click(bench::lookupButton);
        refusing.ServeUntil([&] { return refusing.HasLoggedOut(); });
        host = &refusing;
        benchmark::RunSpecifiedBenchmarks();
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "record-reads: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
