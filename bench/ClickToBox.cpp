// Measures from a click on the dialog to the resulting message box, with a host that answers at once. The
// floor is the same calls made alone, and a click to a box in a program without calls.
//
//   click-to-box TIMES BARE-DIALOG
//
// Prints a line for each click, in milliseconds and without timer steps: click to painted box, thereof first
// call to end of last call, the calls alone, the other program's click to box.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <thread>

#include "Dialog.h"
#include "Host.h"
#include "Program.h"

namespace {

using bench::Check;
using bench::Host;
using Clock = bench::Display::Clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr Milliseconds timerStep{100};

// Repeats the calls that the host received, over its own connection, one after the other.
class Replay {
  public:
    explicit Replay(const Host& host) : bus_(bench::OpenBus()) {
        const char* name = nullptr;
        Check(sd_bus_get_unique_name(host.Connection(), &name), "no name on the bus");
        for (const bench::Message& call : host.Calls()) calls_.push_back(Copy(call.get(), name));
    }
    void Run() {
        for (const bench::Message& call : calls_) {
            sd_bus_message* answer = nullptr;
            Check(sd_bus_call(bus_.get(), call.get(), UINT64_MAX, nullptr, &answer), "a call failed");
            sd_bus_message_unref(answer);
        }
    }

  private:
    bench::Message Copy(sd_bus_message* call, const char* destination) const {
        sd_bus_message* copy = nullptr;
        Check(sd_bus_message_new_method_call(bus_.get(), &copy, destination, sd_bus_message_get_path(call),
                                             bench::objectInterface, "Invoke"),
              "no call");
        Check(sd_bus_message_rewind(call, 1), "no call");
        Check(sd_bus_message_copy(copy, call, 1), "no call");
        return bench::Message(copy, sd_bus_message_unref);
    }

    bench::Bus bus_;
    std::vector<bench::Message> calls_;
};

// The incoming calls, from a thread that does nothing else, while the host answers as before.
Milliseconds IncomingAlone(Host& host) {
    Replay replay(host);
    std::atomic<bool> isDone = false;
    std::exception_ptr failure;
    host.SetIdle(true);
    Milliseconds time{};
    std::thread caller([&] {
        try {
            const auto start = Clock::now();
            replay.Run();
            time = Clock::now() - start;
        } catch (...) {
            failure = std::current_exception();
        }
        isDone = true;
    });
    while (!isDone)
        if (!host.Serve()) sd_bus_wait(host.Connection(), 1000);
    caller.join();
    host.SetIdle(false);
    if (failure) std::rethrow_exception(failure);
    return time;
}

// As many calls as the host makes: it reads two fields of the record, and calls back.
Milliseconds OutgoingAlone(Host& host) {
    const auto start = Clock::now();
    for (int i = 0; i < 3; ++i) Invoke(host.Connection(), host.AddIn(), "Visible", bench::Read, "av", 0);
    return Clock::now() - start;
}

Milliseconds BareWay(bench::Dialog& dialog, const bench::Program& bare, xcb_window_t window) {
    const auto click = dialog.ClickOn(window, bench::lookupButton);
    const xcb_window_t box = dialog.NextWindow();
    const Milliseconds way = dialog.Screen().PaintedAt(box) - click - timerStep;
    bare.Send('x');
    dialog.WaitUntilClosed(box);
    return way;
}

void Measure(Host& host, bench::Dialog& dialog, Milliseconds bareWay) {
    host.ForgetCalls();
    const auto click = dialog.Click(bench::lookupButton);
    host.ServeUntil([&] { return !host.Calls().empty(); });
    const auto called = Clock::now();
    host.ServeUntil([&] { return host.OwesAnswer(); });
    host.AnswerRequest();
    const auto answered = Clock::now();
    const xcb_window_t box = dialog.NextWindow();
    const auto painted = dialog.Screen().PaintedAt(box);
    dialog.CloseBox(box);
    const Milliseconds way = painted - click - 2 * timerStep, exchange = answered - called;
    const Milliseconds calls = IncomingAlone(host) + OutgoingAlone(host);
    std::printf("%.3f %.3f %.3f %.3f\n", way.count(), exchange.count(), calls.count(), bareWay.count());
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 3) throw std::runtime_error("usage: click-to-box TIMES BARE-DIALOG");
        Host host(Host::Manner::Takes);
        bench::Dialog dialog(host);
        const bench::Program bare(argv + 2);
        const xcb_window_t window = dialog.NextWindow();
        for (int left = std::atoi(argv[1]); left > 0; --left)
            Measure(host, dialog, BareWay(dialog, bare, window));
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "click-to-box: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
