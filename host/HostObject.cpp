#include "host/HostObject.h"

#include "host/ResponseObject.h"
#include "platform/runtime/MemberTable.h"

namespace switchdesk {

using platform::Method;

const platform::ClassDescription& HostObject::Description() {
    static const platform::ClassDescription description{
        "Host",
        {
            platform::Read<&HostObject::oPBX>("oPBX"),
            Method<&HostObject::ShowMessage>("ShowMessage", "Text"),
            Method<&HostObject::ShowResults>("ShowResults", "Caption", "oResponse"),
            Method<&HostObject::ShowCode>("ShowCode", "Code"),
            Method<&HostObject::DisplayHelp>("DisplayHelp", "File"),
            Method<&HostObject::UnloadChild>("UnloadChild", "ID"),
            Method<&HostObject::TurnOnFlow>("TurnOnFlow"),
            Method<&HostObject::TurnOffFlow>("TurnOffFlow"),
            Method<&HostObject::REGComData>("REGComData", "AppName", "Key", "Value"),
            Method<&HostObject::GetComData>("GetComData", "AppName", "Key", "Value"),
        }};
    return description;
}

void HostObject::ShowResults(const Text& caption, const platform::ObjectRef& response) {
    const auto own = std::dynamic_pointer_cast<ResponseObject>(response);
    if (!own) throw platform::RuntimeError(platform::ErrorNumber::TypeMismatch, "oResponse");
    parts_.view.ShowResults(caption, own->Items());
}

void HostObject::REGComData(const Text& application, const Text& key, const Text& value) {
    try {
        parts_.store.Set(application, key, value);
    } catch (const platform::RuntimeError& error) {
        // The add-in ignores this error, so the operator must learn of it here.
        parts_.view.ShowMessage(error.Description());
        throw;
    }
}

void HostObject::GetComData(const Text& application, const Text& key, Text& value) const {
    value = parts_.store.Get(application, key).value_or(Text());
}

}  // namespace switchdesk
