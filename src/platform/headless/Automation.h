// A bus without other processes: objects of this one act for them when called.
#pragma once

#include <map>
#include <vector>

#include "platform/automation/Patience.h"
#include "platform/forms/InputGate.h"

namespace platform::headless {

// Another process. While stuck, it takes no posted calls and sends no late answers.
class Peer {
  public:
    bool IsAlive() const { return isAlive_; }
    // Notifies all watchers.
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

    // An object of another process, as the add-in sees it. During a call input waits. A call given up
    // meanwhile fails for the add-in, and its answer is late.
    ObjectRef Far(const ObjectRef& object, const std::shared_ptr<Peer>& peer);
    // Whether the add-in has given up its innermost call, or posted it.
    bool IsCallGivenUp() const { return IsCallOut() && callers_.back() && callers_.back()->IsGivenUp(); }
    bool IsCallPosted() const { return IsCallOut() && !callers_.back(); }
    bool IsCallOut() const { return !callers_.empty(); }
    // The number of nested calls under way.
    std::size_t CallDepth() const { return callers_.size(); }

    // For another process: creates an object of the served class, and releases it. Raises 429 if the class
    // isn't served; a real bus would start another server.
    ObjectRef Create();
    void Release(ObjectRef& object);

    ObjectRef CreateObject(TextView className, const std::shared_ptr<Patience>& patience) override;
    std::shared_ptr<Patience> NewPatience() override;
    ObjectRef Within(const ObjectRef& object, const std::shared_ptr<Patience>& patience) override;
    void Post(const ObjectRef& object, std::string_view member, InvokeKind kind, Arguments arguments,
              std::function<void(const Value&)> answered) override;
    void ServeClass(std::string_view className, std::function<ObjectRef()> create) override;
    void StopServing() override;
    void Leave() override { StopServing(); }
    void WhenInUse(std::function<void(bool)> changed) override { useChanged_ = std::move(changed); }

    // Delivers the messages that wait for processes that aren't stuck.
    void Deliver();

    std::map<Text, ObjectRef> others;  // what CreateObject returns, by class name
    std::vector<Text> created;         // the classes given to CreateObject
    std::string served;                // the name of the served class
    std::function<ObjectRef()> grant;  // creates objects, even after StopServing: a request may be on its way
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
    std::vector<std::shared_ptr<Patience>> callers_;  // of the calls under way; null for posted ones
    std::vector<std::shared_ptr<Peer>> peers_;
    HandleRef delivery_;
    int refusals_ = 0;
};

}  // namespace platform::headless
