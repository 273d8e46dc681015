// Starts a program, and measures the time until the display paints its first window, and its memory then.
//
//   first-paint [PROGRAM [ARGUMENT...]]
//
// Without a program, the bus starts the add-in, and the time runs from the call that creates it. Prints
// milliseconds, resident KiB, proportional KiB.
#include <fstream>
#include <string>
#include <thread>

#include "Bus.h"
#include "Display.h"
#include "Measure.h"
#include "Program.h"

namespace {

constexpr std::chrono::milliseconds rest{500};  // all that a start does is over by then

void MeasureStart(char** command) {
    bench::Display display;
    const bench::Bus bus = bench::OpenBus();
    const auto start = bench::Display::Clock::now();
    std::optional<bench::Program> program;
    bench::Reference addIn;
    if (*command)
        program.emplace(command);
    else
        addIn = bench::Open(bus.get());
    const std::chrono::duration<double, std::milli> time = display.PaintedAt(display.WaitForPaint()) - start;
    std::this_thread::sleep_for(rest);
    const pid_t process = program ? program->Id() : bench::ProcessOf(bus.get(), addIn);
    std::ifstream rollup("/proc/" + std::to_string(process) + "/smaps_rollup");
    double resident = 0, proportional = 0;
    for (std::string word; rollup >> word;) {
        if (word == "Rss:") rollup >> resident;
        if (word == "Pss:") rollup >> proportional;
    }
    bench::PrintRun<3>({time.count(), resident, proportional});
}

}  // namespace

int main(int, char** arguments) {
    return bench::Measure([&] { MeasureStart(arguments + 1); });
}
