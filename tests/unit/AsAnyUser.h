// A part of a test as a user without root's rights.
#pragma once

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace platform {

// What `call` gives to a user who may list no directory that only its owner may.
inline bool AsAnyUser(const std::function<bool()>& call) {
    const pid_t child = fork();
    if (child == 0) {
        const bool isRoot = geteuid() == 0;
        const bool changed =
            !isRoot || (setgroups(0, nullptr) == 0 && setgid(65534) == 0 && setuid(65534) == 0);
        _exit(changed && call() ? 0 : 1);
    }
    int status = -1;
    return waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace platform
