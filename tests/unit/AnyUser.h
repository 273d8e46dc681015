// While it lives, a test that root runs has the rights of any user.
#pragma once

#include <unistd.h>

#include <stdexcept>

namespace platform {

class AnyUser {
  public:
    AnyUser() {
        if (isRoot_ && seteuid(65534) != 0) throw std::runtime_error("root stays root");
    }
    ~AnyUser() {
        if (isRoot_ && seteuid(0) != 0) std::terminate();
    }
    AnyUser(const AnyUser&) = delete;
    AnyUser& operator=(const AnyUser&) = delete;

  private:
    const bool isRoot_ = geteuid() == 0;
};

}  // namespace platform
