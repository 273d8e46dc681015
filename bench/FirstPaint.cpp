// Starts a program, and measures the time until the display paints its first window, and its memory then.
//
//   first-paint PROGRAM [ARGUMENT...]
//   first-paint --create CLASS EXCHANGE
//
// In the second form the bus starts the server of CLASS, and the time runs from the call that creates the
// object. Prints milliseconds, private KiB, shared KiB.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "Bus.h"
#include "Display.h"
#include "Program.h"

namespace {

using Clock = bench::Display::Clock;
using namespace std::chrono_literals;

struct Memory {
    long exclusive = 0, shared = 0;  // KiB
};

Memory MemoryOf(pid_t process) {
    std::ifstream rollup("/proc/" + std::to_string(process) + "/smaps_rollup");
    Memory memory;
    for (std::string line; std::getline(rollup, line);) {
        std::istringstream words(line);
        std::string name;
        long value = 0;
        if (!(words >> name >> value)) continue;
        if (name.starts_with("Private_")) memory.exclusive += value;
        if (name.starts_with("Shared_") && name != "Shared_Hugetlb:") memory.shared += value;
    }
    return memory;
}

// Reads the memory once the program is idle, i.e. its processor time no longer grows.
Memory MemoryAtRest(pid_t process) {
    const auto used = [&] {
        std::ifstream stat("/proc/" + std::to_string(process) + "/schedstat");
        long long nanoseconds = 0;
        stat >> nanoseconds;
        return nanoseconds;
    };
    const auto end = Clock::now() + 3s;
    for (long long before = -1, now = used(); Clock::now() < end && now != before; now = used()) {
        before = now;
        std::this_thread::sleep_for(150ms);
    }
    return MemoryOf(process);
}

// Creates the class and shows its dialog for an exchange, without a host object.
bench::Reference Open(sd_bus* bus, const char* className, const char* exchange) {
    const bench::Reference addIn = bench::Create(bus, className);
    bench::Invoke(bus, addIn, "RegisterPBX", bench::Method, "av", 3, "s", exchange, "(so)", "", "/", "n", 1);
    bench::SetVisible(bus, addIn, true);
    return addIn;
}

void Print(Clock::time_point start, Clock::time_point painted, pid_t process) {
    const Memory memory = MemoryAtRest(process);
    const std::chrono::duration<double, std::milli> time = painted - start;
    std::printf("%.2f %ld %ld\n", time.count(), memory.exclusive, memory.shared);
}

Clock::time_point WaitForPaint(bench::Display& display) {
    return display.PaintedAt(display.WaitForPaint());
}

void MeasureProgram(char** command) {
    bench::Display display;
    const auto start = Clock::now();
    const bench::Program program(command);
    Print(start, WaitForPaint(display), program.Id());
}

void MeasureCreation(const char* className, const char* exchange) {
    bench::Display display;
    const bench::Bus bus = bench::OpenBus();
    const auto start = Clock::now();
    const bench::Reference addIn = Open(bus.get(), className, exchange);
    const auto painted = WaitForPaint(display);
    Print(start, painted, bench::ProcessOf(bus.get(), addIn));
}

}  // namespace

int main(int argc, char** argv) {
    const std::string first = argc > 1 ? argv[1] : "";
    try {
        if (first == "--create" && argc == 4)
            MeasureCreation(argv[2], argv[3]);
        else if (argc > 1 && first[0] != '-')
            MeasureProgram(argv + 1);
        else
            throw std::runtime_error("usage: first-paint PROGRAM [ARGUMENT...] | --create CLASS EXCHANGE");
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "first-paint: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
