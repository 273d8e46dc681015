// A started program, killed with the object.
#pragma once

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace bench {

class Program {
  public:
    // `command` ends with a null pointer. Raises std::runtime_error if it can't be started.
    explicit Program(char* const* command) {
        if (posix_spawnp(&process_, command[0], nullptr, nullptr, command, environ) != 0)
            throw std::runtime_error(std::string(command[0]) + " can't be started");
    }
    ~Program() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t Id() const { return process_; }

  private:
    pid_t process_ = 0;
};

}  // namespace bench
