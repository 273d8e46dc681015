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
        int ends[2];
        if (pipe(ends) != 0) throw std::runtime_error("no pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
        posix_spawn_file_actions_addclose(&actions, ends[1]);
        const int result = posix_spawnp(&process_, command[0], &actions, nullptr, command, environ);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[0]);
        input_ = ends[1];
        if (result != 0) throw std::runtime_error(std::string(command[0]) + " can't be started");
    }
    ~Program() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        close(input_);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t Id() const { return process_; }
    // Sends one character to its standard input.
    void Send(char character) const {
        if (write(input_, &character, 1) != 1) throw std::runtime_error("the program has ended");
    }

  private:
    pid_t process_ = 0;
    int input_ = -1;
};

}  // namespace bench
