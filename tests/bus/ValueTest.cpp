// What travels between two processes, and what it has become when it arrives.
#include <cmath>

#include "BusTest.h"

namespace platform::test {
namespace {

using ValueTest = BusTest;

TEST_F(ValueTest, EveryKindTravelsAsPromisedAndComesBackAsItWent) {
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

TEST_F(ValueTest, ByReferenceTakesBackWhatChanged) {
    const ObjectRef object = Created(Scripted({Method("Change", 3, [](Arguments& a) {
        a[0] = u"new";
        a[1] = std::int16_t{7};
        a.push_back(u"surplus");
        return std::int32_t(a.size());
    })}));
    Text text = u"old";
    std::int16_t number = 1;
    float untouched = 0.1f;
    EXPECT_EQ(Call(object, "Change", ByRef(text), ByRef(number), ByRef(untouched)), Value(4));
    EXPECT_EQ(text, u"new");
    EXPECT_EQ(number, 7);
    EXPECT_EQ(untouched, 0.1f);
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

TEST_F(ValueTest, WhatStrangersPassIsConvertedOrRefused) {
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

}  // namespace
}  // namespace platform::test
