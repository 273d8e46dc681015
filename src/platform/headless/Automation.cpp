#include "platform/headless/Automation.h"

#include <utility>

#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/ScopeExit.h"

namespace platform::headless {

void Peer::Die() {
    isAlive_ = false;
    waiting_.clear();
    for (const auto& weak : std::exchange(watches_, {}))
        if (const auto watch = weak.lock()) (*watch)();
}

// An object of another process.
class FarObject : public Object {
  public:
    FarObject(Automation& bus, ObjectRef object, std::shared_ptr<Peer> peer,
              std::shared_ptr<Patience> patience = nullptr)
        : bus_(bus), object_(std::move(object)), peer_(std::move(peer)), patience_(std::move(patience)) {}

    const ClassDescription& Class() const override {
        static const ClassDescription description{"FarObject", {}};
        return description;
    }
    std::shared_ptr<void> WhenOwnerGone(std::function<void()> left) override {
        auto watch = std::make_shared<std::function<void()>>(std::move(left));
        peer_->watches_.push_back(watch);
        return watch;
    }

    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override {
        const auto keptForTheCall = shared_from_this();
        const auto patience = patience_ ? patience_ : bus_.NewPatience();
        patience->RequireOngoing();
        const HandleRef hold = bus_.gate_.Hold();
        bus_.callers_.push_back(patience);
        const ScopeExit over([&] {
            bus_.callers_.pop_back();
            patience->CallEnded();
        });
        while (true) {
            try {
                patience->CallSent();
                return Reply(*patience, member, kind, arguments);
            } catch (const BusyError&) {
                patience->CallRefused();
                bus_.wait(retryInterval);
                patience->RequireOngoing();
            }
        }
    }
    // The call, in the owner's process.
    Value Receive(std::string_view member, InvokeKind kind, Arguments& arguments) {
        if (!peer_->IsAlive()) throw RuntimeError(ErrorNumber::ServerGone, "the other process has ended");
        std::vector<ObjectRef> given;
        for (Value& argument : arguments) {
            given.push_back(argument.IsObject() ? argument.ToObject() : nullptr);
            if (const auto far = std::dynamic_pointer_cast<FarObject>(given.back())) argument = far->object_;
        }
        const Value result = object_->Invoke(member, kind, arguments);
        for (std::size_t i = 0; i < given.size() && i < arguments.size(); ++i)
            if (given[i] && arguments[i].IsObject() && arguments[i].ToObject()) arguments[i] = given[i];
        const bool isObject = result.IsObject() && result.ToObject();
        return isObject ? Value(bus_.Far(result.ToObject(), peer_)) : result;
    }
    ObjectRef Within(const std::shared_ptr<Patience>& patience) {
        return std::make_shared<FarObject>(bus_, object_, peer_, patience);
    }
    const std::shared_ptr<Peer>& Owner() const { return peer_; }

  private:
    static constexpr int retryInterval = 200;  // milliseconds

    Value Reply(const Patience& patience, std::string_view member, InvokeKind kind, Arguments& arguments) {
        Arguments travelled = arguments;
        const Value result = Receive(member, kind, travelled);
        if (patience.IsGivenUp())
            bus_.Send(peer_, [kept = patience_, result] {
                if (kept && kept->Late) kept->Late(result);
            });
        patience.RequireOngoing();
        if (!peer_->IsAlive()) throw RuntimeError(ErrorNumber::ServerGone, "the other process has ended");
        arguments = std::move(travelled);
        return result;
    }

    Automation& bus_;
    ObjectRef object_;
    std::shared_ptr<Peer> peer_;
    std::shared_ptr<Patience> patience_;  // if null, each call gets its own
};

// Processes may outlive the bus, and their waiting messages refer to it.
Automation::~Automation() {
    for (const auto& peer : peers_) peer->waiting_.clear();
}

ObjectRef Automation::Far(const ObjectRef& object, const std::shared_ptr<Peer>& peer) {
    return object ? std::make_shared<FarObject>(*this, object, peer) : nullptr;
}

ObjectRef Automation::Create() {
    if (served.empty()) throw RuntimeError(ErrorNumber::CannotCreateObject, "the class isn't served");
    const int refusalsBefore = refusals_;
    ObjectRef object = grant();
    ++clients;
    if (refusals_ != refusalsBefore) {
        Release(object);
        throw BusyError();
    }
    if (clients == 1) useChanged_(true);
    return object;
}

void Automation::Release(ObjectRef& object) {
    const ObjectRef released = std::exchange(object, nullptr);
    --clients;
    Guard([&] { released->LastClientLeaves(); });
    Guard([&] { released->LastClientGone(); });
    if (clients == 0) useChanged_(false);
}

ObjectRef Automation::CreateObject(TextView className, const std::shared_ptr<Patience>&) {
    created.push_back(Text(className));
    const auto found = others.find(Text(className));
    if (found == others.end()) throw RuntimeError(ErrorNumber::CannotCreateObject, ToUtf8(className));
    return found->second;
}

std::shared_ptr<Patience> Automation::NewPatience() {
    return std::make_shared<Patience>(scheduler_, boxes_, settings_);
}

ObjectRef Automation::Within(const ObjectRef& object, const std::shared_ptr<Patience>& patience) {
    const auto far = std::dynamic_pointer_cast<FarObject>(object);
    return far ? far->Within(patience) : object;
}

void Automation::Post(const ObjectRef& object, std::string_view member, InvokeKind kind, Arguments arguments,
                      std::function<void(const Value&)> answered) {
    if (!object) throw RuntimeError(ErrorNumber::ObjectNotSet);
    const auto far = std::dynamic_pointer_cast<FarObject>(object);
    if (!far) throw RuntimeError(ErrorNumber::ObjectRequired, "can't post a call to this process");
    Send(far->Owner(), [=, this, name = std::string(member)]() mutable {
        const Value result = [&] {
            callers_.push_back(nullptr);
            const ScopeExit over([this] { callers_.pop_back(); });
            return far->Receive(name, kind, arguments);
        }();
        if (answered) answered(result);
    });
}

void Automation::Send(const std::shared_ptr<Peer>& peer, std::function<void()> message) {
    if (!peer->isAlive_) return;
    peer->waiting_.push_back(std::move(message));
    if (std::find(peers_.begin(), peers_.end(), peer) == peers_.end()) peers_.push_back(peer);
    delivery_ = scheduler_.After(Milliseconds(0), [this] { Deliver(); });
}

void Automation::Deliver() {
    for (std::size_t i = 0; i < peers_.size(); ++i) {
        const auto peer = peers_[i];
        while (peer->isAlive_ && !peer->isStuck_ && !peer->waiting_.empty()) {
            const auto message = std::move(peer->waiting_.front());
            peer->waiting_.erase(peer->waiting_.begin());
            ErrorState dropped;
            Skip(dropped, "a call that nobody waits for", message);
        }
    }
}

void Automation::ServeClass(std::string_view className, std::function<ObjectRef()> create) {
    served = className;
    grant = std::move(create);
}

void Automation::StopServing() {
    served.clear();
    ++refusals_;
}

}  // namespace platform::headless
