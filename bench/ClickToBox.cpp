// Measures from a click on the dialog to the resulting message box, with a host that answers at once.
//
//   click-to-box RUNS BARE-LOOKUP
//
// Prints for each click, in milliseconds: click to painted box without timer steps, of the add-in and of the
// floor; first call to end of last call, of both.
#include "Display.h"
#include "Host.h"
#include "Measure.h"
#include "Program.h"

namespace {

using bench::Display;
using bench::Host;
using Clock = Display::Clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr Milliseconds timerSteps{2 * 100};          // the same in both programs
constexpr std::int16_t buttonX = 47, buttonY = 269;  // in both dialogs

// Serves the host until a condition of the display holds.
void Await(Host& host, Display& display, const std::function<bool()>& condition) {
    const auto look = [&] {
        display.Look();
        return condition();
    };
    host.ServeUntil(look, display.Descriptor());
}

xcb_window_t NextWindow(Host& host, Display& display) {
    std::optional<xcb_window_t> next;
    Await(host, display, [&] { return (next = display.TakePainted()).has_value(); });
    return *next;
}

struct Lookup {
    Milliseconds way, exchange;
};

Lookup MeasureLookup(Host& host, Display& display, xcb_window_t dialog,
                     const std::function<void()>& serveCalls) {
    host.ForgetCalls();
    const auto click = display.Click(dialog, buttonX, buttonY);
    host.ServeUntil([&] { return host.Calls() > 0; });
    const auto called = Clock::now();
    serveCalls();
    const Milliseconds exchange = Clock::now() - called;
    const xcb_window_t box = NextWindow(host, display);
    const Milliseconds way = display.PaintedAt(box) - click - timerSteps;
    Await(host, display, [&] { return display.HasFocus(box); });
    display.PressEnter();
    Await(host, display, [&] { return !display.IsShown(box); });
    return {way, exchange};
}

// The first lookup of each program warms it up. The add-in's also counts the calls that the floor has to
// make.
void MeasureLookups(int runs, char* bareLookup) {
    Display display;
    Host host;
    const xcb_window_t dialog = NextWindow(host, display);
    const auto answer = [&] {
        host.ServeUntil([&] { return host.OwesAnswer(); });
        host.AnswerRequest();
    };
    MeasureLookup(host, display, dialog, answer);
    const int calls = host.Calls();
    const auto serve = [&] { host.ServeUntil([&] { return host.Calls() == calls; }); };

    std::string name = host.Name(), count = std::to_string(calls);
    char* const command[] = {bareLookup, name.data(), count.data(), nullptr};
    const bench::Program floor(command);
    const xcb_window_t floorsDialog = NextWindow(host, display);
    MeasureLookup(host, display, floorsDialog, serve);
    for (; runs > 0; --runs) {
        const Lookup least = MeasureLookup(host, display, floorsDialog, serve);
        const Lookup whole = MeasureLookup(host, display, dialog, answer);
        bench::PrintRun<4>(
            {whole.way.count(), least.way.count(), whole.exchange.count(), least.exchange.count()});
    }
}

}  // namespace

int main(int, char** arguments) {
    return bench::Measure([&] { MeasureLookups(std::atoi(arguments[1]), arguments[2]); });
}
