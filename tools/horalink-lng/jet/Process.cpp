#include "jet/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "common/Fault.h"

extern "C" char** environ;

namespace lng {

namespace {

constexpr int silenceLimit = 60000;         // milliseconds
constexpr rlim_t memoryLimit = 1UL << 30U;  // bytes
constexpr rlim_t processorLimit = 600;      // seconds

class Pipe {
  public:
    Pipe() {
        if (pipe2(ends_.data(), O_CLOEXEC) != 0) throw tools::Fault("no pipe can be made");
    }
    ~Pipe() {
        CloseEnd(0);
        CloseEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int Reading() const { return ends_[0]; }
    int Writing() const { return ends_[1]; }
    void CloseEnd(std::size_t end) {
        if (ends_.at(end) >= 0) close(ends_.at(end));
        ends_.at(end) = -1;
    }

  private:
    std::array<int, 2> ends_{-1, -1};
};

// Texts in UTF-8 whatever the user's settings are, and none of the settings that change the tools' output.
std::vector<std::string> Environment() {
    std::vector<std::string> variables{"LC_ALL=C.UTF-8"};
    for (char** variable = environ; *variable; ++variable) {
        const std::string text = *variable;
        if (!text.starts_with("LC_") && !text.starts_with("LANG") && !text.starts_with("MDB"))
            variables.push_back(text);
    }
    return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

class Child {
  public:
    explicit Child(std::vector<std::string> words) : name_(words.front()) {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, output_.Writing(), STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, errors_.Writing(), STDERR_FILENO);
        std::vector<std::string> variables = Environment();
        const int failure = posix_spawnp(&id_, words.front().c_str(), &actions, nullptr,
                                         Pointers(words).data(), Pointers(variables).data());
        posix_spawn_file_actions_destroy(&actions);
        if (failure == ENOENT)
            throw tools::Fault(name_ + " is not installed; it comes with the package mdbtools");
        if (failure != 0)
            throw tools::Fault(name_ + " can't be started: " + std::generic_category().message(failure));
        Limit(RLIMIT_AS, memoryLimit);
        Limit(RLIMIT_CPU, processorLimit);
        output_.CloseEnd(1);
        errors_.CloseEnd(1);
    }
    ~Child() {
        if (id_ > 0) End();
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    ProcessResult Finish(std::size_t limit) {
        ProcessResult result;
        std::array<pollfd, 2> sources{{{output_.Reading(), POLLIN, 0}, {errors_.Reading(), POLLIN, 0}}};
        std::array<std::string*, 2> texts{&result.output, &result.errors};
        while (sources[0].fd >= 0 || sources[1].fd >= 0) {
            const int ready = poll(sources.data(), sources.size(), silenceLimit);
            if (ready == 0 || result.output.size() + result.errors.size() > limit)
                throw tools::Fault(name_ + " does not come to an end; the file is damaged");
            for (std::size_t i = 0; i < sources.size(); ++i)
                if (ready > 0 && sources.at(i).revents != 0 && !Read(sources.at(i).fd, *texts.at(i)))
                    sources.at(i).fd = -1;
        }
        result.status = Wait();
        return result;
    }

  private:
    // A damaged file can make a program fill the memory, also when nobody is left to end it.
    void Limit(__rlimit_resource resource, rlim_t most) const {
        const rlimit limit{most, most};
        prlimit(id_, resource, &limit, nullptr);
    }

    static bool Read(int descriptor, std::string& text) {
        std::array<char, 65536> buffer;
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
        return count > 0 || (count < 0 && errno == EINTR);
    }

    int Wait() {
        int status = 0;
        while (waitpid(id_, &status, 0) < 0 && errno == EINTR) continue;
        id_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    void End() {
        kill(id_, SIGKILL);
        Wait();
    }

    std::string name_;
    Pipe output_, errors_;
    pid_t id_ = 0;
};

}  // namespace

ProcessResult RunProcess(const std::vector<std::string>& words, std::size_t limit) {
    return Child(words).Finish(limit);
}

}  // namespace lng
