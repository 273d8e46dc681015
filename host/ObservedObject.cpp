#include "host/ObservedObject.h"

namespace switchdesk {

using platform::Arguments;
using platform::InvokeKind;
using platform::Value;

namespace {

// A call as the log shows it. A changed argument is shown with both values.
std::string CallText(std::string_view member, bool plainRead, const Arguments& before,
                     const Arguments& after) {
    std::string text(member);
    if (plainRead) return text;
    text += '(';
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (i > 0) text += ", ";
        text += LogText(before[i]);
        if (!(before[i] == after[i])) text += " => " + LogText(after[i]);
    }
    return text + ')';
}

std::string ErrorText(const platform::RuntimeError& error) {
    return " -> error " + std::to_string(error.Number());
}

}  // namespace

Value ObservedObject::Invoke(std::string_view name, InvokeKind kind, Arguments& arguments) {
    const platform::Member* member = platform::FindMember(Class(), name, kind);
    const std::string shown(member ? member->name : name);
    const bool plainRead = arguments.empty() && member && member->kind == InvokeKind::PropertyGet;
    const Arguments before = arguments;
    CallLog::Entry entry(observation_.log, CallText(shown, plainRead, before, before));
    try {
        Value result = Misbehave(shown, kind, arguments);
        entry.End(CallText(shown, plainRead, before, arguments), " -> " + LogText(result));
        return result;
    } catch (const platform::RuntimeError& error) {
        entry.End(CallText(shown, plainRead, before, before), ErrorText(error));
        throw;
    }
}

Value ObservedObject::Misbehave(const std::string& member, InvokeKind kind, Arguments& arguments) {
    Misbehaviour& misbehaviour = observation_.misbehaviour;
    const std::string lower = LowerCase(member);
    misbehaviour.BeginCall(lower);
    if (misbehaviour.lacking.contains(lower))
        throw platform::RuntimeError(platform::ErrorNumber::NoSuchMember, member);
    return Object::Invoke(member, kind, arguments);
}

}  // namespace switchdesk
