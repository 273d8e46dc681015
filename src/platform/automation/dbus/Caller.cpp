#include "platform/automation/dbus/Caller.h"

#include "platform/automation/dbus/BusErrors.h"
#include "platform/runtime/ScopeExit.h"

namespace platform {

namespace {

constexpr Milliseconds retryInterval{200};

bool IsError(const MessageRef& answer) {
    return answer && sd_bus_message_is_method_error(answer.get(), nullptr) > 0;
}

}  // namespace

// A pending call. The connection keeps it alive until the answer arrives, a timer until it is retried.
class Caller::Outgoing : public std::enable_shared_from_this<Outgoing> {
  public:
    Outgoing(Caller& caller, MessageRef call, std::shared_ptr<void> kept)
        : caller_(caller), call_(std::move(call)), kept_(std::move(kept)) {}
    virtual ~Outgoing() = default;

    void Send() {
        caller_.connection_.SendCall(
            call_.get(), [self = shared_from_this()](const MessageRef& answer) { self->Take(answer); });
        Sent();
    }

  protected:
    virtual void Sent() {}
    virtual void Answered(const MessageRef& answer) = 0;
    virtual bool IsTriedAgain() = 0;

    void Retry() {
        retry_ = caller_.loop_.After(retryInterval, [self = shared_from_this()] {
            const HandleRef over = std::move(self->retry_);
            try {
                self->Send();
            } catch (const RuntimeError&) {
                // The connection is lost.
                self->Answered(nullptr);
            }
        });
    }
    // Passes on an answer that no routine is waiting for.
    static void Give(const Caller::Answered& taker, sd_bus_message* answer) {
        try {
            taker(answer);
        } catch (const RuntimeError&) {
            // There is no caller to report this to.
            return;
        }
    }

    Caller& caller_;
    HandleRef retry_;

  private:
    void Take(const MessageRef& answer) {
        if (IsError(answer) && IsBusy(answer.get()) && IsTriedAgain()) return Retry();
        Answered(answer);
    }

    MessageRef call_;
    std::shared_ptr<void> kept_;
};

class Caller::Awaited : public Outgoing {
  public:
    Awaited(Caller& caller, MessageRef call, std::shared_ptr<Patience> patience, std::shared_ptr<void> kept,
            Caller::Answered tooLate)
        : Outgoing(caller, std::move(call), std::move(kept)),
          patience_(std::move(patience)),
          tooLate_(std::move(tooLate)) {}

    bool IsOver() const { return isAnswered_ || patience_->IsGivenUp(); }
    // Ends the call, except that a late answer is still taken.
    void Stop() {
        isLate_ = !isAnswered_;
        retry_.reset();
        patience_->CallEnded();
    }
    // Raises 462 if there is no answer, and the error that an answer carries.
    MessageRef Answer() const {
        if (!isAnswered_) patience_->RequireOngoing();
        if (!answer_) throw RuntimeError(ErrorNumber::ServerGone, "the connection to the bus was lost");
        if (IsError(answer_)) throw ErrorOfAnswer(answer_.get());
        return answer_;
    }

  private:
    void Sent() override { patience_->CallSent(); }
    void Answered(const MessageRef& answer) override {
        if (isLate_) return answer && !IsError(answer) ? Give(tooLate_, answer.get()) : void();
        answer_ = answer;
        isAnswered_ = true;
    }
    bool IsTriedAgain() override {
        if (isLate_) return false;
        patience_->CallRefused();
        return true;
    }

    std::shared_ptr<Patience> patience_;
    Caller::Answered tooLate_;
    MessageRef answer_;
    bool isAnswered_ = false, isLate_ = false;
};

class Caller::Posted : public Outgoing {
  public:
    Posted(Caller& caller, MessageRef call, std::shared_ptr<void> kept, Caller::Answered answered)
        : Outgoing(caller, std::move(call), std::move(kept)),
          answered_(std::move(answered)),
          busyLimit_(caller.loop_, caller.settings_) {}

  private:
    void Answered(const MessageRef& answer) override {
        if (answer && !IsError(answer)) Give(answered_, answer.get());
    }
    bool IsTriedAgain() override { return !busyLimit_.ReachedByRefusal(); }

    Caller::Answered answered_;
    BusyLimit busyLimit_;
};

std::shared_ptr<Patience> Caller::NewPatience() const {
    return std::make_shared<Patience>(loop_, boxes_, settings_);
}

MessageRef Caller::Call(const MessageRef& call, std::shared_ptr<Patience> patience,
                        std::shared_ptr<void> kept, Answered tooLate) {
    if (!patience) patience = NewPatience();
    patience->RequireOngoing();
    const auto awaited =
        std::make_shared<Awaited>(*this, call, patience, std::move(kept), std::move(tooLate));
    awaited->Send();
    // Calls Stop even if an event that is served during the wait throws.
    {
        const ScopeExit stop([&] { awaited->Stop(); });
        connection_.WaitUntil([&] { return awaited->IsOver(); });
    }
    return awaited->Answer();
}

void Caller::Post(const MessageRef& call, std::shared_ptr<void> kept, Answered answered) {
    std::make_shared<Posted>(*this, call, std::move(kept), std::move(answered))->Send();
}

}  // namespace platform
