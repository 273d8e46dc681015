// The typed interface of public classes, introspection, and what the bus's own interfaces answer.
#include "BusTest.h"

namespace platform::test {
namespace {

constexpr TypeLibrary library{"TestLibrary", "{library}", "1.0"};
constexpr char typed[] = "TestLibrary._cTyped", properties[] = "org.freedesktop.DBus.Properties";

Member Slot(std::string_view name, InvokeKind kind, std::vector<Parameter> parameters, ValueType result,
            std::function<Value(Arguments&)> call) {
    return {name, kind, std::move(parameters), result, [call](Object&, Arguments& a) { return call(a); }};
}

struct TypedInterfaceTest : BusTest {
    std::vector<Member> Members() {
        const Parameter index{"Index", ValueType::Integer}, text{"Content", ValueType::String},
            parent{"Parent", ValueType::Object};
        const auto get = InvokeKind::PropertyGet, put = InvokeKind::PropertyPut;
        const auto none = ValueType::None, string = ValueType::String;
        return {
            Slot("Tag", put, {text}, none, [this](auto& a) { return tag = a[0].ToText(), Value(); }),
            Slot("Tag", get, {}, string, [this](auto&) { return tag; }),
            Slot("Item", get, {index}, string, [this](auto& a) { return item + a[0].ToText(); }),
            Slot("ErrCode", get, {}, ValueType::Long, [](auto&) { return -5; }),
            Slot("Item", put, {index, text}, none,
                 [this](auto& a) { return item = a[1].ToText() + a[0].ToText(), Value(); }),
            Slot("Register", InvokeKind::Method, {text, parent, index}, ValueType::Boolean, [this](auto& a) {
                tag = a[0].ToText();
                kept = a[1].ToObject();
                if (a[2].ToInteger() < 0) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
                return a[2].ToInteger() > 7;
            })};
    }
    template <class... Parts>
    Answer Ask(Parts... parts) {
        return stranger.Call(reference, parts...);
    }
    std::string Introspected(const std::string& path) {
        const Answer answer = stranger.Call(Reference{reference.owner, path},
                                            "org.freedesktop.DBus.Introspectable", "Introspect");
        const char* xml = "";
        sd_bus_message_read(answer.message.get(), "s", &xml);
        return answer.error + xml;
    }
    Text tag = u"tag", item = u"item";
    ObjectRef kept;
    Reference reference = CreateForStranger(std::make_shared<ScriptedObject>(
        ClassDescription{"cTyped", Members(), &library, "{class}", "{interface}"}));
};

TEST_F(TypedInterfaceTest, MethodsHaveTheResultAlone) {
    const Answer answer = Ask(typed, "Register", "s(so)n", "PBX 1", stranger.Name(), "/Parent", 8);
    EXPECT_STREQ(sd_bus_message_get_signature(answer.message.get(), true), "b");
    int result = 0;
    EXPECT_GT(sd_bus_message_read(answer.message.get(), "b", &result), 0);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(tag, u"PBX 1");
    EXPECT_EQ(stranger.CallsOf("Retain"), 1);
}

TEST_F(TypedInterfaceTest, IndexedPropertiesAreMethods) {
    EXPECT_EQ(Ask(typed, "Put_Item", "ns", 3, "new").error, "");
    EXPECT_EQ(item, u"new3");
    // Without an interface the method is found as well.
    for (const char* interface : {typed, static_cast<const char*>(nullptr)}) {
        const char* text = "";
        sd_bus_message_read(Ask(interface, "Item", "n", 4).message.get(), "s", &text);
        EXPECT_STREQ(text, "new34");
    }
}

TEST_F(TypedInterfaceTest, PropertiesAreReadAndWritten) {
    std::int32_t number = 0;
    sd_bus_message_read(Ask(properties, "Get", "ss", typed, "ErrCode").message.get(), "v", "i", &number);
    EXPECT_EQ(number, -5);
    for (const char* interface : {typed, ""}) {
        EXPECT_EQ(Ask(properties, "Set", "ssv", interface, "Tag", "s", interface).error, "");
        EXPECT_EQ(tag, FromUtf8(interface));
    }
}

TEST_F(TypedInterfaceTest, AllPropertiesInTheirOrder) {
    const Answer answer = Ask(properties, "GetAll", "s", typed);
    const char *first = "", *second = "", *text = "";
    std::int32_t number = 0;
    sd_bus_message_read(answer.message.get(), "a{sv}", 2, &first, "s", &text, &second, "i", &number);
    EXPECT_EQ(std::string(first) + " " + second, "Tag ErrCode");
    const Answer none = Ask(properties, "GetAll", "s", bus::objectInterface);
    EXPECT_STREQ(sd_bus_message_get_signature(none.message.get(), true), "a{sv}");
}

TEST_F(TypedInterfaceTest, FailuresHaveTheBussNamesAndANumber) {
    const char* late = bus::objectInterface;
    const Reference own{reference.owner, bus::factoryPath};
    const struct {
        Answer answer;
        const char* error;
        std::int32_t number;
    } cases[] = {
        {Ask(typed, "Nobody"), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask("org.example.Other", "Nobody"), SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {stranger.Call(Reference{reference.owner, "/"}, late, "Retain"), SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {Ask(typed, "register", "s(so)n", "", "", "/", 1), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(typed, "Tag"), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(typed, "Put_Tag", "s", ""), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(typed, "Item", "i", 1), SD_BUS_ERROR_INVALID_ARGS, 13},
        {Ask(typed, "Register", "s(so)n", "", "", "/", -1), bus::errorName, 9},
        {Ask(late, "Retain", "s", ""), SD_BUS_ERROR_INVALID_ARGS, 13},
        {Ask(nullptr, "Nobody"), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(properties, "Get", "ss", typed, "Item"), SD_BUS_ERROR_UNKNOWN_PROPERTY, 438},
        {Ask(properties, "Get", "ss", late, "Tag"), SD_BUS_ERROR_UNKNOWN_PROPERTY, 438},
        {Ask(properties, "Get", "ss", "org.example.Other", "Tag"), SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {Ask(properties, "Set", "ssv", typed, "ErrCode", "i", 1), SD_BUS_ERROR_PROPERTY_READ_ONLY, 383},
        {Ask(properties, "Get", "s", typed), SD_BUS_ERROR_INVALID_ARGS, 13},
        {Ask(properties, "Other", "s", typed), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {stranger.Call(Reference{reference.owner, "/Nowhere"}, nullptr, "Retain"),
         SD_BUS_ERROR_UNKNOWN_OBJECT, 462},
        {stranger.Call(own, bus::factoryInterface, "CreateInstance", "s", ""), SD_BUS_ERROR_INVALID_ARGS, 13},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(cases[i].answer.error, cases[i].error) << "case " << i;
        EXPECT_EQ(cases[i].answer.number, cases[i].number) << "case " << i;
    }
}

TEST_F(TypedInterfaceTest, IntrospectionShowsTheTree) {
    const std::string number = reference.path.substr(reference.path.rfind('/') + 1);
    const std::pair<std::string, std::string> cases[] = {{"/", "<node name=\"Factory\"/>"},
                                                         {"/", "<node name=\"Object\"/>"},
                                                         {"/Object", "<node name=\"" + number + "\"/>"},
                                                         {"/Factory", bus::factoryInterface},
                                                         {reference.path, bus::objectInterface},
                                                         {reference.path, typed},
                                                         {"/Object/999", SD_BUS_ERROR_UNKNOWN_OBJECT}};
    for (const auto& [path, shown] : cases)
        EXPECT_NE(Introspected(path).find(shown), std::string::npos) << path << " " << shown;
}

TEST_F(TypedInterfaceTest, AnObjectWithoutPublicClassHasNoTypedInterface) {
    reference = CreateForStranger({Named(u"")});
    EXPECT_EQ(Introspected(reference.path).find(properties), std::string::npos);
    EXPECT_EQ(Ask(properties, "Get", "ss", typed, "Tag").error, SD_BUS_ERROR_UNKNOWN_INTERFACE);
    EXPECT_EQ(Ask(nullptr, "Name").error, SD_BUS_ERROR_UNKNOWN_METHOD);
}

}  // namespace
}  // namespace platform::test
