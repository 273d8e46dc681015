// Finds what serves an incoming call. Calls that come while served ones wait for somebody go on top of them;
// so many deep, all but Retain and Release are refused as busy, since the stack has an end and a client no
// patience.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/automation/dbus/IncomingCall.h"

namespace platform {

class Dispatcher {
  public:
    // Takes the calls of the session's connection.
    explicit Dispatcher(Session& session);

    // Creates objects of a class with `create` from now on.
    void AddClass(std::string_view className, std::function<ObjectRef()> create);

    // Refuses the creations that are being served as busy.
    void RefuseCreations();

  private:
    void Serve(const MessageRef& message);
    void Route(IncomingCall& call);
    void CreateInstance(IncomingCall& call);
    const std::function<ObjectRef()>& CreatorFor(std::string_view destination) const;
    void RouteToBranch(IncomingCall& call);
    void RouteToFactory(IncomingCall& call);
    void RouteToObject(IncomingCall& call, Object& object);
    void RouteLateBound(IncomingCall& call, Object& object);

    Session& session_;
    int depth_ = 0;                         // calls that are being served, each from inside the one before
    std::vector<IncomingCall*> creations_;  // those of them that create an object
    std::map<std::string, std::function<ObjectRef()>, std::less<>> creators_;
};

}  // namespace platform
