// Introspection data: the order of the slots is part of a class's interface.
#include "platform/automation/Introspection.h"

#include <gtest/gtest.h>

#include <regex>

namespace platform {
namespace {

// The elements of an interface, in their order, each as its name and the values of its attributes.
std::string Elements(const std::string& xml) {
    static const std::regex element("<(method|property|arg|annotation) ([^>]*?)/?>"), name("[A-Za-z]+=|\"");
    std::string found;
    for (auto i = std::sregex_iterator(xml.begin(), xml.end(), element); i != std::sregex_iterator(); ++i)
        found += (*i)[1].str() + " " + std::regex_replace((*i)[2].str(), name, "") + "\n";
    return found;
}

TEST(IntrospectionTest, MembersStandInTheOrderOfTheirSlots) {
    const TypeLibrary library{"Lib100", "{library}", "1.0"};
    const auto get = InvokeKind::PropertyGet, put = InvokeKind::PropertyPut;
    const Parameter text{"Value", ValueType::String}, index{"Index", ValueType::Integer};
    const auto slot = [](std::string_view name, InvokeKind kind, std::vector<Parameter> parameters,
                         ValueType result = ValueType::None) {
        return Member{name, kind, std::move(parameters), result, nullptr};
    };
    const ClassDescription record{
        "cRecord",
        {slot("Tag", put, {text}), slot("Count", get, {}, ValueType::Integer),
         slot("Tag", get, {}, ValueType::String), slot("CMD", get, {index}, ValueType::String),
         slot("Clear", InvokeKind::Method, {}), slot("CMD", put, {index, text}),
         slot("Secret", put, {{"Value", ValueType::Date}}),
         slot("Parent", InvokeKind::PropertyPutObject, {{"Value", ValueType::Object}}),
         slot("Parent", get, {}, ValueType::Object)},
        &library,
        "{class}",
        "{interface}"};
    EXPECT_EQ(Elements(TypedInterfaceXml(record)), R"(property Tag s readwrite
property Count n read
method CMD
arg Index n in
arg Result s out
method Clear
method Put_CMD
arg Index n in
arg Value s in
property Secret (d) write
property Parent (so) readwrite
annotation org.velmora.Automation1.ClassGuid {class}
annotation org.velmora.Automation1.InterfaceGuid {interface}
annotation org.velmora.Automation1.TypeLibrary Lib100
annotation org.velmora.Automation1.TypeLibraryGuid {library}
annotation org.velmora.Automation1.TypeLibraryVersion 1.0
annotation org.freedesktop.DBus.Property.EmitsChangedSignal false
)");
    EXPECT_EQ(TypedInterfaceName(record), "Lib100._cRecord");
    const ClassDescription hidden{"dlgAny", record.members};
    EXPECT_EQ(TypedInterfaceName(hidden) + TypedInterfaceXml(hidden), "");
}

}  // namespace
}  // namespace platform
