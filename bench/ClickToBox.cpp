// Measures from a click on the dialog to the resulting message box, with a host that answers at once. The
// floor is the same calls made alone, and a click to a box in a program without calls.
//
//   click-to-box RUNS TEXT-DIALOG
//
// Prints for each click, in milliseconds and without timer steps: click to painted box; calls alone, and the
// other program's click to box; first call to end of last call; the calls alone.
#include <future>

#include "Display.h"
#include "Host.h"
#include "Measure.h"
#include "Program.h"

namespace {

using bench::Check;
using bench::Display;
using bench::Host;
using Clock = Display::Clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr Milliseconds timerStep{100};
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

// Repeats the calls that the host received, over a connection of its own, one after the other.
Milliseconds Repeat(const std::vector<bench::Message>& calls, const char* host) {
    const bench::Bus bus = bench::OpenBus();
    std::vector<bench::Message> copies;
    for (const bench::Message& call : calls) {
        sd_bus_message* copy = nullptr;
        Check(sd_bus_message_new_method_call(bus.get(), &copy, host, sd_bus_message_get_path(call.get()),
                                             bench::objectInterface, "Invoke"),
              "no call");
        copies.emplace_back(copy, sd_bus_message_unref);
        Check(sd_bus_message_rewind(call.get(), 1), "no call");
        Check(sd_bus_message_copy(copy, call.get(), 1), "no call");
    }
    const auto start = Clock::now();
    for (const bench::Message& call : copies) {
        sd_bus_message* answer = nullptr;
        Check(sd_bus_call(bus.get(), call.get(), UINT64_MAX, nullptr, &answer), "a call failed");
        sd_bus_message_unref(answer);
    }
    return Clock::now() - start;
}

// The incoming calls, from a thread that does nothing else, while the host answers as before; and one call as
// the host makes when it calls back.
Milliseconds CallsAlone(Host& host) {
    const char* name = nullptr;
    Check(sd_bus_get_unique_name(host.Connection(), &name), "no name on the bus");
    host.SetIdle(true);
    auto incoming = std::async(std::launch::async, Repeat, std::cref(host.Calls()), name);
    host.ServeUntil([&] { return incoming.wait_for(Milliseconds(0)) == std::future_status::ready; });
    host.SetIdle(false);
    const auto start = Clock::now();
    Invoke(host.Connection(), host.AddIn(), "Visible", bench::Read, "av", 0);
    return incoming.get() + (Clock::now() - start);
}

Milliseconds FloorsWay(Host& host, Display& display, xcb_window_t window) {
    const auto click = display.Click(window, buttonX, buttonY);
    const xcb_window_t box = NextWindow(host, display);
    Await(host, display, [&] { return !display.IsShown(box); });
    return display.PaintedAt(box) - click - timerStep;
}

void MeasureLookup(Host& host, Display& display, xcb_window_t dialog, Milliseconds floorsWay) {
    host.ForgetCalls();
    const auto click = display.Click(dialog, buttonX, buttonY);
    host.ServeUntil([&] { return !host.Calls().empty(); });
    const auto called = Clock::now();
    host.ServeUntil([&] { return host.OwesAnswer(); });
    host.AnswerRequest();
    const Milliseconds exchange = Clock::now() - called;
    const xcb_window_t box = NextWindow(host, display);
    const Milliseconds way = display.PaintedAt(box) - click - 2 * timerStep;
    display.PressEnter();
    Await(host, display, [&] { return !display.IsShown(box); });
    const Milliseconds calls = CallsAlone(host);
    bench::PrintRun<4>({way.count(), (calls + floorsWay).count(), exchange.count(), calls.count()});
}

void MeasureLookups(int runs, char** textDialog) {
    Display display;
    Host host;
    const xcb_window_t dialog = NextWindow(host, display);
    const bench::Program floor(textDialog);
    const xcb_window_t floorsDialog = NextWindow(host, display);
    for (; runs > 0; --runs) MeasureLookup(host, display, dialog, FloorsWay(host, display, floorsDialog));
}

}  // namespace

int main(int, char** arguments) {
    return bench::Measure([&] { MeasureLookups(std::atoi(arguments[1]), arguments + 2); });
}
