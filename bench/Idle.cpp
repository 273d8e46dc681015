// How often a program wakes up while it shows the time and the operator does nothing.
//
//   idle RUNS TEXT-DIALOG
//
// Prints for each span of two seconds the wake-ups per second of the add-in and of the other dialog.
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "Bus.h"
#include "Display.h"
#include "Measure.h"
#include "Program.h"

namespace {

using namespace std::chrono_literals;

constexpr auto span = 2s, settling = 1s;

// How often its threads went to sleep voluntarily, which is how often they woke up.
double WakeUps(pid_t process) {
    double total = 0, threads = 0;
    for (const auto& thread :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        std::ifstream status(thread.path() / "status");
        for (std::string word; status >> word;)
            if (word == "voluntary_ctxt_switches:") status >> threads, total += threads;
    }
    return total;
}

void MeasureWakeUps(int runs, char** textDialog) {
    bench::Display display;
    const bench::Bus bus = bench::OpenBus();
    const pid_t addIn = bench::ProcessOf(bus.get(), bench::Open(bus.get()));
    display.WaitForPaint();
    const bench::Program floor(textDialog);
    display.WaitForPaint();
    std::this_thread::sleep_for(settling);
    for (; runs > 0; --runs) {
        const double before = WakeUps(addIn), floorBefore = WakeUps(floor.Id());
        std::this_thread::sleep_for(span);
        const double seconds = std::chrono::duration<double>(span).count();
        bench::PrintRun<2>(
            {(WakeUps(addIn) - before) / seconds, (WakeUps(floor.Id()) - floorBefore) / seconds});
    }
}

}  // namespace

int main(int, char** arguments) {
    return bench::Measure([&] { MeasureWakeUps(std::atoi(arguments[1]), arguments + 2); });
}
