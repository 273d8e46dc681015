// A bus of the test's own, with a daemon that knows nothing of the machine.
#pragma once

#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <cstdio>

#include "../unit/TemporaryDirectory.h"

namespace platform::test {

class PrivateBus {
  public:
    // Starts the daemon and makes it the session bus of the environment.
    PrivateBus() {
        const std::string address = "unix:path=" + (directory_.Path() / "socket").string();
        const auto file = directory_.Write(
            "bus.conf", "<busconfig><listen>" + address + "</listen><policy context='default'>" +
                            "<allow send_destination='*'/><allow receive_sender='*'/><allow own='*'/>" +
                            "</policy></busconfig>");
        const std::string daemon = "exec " DBUS_DAEMON " --nofork --print-pid --config-file=" + file.string();
        output_ = popen((daemon + " 2>/dev/null").c_str(), "r");
        // The number comes once the daemon listens.
        if (std::fscanf(output_, "%d", &daemon_) != 1)
            throw std::runtime_error("the bus daemon did not start");
        setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    }
    ~PrivateBus() { Stop(); }

    void Stop() {
        if (!output_) return;
        kill(daemon_, SIGKILL);
        pclose(std::exchange(output_, nullptr));
    }
    // Keeps the daemon from reading and writing, and leaves all connections of this process room for little
    // at a time, so that a text of half a megabyte can't leave at once.
    void Freeze() {
        const int size = 4096;
        for (int descriptor = 3; descriptor < 64; ++descriptor)
            setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
        kill(daemon_, SIGSTOP);
        waitpid(daemon_, nullptr, WUNTRACED);
    }
    void Thaw() { kill(daemon_, SIGCONT); }

  private:
    TemporaryDirectory directory_;
    std::FILE* output_ = nullptr;
    pid_t daemon_ = 0;
};

}  // namespace platform::test
