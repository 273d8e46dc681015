// Runs an action when a scope is left, normally or by an exception.
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
