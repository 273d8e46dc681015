#include "platform/automation/dbus/TypedInterface.h"

#include <algorithm>

#include "platform/automation/Introspection.h"
#include "platform/automation/Names.h"

namespace platform {

namespace {

constexpr std::string_view writePrefix = "Put_";

template <class Condition>
const Member* Find(const ClassDescription& description, Condition condition) {
    const auto& members = description.members;
    const auto found = std::find_if(members.begin(), members.end(), condition);
    return found == members.end() ? nullptr : &*found;
}

const Member* FindMethod(const ClassDescription& description, std::string_view name) {
    return Find(description, [&](const Member& member) {
        if (!member.IsMethod()) return false;
        if (!member.IsWrite()) return member.name == name;
        return name.starts_with(writePrefix) && member.name == name.substr(writePrefix.size());
    });
}

const Member* FindProperty(const ClassDescription& description, std::string_view name, bool isWrite) {
    return Find(description, [&](const Member& member) {
        return !member.IsMethod() && member.IsWrite() == isWrite && member.name == name;
    });
}

// Returns a property's value inside the variant that the bus requires.
void ReturnProperty(IncomingCall& call, Object& object, const Member& member) {
    Arguments none;
    const Value value = InvokeMember(object, member, none);
    const std::string signature(SignatureOf(member.result));
    RequireSuccess(sd_bus_message_open_container(call.Reply(), 'v', signature.c_str()));
    call.ReturnTyped(value, member.result);
    RequireSuccess(sd_bus_message_close_container(call.Reply()));
}

void GetProperty(IncomingCall& call, Object& object, std::string_view name) {
    const Member* member = FindProperty(object.Class(), name, false);
    if (!member) throw UnknownProperty(name);
    ReturnProperty(call, object, *member);
}

void SetProperty(IncomingCall& call, Object& object, std::string_view name) {
    const Member* member = FindProperty(object.Class(), name, true);
    if (!member)
        throw FindProperty(object.Class(), name, false) ? ReadOnlyProperty(name) : UnknownProperty(name);
    Arguments arguments{call.Variant()};
    InvokeMember(object, *member, arguments);
}

void GetAllProperties(IncomingCall& call, Object& object) {
    sd_bus_message* reply = call.Reply();
    RequireSuccess(sd_bus_message_open_container(reply, 'a', "{sv}"));
    for (const Member& member : object.Class().members) {
        if (member.IsWrite() || member.IsMethod()) continue;
        RequireSuccess(sd_bus_message_open_container(reply, 'e', "sv"));
        AppendText(reply, FromUtf8(member.name));
        ReturnProperty(call, object, member);
        RequireSuccess(sd_bus_message_close_container(reply));
    }
    RequireSuccess(sd_bus_message_close_container(reply));
}

// False for the late-bound interface, which has no properties. Raises 438 for an unknown interface.
bool HasProperties(const Object& object, std::string_view interface) {
    if (interface == bus::objectInterface) return false;
    const std::string typed = TypedInterfaceName(object.Class());
    if (typed.empty() || (interface != typed && !interface.empty())) throw UnknownInterface(interface);
    return true;
}

std::string SignatureOf(const Member& member) {
    std::string signature;
    for (const Parameter& parameter : member.parameters) signature += SignatureOf(parameter.type);
    return signature;
}

}  // namespace

bool HasTypedMethod(const ClassDescription& description, std::string_view name) {
    return description.library && FindMethod(description, name);
}

void CallTypedMethod(IncomingCall& call, Object& object) {
    const Member* member = FindMethod(object.Class(), call.Member());
    if (!member) throw UnknownMethod(call.Member());
    call.RequireSignature(SignatureOf(*member));
    Arguments arguments;
    for (const Parameter& parameter : member->parameters) arguments.push_back(call.Typed(parameter.type));
    call.ReturnTyped(InvokeMember(object, *member, arguments), member->result);
}

void ServeProperties(IncomingCall& call, Object& object) {
    const std::string_view method = call.Member();
    const std::string_view signature = method == "Get" ? "ss" : method == "Set" ? "ssv" : "s";
    if (signature == "s" && method != "GetAll") throw UnknownMethod(method);
    call.RequireSignature(std::string(signature));
    const bool hasProperties = HasProperties(object, call.String());
    if (method == "GetAll" && hasProperties) return GetAllProperties(call, object);
    if (method == "GetAll") {
        RequireSuccess(sd_bus_message_append(call.Reply(), "a{sv}", 0));
        return;
    }
    const std::string_view name = call.String();
    if (!hasProperties) throw UnknownProperty(name);
    method == "Get" ? GetProperty(call, object, name) : SetProperty(call, object, name);
}

}  // namespace platform
