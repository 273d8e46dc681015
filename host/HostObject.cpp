#include "host/HostObject.h"

#include "host/ResponseObject.h"

namespace switchdesk {

using platform::Arguments;
using platform::InvokeKind;
using platform::Member;
using platform::Parameter;
using platform::ValueType;

namespace {

template <class Callable>
Member Method(std::string_view name, std::vector<Parameter> parameters, Callable callable) {
    return {name, InvokeKind::Method, std::move(parameters), ValueType::None,
            platform::Bind<HostObject>(callable)};
}

void ShowResults(HostObject& self, Arguments& arguments) {
    const auto response = std::dynamic_pointer_cast<ResponseObject>(arguments[1].ToObject());
    if (!response) throw platform::RuntimeError(platform::ErrorNumber::TypeMismatch, "oResponse");
    self.Content().view.ShowResults(arguments[0].ToText(), response->Content().items);
}

void GetComData(HostObject& self, Arguments& arguments) {
    const auto value = self.Content().store.Get(arguments[0].ToText(), arguments[1].ToText());
    arguments[2] = value.value_or(platform::Text());
}

// An add-in passes over a failure, so it is shown here.
void RegComData(HostObject& self, Arguments& arguments) {
    const HostObject::Parts& parts = self.Content();
    try {
        parts.store.Set(arguments[0].ToText(), arguments[1].ToText(), arguments[2].ToText());
    } catch (const platform::RuntimeError& error) {
        parts.view.ShowMessage(error.Description());
        throw;
    }
}

Member ExchangeReader() {
    return {"oPBX",
            InvokeKind::PropertyGet,
            {},
            ValueType::Object,
            platform::Bind<HostObject>([](HostObject& self, Arguments&) { return self.Content().exchange; })};
}

}  // namespace

const platform::ClassDescription& HostObject::Description() {
    static const std::vector<Parameter> stored{
        {"AppName", ValueType::String}, {"Key", ValueType::String}, {"Value", ValueType::String}};
    static const platform::ClassDescription description{
        "Host",
        {
            ExchangeReader(),
            Method("ShowMessage", {{"Text"}},
                   [](HostObject& self, Arguments& a) {
                       self.Content().view.ShowMessage(a[0].ToTextOrEmpty());
                   }),
            Method("ShowResults", {{"Caption", ValueType::String}, {"oResponse", ValueType::Object}},
                   ShowResults),
            Method(
                "ShowCode", {{"Code"}},
                [](HostObject& self, Arguments& a) { self.Content().view.ShowCode(a[0].ToTextOrEmpty()); }),
            Method("DisplayHelp", {{"File", ValueType::String}},
                   [](HostObject& self, Arguments& a) { self.Content().view.ShowHelp(a[0].ToText()); }),
            Method("UnloadChild", {{"ID", ValueType::Integer}},
                   [](HostObject& self, Arguments& a) { self.Content().unloadChild(a[0].ToInteger()); }),
            // Nothing here depends on the flow.
            Method("TurnOnFlow", {}, [](HostObject&, Arguments&) {}),
            Method("TurnOffFlow", {}, [](HostObject&, Arguments&) {}),
            Method("REGComData", stored, RegComData),
            Method("GetComData", stored, GetComData),
        }};
    return description;
}

}  // namespace switchdesk
