#include "platform/automation/dbus/Caller.h"

#include "platform/automation/dbus/BusErrors.h"
#include "platform/runtime/ScopeExit.h"

namespace platform {

namespace {

constexpr Milliseconds retryInterval{200};

bool IsError(const MessageRef& reply) {
    return reply && sd_bus_message_is_method_error(reply.get(), nullptr) > 0;
}

}  // namespace

// A pending call. The connection keeps it alive until the reply arrives, a timer until it is retried.
class Caller::Outgoing : public std::enable_shared_from_this<Outgoing> {
  public:
    Outgoing(Caller& caller, MessageRef call, std::shared_ptr<void> kept)
        : caller_(caller), call_(std::move(call)), kept_(std::move(kept)) {}
    virtual ~Outgoing() = default;

    void Send() {
        caller_.connection_.SendCall(
            call_.get(), [self = shared_from_this()](const MessageRef& reply) { self->Take(reply); });
        Sent();
    }

  protected:
    virtual void Sent() {}
    virtual void Answered(const MessageRef& reply) = 0;
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
    // Passes on a reply that no routine is waiting for.
    static void Give(const Caller::Answered& taker, sd_bus_message* reply) {
        try {
            taker(reply);
        } catch (const RuntimeError&) {
            // There is no caller to report this to.
            return;
        }
    }

    Caller& caller_;
    HandleRef retry_;

  private:
    void Take(const MessageRef& reply) {
        if (IsError(reply) && IsBusy(reply.get()) && IsTriedAgain()) return Retry();
        Answered(reply);
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
    // Ends the call, except that a late reply is still taken.
    void Stop() {
        isLate_ = !isAnswered_;
        retry_.reset();
        patience_->CallEnded();
    }
    // Raises 462 if there is no reply, and the error that a reply carries.
    MessageRef Reply() const {
        if (!isAnswered_) patience_->RequireOngoing();
        if (!reply_) throw RuntimeError(ErrorNumber::ServerGone, "the connection to the bus was lost");
        if (IsError(reply_)) throw ErrorOfReply(reply_.get());
        return reply_;
    }

  private:
    void Sent() override { patience_->CallSent(); }
    void Answered(const MessageRef& reply) override {
        if (isLate_) return reply && !IsError(reply) ? Give(tooLate_, reply.get()) : void();
        reply_ = reply;
        isAnswered_ = true;
    }
    bool IsTriedAgain() override {
        if (isLate_) return false;
        patience_->CallRefused();
        return true;
    }

    std::shared_ptr<Patience> patience_;
    Caller::Answered tooLate_;
    MessageRef reply_;
    bool isAnswered_ = false, isLate_ = false;
};

class Caller::Posted : public Outgoing {
  public:
    Posted(Caller& caller, MessageRef call, std::shared_ptr<void> kept, Caller::Answered answered)
        : Outgoing(caller, std::move(call), std::move(kept)),
          answered_(std::move(answered)),
          busyLimit_(caller.loop_, caller.settings_) {}

  private:
    void Answered(const MessageRef& reply) override {
        if (reply && !IsError(reply)) Give(answered_, reply.get());
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
    return awaited->Reply();
}

void Caller::Post(const MessageRef& call, std::shared_ptr<void> kept, Answered answered) {
    std::make_shared<Posted>(*this, call, std::move(kept), std::move(answered))->Send();
}

}  // namespace platform
