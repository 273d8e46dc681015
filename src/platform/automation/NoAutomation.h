// Automation without a bus: nothing can be created, and no calls arrive.
#pragma once

#include "platform/automation/Patience.h"

namespace platform {

class NoAutomation : public Automation {
  public:
    // The arguments must outlive this object.
    NoAutomation(Scheduler& scheduler, WaitBoxes& boxes, const WaitSettings& settings)
        : scheduler_(scheduler), boxes_(boxes), settings_(settings) {}

    ObjectRef CreateObject(TextView className, const std::shared_ptr<Patience>&) override {
        throw RuntimeError(ErrorNumber::CannotCreateObject, ToUtf8(className));
    }
    std::shared_ptr<Patience> NewPatience() override {
        return std::make_shared<Patience>(scheduler_, boxes_, settings_);
    }
    ObjectRef Within(const ObjectRef& object, const std::shared_ptr<Patience>&) override { return object; }
    void Post(const ObjectRef&, std::string_view, InvokeKind, Arguments,
              std::function<void(const Value&)>) override {}
    void ServeClass(std::string_view className, std::function<ObjectRef()>) override {
        throw RuntimeError(ErrorNumber::CannotCreateObject, className);
    }
    void StopServing() override {}
    void Leave() override {}
    void WhenInUse(std::function<void(bool)>) override {}

  private:
    Scheduler& scheduler_;
    WaitBoxes& boxes_;
    const WaitSettings& settings_;
};

}  // namespace platform
