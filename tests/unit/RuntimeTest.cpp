#include <gtest/gtest.h>

#include <cmath>
#include <ctime>

#include "ErrorOf.h"
#include "Table.h"
#include "platform/headless/Desktop.h"
#include "platform/runtime/Collection.h"
#include "platform/runtime/Object.h"
#include "platform/runtime/Trace.h"

using namespace platform;

namespace {

TEST(TextTest, Utf8GoesThereAndBackAndBrokenInputIsReplaced) {
    for (const std::string text : {"", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                                   "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_EQ(ToUtf8(FromUtf8("a" + text + "z")), "a" + text + "z");
    EXPECT_EQ(FromUtf8("\xC3\x9F\xE9\x9B\xBB\xF0\x9F\x95\x90"), u"ß電🕐");
    const std::pair<std::string, Text> broken[] = {
        {"\xFF", u"\uFFFD"},
        {"\x80", u"\uFFFD"},
        {"\xC1\xBF", u"\uFFFD\uFFFD"},                      // longer than it needs to be
        {"\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},            // the same
        {"\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // the same
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // half a pair
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // past the last code point
        {"\xF8\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // no lead
        {"\xE9\x9B", u"\uFFFD\uFFFD"},                      // cut
        {"\xE9\xC3\x9F", u"\uFFFDß"}};
    for (const auto& [utf8, text] : broken) EXPECT_EQ(FromUtf8("a" + utf8 + "z"), u"a" + text + u"z");
    for (const Text& lone : {Text{0xD800}, Text{0xDBFF, u'z'}, Text{0xDC00}, Text{0xDFFF, 0xD800},
                             Text{0xD800, 0xD800}, Text{0xD800, 0xE000}})
        EXPECT_EQ(ToUtf8(lone).substr(0, 3), "\uFFFD");
}

TEST(TextTest, PiecesAndLetterCase) {
    EXPECT_EQ(Left(u"abc", 2) + Right(u"abc", 2) + Left(u"a", 2) + Right(u"b", 2), u"abbcab");
    EXPECT_EQ(Right(u"abc", 3) + Mid(u"abc", 2) + Mid(u"abc", 1, 1) + Mid(u"abc", 3, 9) + Mid(u"abc", 4),
              u"abcbcac");
    EXPECT_EQ(Trim(u"  a b ") + Trim(u"\ta\r") + Trim(u"   ") + Trim(u""), u"a b\ta\r");
    EXPECT_EQ(UpperCase(u"az`{AZж\u00DF\u00E9\u00FF1"), u"AZ`{AZЖ\u00DF\u00C9\u01781");
    EXPECT_TRUE(EqualsIgnoringCase(u"GRÖßE ж", u"größe Ж"));
    EXPECT_FALSE(EqualsIgnoringCase(u"a", u"ab") || EqualsIgnoringCase(u"a", u"b"));
}

TEST(ValueTest, ConvertsAndRoundsToEven) {
    const Date noon = MakeDate({1900, 1, 1, 12});
    const std::pair<Value, double> numbers[] = {{2.5, 2},   {3.5, 4},         {-2.5, -2},        {true, -1},
                                                {false, 0}, {u" +42.4 ", 42}, {Value(), 0},      {noon, 2},
                                                {1.5F, 2},  {32767.4, 32767}, {-32768.4, -32768}};
    for (const auto& [value, number] : numbers) {
        EXPECT_EQ(value.ToInteger(), number);
        EXPECT_EQ(value.ToLong(), number);
    }
    EXPECT_EQ(Value(noon).ToDouble() + Value(1.5F).ToDouble() + Value(u"1e2").ToSingle(), 104);
    EXPECT_EQ(Value(u"11/18/2026").ToDate(), MakeDate({2026, 11, 18}));
    EXPECT_EQ(Value(-657434.0).ToDate().days + Value(2958465.5).ToDate().days, 2301031.5);
    EXPECT_EQ(Value(3.4028234e38).ToSingle(), 3.4028234e38F);
    for (const Value& value : {Value(std::int16_t{7}), Value(u"tRUE"), Value(u"1"), Value(0.1)})
        EXPECT_TRUE(value.ToBoolean());
    for (const Value& value : {Value(), Value(u"false"), Value(u"0"), Value(Date{})})
        EXPECT_FALSE(value.ToBoolean());
    EXPECT_EQ(Value().ToText() + Value(true).ToText() + Value(false).ToText(), u"TrueFalse");
    EXPECT_EQ(Value(Null{}).ToTextOrEmpty() + Value(7).ToTextOrEmpty(), u"7");
    EXPECT_EQ(Value(ObjectRef()).ToObject(), nullptr);
    EXPECT_TRUE(Value(Null{}).IsNull() && Value(Missing{}).IsMissing() && Value().IsEmpty() &&
                Value(ObjectRef()).IsObject() && !Value(u"").IsEmpty());
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
                                            {-HUGE_VAL, u"-inf"},
                                            {HUGE_VALF, u"inf"},
                                            {std::nan(""), u"nan"},
                                            {std::int16_t{-32768}, u"-32768"},
                                            {2147483647, u"2147483647"}};
    for (const auto& [value, text] : cases) EXPECT_EQ(ToUtf8(value.ToText()), ToUtf8(text));
}

TEST(ValueTest, ConversionsRaiseTheirNumbers) {
    const std::string overflow = "6 Overflow", mismatch = "13 Type mismatch", null = "94 Invalid use of Null";
    const Table<std::function<void()>, std::string> cases = {
        {[] { Value(32767.5).ToInteger(); }, overflow},
        {[] { Value(-32768.6).ToInteger(); }, overflow},
        {[] { Value(3e10).ToLong(); }, overflow},
        {[] { Value(std::nan("")).ToLong(); }, overflow},
        {[] { Value(1e300).ToSingle(); }, overflow},
        {[] { Value(-657435.0).ToDate(); }, overflow},
        {[] { Value(2958466.0).ToDate(); }, overflow},
        {[] { Value(u"1e999").ToDouble(); }, overflow},
        {[] { Value(u"12a").ToLong(); }, mismatch},
        {[] { Value(u"").ToDouble(); }, mismatch},
        {[] { Value(u"++1").ToDouble(); }, mismatch},
        {[] { Value(u"inf").ToDouble(); }, mismatch},
        {[] { Value(ObjectRef()).ToText(); }, mismatch},
        {[] { Value(ObjectRef()).ToDouble(); }, mismatch},
        {[] { Value(Missing{}).ToText(); }, mismatch},
        {[] { Value(Missing{}).ToDouble(); }, mismatch},
        {[] { Value(Null{}).ToText(); }, null},
        {[] { Value(Null{}).ToLong(); }, null},
        {[] { Value(u"text").ToObject(); }, "424 Object required"}};
    for (const auto& [convert, fault] : cases) EXPECT_EQ(FaultOf(convert), fault);
}

TEST(DateTest, TextsOfEveryForm) {
    const std::pair<const char16_t*, DateParts> cases[] = {{u" 1/8/2026 1:02:03 PM ", {2026, 1, 8, 13, 2, 3}},
                                                           {u"23:59:59", {1899, 12, 30, 23, 59, 59}},
                                                           {u"11:59:59 pm", {1899, 12, 30, 23, 59, 59}},
                                                           {u"11/18/2026", {2026, 11, 18}},
                                                           {u"12:05:30 PM", {1899, 12, 30, 12, 5, 30}},
                                                           {u"01/02/29", {2029, 1, 2}},
                                                           {u"12:05am", {1899, 12, 30, 0, 5, 0}},
                                                           {u"01/02/30", {1930, 1, 2}},
                                                           {u"12/31/9999", {9999, 12, 31}},
                                                           {u"01/02/99", {1999, 1, 2}},
                                                           {u"0:0  AM", {1899, 12, 30}},
                                                           {u"1/1/100", {100, 1, 1}}};
    for (const auto& [text, parts] : cases) EXPECT_EQ(DateOfText(text), MakeDate(parts)) << ToUtf8(text);
    for (const char16_t* text :
         {u"",         u"/",        u"11/18",        u"18/11/2026", u"2/29/2026", u"11/18/2026/5",
          u"24:00:00", u"12:60:00", u"12:00:60",     u"13:00 PM",   u"13:00 AM",  u"::",
          u"1:2:3:4",  u"noon",     u"11/18/2026 x", u"5",          u"AM",        u"1/1/20260",
          u"1/1/202:", u"1/1/202."})
        EXPECT_EQ(FaultOf([&] { DateOfText(text); }),
                  (*text ? "13 Type mismatch: " : "13 Type mismatch") + ToUtf8(text));
    for (const DateParts& parts : {DateParts{2026, 2, 29},
                                   {99, 12, 31},
                                   {10000, 1, 1},
                                   {2026, 0, 1},
                                   {2026, 13, 1},
                                   {2026, 1, 0},
                                   {2026, 1, 1, -1},
                                   {2026, 1, 1, 24},
                                   {2026, 1, 1, 0, -1},
                                   {2026, 1, 1, 0, 60},
                                   {2026, 1, 1, 0, 0, -1},
                                   {2026, 1, 1, 0, 0, 60},
                                   {2026, 1, 257},
                                   {2026, 257, 1}})
        EXPECT_EQ(FaultOf([&] { MakeDate(parts); }), "5 Invalid procedure call or argument");
}

TEST(DateTest, PartsSurviveOnBothSidesOfTheEpoch) {
    for (const DateParts& parts : {DateParts{1901, 1, 1, 23, 59, 59}, DateParts{1899, 12, 29, 6, 7, 1},
                                   DateParts{1899, 12, 30, 0, 0, 0}, DateParts{2099, 12, 31, 12, 34, 56}}) {
        const DateParts back = PartsOf(MakeDate(parts));
        EXPECT_EQ((std::array{back.year, back.month, back.day, back.hour, back.minute, back.second}),
                  (std::array{parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second}));
    }
    EXPECT_EQ(MakeDate({1899, 12, 29, 6}).days, -1.25);
    EXPECT_EQ(MakeDate({1900, 1, 1, 6}).days, 2.25);
    EXPECT_EQ(Weekday(MakeDate({2026, 11, 15})), 1);
    EXPECT_EQ(Weekday(MakeDate({2026, 11, 21})), 7);
    EXPECT_EQ(PartsOf(Date{46344.9999999}).day, PartsOf(Date{46345}).day) << "rounds into the next day";
    EXPECT_EQ(PartsOf(Date{46344.9999999}).hour, 0);
}

TEST(DateTest, PatternsAndTheFormThatIsReadBack) {
    const Date date = MakeDate({2026, 3, 4, 5, 6, 7});
    EXPECT_EQ(FormatDate(date, u"yyyy-mm-dd ddd aaaa hh:nn:ss hhmm y", headless::Locale()),
              u"2026-03-04 d4 day 4 05:06:07 0506 y");
    EXPECT_EQ(FormatDate(MakeDate({987, 1, 1}), u"yyyy", headless::Locale()), u"0987");
    EXPECT_EQ(FormatDate(date, u"Long Date", headless::Locale()), u"long 03/04/2026 05:06:07");
    EXPECT_EQ(FormatDate(date, u"Long Time", headless::Locale()), u"long 03/04/2026 05:06:07");
    EXPECT_EQ(TwoDigits(7) + TwoDigits(123), u"07123");
    const std::pair<DateParts, const char16_t*> cases[] = {
        {{2026, 3, 4, 13, 2, 3}, u"03/04/2026 13:02:03"}, {{987, 3, 4}, u"03/04/0987"},
        {{1899, 12, 30, 0, 0, 1}, u"00:00:01"},           {{1899, 12, 30}, u"12/30/1899"},
        {{1899, 12, 30, 0, 1, 0}, u"00:01:00"},           {{1899, 12, 30, 1}, u"01:00:00"},
        {{1899, 12, 31, 1}, u"12/31/1899 01:00:00"},      {{1899, 12, 29, 1}, u"12/29/1899 01:00:00"}};
    for (const auto& [parts, text] : cases) EXPECT_EQ(Value(MakeDate(parts)).ToText(), text);
}

TEST(DateTest, TheSystemsClockIsThatOfTheTimeZone) {
    const auto local = [] {
        char text[32];
        const std::time_t now = std::time(nullptr);
        std::strftime(text, sizeof text, "%Y/%m/%d %H:%M:%S", std::localtime(&now));
        return FromUtf8(text);
    };
    const Text before = local();
    const Text now = FormatDate(SystemClock().Now(), u"yyyy/mm/dd hh:nn:ss", headless::Locale());
    EXPECT_TRUE(before <= now && now <= local()) << ToUtf8(before + u" and " + now);
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
                  const Text joined = a[0].ToText() + (a[1].IsMissing() ? Text(u"-") : a[1].ToText());
                  if (!a[1].IsMissing()) a[1] = u"given back";
                  return joined;
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
    Value one(1), two(2);
    EXPECT_EQ(Call(sample, "Join", ByRef(one), ByRef(two)).ToText(), u"12");
    EXPECT_EQ(one, Value(1)) << "comes back as it went";
    EXPECT_EQ(two, Value(u"given back"));
    EXPECT_TRUE(SameMemberName("azAZ[{", "AZaz[{"));
    EXPECT_FALSE(SameMemberName("[", "{") || SameMemberName("@", "`") || SameMemberName("a", "ab"));
    EXPECT_EQ(sample->WhenOwnerGone([] {}), nullptr);
}

TEST(ObjectTest, RefusedCallsChangeNothing) {
    const auto sample = std::make_shared<Sample>();
    const Table<std::function<void()>, const char*> cases = {
        {[&] { Call(sample, "Nobody"); },
         "438 The object doesn't support this property or method: Sample.Nobody"},
        {[&] { Put(sample, "Nobody", 1); },
         "438 The object doesn't support this property or method: Sample.Nobody"},
        {[&] { Put(sample, "Fixed", 1); }, "383 The property is read-only: Sample.Fixed"},
        {[&] { Call(sample, "Join"); }, "450 Wrong number of arguments: Join"},
        {[&] { Call(sample, "Join", Missing{}); }, "450 Wrong number of arguments: Join"},
        {[&] { Call(sample, "Join", 1, 2, 3); }, "450 Wrong number of arguments: Join"},
        {[&] { Put(sample, "Number", 40000); }, "6 Overflow"},
        {[&] { Call(ObjectRef(), "Join"); }, "91 Object variable is not set"}};
    for (const auto& [call, fault] : cases) EXPECT_EQ(FaultOf(call), fault);
    EXPECT_EQ(sample->number, 5);
}

TEST(ObjectTest, ValuesAreConvertedToDeclaredTypes) {
    using enum ValueType;
    const ObjectRef object = std::make_shared<Sample>();
    const Table<Value, ValueType, Value> cases = {{u"7", None, u"7"},
                                                  {u"7", Variant, u"7"},
                                                  {7, String, u"7"},
                                                  {u"7", Integer, std::int16_t{7}},
                                                  {u"7", Long, 7},
                                                  {u"7", Boolean, true},
                                                  {u"7", Single, 7.0F},
                                                  {u"7", Double, 7.0},
                                                  {u"1/1/1900", platform::ValueType::Date, platform::Date{2}},
                                                  {object, platform::ValueType::Object, object},
                                                  {Missing{}, Long, Missing{}}};
    for (const auto& [value, type, converted] : cases) EXPECT_EQ(Converted(value, type), converted);
}

TEST(CollectionTest, KeysAreTakenOnceWithoutRegardToCase) {
    Collection collection;
    collection.Add(1, u"Größe");
    EXPECT_EQ(FaultOf([&] { collection.Add(2, u"GRÖßE"); }),
              "457 The key is already in use in this collection");
    EXPECT_EQ(collection.Item(u"größe"), Value(1));
    EXPECT_EQ(FaultOf([&] { collection.Item(u"none"); }), "5 Invalid procedure call or argument");
}

TEST(ErrorStateTest, KeepsTheLastSkippedFailureUntilItIsCleared) {
    ErrorState state;
    for (const int number : {7, 8})
        Skip(state, "step", [&] { throw RuntimeError(number, u"seven or eight"); });
    Skip(state, "step", [] {});
    EXPECT_TRUE(state.IsSet() && state.Number() == 8 && state.Description() == u"seven or eight");
    state.Clear();
    EXPECT_FALSE(state.IsSet() || !state.Description().empty());
}

// A process of its own, since the trace is decided on once.
TEST(TraceDeathTest, IsWrittenWhereItIsWanted) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto trace = [](const char* wanted) {
        wanted ? setenv("HORALINK_TRACE", wanted, 1) : unsetenv("HORALINK_TRACE");
        TraceSkipped("reading", RuntimeError(7, u"no memory"));
        std::exit(0);
    };
    EXPECT_EXIT(trace("1"), testing::ExitedWithCode(0), "^horalink: reading skipped: error 7, no memory\n$");
    EXPECT_EXIT(trace("11"), testing::ExitedWithCode(0), "^$");
    EXPECT_EXIT(trace(nullptr), testing::ExitedWithCode(0), "^$");
}

}  // namespace
