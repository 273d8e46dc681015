// The cost of a call to the running add-in; the floor is a Ping to the same process by the same library.
//
//   calls RUNS
//
// Prints for each run the microseconds of a late-bound read, of a typed one and of a Ping.
#include "Bus.h"
#include "Measure.h"

namespace {

constexpr int rounds = 1000;

void MeasureCalls(int runs) {
    const bench::Bus connection = bench::OpenBus();
    sd_bus* const bus = connection.get();
    const bench::Reference addIn = bench::Create(bus, bench::addInClass);
    const auto late = [&] { bench::Invoke(bus, addIn, "Visible", bench::Read, "av", 0); };
    const auto typed = [&] {
        bench::Ask(bus, addIn, "org.freedesktop.DBus.Properties", "Get", "ss", "Horalink10013._cOLELayer",
                   "Visible");
    };
    const auto ping = [&] { bench::Ask(bus, addIn, "org.freedesktop.DBus.Peer", "Ping"); };
    for (; runs > 0; --runs) bench::PrintRun(bench::TimesOf(rounds, late, typed, ping));
}

}  // namespace

int main(int, char** arguments) {
    return bench::Measure([&] { MeasureCalls(std::atoi(arguments[1])); });
}
