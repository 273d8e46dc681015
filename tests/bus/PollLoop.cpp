#include "PollLoop.h"

#include <poll.h>

#include <algorithm>
#include <stdexcept>

namespace platform::test {

namespace {

constexpr Milliseconds longestWait{20000};
constexpr Milliseconds longestCondition{10000};

class Hold : public Handle {
  public:
    explicit Hold(std::shared_ptr<int> holds) : holds_(std::move(holds)) { ++*holds_; }
    ~Hold() override { --*holds_; }

  private:
    std::shared_ptr<int> holds_;
};

}  // namespace

// Switches its entry off; the loop sweeps it out.
template <class Entry>
class PollLoop::Holder : public Handle {
  public:
    explicit Holder(std::shared_ptr<Entry> entry) : entry_(std::move(entry)) {}
    ~Holder() override { entry_->isOn = false; }

  private:
    std::shared_ptr<Entry> entry_;
};

HandleRef PollLoop::After(Milliseconds delay, std::function<void()> call) {
    return AddTimer(delay, Milliseconds(0), std::move(call));
}

HandleRef PollLoop::Every(Milliseconds interval, std::function<void()> call) {
    return AddTimer(interval, interval, std::move(call));
}

HandleRef PollLoop::AddTimer(Milliseconds delay, Milliseconds interval, std::function<void()> call) {
    timers_.push_back(std::make_shared<Timer>(Timer{Clock::now() + delay, interval, std::move(call)}));
    return std::make_unique<Holder<Timer>>(timers_.back());
}

HandleRef PollLoop::WhenReadable(int descriptor, std::function<void()> call) {
    return AddWatch(descriptor, POLLIN, std::move(call));
}

HandleRef PollLoop::WhenWritable(int descriptor, std::function<void()> call) {
    return AddWatch(descriptor, POLLOUT, std::move(call));
}

HandleRef PollLoop::AddWatch(int descriptor, short events, std::function<void()> call) {
    watches_.push_back(std::make_shared<Watch>(Watch{descriptor, events, std::move(call)}));
    return std::make_unique<Holder<Watch>>(watches_.back());
}

HandleRef PollLoop::HoldInput() {
    return std::make_unique<Hold>(holds_);
}

void PollLoop::Run() {
    while (!quit_) ServeOnce();
    quit_ = false;
}

void PollLoop::ServeOnce() {
    if (!Round(longestWait)) throw std::logic_error("the loop waits for something that never happens");
}

bool PollLoop::ServeUntil(const std::function<bool()>& condition) {
    const auto limit = Clock::now() + longestCondition;
    while (!condition() && Clock::now() < limit) Round(Milliseconds(50));
    return condition();
}

void PollLoop::ServeReady() {
    while (Round(Milliseconds(0))) continue;
}

bool PollLoop::Round(Milliseconds longest) {
    std::erase_if(timers_, [](const auto& timer) { return !timer->isOn; });
    std::erase_if(watches_, [](const auto& watch) { return !watch->isOn; });
    const bool served = ServeDescriptors(UntilNextTimer(longest));
    return ServeTimers() || served;
}

Milliseconds PollLoop::UntilNextTimer(Milliseconds longest) const {
    Milliseconds wait = longest;
    for (const auto& timer : timers_) {
        const auto left = std::chrono::ceil<Milliseconds>(timer->due - Clock::now());
        wait = std::min(wait, std::max(left, Milliseconds(0)));
    }
    return wait;
}

bool PollLoop::ServeDescriptors(Milliseconds wait) {
    // What is added or ends while a round is served counts from the next one on, or at once.
    const std::vector<std::shared_ptr<Watch>> watches(watches_.begin(), watches_.end());
    std::vector<pollfd> descriptors;
    for (const auto& watch : watches) descriptors.push_back({watch->descriptor, watch->events, 0});
    if (poll(descriptors.data(), descriptors.size(), static_cast<int>(wait.count())) <= 0) return false;
    for (std::size_t i = 0; i < watches.size(); ++i) {
        if ((descriptors[i].revents & POLLNVAL) && watches[i]->isOn)
            throw std::logic_error("a closed descriptor is still watched");
        if (descriptors[i].revents && watches[i]->isOn) watches[i]->call();
    }
    return true;
}

bool PollLoop::ServeTimers() {
    const auto now = Clock::now();
    const std::vector<std::shared_ptr<Timer>> timers(timers_.begin(), timers_.end());
    bool served = false;
    for (const auto& timer : timers) {
        if (!timer->isOn || timer->due > now) continue;
        served = true;
        timer->isOn = timer->interval.count() > 0;
        timer->due = now + timer->interval;
        timer->call();
    }
    return served;
}

}  // namespace platform::test
