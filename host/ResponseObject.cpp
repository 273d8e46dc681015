#include "host/ResponseObject.h"

namespace switchdesk {

using platform::Arguments;
using platform::InvokeKind;
using platform::Member;
using platform::Text;
using platform::ValueType;

namespace {

template <class Callable>
std::function<platform::Value(platform::Object&, Arguments&)> Bind(Callable callable) {
    return platform::Bind<ResponseObject>(callable);
}

Text Indexed(ResponseObject& self, const platform::Value& index, Text Item::* field) {
    const std::vector<Item>& items = self.Content().items;
    const std::int16_t i = index.ToInteger();
    return i >= 0 && static_cast<std::size_t>(i) < items.size() ? items[static_cast<std::size_t>(i)].*field
                                                                : Text();
}

Member ListMember(std::string_view name, Text Item::* field) {
    return {name,
            InvokeKind::PropertyGet,
            {{"Index", ValueType::Integer}},
            ValueType::String,
            Bind([field](ResponseObject& self, Arguments& arguments) {
                return Indexed(self, arguments[0], field);
            })};
}

Member TextMember(std::string_view name, Text Answer::* field) {
    return {
        name, InvokeKind::PropertyGet, {}, ValueType::String, Bind([field](ResponseObject& self, Arguments&) {
            return self.Content().*field;
        })};
}

Member MessageWriter() {
    return {"Message",
            InvokeKind::PropertyPut,
            {{"Value", ValueType::String}},
            ValueType::None,
            Bind([](ResponseObject& self, Arguments& arguments) {
                self.Content().message = arguments[0].ToText();
            })};
}

std::int16_t CountOf(ResponseObject& self) {
    return static_cast<std::int16_t>(self.Content().items.size());
}

}  // namespace

const platform::ClassDescription& ResponseObject::Description() {
    static const platform::ClassDescription description{
        "Response",
        {
            {"Count",
             InvokeKind::PropertyGet,
             {},
             ValueType::Integer,
             Bind([](ResponseObject& self, Arguments&) { return CountOf(self); })},
            ListMember("CMD", &Item::command),
            ListMember("FirstData", &Item::first),
            ListMember("SecondData", &Item::second),
            ListMember("ExtraData", &Item::extra),
            {"ErrCode",
             InvokeKind::PropertyGet,
             {},
             ValueType::Long,
             Bind([](ResponseObject& self, Arguments&) { return self.Content().errCode; })},
            TextMember("Tag", &Answer::tag),
            TextMember("LoginID", &Answer::loginId),
            TextMember("Message", &Answer::message),
            MessageWriter(),
        }};
    return description;
}

}  // namespace switchdesk
