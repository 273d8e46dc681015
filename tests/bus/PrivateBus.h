// A bus of the test's own, with a daemon that knows nothing of the machine.
#pragma once

#include <sys/types.h>

#include <string>

namespace platform::test {

class PrivateBus {
  public:
    // Starts the daemon and makes it the session bus of the environment.
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    // Has the daemon start `command` for a name. Only once someone has connected: until then the signal to
    // read its directories anew would end the daemon.
    void AddService(const std::string& name, const std::string& command);
    void Stop();
    // Keeps the daemon from reading and writing, and lets it go on.
    void Freeze();
    void Thaw();

    // Leaves all connections of this process room for little at a time, so that a text of half a megabyte
    // can't leave at once.
    static void Narrow();

  private:
    std::string directory_;
    pid_t daemon_ = 0;
};

}  // namespace platform::test
