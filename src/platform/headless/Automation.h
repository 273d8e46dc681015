// A bus in the hand of a test: other processes are objects of this one, and act when they are called.
#pragma once

#include <map>
#include <vector>

#include "platform/automation/Patience.h"
#include "platform/forms/InputGate.h"

namespace platform::headless {

// Another process. One that is stuck takes no calls that aren't waited for, and gives no late answers,
// until it wakes.
class Peer {
  public:
    bool IsAlive() const { return isAlive_; }
    // Everybody who watches hears of it.
    void Die();
    bool IsStuck() const { return isStuck_; }
    void SetStuck(bool isStuck) { isStuck_ = isStuck; }

  private:
    friend class Automation;
    friend class FarObject;

    bool isAlive_ = true, isStuck_ = false;
    std::vector<std::weak_ptr<std::function<void()>>> watches_;
    std::vector<std::function<void()>> waiting_;
};

class Automation : public platform::Automation {
  public:
    Automation(Scheduler& scheduler, WaitBoxes& boxes, const WaitSettings& settings, forms::InputGate& gate)
        : scheduler_(scheduler), boxes_(boxes), settings_(settings), gate_(gate) {}
    ~Automation() override;

    // An object of another process as the add-in reaches it. While a call is out input waits; one that is
    // given up meanwhile fails at once for the add-in, and its answer is late.
    ObjectRef Far(const ObjectRef& object, const std::shared_ptr<Peer>& peer);
    // What the innermost call of the add-in is: one that it doesn't wait for any more, or never did.
    bool IsCallGivenUp() const { return IsCallOut() && callers_.back() && callers_.back()->IsGivenUp(); }
    bool IsCallPosted() const { return IsCallOut() && !callers_.back(); }
    bool IsCallOut() const { return !callers_.empty(); }
    // How many calls are out, each made from inside the one before.
    std::size_t CallDepth() const { return callers_.size(); }

    // What another process does: creates an object of the served class, and lets go of it. Raises 429 where
    // the class isn't served: a daemon would start another process.
    ObjectRef Create();
    void Release(ObjectRef& object);

    ObjectRef CreateObject(TextView className) override;
    std::shared_ptr<Patience> NewPatience() override;
    ObjectRef Within(const ObjectRef& object, const std::shared_ptr<Patience>& patience) override;
    void Post(const ObjectRef& object, std::string_view member, InvokeKind kind, Arguments arguments,
              std::function<void(const Value&)> answered) override;
    void ServeClass(std::string_view className, std::function<ObjectRef()> create) override;
    void StopServing() override;
    void Leave() override { StopServing(); }
    void WhenInUse(std::function<void(bool)> changed) override { useChanged_ = std::move(changed); }

    // Carries out what is under way to processes that aren't stuck.
    void Deliver();

    std::map<Text, ObjectRef> others;  // what CreateObject gives, by the name of the class
    std::vector<Text> created;         // the classes that were asked for
    std::string served;                // the name of the class that is served
    std::function<ObjectRef()> grant;  // as a creation that was asked for before the name was given back
    int clients = 0;                   // objects that other processes hold
    std::function<void(int)> wait;     // lets milliseconds pass while a callee is busy

  private:
    friend class FarObject;

    void Send(const std::shared_ptr<Peer>& peer, std::function<void()> message);

    Scheduler& scheduler_;
    WaitBoxes& boxes_;
    const WaitSettings& settings_;
    forms::InputGate& gate_;
    std::function<void(bool)> useChanged_;
    std::vector<std::shared_ptr<Patience>> callers_;  // of the calls that are out; null for posted ones
    std::vector<std::shared_ptr<Peer>> peers_;
    HandleRef delivery_;
    int refusals_ = 0;
};

}  // namespace platform::headless
