// Lets one process create and call objects of another.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/runtime/Object.h"

namespace platform {

class Patience;

// Raised by a member that can't take a call just now; the calling process retries.
class BusyError : public RuntimeError {
  public:
    BusyError() : RuntimeError(ErrorNumber::AutomationError, "the call can't be taken now") {}
};

// The wait limits of outgoing calls, and the texts of their boxes. Read when a limit starts or is reached.
struct WaitSettings {
    std::int32_t busyTimeout = 10000;    // milliseconds to retry a busy callee before asking
    std::int32_t pendingTimeout = 5000;  // milliseconds to wait for a reply before asking
    Text busyTitle, busyText;
    Text pendingTitle, pendingText;
};

// A box shown during a wait. Destroying it closes it.
class WaitBox {
  public:
    virtual ~WaitBox() = default;
};

class WaitBoxes {
  public:
    virtual ~WaitBoxes() = default;
    // Shows a box without waiting for it. `answered` is called once, with true to give up and false to
    // go on waiting; the box has closed by then.
    virtual std::unique_ptr<WaitBox> Open(TextView title, TextView text,
                                          std::function<void(bool)> answered) = 0;
};

class Automation {
  public:
    virtual ~Automation() = default;

    // Creates an object of the named class; the bus starts the process that serves the class if needed. The
    // call belongs to the operation of `patience`, if any. Raises 429 for any failure.
    virtual ObjectRef CreateObject(TextView className,
                                   const std::shared_ptr<Patience>& patience = nullptr) = 0;

    // A patience for an operation that is about to begin.
    virtual std::shared_ptr<Patience> NewPatience() = 0;
    // The same object, for calls that belong to the operation of `patience`. An object of this process is
    // returned unchanged.
    virtual ObjectRef Within(const ObjectRef& object, const std::shared_ptr<Patience>& patience) = 0;

    // Calls a member without waiting for it. `answered`, if set, gets the result; an error reply is ignored.
    // A busy callee is retried until the busy limit.
    virtual void Post(const ObjectRef& object, std::string_view member, InvokeKind kind, Arguments arguments,
                      std::function<void(const Value&)> answered) = 0;

    // Serves a class to other processes under its name. Raises 429 if the name is taken.
    virtual void ServeClass(std::string_view className, std::function<ObjectRef()> create) = 0;

    // Releases the names of the served classes, so that the bus starts another process for later clients. The
    // bus learns of this before it gets any later message. Creations under way are refused as busy.
    virtual void StopServing() = 0;

    // Called just before the process ends: releases the names, refuses as busy all calls that still
    // arrive, and sends the replies and calls that are queued.
    virtual void Leave() = 0;

    // Calls `changed` with true once other processes hold objects of this one, and with false once they hold
    // none any more.
    virtual void WhenInUse(std::function<void(bool inUse)> changed) = 0;
};

}  // namespace platform
