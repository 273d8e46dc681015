// What a call to the running add-in costs a client, beside a bare Ping to the same process by the same
// library.
#include <benchmark/benchmark.h>
#include <systemd/sd-bus.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr const char* className = "Horalink10013.cOLELayer";
constexpr const char* object = "org.velmora.Automation1.Object";

sd_bus* bus = nullptr;

sd_bus_message* Take(int result, sd_bus_message* answer, sd_bus_error& error) {
    if (result >= 0) return answer;
    const std::string text = error.message ? error.message : "the call failed";
    sd_bus_error_free(&error);
    throw std::runtime_error(text);
}

template <typename... Arguments>
void Call(const char* owner, const char* path, const char* interface, const char* member,
          const char* signature, Arguments... arguments) {
    sd_bus_error error = SD_BUS_ERROR_NULL;
    sd_bus_message* answer = nullptr;
    const int result =
        sd_bus_call_method(bus, owner, path, interface, member, &error, &answer, signature, arguments...);
    sd_bus_message_unref(Take(result, answer, error));
}

struct Instance {
    std::string owner, path;

    Instance() {
        sd_bus_error error = SD_BUS_ERROR_NULL;
        sd_bus_message* answer = nullptr;
        const int result = sd_bus_call_method(bus, className, "/Factory", "org.velmora.Automation1.Factory",
                                              "CreateInstance", &error, &answer, "");
        answer = Take(result, answer, error);
        const char *name = nullptr, *place = nullptr;
        sd_bus_message_read(answer, "(so)", &name, &place);
        owner = name;
        path = place;
        sd_bus_message_unref(answer);
    }
    void Release() const { Call(owner.c_str(), path.c_str(), object, "Release", ""); }
};

// One object that lives as long as the program, so that the server does too.
const Instance& Held() {
    static const Instance held;
    return held;
}

void Ping(benchmark::State& state) {
    for (auto _ : state)
        Call(Held().owner.c_str(), Held().path.c_str(), "org.freedesktop.DBus.Peer", "Ping", "");
}

void LateBoundRead() {
    Call(Held().owner.c_str(), Held().path.c_str(), object, "Invoke", "sqav", "Visible", 2, 0);
}

void LateBound(benchmark::State& state) {
    for (auto _ : state) LateBoundRead();
}

void Typed(benchmark::State& state) {
    for (auto _ : state)
        Call(Held().owner.c_str(), Held().path.c_str(), "org.freedesktop.DBus.Properties", "Get", "ss",
             "Horalink10013._cOLELayer", "Visible");
}

void LateBoundAmongObjects(benchmark::State& state) {
    std::vector<Instance> others(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) LateBoundRead();
    for (const Instance& other : others) other.Release();
}

}  // namespace

BENCHMARK(Ping)->UseRealTime();
BENCHMARK(LateBound)->UseRealTime();
BENCHMARK(Typed)->UseRealTime();
BENCHMARK(LateBoundAmongObjects)->Arg(1000)->UseRealTime();

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return EXIT_FAILURE;
    if (sd_bus_open_user(&bus) < 0) {
        std::fprintf(stderr, "calls: there is no bus\n");
        return EXIT_FAILURE;
    }
    try {
        Held();
        benchmark::RunSpecifiedBenchmarks();
        Held().Release();
        sd_bus_flush_close_unref(bus);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "calls: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
