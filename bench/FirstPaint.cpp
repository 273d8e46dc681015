// Starts a program, and measures the time until the display paints its first window, and its memory then.
//
//   first-paint PROGRAM [ARGUMENT...]
//   first-paint --create
//
// In the second form the bus starts the add-in, and the time runs from the call that creates it. Prints
// milliseconds, resident KiB, proportional KiB.
#include <fstream>
#include <string>
#include <thread>

#include "Bus.h"
#include "Display.h"
#include "Measure.h"
#include "Program.h"

namespace {

using Clock = bench::Display::Clock;
constexpr std::chrono::milliseconds rest{500};  // all that a start does is over by then

void Print(Clock::time_point start, Clock::time_point painted, pid_t process) {
    std::this_thread::sleep_for(rest);
    std::ifstream rollup("/proc/" + std::to_string(process) + "/smaps_rollup");
    double resident = 0, proportional = 0;
    for (std::string word; rollup >> word;) {
        if (word == "Rss:") rollup >> resident;
        if (word == "Pss:") rollup >> proportional;
    }
    const std::chrono::duration<double, std::milli> time = painted - start;
    bench::PrintRun<3>({time.count(), resident, proportional});
}

void MeasureProgram(char** command) {
    bench::Display display;
    const auto start = Clock::now();
    const bench::Program program(command);
    Print(start, display.PaintedAt(display.WaitForPaint()), program.Id());
}

void MeasureCreation() {
    bench::Display display;
    const bench::Bus bus = bench::OpenBus();
    const auto start = Clock::now();
    const bench::Reference addIn = bench::Open(bus.get());
    const auto painted = display.PaintedAt(display.WaitForPaint());
    Print(start, painted, bench::ProcessOf(bus.get(), addIn));
}

}  // namespace

int main(int, char** arguments) {
    return bench::Measure([&] {
        if (std::string(arguments[1]) == "--create")
            MeasureCreation();
        else
            MeasureProgram(arguments + 1);
    });
}
