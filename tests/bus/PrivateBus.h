// A bus of the test's own, with a daemon that knows nothing of the machine.
#pragma once

#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

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
        const std::string configuration = "--config-file=" + file.string();
        int output[2];
        if (pipe(output) != 0) throw std::runtime_error("no pipe");
        daemon_ = fork();
        if (daemon_ == 0) {
            dup2(output[1], STDOUT_FILENO);
            freopen("/dev/null", "w", stderr);
            execlp(DBUS_DAEMON, DBUS_DAEMON, "--nofork", "--print-address", configuration.c_str(), nullptr);
            _exit(127);
        }
        close(output[1]);
        // The address comes once the daemon listens.
        char first = 0;
        const bool listens = read(output[0], &first, 1) == 1;
        close(output[0]);
        if (!listens) throw std::runtime_error("the bus daemon did not start");
        setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    }
    ~PrivateBus() { Stop(); }

    void Stop() {
        if (daemon_ == 0) return;
        kill(daemon_, SIGKILL);
        waitpid(daemon_, nullptr, 0);
        daemon_ = 0;
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
    pid_t daemon_ = 0;
};

}  // namespace platform::test
