// The typed interface of public classes, introspection, and what the bus's own interfaces answer.
#include "StrangerTest.h"

namespace platform::test {
namespace {

constexpr TypeLibrary library{"TestLibrary", "{00000000-0000-0000-0000-000000000001}", "1.0"};
constexpr char typed[] = "TestLibrary._cTyped";
constexpr char properties[] = "org.freedesktop.DBus.Properties";

class TypedObject : public Object {
  public:
    const ClassDescription& Class() const override;
    Text Tag = u"tag";
    std::int32_t ErrCode = -5;
    bool ShowBusy = true;
    Text item = u"item";
    ObjectRef Parent;
};

Member Item() {
    return {"Item",
            InvokeKind::PropertyGet,
            {{"Index", ValueType::Integer}},
            ValueType::String,
            Bind<TypedObject>([](TypedObject& self, Arguments& arguments) {
                return self.item + DecimalText(arguments[0].ToInteger());
            })};
}

Member PutItem() {
    return {"Item",
            InvokeKind::PropertyPut,
            {{"Index", ValueType::Integer}, {"Content", ValueType::String}},
            ValueType::None,
            Bind<TypedObject>([](TypedObject& self, Arguments& arguments) {
                self.item = arguments[1].ToText() + DecimalText(arguments[0].ToInteger());
            })};
}

Member RegisterMember() {
    return {"Register",
            InvokeKind::Method,
            {{"Name", ValueType::String}, {"Parent", ValueType::Object}, {"ID", ValueType::Integer}},
            ValueType::Boolean,
            Bind<TypedObject>([](TypedObject& self, Arguments& arguments) {
                self.Tag = arguments[0].ToText();
                self.Parent = arguments[1].ToObject();
                if (arguments[2].ToInteger() < 0) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
                return arguments[2].ToInteger() > 7;
            })};
}

const ClassDescription& TypedObject::Class() const {
    static const ClassDescription description{
        "cTyped",
        {Write<&TypedObject::Tag>("Tag"), Read<&TypedObject::Tag>("Tag"), Item(),
         Read<&TypedObject::ErrCode>("ErrCode"), PutItem(), RegisterMember(),
         Read<&TypedObject::ShowBusy>("ShowBusy"), Write<&TypedObject::ShowBusy>("ShowBusy")},
        &library,
        "{00000000-0000-0000-0000-000000000002}",
        "{00000000-0000-0000-0000-000000000003}"};
    return description;
}

class TypedInterfaceTest : public StrangerTest {
  protected:
    TypedInterfaceTest() {
        create = [this] { return object; };
        reference = ReferenceIn(
            stranger.Call("Test.cScripted", bus::factoryPath, bus::factoryInterface, "CreateInstance", ""));
    }
    template <class... Parts>
    Answer Ask(const char* interface, const char* member, const char* types, Parts... parts) {
        return stranger.Call(reference.owner, reference.path, interface, member, types, parts...);
    }
    std::string Introspected(const std::string& path) {
        const Answer answer =
            stranger.Call(reference.owner, path, "org.freedesktop.DBus.Introspectable", "Introspect", "");
        const char* xml = "";
        sd_bus_message_read(answer.message.get(), "s", &xml);
        return answer.error + xml;
    }

