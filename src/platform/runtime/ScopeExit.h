// What has to happen however a scope is left.
#pragma once

#include <utility>

namespace platform {

template <class Action>
class ScopeExit {
  public:
    explicit ScopeExit(Action action) : action_(std::move(action)) {}
    ~ScopeExit() { action_(); }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;

  private:
    Action action_;
};

}  // namespace platform
