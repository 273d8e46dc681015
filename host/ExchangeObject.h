// The exchange object, where clients log in.
#pragma once

#include "host/ExchangeDesk.h"
#include "host/ObservedObject.h"

namespace switchdesk {

// Members: ConnectToPbx, Login, SendRequest, LogOut. All objects of this class share one desk.
class ExchangeObject : public ObservedObject {
  public:
    ExchangeObject(const Observation& observation, ExchangeDesk& desk)
        : ObservedObject(observation), desk_(desk) {}
    static const platform::ClassDescription& Description();
    const platform::ClassDescription& Class() const override { return Description(); }

    ExchangeDesk& Desk() { return desk_; }

  private:
    ExchangeDesk& desk_;
};

}  // namespace switchdesk