    std::shared_ptr<TypedObject> object = std::make_shared<TypedObject>();
    Reference reference;
};

TEST_F(TypedInterfaceTest, MethodsHaveTheResultAlone) {
    const Answer answer = Ask(typed, "Register", "s(so)n", "PBX 1", stranger.Name().c_str(), "/Parent", 8);
    EXPECT_STREQ(sd_bus_message_get_signature(answer.message.get(), true), "b");
    int result = 0;
    EXPECT_GT(sd_bus_message_read(answer.message.get(), "b", &result), 0);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(object->Tag, u"PBX 1");
    EXPECT_EQ(stranger.CallsOf("Retain"), 1u);
}

TEST_F(TypedInterfaceTest, IndexedPropertiesAreMethods) {
    EXPECT_EQ(Ask(typed, "Put_Item", "ns", 3, "new").error, "");
    EXPECT_EQ(object->item, u"new3");
    const Answer answer = Ask(typed, "Item", "n", 4);
    const char* text = "";
    EXPECT_GT(sd_bus_message_read(answer.message.get(), "s", &text), 0);
    EXPECT_STREQ(text, "new34");
    // Without an interface the method is found as well.
    EXPECT_EQ(Ask(nullptr, "Item", "n", 4).error, "");
}

TEST_F(TypedInterfaceTest, PropertiesAreReadAndWritten) {
    const Answer read = Ask(properties, "Get", "ss", typed, "ErrCode");
    std::int32_t number = 0;
    EXPECT_GT(sd_bus_message_read(read.message.get(), "v", "i", &number), 0);
    EXPECT_EQ(number, -5);
    EXPECT_EQ(Ask(properties, "Set", "ssv", typed, "Tag", "s", "set").error, "");
    EXPECT_EQ(object->Tag, u"set");
    EXPECT_EQ(Ask(properties, "Set", "ssv", "", "ShowBusy", "b", 0).error, "");
    EXPECT_FALSE(object->ShowBusy);
}

TEST_F(TypedInterfaceTest, AllPropertiesInTheirOrder) {
    const Answer answer = Ask(properties, "GetAll", "s", typed);
    const char *tag = nullptr, *errCode = nullptr, *showBusy = nullptr, *text = nullptr;
    std::int32_t number = 0;
    int flag = 0;
    EXPECT_GT(sd_bus_message_read(answer.message.get(), "a{sv}", 3, &tag, "s", &text, &errCode, "i", &number,
                                  &showBusy, "b", &flag),
              0);
    EXPECT_EQ(std::string(tag) + " " + errCode + " " + showBusy, "Tag ErrCode ShowBusy");
    EXPECT_STREQ(
        sd_bus_message_get_signature(Ask(properties, "GetAll", "s", bus::objectInterface).message.get(), 1),
        "a{sv}");
}

TEST_F(TypedInterfaceTest, FailuresHaveTheBussNamesAndANumber) {
    struct Case {
        Answer answer;
        const char* error;
        std::int32_t number;
    };
    const char* object1 = bus::objectInterface;
    const Case cases[] = {
        {Ask(typed, "Nobody", ""), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(typed, "register", "s(so)n", "", "", "/", 1), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(typed, "Tag", ""), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(typed, "Put_Tag", "s", ""), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask("org.example.Other", "Nobody", ""), SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {Ask(typed, "Item", "i", 1), SD_BUS_ERROR_INVALID_ARGS, 13},
        {Ask(typed, "Item", ""), SD_BUS_ERROR_INVALID_ARGS, 13},
        {Ask(typed, "Register", "s(so)n", "", "", "/", -1), bus::errorName, 9},
        {Ask(object1, "Nobody", ""), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(object1, "Retain", "s", ""), SD_BUS_ERROR_INVALID_ARGS, 13},
        {Ask(object1, "Invoke", "s", "Tag"), SD_BUS_ERROR_INVALID_ARGS, 13},
        {Ask(nullptr, "Nobody", ""), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {Ask(properties, "Get", "ss", typed, "Nobody"), SD_BUS_ERROR_UNKNOWN_PROPERTY, 438},
        {Ask(properties, "Get", "ss", typed, "Item"), SD_BUS_ERROR_UNKNOWN_PROPERTY, 438},
        {Ask(properties, "Get", "ss", object1, "Tag"), SD_BUS_ERROR_UNKNOWN_PROPERTY, 438},
        {Ask(properties, "Get", "ss", "org.example.Other", "Tag"), SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {Ask(properties, "Set", "ssv", typed, "ErrCode", "i", 1), SD_BUS_ERROR_PROPERTY_READ_ONLY, 383},
        {Ask(properties, "Set", "ssv", typed, "ShowBusy", "s", "maybe"), bus::errorName, 13},
        {Ask(properties, "Get", "s", typed), SD_BUS_ERROR_INVALID_ARGS, 13},
        {Ask(properties, "Other", "s", typed), SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {stranger.Call(reference.owner, "/Object/999", object1, "Retain", ""), SD_BUS_ERROR_UNKNOWN_OBJECT,
         462},
        {stranger.Call(reference.owner, "/Nowhere", nullptr, "Retain", ""), SD_BUS_ERROR_UNKNOWN_OBJECT, 462},
        {stranger.Call(reference.owner, "/", object1, "Retain", ""), SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {stranger.Call(reference.owner, bus::factoryPath, bus::factoryInterface, "Other", ""),
         SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {stranger.Call(reference.owner, bus::factoryPath, bus::factoryInterface, "CreateInstance", "s", ""),
         SD_BUS_ERROR_INVALID_ARGS, 13},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(cases[i].answer.error, cases[i].error) << "case " << i;
        EXPECT_EQ(cases[i].answer.number, cases[i].number) << "case " << i;
    }
}

TEST_F(TypedInterfaceTest, IntrospectionShowsTheTree) {
    EXPECT_NE(Introspected("/").find("<node name=\"Factory\"/>"), std::string::npos);
    EXPECT_NE(Introspected("/").find("<node name=\"Object\"/>"), std::string::npos);
    const std::string number = reference.path.substr(reference.path.rfind('/') + 1);
    EXPECT_NE(Introspected("/Object").find("<node name=\"" + number + "\"/>"), std::string::npos);
    EXPECT_NE(Introspected("/Factory").find(bus::factoryInterface), std::string::npos);
    EXPECT_NE(Introspected(reference.path).find(typed), std::string::npos);
    EXPECT_NE(Introspected(reference.path).find(bus::objectInterface), std::string::npos);
    EXPECT_EQ(Introspected("/Object/999").rfind(SD_BUS_ERROR_UNKNOWN_OBJECT, 0), 0u);
}

TEST_F(TypedInterfaceTest, ObjectWithoutPublicClassHasNoTypedInterface) {
    reference = CreateForStranger({Method("Name", 0, [](Arguments&) { return Value(); })});
    EXPECT_EQ(Introspected(reference.path).find(properties), std::string::npos);
    EXPECT_EQ(Ask(properties, "Get", "ss", typed, "Tag").error, SD_BUS_ERROR_UNKNOWN_INTERFACE);
    EXPECT_EQ(Ask(nullptr, "Name", "").error, SD_BUS_ERROR_UNKNOWN_METHOD);
}

}  // namespace
}  // namespace platform::test
