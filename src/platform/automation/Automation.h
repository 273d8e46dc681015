// Objects of one process, created and called by another.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/runtime/Object.h"

namespace platform {

class Patience;

// Raised by a member that can't take a call just now; the calling process tries it again.
class BusyError : public RuntimeError {
  public:
    BusyError() : RuntimeError(ErrorNumber::AutomationError, "the call can't be taken now") {}
};

// What a process does with the wait limits of an outgoing call. It is read when a limit starts or is reached.
struct WaitSettings {
    std::int32_t busyTimeout = 10000;    // milliseconds that a busy callee is tried again
    std::int32_t pendingTimeout = 5000;  // milliseconds that a call stays out before a box comes up
    Text busyTitle, busyText;
    Text pendingTitle, pendingText;
};

// A box that comes up while something is waited for. Dropping it closes it.
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

    // A new object of a class by its name; the process that serves the class is started on demand.
    // The creation may belong to a piece of work. Raises 429 where it fails for whatever reason.
    virtual ObjectRef CreateObject(TextView className,
                                   const std::shared_ptr<Patience>& patience = nullptr) = 0;

    // For a piece of work that is about to begin.
    virtual std::shared_ptr<Patience> NewPatience() = 0;
    // The same object, for calls that belong to this work. An object of this process is returned as it is.
    virtual ObjectRef Within(const ObjectRef& object, const std::shared_ptr<Patience>& patience) = 0;

    // Calls a member without waiting for it. `answered`, where given, gets the result; a failure is passed
    // over. A callee that is busy is tried again until the busy limit.
    virtual void Post(const ObjectRef& object, std::string_view member, InvokeKind kind, Arguments arguments,
                      std::function<void(const Value&)> answered) = 0;

    // Serves a class to other processes under its name. Raises 429 where the name is taken already.
    virtual void ServeClass(std::string_view className, std::function<ObjectRef()> create) = 0;

    // Gives the names of the served classes back, so that whoever asks for one from now on starts another
    // process. The bus hears of it before anything that is sent later. A creation under way is refused as
    // busy.
    virtual void StopServing() = 0;

    // For the moment before the end: stops serving, refuses as busy what was asked before and not taken yet,
    // and sends out what has been answered or asked for.
    virtual void Leave() = 0;

    // Called after a client created an object, and after the last object that other processes held went.
    virtual void WhenInUse(std::function<void(bool inUse)> changed) = 0;
};

}  // namespace platform
