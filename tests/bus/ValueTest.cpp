// What travels between two processes, and what it has become when it arrives.
#include <cmath>

#include "ScriptedObject.h"
#include "StrangerTest.h"
#include "platform/automation/Names.h"

namespace platform::test {
namespace {

Member EchoMember() {
    return Method("Echo", 1, [](Arguments& arguments) { return arguments[0]; });
}

using ValueTest = StrangerTest;

TEST_F(ValueTest, EveryKindComesBackAsItWent) {
    const Value values[] = {
        Value(),
        Value(Null{}),
        Value(Missing{}),
        Value(true),
        Value(false),
        Value(std::int16_t{-32768}),
        Value(std::int16_t{32767}),
        Value(std::int32_t{-2147483647 - 1}),
        Value(std::int32_t{2147483647}),
        Value(0.1),
        Value(-1e308),
        Value(Date{36161.75}),
        Value(u""),
        Value(u"Gr\u00FC\u00DFe \U0001F600 \uFFFD"),
        Value(ObjectRef()),
    };
    const ObjectRef object = Created({EchoMember()});
    for (std::size_t i = 0; i < std::size(values); ++i)
        EXPECT_TRUE(Call(object, "echo", values[i]) == values[i]) << "value " << i;
}

TEST_F(ValueTest, SingleArrivesAsDouble) {
    const ObjectRef object = Created({EchoMember()});
    EXPECT_TRUE(Call(object, "Echo", 1.5f) == Value(1.5));
}

TEST_F(ValueTest, LongTextArrivesWhole) {
    const ObjectRef object = Created({EchoMember()});
    const Text text(10 * 1024 * 1024 / 3, u'\u20AC');  // three bytes each on the way
    EXPECT_TRUE(Call(object, "Echo", text) == Value(text));
}

TEST_F(ValueTest, TextThatCannotTravelIsRefusedOnBothSides) {
    const Text texts[] = {Text(u"a\0b", 3), Text(1, u'\uFFFF'), Text(1, u'\uFDD0'), Text(u"\U0001FFFE")};
    Text back;
    const ObjectRef object = Created({EchoMember(), Method("Bad", 0, [&](Arguments&) { return back; })});
    for (const Text& text : texts) {
        back = text;
        EXPECT_EQ(ErrorOf([&] { Call(object, "Echo", text); }), 5);
        EXPECT_EQ(ErrorOf([&] { Call(object, "Bad"); }), 5);
    }
    // Neighbours of those are fine.
    EXPECT_TRUE(Call(object, "Echo", u"\uFFFD\uFDCF\uFDF0\U0001FFFD\U00020000") ==
                Value(u"\uFFFD\uFDCF\uFDF0\U0001FFFD\U00020000"));
}

TEST_F(ValueTest, ByReferenceTakesBackWhatChanged) {
    const ObjectRef object = Created({Method("Change", 4, [](Arguments& arguments) {
        arguments[0] = u"new";
        arguments[1] = std::int16_t{7};
        return Value(arguments.size() == 4);
    })});
    Text text = u"old";
    std::int16_t number = 1;
    float untouched = 0.1f;
    std::int32_t untouchedLong = 5;
    const Value result =
        Call(object, "Change", ByRef(text), ByRef(number), ByRef(untouched), ByRef(untouchedLong));
    EXPECT_TRUE(result == Value(true));
    EXPECT_EQ(text, u"new");
    EXPECT_EQ(number, 7);
    EXPECT_EQ(untouched, 0.1f);
    EXPECT_EQ(untouchedLong, 5);
}

TEST_F(ValueTest, ObjectByReferenceStaysTheSameOrIsReplaced) {
    const ObjectRef object = Created(
        {Method("Keep", 1, [](Arguments&) { return Value(); }), Method("Empty", 1, [](Arguments& arguments) {
             arguments[0] = ObjectRef();
             return Value();
         })});
    const ObjectRef given = std::make_shared<ScriptedObject>(std::vector<Member>{});
    ObjectRef variable = given;
    Call(object, "Keep", ByRef(variable));
    EXPECT_EQ(variable, given);
    Call(object, "Empty", ByRef(variable));
    EXPECT_EQ(variable, nullptr);
    variable = object;
    Call(object, "Keep", ByRef(variable));
    EXPECT_EQ(variable, object);
}

TEST_F(ValueTest, PropertiesByKind) {
    Text stored = u"start";
    std::vector<Member> members{
        {"Name", InvokeKind::PropertyGet, {}, ValueType::String, [&](Object&, Arguments&) { return stored; }},
        {"Name",
         InvokeKind::PropertyPut,
         {{"Value", ValueType::String}},
         ValueType::None,
         [&](Object&, Arguments& arguments) {
             stored = arguments[0].ToText();
             return Value();
         }}};
    const ObjectRef object = Created(members);
    EXPECT_TRUE(Get(object, "NAME") == Value(u"start"));
    Put(object, "name", std::int16_t{12});
    EXPECT_EQ(stored, u"12");
    EXPECT_TRUE(Call(object, "Name") == Value(u"12"));
}

struct WireCase {
    const char* type;
    std::uint64_t number;
    std::int32_t result;
    std::int32_t error;
};

TEST_F(ValueTest, StrangersNumbersAreConverted) {
    const WireCase cases[] = {
        {"y", 255, 255, 0},
        {"q", 65535, 65535, 0},
        {"u", 2147483647, 2147483647, 0},
        {"u", 2147483648, 0, 6},
        {"x", static_cast<std::uint64_t>(-2147483648LL), -2147483647 - 1, 0},
        {"x", static_cast<std::uint64_t>(-2147483649LL), 0, 6},
        {"t", 2147483647, 2147483647, 0},
        {"t", 2147483648, 0, 6},
    };
    std::int32_t arrived = 0;
    const auto reference = CreateForStranger({Method("Take", 1, [&](Arguments& arguments) {
        arrived = arguments[0].ToLong();
        return Value();
    })});
    for (const WireCase& wire : cases) {
        arrived = 0;
        const MessageRef call =
            stranger.NewCall(reference.owner, reference.path, bus::objectInterface, "Invoke");
        sd_bus_message_append(call.get(), "sq", "Take", 1);
        sd_bus_message_open_container(call.get(), 'a', "v");
        sd_bus_message_open_container(call.get(), 'v', wire.type);
        sd_bus_message_append_basic(call.get(), wire.type[0], &wire.number);
        sd_bus_message_close_container(call.get());
        sd_bus_message_close_container(call.get());
        const Answer answer = stranger.Await(call);
        EXPECT_EQ(answer.number, wire.error) << wire.type << " " << wire.number;
        EXPECT_EQ(arrived, wire.result) << wire.type << " " << wire.number;
    }
}

TEST_F(ValueTest, BooleanParameterTakesNumbers) {
    std::vector<bool> arrived;
    const auto reference = CreateForStranger({{"Flag",
                                               InvokeKind::Method,
                                               {{"On", ValueType::Boolean}},
                                               ValueType::None,
                                               [&](Object&, Arguments& arguments) {
                                                   arrived.push_back(std::get<bool>(arguments[0].Stored()));
                                                   return Value();
                                               }}});
    for (const int number : {0, 1, -1, 2})
        stranger.Call(reference.owner, reference.path, bus::objectInterface, "Invoke", "sqav", "Flag", 1, 1,
                      "i", number);
    EXPECT_EQ(arrived, (std::vector<bool>{false, true, true, true}));
}

TEST_F(ValueTest, OtherSignaturesAreMismatches) {
    bool ran = false;
    const auto reference = CreateForStranger({Method("Take", 1, [&](Arguments&) {
        ran = true;
        return Value();
    })});
    const auto numberFor = [&](auto... value) {
        return stranger
            .Call(reference.owner, reference.path, bus::objectInterface, "Invoke", "sqav", "Take", 1, 1,
                  value...)
            .number;
    };
    EXPECT_EQ(numberFor("o", "/"), 13);
    EXPECT_EQ(numberFor("g", "s"), 13);
    EXPECT_EQ(numberFor("ay", 0), 13);
    EXPECT_EQ(numberFor("(yy)", 0, 0), 13);
    EXPECT_EQ(numberFor("(y)", 2), 13);
    EXPECT_EQ(numberFor("(so)", "", "/Object/1"), 13);
    EXPECT_EQ(numberFor("(so)", "no name", "/Object/1"), 13);
    EXPECT_EQ(numberFor("(so)", reference.owner.c_str(), "/Object/999"), 462);
    EXPECT_EQ(numberFor("(d)", NAN), 6);
    EXPECT_EQ(numberFor("v", "v", "v", "v", "s", "deep"), 13);
    EXPECT_FALSE(ran);
}

TEST_F(ValueTest, DeepAndHugeNonsenseIsRefused) {
    const auto reference = CreateForStranger({EchoMember()});
    const MessageRef deep = stranger.NewCall(reference.owner, reference.path, bus::objectInterface, "Invoke");
    sd_bus_message_append(deep.get(), "sq", "Echo", 1);
    sd_bus_message_open_container(deep.get(), 'a', "v");
    constexpr int depth = 40;
    for (int i = 0; i < depth; ++i) sd_bus_message_open_container(deep.get(), 'v', i + 1 < depth ? "v" : "y");
    sd_bus_message_append(deep.get(), "y", 1);
    for (int i = 0; i < depth; ++i) sd_bus_message_close_container(deep.get());
    sd_bus_message_close_container(deep.get());
    EXPECT_EQ(stranger.Await(deep).number, 13);

    const std::vector<char> bytes(10 * 1024 * 1024, 'x');
    const MessageRef huge = stranger.NewCall(reference.owner, reference.path, bus::objectInterface, "Invoke");
    sd_bus_message_append_array(huge.get(), 'y', bytes.data(), bytes.size());
    const Answer answer = stranger.Await(huge);
    EXPECT_EQ(answer.error, SD_BUS_ERROR_INVALID_ARGS);
    EXPECT_EQ(answer.number, 13);
}

TEST_F(ValueTest, KindsAndMembers) {
    struct Case {
        const char* member;
        int kind;
        std::int32_t number;
    };
    const Case cases[] = {{"Echo", 1, 0},  {"ECHO", 2, 0},     {"Echo", 3, 5}, {"Echo", 0, 5},
                          {"Echo", 16, 5}, {"Nobody", 1, 438}, {"", 1, 438},   {"Echo", 4, 383}};
    const auto reference = CreateForStranger({EchoMember()});
    for (const Case& one : cases) {
        const Answer answer = stranger.Call(reference.owner, reference.path, bus::objectInterface, "Invoke",
                                            "sqav", one.member, one.kind, 0);
        EXPECT_EQ(answer.number, one.number) << one.member << " " << one.kind;
        EXPECT_EQ(answer.error, one.number ? bus::errorName : "");
    }
    const Answer tooMany = stranger.Call(reference.owner, reference.path, bus::objectInterface, "Invoke",
                                         "sqav", "Echo", 1, 2, "s", "a", "s", "b");
    EXPECT_EQ(tooMany.number, 450);
}

}  // namespace
}  // namespace platform::test
