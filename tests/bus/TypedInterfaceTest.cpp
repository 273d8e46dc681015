// The typed interface of public classes, and what the bus's own interfaces answer.
#include "BusTest.h"

namespace platform::test {
namespace {

constexpr TypeLibrary library{"TestLibrary", "{library}", "1.0"};
constexpr char typed[] = "TestLibrary._cTyped", properties[] = "org.freedesktop.DBus.Properties";

struct TypedInterfaceTest : BusTest {
    std::vector<Member> Members() {
        const auto get = InvokeKind::PropertyGet, put = InvokeKind::PropertyPut;
        const auto none = ValueType::None, string = ValueType::String;
        const Parameter content{"Content", string}, index{"Index", ValueType::Integer};
        const auto write = [this](Object&, Arguments& a) { return tag = a[0].ToText(), Value(); };
        const auto fail = [](Object&, Arguments&) -> Value { throw RuntimeError(9, u"out of range"); };
        return {{"Tag", put, {content}, none, write},
                {"Tag", get, {}, string, [this](Object&, Arguments&) { return tag; }},
                {"Item", get, {index}, string, fail},
                {"ErrCode", get, {}, ValueType::Long, [](Object&, Arguments&) { return -5; }}};
    }
    template <class... Parts>
    Answer Ask(Parts... parts) {
        return stranger.Call(reference, parts...);
    }
    Text tag = u"tag";
    Reference reference = CreateForStranger(std::make_shared<ScriptedObject>(
        ClassDescription{"cTyped", Members(), &library, "{class}", "{interface}"}));
};

TEST_F(TypedInterfaceTest, AllPropertiesInTheirOrder) {
    const Answer answer = Ask(properties, "GetAll", "s", typed);
    const char *first = "", *second = "", *text = "";
    std::int32_t number = 0;
    sd_bus_message_read(answer.message.get(), "a{sv}", 2, &first, "s", &text, &second, "i", &number);
    EXPECT_EQ(std::string(first) + " " + second, "Tag ErrCode");
    const Answer none = Ask(properties, "GetAll", "s", bus::objectInterface);
    EXPECT_STREQ(sd_bus_message_get_signature(none.message.get(), true), "a{sv}");
}

TEST_F(TypedInterfaceTest, ThePropertiesInterfaceMayBeLeftUnnamed) {
    EXPECT_EQ(Ask(properties, "Set", "ssv", "", "Tag", "s", "new").error, "");
    EXPECT_EQ(tag, u"new");
}

TEST_F(TypedInterfaceTest, FailuresHaveTheBussNamesAndANumber) {
    const char* late = bus::objectInterface;
    const auto at = [&](const char* path) { return Reference{reference.owner, path}; };
    const Reference hidden = CreateForStranger({Named(u"")});
    const struct {
        Answer answer;
        const char* error;
        std::int32_t number;
    } cases[] = {
        {Ask("org.example.Other", "Nobody"), SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {stranger.Call(at("/"), late, "Retain"), SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {stranger.Call(at("/Nowhere"), nullptr, "Retain"), SD_BUS_ERROR_UNKNOWN_OBJECT, 462},
        {Ask(typed, "item", "n", 1), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(typed, "Tag"), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(typed, "Put_Tag", "s", ""), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(nullptr, "Nobody"), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(typed, "Item", "i", 1), SD_BUS_ERROR_INVALID_ARGS, 13},
        {Ask(typed, "Item", "n", 1), bus::errorName, 9},
        {Ask(properties, "Get", "ss", typed, "Item"), SD_BUS_ERROR_UNKNOWN_PROPERTY, 438},
        {Ask(properties, "Get", "ss", late, "Tag"), SD_BUS_ERROR_UNKNOWN_PROPERTY, 438},
        {Ask(properties, "Get", "ss", "org.example.Other", "Tag"), SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {Ask(properties, "Set", "ssv", typed, "ErrCode", "i", 1), SD_BUS_ERROR_PROPERTY_READ_ONLY, 383},
        {Ask(properties, "Get", "s", typed), SD_BUS_ERROR_INVALID_ARGS, 13},
        {stranger.Call(hidden, properties, "Get", "ss", typed, "Tag"), SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {stranger.Call(hidden, nullptr, "Name"), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(cases[i].answer.error, cases[i].error) << "case " << i;
        EXPECT_EQ(cases[i].answer.number, cases[i].number) << "case " << i;
    }
}

}  // namespace
}  // namespace platform::test
