#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "platform/runtime/Object.h"

using namespace platform;

namespace {

TEST(TextTest, Utf8GoesThereAndBackAndBrokenInputIsReplaced) {
    for (const std::string text : {"", "plain", "Größe", "電話", "\xF0\x9F\x95\x90"})
        EXPECT_EQ(ToUtf8(FromUtf8(text)), text);
    EXPECT_EQ(FromUtf8("a\xFFz"), u"a\uFFFDz");
    EXPECT_EQ(FromUtf8("\xC0\xAF"), u"\uFFFD\uFFFD") << "overlong";
    EXPECT_EQ(ToUtf8(Text(1, char16_t(0xD800))), "\xEF\xBF\xBD");
}

TEST(ValueTest, ConvertsAndRoundsToEven) {
    EXPECT_EQ(Value(2.5).ToInteger(), 2);
    EXPECT_EQ(Value(3.5).ToInteger(), 4);
    EXPECT_EQ(Value(true).ToInteger(), -1);
    EXPECT_EQ(Value(u" 42 ").ToLong(), 42);
    EXPECT_EQ(Value().ToText(), u"");
    EXPECT_TRUE(Value(std::int16_t{7}).ToBoolean());
    EXPECT_FALSE(Value(u"false").ToBoolean());
}

TEST(ValueTest, NumbersAreWrittenWithSevenOrFifteenDigits) {
    const std::pair<Value, Text> cases[] = {{100000.0F, u"100000"},
                                            {1234567.0F, u"1234567"},
                                            {9999999.6F, u"1E+07"},
                                            {12345678.0F, u"1.234568E+07"},
                                            {0.1F, u"0.1"},
                                            {1.0F / 3, u"0.3333333"},
                                            {1.0F / 30, u"3.333334E-02"},
                                            {-1e-7F, u"-0.0000001"},
                                            {1e-8F, u"1E-08"},
                                            {3150.5F, u"3150.5"},
                                            {-0.0F, u"0"},
                                            {100000000000000.0, u"100000000000000"},
                                            {1e15, u"1E+15"},
                                            {999999999999999.0, u"999999999999999"},
                                            {-1.5e300, u"-1.5E+300"},
                                            {0.1 + 0.2, u"0.3"},
                                            {0.00001, u"0.00001"},
                                            {1.0 / 30, u"3.33333333333333E-02"},
                                            {1e-15, u"0.000000000000001"},
                                            {5e-324, u"4.94065645841247E-324"},
                                            {std::int16_t{-32768}, u"-32768"},
                                            {2147483647, u"2147483647"}};
    for (const auto& [value, text] : cases) EXPECT_EQ(ToUtf8(value.ToText()), ToUtf8(text));
}

TEST(ValueTest, ConversionsRaiseTheirNumbers) {
    const std::pair<std::function<void()>, int> cases[] = {
        {[] { Value(40000).ToInteger(); }, 6},     {[] { Value(-32769).ToInteger(); }, 6},
        {[] { Value(3e10).ToLong(); }, 6},         {[] { Value(1e300).ToSingle(); }, 6},
        {[] { Value(1e9).ToDate(); }, 6},          {[] { Value(u"12a").ToLong(); }, 13},
        {[] { Value(u"").ToDouble(); }, 13},       {[] { Value(u"inf").ToDouble(); }, 13},
        {[] { Value(ObjectRef()).ToText(); }, 13}, {[] { Value(Missing{}).ToText(); }, 13},
        {[] { Value(Null{}).ToText(); }, 94},      {[] { Value(Null{}).ToLong(); }, 94},
        {[] { Value(u"text").ToObject(); }, 424}};
    for (const auto& [convert, number] : cases) EXPECT_EQ(ErrorOf(convert), number);
}

TEST(DateTest, TextsOfEveryForm) {
    const std::pair<const char16_t*, DateParts> cases[] = {
        {u" 1/8/2026 1:02:03 PM ", {2026, 1, 8, 13, 2, 3}}, {u"23:00", {1899, 12, 30, 23, 0, 0}},
        {u"11:59:59 pm", {1899, 12, 30, 23, 59, 59}},       {u"11/18/2026", {2026, 11, 18}},
        {u"12:05:30 PM", {1899, 12, 30, 12, 5, 30}},        {u"01/02/26", {2026, 1, 2}},
        {u"12:05:30 AM", {1899, 12, 30, 0, 5, 30}},         {u"01/02/99", {1999, 1, 2}}};
    for (const auto& [text, parts] : cases) EXPECT_EQ(DateOfText(text), MakeDate(parts)) << ToUtf8(text);
    for (const char16_t* text :
         {u"", u"/", u"11/18", u"18/11/2026", u"2/29/2026", u"11/18/2026/5", u"24:00:00", u"12:60:00",
          u"13:00 PM", u"::", u"1:2:3:4", u"noon", u"11/18/2026 x", u"5"})
        EXPECT_EQ(ErrorOf([&] { DateOfText(text); }), 13) << ToUtf8(text);
    EXPECT_EQ(ErrorOf([] { MakeDate({2026, 2, 29}); }), 5);
}

TEST(DateTest, PartsSurviveOnBothSidesOfTheEpoch) {
    for (const DateParts& parts : {DateParts{1901, 1, 1, 23, 59, 59}, DateParts{1899, 12, 29, 6, 0, 1},
                                   DateParts{1899, 12, 30, 0, 0, 0}, DateParts{2099, 12, 31, 12, 34, 56}}) {
        const DateParts back = PartsOf(MakeDate(parts));
        EXPECT_EQ(MakeDate(back), MakeDate(parts));
        EXPECT_EQ(back.second, parts.second);
        EXPECT_EQ(back.day, parts.day);
    }
    EXPECT_EQ(Weekday(MakeDate({2026, 11, 15})), 1);
    EXPECT_EQ(PartsOf(Date{46344.9999999}).day, PartsOf(Date{46345}).day) << "rounds into the next day";
    EXPECT_EQ(Value(MakeDate({2026, 3, 4, 13, 2, 3})).ToText(), u"03/04/2026 13:02:03");
}

// A class with one member of each shape.
struct Sample : Object {
    const ClassDescription& Class() const override {
        static const ClassDescription description{
            "Sample",
            {Read<&Sample::number>("Number"),
             Write<&Sample::number>("Number"),
             Read<&Sample::number>("Fixed"),
             {"Join",
              InvokeKind::Method,
              {{"A", ValueType::String}, {"B", ValueType::String, true}},
              ValueType::String,
              Bind<Sample>([](Sample&, Arguments& a) {
                  return a[0].ToText() + (a[1].IsMissing() ? Text(u"-") : a[1].ToText());
              })}}};
        return description;
    }
    std::int16_t number = 5;
};

TEST(ObjectTest, MembersAreFoundByNameAndKindWithoutRegardToCase) {
    const auto sample = std::make_shared<Sample>();
    EXPECT_EQ(Get(sample, "NUMBER").ToInteger(), 5);
    EXPECT_EQ(Call(sample, "number").ToInteger(), 5) << "a call reads";
    Put(sample, "Number", u"12");
    EXPECT_EQ(sample->number, 12);
    EXPECT_EQ(Get(sample, "join", u"a").ToText(), u"a-");
}

TEST(ObjectTest, RefusedCallsChangeNothing) {
    const auto sample = std::make_shared<Sample>();
    EXPECT_EQ(ErrorOf([&] { Call(sample, "Nobody"); }), 438);
    EXPECT_EQ(ErrorOf([&] { Put(sample, "Fixed", 1); }), 383);
    EXPECT_EQ(ErrorOf([&] { Call(sample, "Join"); }), 450);
    EXPECT_EQ(ErrorOf([&] { Call(sample, "Join", Missing{}); }), 450);
    EXPECT_EQ(ErrorOf([&] { Put(sample, "Number", 40000); }), 6);
    EXPECT_EQ(ErrorOf([&] { Call(ObjectRef(), "Join"); }), 91);
    EXPECT_EQ(sample->number, 5);
}

}  // namespace
