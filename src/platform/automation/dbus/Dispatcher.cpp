#include "platform/automation/dbus/Dispatcher.h"

#include <utility>

#include "platform/automation/Introspection.h"
#include "platform/automation/Names.h"
#include "platform/automation/dbus/Nodes.h"
#include "platform/automation/dbus/TypedInterface.h"
#include "platform/runtime/ScopeExit.h"

namespace platform {

namespace {

InvokeKind KindOf(std::uint16_t number) {
    switch (number) {
        case 1:
        case 2:
        case 4:
        case 8:
            return static_cast<InvokeKind>(number);
        default:
            throw RuntimeError(ErrorNumber::InvalidProcedureCall, "kind of call " + std::to_string(number));
    }
}

void InvokeLateBound(IncomingCall& call, Object& object) {
    call.RequireSignature("sqav");
    const std::string_view member = call.String();
    const InvokeKind kind = KindOf(call.Word());
    const Arguments given = call.Variants();
    Arguments arguments = given;
    const Value result = object.Invoke(member, kind, arguments);
    call.ReturnVariant(result);
    arguments.resize(given.size());
    sd_bus_message* reply = call.Reply();
    RequireSuccess(sd_bus_message_open_container(reply, 'a', "v"));
    for (std::size_t i = 0; i < given.size(); ++i)
        arguments[i] == given[i] ? call.ReturnGiven(given[i]) : call.ReturnVariant(arguments[i]);
    RequireSuccess(sd_bus_message_close_container(reply));
}

// Far more than several hosts, each with its own exchange, need; far less than the stack has room for.
constexpr int deepest = 32;

// These make no further calls, and a client that releases a reference doesn't retry.
bool IsCount(const IncomingCall& call) {
    return call.Member() == "Retain" || call.Member() == "Release";
}

bool IsIntrospection(const IncomingCall& call) {
    return call.IsOf(introspectableInterface) && call.Member() == "Introspect";
}

bool IsPropertyCall(const IncomingCall& call) {
    if (call.Interface() == propertiesInterface) return true;
    return call.Interface().empty() &&
           (call.Member() == "Get" || call.Member() == "Set" || call.Member() == "GetAll");
}

void ReturnXml(IncomingCall& call, const std::string& xml) {
    call.RequireSignature("");
    RequireSuccess(sd_bus_message_append_basic(call.Reply(), 's', xml.c_str()));
}

// For a call that nothing at its path serves: reports an unknown method if the path has the interface,
// otherwise an unknown interface.
[[noreturn]] void Refuse(const IncomingCall& call, std::initializer_list<std::string_view> interfaces) {
    bool isKnown = call.IsOf(introspectableInterface);
    for (const std::string_view interface : interfaces) isKnown = isKnown || call.IsOf(interface);
    if (isKnown) throw UnknownMethod(call.Member());
    throw UnknownInterface(call.Interface());
}

}  // namespace

Dispatcher::Dispatcher(Session& session) : session_(session) {
    session_.Bus().WhenCalled([this](const MessageRef& message) { Serve(message); });
}

void Dispatcher::AddClass(std::string_view className, std::function<ObjectRef()> create) {
    creators_.insert_or_assign(std::string(className), std::move(create));
}

void Dispatcher::Serve(const MessageRef& message) {
    {
        ++depth_;
        const ScopeExit leave([this] { --depth_; });
        IncomingCall call(session_.shared_from_this(), message);
        call.Serve([this](IncomingCall& served) { Route(served); });
    }
    session_.Settle();
}

void Dispatcher::Route(IncomingCall& call) {
    if (depth_ > deepest && !IsCount(call)) throw BusyError();
    if (const ObjectRef object = session_.Own().Find(call.Path())) return RouteToObject(call, *object);
    if (call.Path() == bus::factoryPath && !creators_.empty()) return RouteToFactory(call);
    RouteToBranch(call);
}

void Dispatcher::RouteToBranch(IncomingCall& call) {
    const bool isRoot = call.Path() == "/";
    if (!isRoot && call.Path() != objectsPath) throw UnknownObject(call.Path());
    if (!IsIntrospection(call)) Refuse(call, {});
    std::vector<std::string> children;
    if (!isRoot) children = session_.Own().Numbers();
    if (isRoot && !creators_.empty()) children.push_back(std::string(bus::factoryPath).substr(1));
    if (isRoot) children.push_back(std::string(objectsPath).substr(1));
    ReturnXml(call, BranchNodeXml(children));
}

void Dispatcher::RouteToFactory(IncomingCall& call) {
    if (call.IsOf(bus::factoryInterface) && call.Member() == "CreateInstance") return CreateInstance(call);
    if (IsIntrospection(call)) return ReturnXml(call, FactoryNodeXml());
    Refuse(call, {bus::factoryInterface});
}

void Dispatcher::CreateInstance(IncomingCall& call) {
    call.RequireSignature("");
    // Without a reply, nobody would hold the object.
    if (!call.WantsReply()) return;
    // Allocated first: once created, the object counts as in use.
    call.Reply();
    creations_.push_back(&call);
    const ScopeExit unlist([&] { std::erase(creations_, &call); });
    const ObjectRef object = CreatorFor(call.Destination())();
    if (!object) throw RuntimeError(ErrorNumber::CannotCreateObject, call.Destination());
    call.ReturnCreated(object);
}

void Dispatcher::RefuseCreations() {
    for (IncomingCall* creation : std::exchange(creations_, {})) creation->RefuseAsBusy();
}

const std::function<ObjectRef()>& Dispatcher::CreatorFor(std::string_view destination) const {
    if (const auto found = creators_.find(destination); found != creators_.end()) return found->second;
    // A call to the connection's unique name doesn't say which class it wants, which only works if there is
    // just one.
    if (creators_.size() == 1) return creators_.begin()->second;
    throw RuntimeError(ErrorNumber::CannotCreateObject, destination);
}

void Dispatcher::RouteToObject(IncomingCall& call, Object& object) {
    const ClassDescription& description = object.Class();
    if (call.Interface() == bus::objectInterface) return RouteLateBound(call, object);
    if (IsIntrospection(call)) return ReturnXml(call, ObjectNodeXml(description));
    if (IsPropertyCall(call)) return ServeProperties(call, object);
    const std::string typed = TypedInterfaceName(description);
    if (!typed.empty() && call.Interface() == typed) return CallTypedMethod(call, object);
    if (!call.Interface().empty()) throw UnknownInterface(call.Interface());
    HasTypedMethod(description, call.Member()) ? CallTypedMethod(call, object) : RouteLateBound(call, object);
}

void Dispatcher::RouteLateBound(IncomingCall& call, Object& object) {
    if (call.Member() == "Invoke") return InvokeLateBound(call, object);
    const bool isRetain = call.Member() == "Retain";
    if (!isRetain && call.Member() != "Release") throw UnknownMethod(call.Member());
    call.RequireSignature("");
    const std::string path(call.Path());
    if (isRetain)
        session_.Own().Retain(path, call.Sender());
    else if (!session_.Own().Release(path, call.Sender()))
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the caller holds no reference to " + path);
}

}  // namespace platform
