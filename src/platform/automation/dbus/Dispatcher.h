// Routes incoming calls. A call that arrives while another one waits is served nested in it. Beyond a limit
// of nested calls, all but Retain and Release are refused as busy, to protect the stack.
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
    // Serves all calls that arrive on the session's connection.
    explicit Dispatcher(Session& session);

    // From now on, `create` makes the objects of this class.
    void AddClass(std::string_view className, std::function<ObjectRef()> create);

    // Refuses as busy all creations being served.
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
    int depth_ = 0;                         // calls being served, each nested in the one before
    std::vector<IncomingCall*> creations_;  // those that create an object
    std::map<std::string, std::function<ObjectRef()>, std::less<>> creators_;
};

}  // namespace platform
