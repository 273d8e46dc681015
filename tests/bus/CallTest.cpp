// What calls carry, how they find their member, and how they fail.
#include "BusTest.h"
#include "platform/runtime/MemberTable.h"

namespace platform::test {
namespace {

using CallTest = BusTest;

TEST_F(CallTest, EveryKindTravelsAsPromisedAndComesBackAsItWent) {
    // All these characters fit, though others with the same last letters don't.
    const Text letters = u"\u00FC\U0001F600\uFFFD\uFDCF\uFDF0\U0001F7FE\U0001F7FF\U0001FFFD\U00020000";
    const std::pair<Value, std::string> cases[] = {{Value(), "(y0)"},
                                                   {Null(), "(y1)"},
                                                   {Missing(), "(y10)"},
                                                   {true, "b1"},
                                                   {std::int16_t{-32768}, "n-32768"},
                                                   {INT32_MAX, "i2147483647"},
                                                   {0.1, "d0.100000"},
                                                   {Date{36161.75}, "(d36161.750000)"},
                                                   {ObjectRef(), "('' /)"},
                                                   {letters, "'" + ToUtf8(letters) + "'"}};
    Value given;
    const ObjectRef object = Created(Scripted(Echo));
    const Reference giver = CreateForStranger(Scripted([&](Arguments&) { return given; }));
    for (const auto& [value, text] : cases) {
        given = value;
        EXPECT_EQ(Invoke(giver), "<" + text + "> []");
        EXPECT_TRUE(Call(object, "Echo", value) == value) << text;
    }
    for (const Text& bad : {Text(u"a\0b", 3), Text(u"\uFFFE"), Text(u"\uFDEF"), Text(u"\U0010FFFF")})
        EXPECT_EQ(ErrorOf([&] { Call(object, "Echo", bad); }), 5);
}

TEST_F(CallTest, AReplyLargerThanTheSocketTakesIsSentOnceTheBusReadsAgain) {
    const std::string large(20 << 20, 'x');
    const Reference giver = CreateForStranger(Scripted([&](Arguments&) {
        kill(bus.daemon, SIGSTOP);
        events += "given ";
        return Value(FromUtf8(large));
    }));
    const MessageRef& reply = Send(giver, objectInterface, "Invoke", "sqav", "Give", 1, 0);
    ExpectEvents("given ");
    EXPECT_FALSE(reply);
    kill(bus.daemon, SIGCONT);
    loop.ServeUntil([&] { return reply != nullptr; });
    EXPECT_TRUE(reply && MessageText(reply) == "<'" + large + "'> []");
}

TEST_F(CallTest, ByReferenceTakesBackWhatChanged) {
    const ObjectRef object = Created(Scripted([](Arguments& a) {
        a[0] = u"new";
        a.push_back(u"surplus");
        return std::int32_t(a.size());
    }));
    Text text = u"old";
    Value untouched = 0.1f;
    EXPECT_EQ(Call(object, "Change", ByRef(text), ByRef(untouched)), Value(3));
    EXPECT_EQ(text, u"new");
    EXPECT_EQ(untouched, Value(0.1f)) << "still a Single";
    // A list that is shorter leaves the rest as it was, and one that is longer makes no sense.
    whenCalled = [&](const MessageRef& call) { Answer(call, "short"); };
    EXPECT_EQ(Call(host, "Anything", ByRef(text)), Value(u"short"));
    whenCalled = [](const MessageRef& call) {
        sd_bus_reply_method_return(call.get(), "vav", "s", "", 2, "s", "changed", "s", "");
    };
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything", ByRef(text)); }), 13);
    EXPECT_EQ(text, u"new");
    EXPECT_EQ(MessageText(calls.back()), "/Host Invoke 'Anything' q1 [<'new'>]");
}

constexpr TypeLibrary library{"TestLibrary", "{library}", "1.0"};
struct Typed : Object {
    const ClassDescription& Class() const override {
        static const ClassDescription description{"cTyped",
                                                  {Write<&Typed::tag>("Tag"), Read<&Typed::tag>("Tag"),
                                                   Write<&Typed::SetItem>("Item", "Index", "Content"),
                                                   Method<&Typed::Both>("Both", "Content", "Index")},
                                                  &library,
                                                  "{class}",
                                                  "{interface}"};
        return description;
    }
    void SetItem(std::int16_t, Text content) { tag = std::move(content); }
    Text Both(const Text& content, std::int16_t index) {
        if (content.empty()) throw std::runtime_error("broken");
        return content + DecimalText(index);
    }
    Text tag = u"tag";
};

TEST_F(CallTest, WhatStrangersCallAndPassIsFoundAndConvertedOrRefused) {
    const char *typed = "TestLibrary._cTyped", *properties = "org.freedesktop.DBus.Properties";
    const char *late = objectInterface, *any = nullptr;
    const Reference object = CreateForStranger(std::make_shared<Typed>());
    const Reference echoing = CreateForStranger(Scripted(Echo));
    const auto echo = [&](auto... value) { return Invoke(echoing, 1, value...); };
    const auto ask = [&](auto... parts) { return Ask(object, parts...); };
    const auto invoke = [&](const char* member, int kind, auto... arguments) {
        return ask(late, "Invoke", "sqav", member, kind, arguments...);
    };
    const std::pair<std::string, std::string> cases[] = {
        {invoke("tag", 2, 0), "<'tag'> []"},
        {invoke("TAG", 4, 1, "s", "late"), "<(y0)> [<'late'>]"},
        {invoke("Both", 1, 2, "i", 1, "s", "2"), "<'12'> [<i1> <'2'>]"},
        {invoke("Both", 1, 2, "s", "", "i", 2), "Error i440"},
        {invoke("Nobody", 1, 0), "Error i438"},
        {ask(late, "Invoke", "sq", "Tag", 2), "InvalidArgs i13"},
        {ask(any, "Both", "sn", "b", 2), "'b2'"},
        {ask(typed, "Both", "si", "a", 1), "InvalidArgs i13"},
        {ask(typed, "Put_Item", "ns", 1, "put"), ""},
        {ask(any, "Get", "ss", typed, "Tag"), "<'put'>"},
        {ask(properties, "Set", "ssv", "", "Tag", "s", "new"), ""},
        {ask(any, "GetAll", "s", typed), "[('Tag' <'new'>)]"},
        {ask(properties, "Get", "ss", typed, "Item"), "UnknownProperty i438"},
        {ask("org.freedesktop.DBus.Peer", "Ping"), ""},
        {ask("org.example.Other", "Nobody"), "UnknownInterface i438"},
        {Ask(Reference{":1.0", "/Nowhere"}, late, "Retain"), "UnknownObject i462"},
        {echo("y", 255), "<n255> [<n255>]"},
        {echo("x", -2147483648LL), "<i-2147483648> [<i-2147483648>]"},
        {echo("x", -2147483649LL), "Error i6"},
        {echo("ay", 0), "Error i13"},
        {echo("(so)", "no name", "/Object/1"), "Error i13"},
        {echo("(so)", ":1.0", "/Object/999"), "Error i462"}};
    for (const auto& [answer, expected] : cases) EXPECT_EQ(answer, expected);
}

TEST_F(CallTest, CreationFailsWith429AndTheCause) {
    const auto expect = [&](TextView name, const std::string& cause) {
        const std::string fault = FaultOf([&] { client->CreateObject(name); });
        EXPECT_TRUE(fault.starts_with("429 ") && fault.ends_with(cause)) << fault;
    };
    create = []() -> ObjectRef { throw RuntimeError(53, u"file missing"); };
    expect(u"Test.cScripted", "file missing");
    create = [] { return nullptr; };
    expect(u"Test.cScripted", ": Test.cScripted");
    expect(u"Test.cNobody", "was not provided by any .service files");
    EXPECT_EQ(ErrorOf([&] { client->ServeClass("Test.cScripted", create); }), 429) << "the name is taken";
}

TEST_F(CallTest, WhatAnErrorMeansToTheCaller) {
    const std::string own = "org.freedesktop.DBus.Error.";
    const Table<std::string, std::int32_t, std::int32_t> cases = {{own + "NoReply", 0, 462},
                                                                  {own + "Spawn.ChildExited", 0, 462},
                                                                  {own + "UnknownMethod", 7, 438},
                                                                  {"org.velmora.Automation1.Error", 7, 7},
                                                                  {"org.velmora.Automation1.Error", 0, 440},
                                                                  {"org.example.NoReply", 0, 440}};
    for (const auto& [name, number, meant] : cases) {
        whenCalled = [&name = name, &number = number](const MessageRef& call) {
            sd_bus_message* error = nullptr;
            sd_bus_message_new_method_errorf(call.get(), &error, name.c_str(), "why");
            const MessageRef owned = Adopted(error);
            if (number != 0) sd_bus_message_append(error, "i", number);
            sd_bus_message_send(error);
        };
        EXPECT_EQ(FaultOf([&] { Call(host, "Anything"); }), std::to_string(meant) + " why") << name;
    }
    // A letter that can't travel is replaced.
    const ObjectRef raising =
        Created(Scripted([](Arguments&) -> Value { throw RuntimeError(9, u"out of r\u00E4nge\uFFFF"); }));
    EXPECT_EQ(FaultOf([&] { Call(raising, "Anything"); }), "9 out of r\u00E4nge\uFFFD");
    whenCalled = [](const MessageRef& call) {
        sd_bus_reply_method_return(call.get(), "vavs", "s", "", 0, "");
    };
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 13) << "an answer of another signature";
}

}  // namespace
}  // namespace platform::test
