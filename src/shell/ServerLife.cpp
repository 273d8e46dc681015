#include "shell/ServerLife.h"

#include "platform/runtime/ScopeExit.h"

namespace horalink {

using namespace platform;

namespace {

constexpr Milliseconds idleLimit{60000};

}  // namespace

ServerLife::ServerLife(Automation& automation, Scheduler& scheduler, std::function<void()> end)
    : automation_(automation), scheduler_(scheduler), end_(std::move(end)) {}

void ServerLife::Serve(std::string_view className, std::function<ObjectRef()> create) {
    automation_.WhenInUse([this](bool inUse) {
        isInUse_ = inUse;
        WatchIdleness();
    });
    automation_.ServeClass(className, [this, create = std::move(create)] { return Grant(create); });
    WatchIdleness();
}

// A creation sent before the name was released may arrive later.
ObjectRef ServerLife::Grant(const std::function<ObjectRef()>& create) {
    if (isRetired_) throw BusyError();
    ++granting_;
    WatchIdleness();
    const ScopeExit over([this] {
        --granting_;
        WatchIdleness();
    });
    return create();
}

void ServerLife::Retire() {
    if (std::exchange(isRetired_, true)) return;
    automation_.StopServing();
}

// During a creation the operator may have a notice to read.
void ServerLife::WatchIdleness() {
    if (isInUse_ || granting_ > 0)
        idle_.reset();
    else if (!idle_)
        idle_ = scheduler_.After(idleLimit, end_);
}

}  // namespace horalink
