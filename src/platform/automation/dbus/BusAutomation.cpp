#include "platform/automation/dbus/BusAutomation.h"

#include "platform/automation/Names.h"
#include "platform/automation/dbus/BusErrors.h"
#include "platform/automation/dbus/Dispatcher.h"
#include "platform/automation/dbus/Session.h"
#include "platform/runtime/RuntimeError.h"

namespace platform {

namespace {

RuntimeError CannotCreate(TextView className, TextView cause) {
    return RuntimeError(ErrorNumber::CannotCreateObject, ToUtf8(className) + ": " + ToUtf8(cause));
}

ObjectRef CreatedObject(Session& session, sd_bus_message* reply) {
    if (sd_bus_message_has_signature(reply, "(so)") <= 0)
        throw RuntimeError(ErrorNumber::TypeMismatch, "the reply to a call has another signature");
    return session.Received(ReadAddress(reply), sd_bus_message_get_sender(reply));
}

class BusAutomation : public Automation {
  public:
    BusAutomation(EventLoop& loop, WaitBoxes& boxes, const WaitSettings& settings)
        : session_(std::make_shared<Session>(loop, boxes, settings)), dispatcher_(*session_) {}

    ObjectRef CreateObject(TextView className, const std::shared_ptr<Patience>& patience) override;
    std::shared_ptr<Patience> NewPatience() override { return session_->Calls().NewPatience(); }
    ObjectRef Within(const ObjectRef& object, const std::shared_ptr<Patience>& patience) override;
    void Post(const ObjectRef& object, std::string_view member, InvokeKind kind, Arguments arguments,
              std::function<void(const Value&)> answered) override;
    void ServeClass(std::string_view className, std::function<ObjectRef()> create) override;
    void StopServing() override {
        session_->Bus().GiveNamesBack();
        dispatcher_.RefuseCreations();
    }
    void Leave() override { session_->Bus().Leave(); }
    void WhenInUse(std::function<void(bool)> changed) override {
        session_->Own().WhenInUse(std::move(changed));
    }

  private:
    ObjectRef Create(const std::string& className, const std::shared_ptr<Patience>& patience);

    std::shared_ptr<Session> session_;
    Dispatcher dispatcher_;
};

ObjectRef BusAutomation::CreateObject(TextView className, const std::shared_ptr<Patience>& patience) {
    const std::string name = ToUtf8(className);
    const bool isName =
        name.find('\0') == std::string::npos && sd_bus_service_name_is_valid(name.c_str()) > 0;
    if (!isName) throw CannotCreate(className, u"not the name of a class");
    try {
        if (ObjectRef object = Create(name, patience)) return object;
    } catch (const RuntimeError& error) {
        throw CannotCreate(className, error.Description());
    }
    throw CannotCreate(className, u"the factory gave nothing");
}

ObjectRef BusAutomation::Create(const std::string& className, const std::shared_ptr<Patience>& patience) {
    const MessageRef call =
        session_->Bus().NewCall(className, bus::factoryPath, bus::factoryInterface, "CreateInstance");
    Session& session = *session_;
    const MessageRef reply = session.Calls().Call(
        call, patience, nullptr, [&session](sd_bus_message* late) { CreatedObject(session, late); });
    return CreatedObject(session, reply.get());
}

ObjectRef BusAutomation::Within(const ObjectRef& object, const std::shared_ptr<Patience>& patience) {
    const auto remote = std::dynamic_pointer_cast<RemoteObject>(object);
    return remote ? remote->Within(patience) : object;
}

void BusAutomation::Post(const ObjectRef& object, std::string_view member, InvokeKind kind,
                         Arguments arguments, std::function<void(const Value&)> answered) {
    if (!object) throw RuntimeError(ErrorNumber::ObjectNotSet);
    if (const auto remote = std::dynamic_pointer_cast<RemoteObject>(object))
        return remote->Post(member, kind, arguments, std::move(answered));
    Guard([&] {
        const Value result = object->Invoke(member, kind, arguments);
        if (answered) answered(result);
    });
}

void BusAutomation::ServeClass(std::string_view className, std::function<ObjectRef()> create) {
    const std::string name(className);
    if (sd_bus_service_name_is_valid(name.c_str()) <= 0) throw CannotCreate(FromUtf8(name), u"no valid name");
    session_->Bus().OwnName(name);
    dispatcher_.AddClass(name, std::move(create));
}

}  // namespace

std::unique_ptr<Automation> ConnectToSessionBus(EventLoop& loop, WaitBoxes& boxes,
                                                const WaitSettings& settings) {
    return std::make_unique<BusAutomation>(loop, boxes, settings);
}

}  // namespace platform
