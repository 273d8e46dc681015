// What calls carry, how they find their member, and what the bus's own interfaces answer.
#include <cmath>
#include <regex>

#include "BusTest.h"
#include "platform/runtime/MemberTable.h"

namespace platform::test {
namespace {

constexpr TypeLibrary library{"TestLibrary", "{library}", "1.0"};
constexpr char typed[] = "TestLibrary._cTyped", properties[] = "org.freedesktop.DBus.Properties";
constexpr char introspectable[] = "org.freedesktop.DBus.Introspectable";

using CallTest = BusTest;

TEST_F(CallTest, EveryKindTravelsAsPromisedAndComesBackAsItWent) {
    // All these characters fit, though others with the same last letters don't.
    const Text letters = u"\u00FC\U0001F600\uFFFD\uFDCF\uFDF0\U0001F7FE\U0001F7FF\U0001FFFD\U00020000";
    const std::pair<Value, std::string> cases[] = {{Value(), "(y0)"},
                                                   {Null(), "(y1)"},
                                                   {Missing(), "(y10)"},
                                                   {true, "b1"},
                                                   {false, "b0"},
                                                   {std::int16_t{-32768}, "n-32768"},
                                                   {INT32_MAX, "i2147483647"},
                                                   {0.1, "d0.100000"},
                                                   {Date{36161.75}, "(d36161.750000)"},
                                                   {ObjectRef(), "('' /)"},
                                                   {u"", "''"},
                                                   {letters, "'" + ToUtf8(letters) + "'"}};
    Value given;
    const ObjectRef object = Created(Scripted({Echo()}));
    const Reference giver =
        CreateForStranger(Scripted({Method("Give", 0, [&](Arguments&) { return given; })}));
    for (const auto& [value, told] : cases) {
        given = value;
        EXPECT_EQ(stranger.Invoke(giver, "Give"), "<" + told + "> []");
        EXPECT_TRUE(Call(object, "echo", value) == value) << told;
    }
    EXPECT_EQ(Call(object, "Echo", 1.5f), Value(1.5)) << "a Single arrives as a Double";
    for (const Text& bad : {Text(u"a\0b", 3), Text(u"\uFFFE"), Text(u"\uFFFF"), Text(u"\uFDD0"),
                            Text(u"\uFDEF"), Text(u"\U0001FFFE"), Text(u"\U0010FFFF")})
        EXPECT_EQ(Failure([&] { Call(object, "Echo", bad); }),
                  "5 a text with U+0000 or a code point without character can't be handed over");
}

TEST_F(CallTest, ByReferenceTakesBackWhatChanged) {
    const ObjectRef object = Created(Scripted({Method("Change", 3, [](Arguments& a) {
        a[0] = u"new";
        a[1] = std::int16_t{7};
        a.push_back(u"surplus");
        return std::int32_t(a.size());
    })}));
    Text text = u"old";
    std::int16_t number = 1;
    Value untouched = 0.1f;
    EXPECT_EQ(Call(object, "Change", ByRef(text), ByRef(number), ByRef(untouched)), Value(4));
    EXPECT_EQ(text, u"new");
    EXPECT_EQ(number, 7);
    EXPECT_EQ(untouched, Value(0.1f)) << "still a Single";
    // A list that is shorter leaves the rest as it was, and one that is longer makes no sense.
    AnswerAll("short");
    EXPECT_EQ(Call(host, "Anything", ByRef(text)), Value(u"short"));
    stranger.whenCalled = [&](const MessageRef& call) {
        stranger.Return(call, "vav", "s", "", 2, "s", "changed", "s", "");
    };
    EXPECT_EQ(Failure([&] { Call(host, "Anything", ByRef(text)); }), "13 too many arguments came back");
    EXPECT_EQ(text, u"new");
    EXPECT_EQ(stranger.Heard(), "/Host Invoke 'Anything' q1 [<'new'>]; /Host Invoke 'Anything' q1 [<'new'>]");
}

TEST_F(CallTest, WhatStrangersPassIsConvertedOrRefused) {
    const Reference object = CreateForStranger(Scripted({Echo()}));
    const auto echo = [&](auto... value) { return stranger.Invoke(object, "Echo", 1, value...); };
    const std::string unsupported = "Error i13 a value of a type that isn't supported";
    const std::string overflow = "Error i6 Overflow", noReference = "Error i13 no reference to an object";
    const std::pair<std::string, std::string> cases[] = {
        {echo("y", 255), "<n255> [<n255>]"},
        {echo("q", 65535), "<i65535> [<i65535>]"},
        {echo("u", 2147483648), overflow},
        {echo("x", -2147483648LL), "<i-2147483648> [<i-2147483648>]"},
        {echo("x", -2147483649LL), overflow},
        {echo("t", 2147483647LL), "<i2147483647> [<i2147483647>]"},
        {echo("(d)", NAN), overflow},
        {echo("o", "/"), unsupported},
        {echo("ay", 0), unsupported},
        {echo("v", "s", "deep"), unsupported},
        {echo("(y)", 2), "Error i13 unknown kind of empty value"},
        {echo("(so)", "", "/Object/1"), noReference},
        {echo("(so)", "no name", "/Object/1"), noReference},
        {echo("(so)", ":1.0", "/Object/999"), "Error i462 /Object/999"}};
    for (const auto& [answer, expected] : cases) EXPECT_EQ(answer, expected);
}

// A public class with a member of each shape.
struct Typed : Object {
    const ClassDescription& Class() const override {
        static const ClassDescription description{
            "cTyped",
            {Write<&Typed::tag>("Tag"), Read<&Typed::tag>("Tag"), Read<&Typed::Item>("Item", "Index"),
             Write<&Typed::SetItem>("Item", "Index", "Content"), Read<&Typed::errCode>("ErrCode"),
             platform::Method<&Typed::Both>("Both", "Content", "Index")},
            &library,
            "{class}",
            "{interface}"};
        return description;
    }
    Text Item(std::int16_t) { throw RuntimeError(9, u"out of r\u00E4nge\uFFFF"); }
    void SetItem(std::int16_t, Text content) { tag = std::move(content); }
    Text Both(const Text& content, std::int16_t index) {
        if (content.empty()) throw std::runtime_error("broken");
        return content + DecimalText(index);
    }
    Text tag = u"tag";
    std::int32_t errCode = -5;
};

struct TypedInterfaceTest : BusTest {
    template <class... Parts>
    std::string Ask(Parts... parts) {
        return stranger.Call(reference, parts...);
    }
    template <class... Parts>
    std::string Invoke(const char* member, int kind, Parts... arguments) {
        return Ask(objectInterface, "Invoke", "sqav", member, kind, arguments...);
    }
    // The nodes below a path.
    std::string Children(const char* path) {
        const std::string xml = stranger.Call(Reference{":1.0", path}, introspectable, "Introspect");
        return std::regex_replace(xml, std::regex("<node name=\"([^\"]*)\""), "$1 ",
                                  std::regex_constants::format_no_copy);
    }
    Reference reference = CreateForStranger(std::make_shared<Typed>());
};

TEST_F(TypedInterfaceTest, CallsAreRoutedByPathInterfaceNameAndKind) {
    const Reference hidden = CreateForStranger(Scripted({Echo()})), root{":1.0", "/"};
    const char* late = objectInterface;
    const char* other = "org.example.Other";
    const std::string noInterface = "UnknownInterface i438 ", noMethod = "UnknownMethod i438 ";
    const std::string noProperty = "UnknownProperty i438 ";
    const std::string badArguments = "InvalidArgs i13 wanted are arguments of signature ";
    const std::pair<std::string, std::string> cases[] = {
        {Invoke("tag", 2, 0), "<'tag'> []"},
        {Invoke("TAG", 4, 1, "s", "late"), "<(y0)> [<'late'>]"},
        {Invoke("Tag", 8, 1, "s", "x"), "<(y0)> [<'x'>]"},
        {Invoke("Tag", 3, 0), "Error i5 kind of call 3"},
        {Invoke("Both", 1, 2, "i", 1, "s", "2"), "<'12'> [<i1> <'2'>]"},
        {Invoke("Both", 1, 2, "s", "", "i", 2), "Error i440 broken"},
        {Invoke("Nobody", 1, 0), "Error i438 cTyped.Nobody"},
        {Ask(late, "Invoke", "sq", "Tag", 2), badArguments + "\"sqav\""},
        {Ask(late, "Nobody"), noMethod + "Nobody"},
        {Ask(typed, "Both", "sn", "a", 1), "'a1'"},
        {Ask(nullptr, "Both", "sn", "b", 2), "'b2'"},
        {Ask(typed, "Put_Item", "ns", 1, "put"), ""},
        {Ask(nullptr, "Retain"), ""},
        {Ask(nullptr, "Get", "ss", typed, "Tag"), "<'put'>"},
        {Ask(properties, "Get", "ss", "", "ErrCode"), "<i-5>"},
        {Ask(properties, "Set", "ssv", "", "Tag", "s", "new"), ""},
        {Ask(nullptr, "GetAll", "s", typed), "[('Tag' <'new'>) ('ErrCode' <i-5>)]"},
        {Ask(properties, "GetAll", "s", late), "[]"},
        {Ask(other, "Nobody"), noInterface + other},
        {stranger.Call(root, late, "Retain"), noInterface + late},
        {stranger.Call(Reference{":1.0", "/Nowhere"}, nullptr, "Retain"), "UnknownObject i462 /Nowhere"},
        {stranger.Call(factory, nullptr, "CreateInstance", "s", ""), badArguments + "\"\""},
        {stranger.Call(factory, other, "CreateInstance"), noInterface + other},
        {Ask(typed, "Tag"), noMethod + "Tag"},
        {Ask(typed, "Put_Tag", "s", ""), noMethod + "Put_Tag"},
        {Ask(typed, "Item", "i", 1), badArguments + "\"n\""},
        {Ask(typed, "Item", "n", 1), "Error i9 out of r\u00E4nge\uFFFD"},
        {Ask(properties, "Nobody", "s", typed), noMethod + "Nobody"},
        {Ask(properties, "Get", "ss", typed, "Item"), noProperty + "Item"},
        {Ask(properties, "Get", "ss", late, "Tag"), noProperty + "Tag"},
        {Ask(properties, "Get", "s", typed), badArguments + "\"ss\""},
        {Ask(properties, "Set", "ssv", typed, "ErrCode", "i", 1), "PropertyReadOnly i383 ErrCode"},
        {stranger.Call(hidden, properties, "Get", "ss", typed, "Tag"), noInterface + typed},
        {stranger.Call(hidden, nullptr, "Echo"), noMethod + "Echo"},
        {Children("/"), "Factory Object "},
        {Children("/Object"), "1 2 "}};
    for (const auto& [answer, expected] : cases) EXPECT_EQ(answer, expected);
}

}  // namespace
}  // namespace platform::test
