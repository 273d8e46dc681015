// Introspection data: the order of the slots is part of a class's interface.
#include "platform/automation/Introspection.h"

#include <gtest/gtest.h>

#include <regex>

namespace platform {
namespace {

constexpr TypeLibrary library{"Lib100", "{11111111-2222-3333-4444-555555555555}", "1.0"};

Member Slot(std::string_view name, InvokeKind kind, std::vector<Parameter> parameters, ValueType result) {
    return {name, kind, std::move(parameters), result, nullptr};
}

ClassDescription PublicClass() {
    const auto get = InvokeKind::PropertyGet, put = InvokeKind::PropertyPut;
    const Parameter text{"Value", ValueType::String}, index{"Index", ValueType::Integer};
    return {"cRecord",
            {Slot("Tag", put, {text}, ValueType::None), Slot("Count", get, {}, ValueType::Integer),
             Slot("Tag", get, {}, ValueType::String), Slot("CMD", get, {index}, ValueType::String),
             Slot("Clear", InvokeKind::Method, {}, ValueType::None),
             Slot("CMD", put, {index, text}, ValueType::None),
             Slot("Secret", put, {{"Value", ValueType::Date}}, ValueType::None),
             Slot("Parent", InvokeKind::PropertyPutObject, {{"Value", ValueType::Object}}, ValueType::None),
             Slot("Parent", get, {}, ValueType::Object)},
            &library,
            "{class}",
            "{interface}"};
}

// The elements of an interface, one a line, in their order.
std::vector<std::string> Elements(const std::string& xml) {
    static const std::regex element("<(method|property|arg|annotation) [^>]*>");
    std::vector<std::string> found;
    for (auto i = std::sregex_iterator(xml.begin(), xml.end(), element); i != std::sregex_iterator(); ++i)
        found.push_back(i->str());
    return found;
}

TEST(IntrospectionTest, MembersStandInTheOrderOfTheirSlots) {
    const std::vector<std::string> expected{
        R"xml(<property name="Tag" type="s" access="readwrite"/>)xml",
        R"xml(<property name="Count" type="n" access="read"/>)xml",
        R"xml(<method name="CMD">)xml",
        R"xml(<arg name="Index" type="n" direction="in"/>)xml",
        R"xml(<arg name="Result" type="s" direction="out"/>)xml",
        R"xml(<method name="Clear">)xml",
        R"xml(<method name="Put_CMD">)xml",
        R"xml(<arg name="Index" type="n" direction="in"/>)xml",
        R"xml(<arg name="Value" type="s" direction="in"/>)xml",
        R"xml(<property name="Secret" type="(d)" access="write"/>)xml",
        R"xml(<property name="Parent" type="(so)" access="readwrite"/>)xml",
        R"xml(<annotation name="org.velmora.Automation1.ClassGuid" value="{class}"/>)xml",
        R"xml(<annotation name="org.velmora.Automation1.InterfaceGuid" value="{interface}"/>)xml",
        R"xml(<annotation name="org.velmora.Automation1.TypeLibrary" value="Lib100"/>)xml",
        R"xml(<annotation name="org.velmora.Automation1.TypeLibraryGuid" value="{11111111-2222-3333-4444-555555555555}"/>)xml",
        R"xml(<annotation name="org.velmora.Automation1.TypeLibraryVersion" value="1.0"/>)xml",
        R"xml(<annotation name="org.freedesktop.DBus.Property.EmitsChangedSignal" value="false"/>)xml",
    };
    EXPECT_EQ(Elements(TypedInterfaceXml(PublicClass())), expected);
}

TEST(IntrospectionTest, NameOfTheTypedInterface) {
    EXPECT_EQ(TypedInterfaceName(PublicClass()), "Lib100._cRecord");
    const ClassDescription hidden{"dlgAny", PublicClass().members};
    EXPECT_EQ(TypedInterfaceName(hidden), "");
    EXPECT_EQ(TypedInterfaceXml(hidden), "");
}

TEST(IntrospectionTest, LateBoundInterfaceIsTheContract) {
    const std::vector<std::string> expected{
        R"xml(<method name="Invoke">)xml",
        R"xml(<arg name="member" type="s" direction="in"/>)xml",
        R"xml(<arg name="kind" type="q" direction="in"/>)xml",
        R"xml(<arg name="arguments" type="av" direction="in"/>)xml",
        R"xml(<arg name="result" type="v" direction="out"/>)xml",
        R"xml(<arg name="arguments" type="av" direction="out"/>)xml",
        R"xml(<method name="Retain"/>)xml",
        R"xml(<method name="Release"/>)xml",
    };
    EXPECT_EQ(Elements(ObjectInterfaceXml()), expected);
    EXPECT_EQ(Elements(FactoryInterfaceXml()),
              (std::vector<std::string>{R"xml(<method name="CreateInstance">)xml",
                                        R"xml(<arg name="object" type="(so)" direction="out"/>)xml"}));
}

}  // namespace
}  // namespace platform
