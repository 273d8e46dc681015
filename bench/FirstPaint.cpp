// Starts a program and tells how long it takes until its first window has been painted, as the display sees
// it, and what memory it has then.
//
//   first-paint PROGRAM [ARGUMENT...]
//   first-paint --create CLASS EXCHANGE
//
// The second form has the bus start the server of CLASS, and the time runs from the call that creates the
// object. Prints milliseconds, private KiB, shared KiB.
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto limit = 20s;
// Smaller windows belong to a toolkit's own affairs (selections, the input method).
constexpr int smallestWidth = 200;

// Sees the windows of a display come up and get painted.
class Display {
  public:
    Display() : connection_(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(connection_)) throw std::runtime_error("there is no display");
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &mask);
        damageEvent_ = xcb_get_extension_data(connection_, &xcb_damage_id)->first_event;
        const auto version = xcb_damage_query_version(connection_, 1, 1);
        std::free(xcb_damage_query_version_reply(connection_, version, nullptr));
        xcb_flush(connection_);
    }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;
    ~Display() { xcb_disconnect(connection_); }

    // Waits until a window that came up has been painted.
    Clock::time_point WaitForPaint() {
        const auto end = Clock::now() + limit;
        while (Clock::now() < end) {
            while (const auto event = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>(
                       xcb_poll_for_event(connection_), &std::free))
                if (IsFirstPaint(*event)) return Clock::now();
            pollfd display{xcb_get_file_descriptor(connection_), POLLIN, 0};
            poll(&display, 1, 100);
        }
        throw std::runtime_error("no window has been painted");
    }

  private:
    // A window is watched from its creation on, so that no paint can be missed; what is painted before it
    // is on the screen is the display's own doing.
    bool IsFirstPaint(const xcb_generic_event_t& event) {
        const int type = event.response_type & 0x7f;
        if (type == XCB_CREATE_NOTIFY) {
            const auto& created = reinterpret_cast<const xcb_create_notify_event_t&>(event);
            xcb_damage_create(connection_, xcb_generate_id(connection_), created.window,
                              XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
            xcb_flush(connection_);
        } else if (type == XCB_MAP_NOTIFY) {
            shown_.insert(reinterpret_cast<const xcb_map_notify_event_t&>(event).window);
        } else if (type == damageEvent_ + XCB_DAMAGE_NOTIFY) {
            const auto& damage = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
            return shown_.contains(damage.drawable) && damage.geometry.width >= smallestWidth;
        }
        return false;
    }

    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
    int damageEvent_ = 0;
    std::set<xcb_window_t> shown_;
};

pid_t Start(char** command) {
    pid_t process = 0;
    if (posix_spawnp(&process, command[0], nullptr, nullptr, command, environ) != 0)
        throw std::runtime_error(std::string(command[0]) + " can't be started");
    return process;
}

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

// Memory is read when the program has come to rest: its processor time doesn't grow any more.
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

class Bus {
  public:
    Bus() { Check(sd_bus_open_user(&bus_), "there is no bus"); }
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;
    ~Bus() { sd_bus_flush_close_unref(bus_); }

    // Creates the class and shows its dialog for an exchange.
    void Open(const char* className, const char* exchange) {
        sd_bus_message* created = nullptr;
        const char *owner = nullptr, *path = nullptr;
        Check(sd_bus_call_method(bus_, className, "/Factory", "org.velmora.Automation1.Factory",
                                 "CreateInstance", nullptr, &created, ""),
              "the class can't be created");
        Check(sd_bus_message_read(created, "(so)", &owner, &path), "the answer is no object");
        Invoke(owner, path, "RegisterPBX", 1, "av", 3, "s", exchange, "(so)", "", "/", "n", 1);
        Invoke(owner, path, "Visible", 4, "av", 1, "b", 1);
        owner_ = owner;
        sd_bus_message_unref(created);
    }

    pid_t Process() const {
        sd_bus_creds* credentials = nullptr;
        pid_t process = 0;
        Check(sd_bus_get_name_creds(bus_, owner_.c_str(), SD_BUS_CREDS_PID, &credentials),
              "the server has gone");
        sd_bus_creds_get_pid(credentials, &process);
        sd_bus_creds_unref(credentials);
        return process;
    }

  private:
    static void Check(int result, const char* what) {
        if (result < 0) throw std::runtime_error(what);
    }

    template <typename... Arguments>
    void Invoke(const char* owner, const char* path, const char* member, int kind, const char* types,
                Arguments... arguments) {
        const std::string signature = std::string("sq") + types;
        Check(sd_bus_call_method(bus_, owner, path, "org.velmora.Automation1.Object", "Invoke", nullptr,
                                 nullptr, signature.c_str(), member, kind, arguments...),
              member);
    }

    sd_bus* bus_ = nullptr;
    std::string owner_;
};

void Print(Clock::time_point start, Clock::time_point painted, pid_t process) {
    const Memory memory = MemoryAtRest(process);
    const std::chrono::duration<double, std::milli> time = painted - start;
    std::printf("%.2f %ld %ld\n", time.count(), memory.exclusive, memory.shared);
}

void MeasureProgram(char** command) {
    Display display;
    const auto start = Clock::now();
    const pid_t process = Start(command);
    const auto painted = display.WaitForPaint();
    Print(start, painted, process);
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

void MeasureCreation(const char* className, const char* exchange) {
    Display display;
    Bus bus;
    const auto start = Clock::now();
    bus.Open(className, exchange);
    const auto painted = display.WaitForPaint();
    Print(start, painted, bus.Process());
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
