// The cost of a call to the running add-in; the floor is a Ping to the same process by the same library.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Bus.h"

namespace {

sd_bus* bus = nullptr;

bench::Reference Create() {
    return bench::Create(bus, bench::addInClass);
}

void Release(const bench::Reference& object) {
    bench::Ask(bus, object, bench::objectInterface, "Release");
}

// An object that lives as long as this program, and keeps the server running.
const bench::Reference& Held() {
    static const bench::Reference held = Create();
    return held;
}

void Ping(benchmark::State& state) {
    for (auto _ : state) bench::Ping(bus, Held());
}

void LateBoundRead() {
    bench::Invoke(bus, Held(), "Visible", bench::Read, "av", 0);
}

void LateBound(benchmark::State& state) {
    for (auto _ : state) LateBoundRead();
}

void Typed(benchmark::State& state) {
    for (auto _ : state)
        bench::Ask(bus, Held(), "org.freedesktop.DBus.Properties", "Get", "ss", "Horalink10013._cOLELayer",
                   "Visible");
}

void LateBoundAmongObjects(benchmark::State& state) {
    std::vector<bench::Reference> others;
    for (auto left = state.range(0); left > 0; --left) others.push_back(Create());
    for (auto _ : state) LateBoundRead();
    for (const bench::Reference& other : others) Release(other);
}

}  // namespace

BENCHMARK(Ping)->UseRealTime();
BENCHMARK(LateBound)->UseRealTime();
BENCHMARK(Typed)->UseRealTime();
BENCHMARK(LateBoundAmongObjects)->Arg(1000)->UseRealTime();

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return EXIT_FAILURE;
    try {
        const bench::Bus connection = bench::OpenBus();
        bus = connection.get();
        Held();
        benchmark::RunSpecifiedBenchmarks();
        Release(Held());
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "calls: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
