// What travels between two processes, and what it has become when it arrives.
#include <cmath>

#include "BusTest.h"

namespace platform::test {
namespace {

using ValueTest = BusTest;

TEST_F(ValueTest, EveryKindComesBackAsItWent) {
    const Text letters = u"Gr\u00FC\u00DFe \U0001F600 \uFFFD\uFDCF\uFDF0\U0001FFFD\U00020000";
    const std::int16_t lowest = -32768, highest = 32767;
    const Value values[] = {Value(), Null(),         Missing(),   true,      false,
                            lowest,  highest,        INT32_MIN,   INT32_MAX, 0.1,
                            -1e308,  Date{36161.75}, ObjectRef(), u"",       letters};
    const ObjectRef object = Created({Echo()});
    for (std::size_t i = 0; i < std::size(values); ++i)
        EXPECT_TRUE(Call(object, "echo", values[i]) == values[i]) << "value " << i;
    EXPECT_EQ(Call(object, "Echo", 1.5f), Value(1.5)) << "a Single arrives as a Double";
}

TEST_F(ValueTest, TextThatCannotTravelIsRefusedOnBothSides) {
    Text text;
    const ObjectRef object = Created({Echo(), Method("Bad", 0, [&](Arguments&) { return text; })});
    for (const Text& bad : {Text(u"a\0b", 3), Text(1, u'\uFFFF'), Text(1, u'\uFDD0'), Text(u"\U0001FFFE")}) {
        text = bad;
        EXPECT_EQ(ErrorOf([&] { Call(object, "Echo", text); }), 5);
        EXPECT_EQ(ErrorOf([&] { Call(object, "Bad"); }), 5);
    }
}

TEST_F(ValueTest, ByReferenceTakesBackWhatChanged) {
    const ObjectRef object = Created({Method("Change", 3, [](Arguments& a) {
        a[0] = u"new";
        a[1] = std::int16_t{7};
        return a.size() == 3;
    })});
    Text text = u"old";
    std::int16_t number = 1;
    float untouched = 0.1f;
    EXPECT_EQ(Call(object, "Change", ByRef(text), ByRef(number), ByRef(untouched)), Value(true));
    EXPECT_EQ(text, u"new");
    EXPECT_EQ(number, 7);
    EXPECT_EQ(untouched, 0.1f);
    // A list that is shorter leaves the rest as it was.
    AnswerAll("short");
    EXPECT_EQ(Call(host, "Anything", ByRef(text)), Value(u"short"));
    EXPECT_EQ(text, u"new");
}

TEST_F(ValueTest, AnObjectByReferenceStaysTheSameOrIsReplaced) {
    const ObjectRef object = Created(
        {Method("Look", 1, [](Arguments&) {}), Method("Empty", 1, [](Arguments& a) { a[0] = ObjectRef(); })});
    for (const ObjectRef& given : {ObjectRef(Scripted()), object}) {
        ObjectRef variable = given;
        Call(object, "Look", ByRef(variable));
        EXPECT_EQ(variable, given);
        Call(object, "Empty", ByRef(variable));
        EXPECT_EQ(variable, nullptr);
    }
}

TEST_F(ValueTest, StrangersNumbersAreConvertedOrOverflow) {
    const struct {
        const char* type;
        std::uint64_t number;
        std::int32_t result, error;
    } cases[] = {{"y", 255, 255, 0},
                 {"q", 65535, 65535, 0},
                 {"u", 2147483647, 2147483647, 0},
                 {"u", 2147483648, 0, 6},
                 {"x", std::uint64_t(-2147483648LL), -2147483647 - 1, 0},
                 {"x", std::uint64_t(-2147483649LL), 0, 6},
                 {"t", 2147483647, 2147483647, 0},
                 {"t", 2147483648, 0, 6}};
    std::int32_t arrived = 0;
    const auto object =
        CreateForStranger({Method("Take", 1, [&](Arguments& a) { arrived = a[0].ToLong(); })});
    for (const auto& [type, number, result, error] : cases) {
        arrived = 0;
        EXPECT_EQ(stranger.Invoke(object, "Take", 1, type, number).number, error) << type << " " << number;
        EXPECT_EQ(arrived, result) << type << " " << number;
    }
}

TEST_F(ValueTest, OtherSignaturesAreMismatches) {
    bool ran = false;
    const auto object = CreateForStranger({Method("Take", 1, [&](Arguments&) { ran = true; })});
    const auto numberFor = [&](auto... value) { return stranger.Invoke(object, "Take", 1, value...).number; };
    EXPECT_EQ(numberFor("o", "/"), 13);
    EXPECT_EQ(numberFor("g", "s"), 13);
    EXPECT_EQ(numberFor("ay", 0), 13);
    EXPECT_EQ(numberFor("(yy)", 0, 0), 13);
    EXPECT_EQ(numberFor("(y)", 2), 13);
    EXPECT_EQ(numberFor("(so)", "", "/Object/1"), 13);
    EXPECT_EQ(numberFor("(so)", "no name", "/Object/1"), 13);
    EXPECT_EQ(numberFor("(so)", object.owner.c_str(), "/Object/999"), 462);
    EXPECT_EQ(numberFor("(d)", NAN), 6);
    EXPECT_EQ(numberFor("v", "v", "v", "v", "s", "deep"), 13);
    EXPECT_FALSE(ran);
}

}  // namespace
}  // namespace platform::test
