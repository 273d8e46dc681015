#include "platform/forms/InputGate.h"

#include <utility>

#include "platform/runtime/RuntimeError.h"

namespace platform::forms {

class InputGate::HoldHandle : public Handle {
  public:
    explicit HoldHandle(InputGate& gate) : gate_(gate) { ++gate_.holds_; }
    ~HoldHandle() override { gate_.DropHold(); }

  private:
    InputGate& gate_;
};

HandleRef InputGate::Hold() {
    return std::make_unique<HoldHandle>(*this);
}

void InputGate::DropHold() {
    if (--holds_ == 0 && !waiting_.empty()) DeliverLater();
}

// Input that arises while a piece is being delivered is part of that piece, and doesn't queue after the rest.
bool InputGate::IsOpen() const {
    return holds_ == 0 && (waiting_.empty() || isDelivering_);
}

Verdict InputGate::Admit(Input input) {
    if (input.isRefused()) return Verdict::Refused;
    if (IsOpen()) return Verdict::Accepted;
    waiting_.push_back(std::move(input));
    return Verdict::Waits;
}

Verdict InputGate::Take(const Input& input) {
    const Verdict verdict = Admit(input);
    if (verdict == Verdict::Accepted) Guard(input.carryOut);
    return verdict;
}

void InputGate::DeliverLater() {
    delivery_ = scheduler_.After(Milliseconds(0), [this] { DeliverNext(); });
}

void InputGate::DeliverNext() {
    if (holds_ > 0 || waiting_.empty()) return;
    const Input next = std::move(waiting_.front());
    waiting_.pop_front();
    if (!waiting_.empty()) DeliverLater();
    if (next.isRefused()) return;
    const bool outer = std::exchange(isDelivering_, true);
    Guard(next.carryOut);
    isDelivering_ = outer;
}

}  // namespace platform::forms
