// How often the add-in wakes up and paints while the operator does nothing.
//
//   idle TIMES BARE-DIALOG
//
// Watches each of four states for TIMES spans, and prints a line for each span: the state, then wake-ups and
// paints per second. "following": the dialog shows the PC's time. "hidden": the same, but hidden. "still":
// the dialog shows a fixed time. "bare": another program shows the PC's time, and does nothing else.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "Dialog.h"
#include "Host.h"
#include "Program.h"

namespace {

using namespace std::chrono_literals;

constexpr auto span = 2s, rest = 1s;

// How often its threads went to sleep voluntarily, which is how often they woke up.
long WakeUps(pid_t process) {
    constexpr std::string_view field = "voluntary_ctxt_switches:";
    long total = 0;
    for (const auto& thread :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        std::ifstream status(thread.path() / "status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with(field)) total += std::stol(line.substr(field.size()));
    }
    return total;
}

void Watch(const char* state, int spans, pid_t process, bench::Dialog& dialog, xcb_window_t window) {
    dialog.Rest(rest);  // until the change of state has settled
    for (int i = 0; i < spans; ++i) {
        const long wakeUps = WakeUps(process), paints = dialog.Screen().Paints(window);
        dialog.Rest(span);
        const double seconds = std::chrono::duration<double>(span).count();
        std::printf("%s %.2f %.2f\n", state, static_cast<double>(WakeUps(process) - wakeUps) / seconds,
                    static_cast<double>(dialog.Screen().Paints(window) - paints) / seconds);
    }
}

void WatchAll(int spans, char* const* bareCommand) {
    bench::Host host(bench::Host::Manner::Refuses);
    bench::Dialog dialog(host);
    const auto watch = [&, process = bench::ProcessOf(host.Connection(), host.AddIn())](const char* state) {
        Watch(state, spans, process, dialog, dialog.Window());
    };
    watch("following");
    dialog.SetVisible(false);
    watch("hidden");
    dialog.SetVisible(true);
    dialog.Click(bench::trackTimeBox);
    watch("still");
    const bench::Program bare(bareCommand);
    const xcb_window_t window = dialog.NextWindow();
    Watch("bare", spans, bare.Id(), dialog, window);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 3) throw std::runtime_error("usage: idle TIMES BARE-DIALOG");
        WatchAll(std::atoi(argv[1]), argv + 2);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "idle: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
