#include "host/ExchangeObject.h"

namespace switchdesk {

using platform::Arguments;
using platform::InvokeKind;
using platform::ValueType;

const platform::ClassDescription& ExchangeObject::Description() {
    constexpr auto bind = [](auto callable) { return platform::Bind<ExchangeObject>(callable); };
    static const platform::ClassDescription description{
        "cPBXOle",
        {
            {"ConnectToPbx",
             InvokeKind::Method,
             {{"PBXName", ValueType::String}, {"Client", ValueType::Object}},
             ValueType::String,
             bind([](ExchangeObject& self, Arguments& arguments) {
                 return self.Desk().Connect(arguments[0].ToText(), arguments[1].ToObject());
             })},
            {"Login",
             InvokeKind::Method,
             {{"PBXName", ValueType::String}, {"Client", ValueType::Object}},
             ValueType::String,
             bind([](ExchangeObject& self, Arguments& arguments) {
                 return self.Desk().Login(arguments[0].ToText(), arguments[1].ToObject());
             })},
            {"SendRequest",
             InvokeKind::Method,
             {{"Request", ValueType::Object}},
             ValueType::String,
             bind([](ExchangeObject& self, Arguments& arguments) {
                 return self.Desk().Send(arguments[0].ToObject());
             })},
            {"LogOut",
             InvokeKind::Method,
             {{"PBXName", ValueType::String}, {"LoginID", ValueType::String}},
             ValueType::None,
             bind([](ExchangeObject& self, Arguments& arguments) {
                 self.Desk().LogOut(arguments[1].ToText());
             })},
        }};
    return description;
}

}  // namespace switchdesk
