// The exchange object, where clients log in.
#pragma once

#include "host/ExchangeDesk.h"
#include "host/ObservedObject.h"

namespace switchdesk {

using platform::ObjectRef;
using platform::Text;

// All objects of this class share one desk.
class ExchangeObject : public ObservedObject {
  public:
    ExchangeObject(const Observation& observation, ExchangeDesk& desk)
        : ObservedObject(observation), desk_(desk) {}
    static const platform::ClassDescription& Description();
    const platform::ClassDescription& Class() const override { return Description(); }

  private:
    Text ConnectToPbx(const Text& pbx, const ObjectRef& client) { return desk_.Connect(pbx, client); }
    Text Login(const Text& pbx, const ObjectRef& client) { return desk_.Login(pbx, client); }
    Text SendRequest(const ObjectRef& request) { return desk_.Send(request); }
    void LogOut(const Text&, const Text& loginId) { desk_.LogOut(loginId); }

    ExchangeDesk& desk_;
};

}  // namespace switchdesk
