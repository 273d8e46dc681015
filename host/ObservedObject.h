// The base of the objects that clients call: logs each call, and may misbehave.
#pragma once

#include "host/CallLog.h"
#include "host/Misbehaviour.h"
#include "platform/runtime/Object.h"

namespace switchdesk {

// Both must outlive all objects.
struct Observation {
    CallLog& log;
    Misbehaviour& misbehaviour;
};

class ObservedObject : public platform::Object {
  public:
    explicit ObservedObject(const Observation& observation) : observation_(observation) {}
    platform::Value Invoke(std::string_view member, platform::InvokeKind kind,
                           platform::Arguments& arguments) override;

  private:
    platform::Value Misbehave(const std::string& member, platform::InvokeKind kind,
                              platform::Arguments& arguments);

    Observation observation_;
};

}  // namespace switchdesk
