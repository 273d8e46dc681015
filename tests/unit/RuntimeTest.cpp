#include <gtest/gtest.h>

#include <cmath>
#include <ctime>

#include "harness/Cases.h"
#include "platform/headless/Desktop.h"

using namespace platform;
using enum ValueType;

namespace {

const headless::Locale locale;
const double notANumber = std::nan("");

TEST(TextTest, Utf8GoesThereAndBackAndBrokenInputIsReplaced) {
    const std::string whole =
        "|\x7F|\xC2\x80|\xDF\xBF|\xE0\xA0\x80|\xED\x9F\xBF|\xEE\x80\x80|\xEF\xBF\xBF|\xF0\x90\x80\x80|"
        "\xF4\x8F\xBF\xBF";
    EXPECT_EQ(ToUtf8(FromUtf8(whole)), whole);
    EXPECT_EQ(FromUtf8("\xC3\x9F\xE9\x9B\xBB\xF0\x9F\x95\x90"), u"ß電🕐");
    // Stray bytes, two that are longer than they need to be, half a pair, a code too large, two that are cut.
    EXPECT_EQ(FromUtf8("\xFF|\x80|\xC1\xBF|\xE0\x9F\xBF|\xF0\x8F\xBF\xBF|\xED\xA0\x80|\xF4\x90\x80\x80|\xF8|"
                       "\xE9\xC3\x9F|\xE9\x9B"),
              u"\uFFFD|\uFFFD|\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD|"
              u"\uFFFD\uFFFD\uFFFD\uFFFD|\uFFFD|\uFFFDß|\uFFFD\uFFFD");
    EXPECT_EQ(
        ToUtf8(Text{0xD7FF, 0xE000, 0xDBFF, 0xDFFF, 0xD800, 0xD800, u'a', 0xDFFF, 0xDC00, 0xD800, 0xE000}),
        "\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF\uFFFD\uFFFDa\uFFFD\uFFFD\uFFFD\xEE\x80\x80");
}

// Values as a type: each as the number of its kind, a colon and its text, or the number of the fault.
template <class... Values>
std::string As(ValueType type, const Values&... values) {
    const auto one = [type](const Value& value) {
        Value made;
        const auto fault = ErrorOf([&] { made = Converted(value, type); });
        if (fault != 0) return "#" + std::to_string(fault) + " ";
        const bool isText = !made.IsObject() && !made.IsMissing();
        return std::to_string(made.Stored().index()) + ":" + (isText ? ToUtf8(made.ToText()) : "") + " ";
    };
    return (one(Value(values)) + ...);
}

TEST(ValueTest, ConvertsOrRaises) {
    const ObjectRef object = std::make_shared<forms::Picture>(""), nothing;
    const platform::Date noon = MakeDate({1900, 1, 1, 12});
    const std::int16_t seven = 7;
    EXPECT_EQ(As(None, u"7", 7) + As(Variant, u"7", 7, Missing{}), "9:7 5:7 9:7 5:7 2: ");
    EXPECT_EQ(As(String, 7, true, false, Value(), Null{}, object, Missing{}),
              "9:7 9:True 9:False 9: #94 #13 2: ");
    EXPECT_EQ(As(Integer, 2.5, 3.5, true, u" +42.4 ", 32767.4, -32768.4, 32767.5, -32768.6, Null{}, object),
              "4:2 4:4 4:-1 4:42 4:32767 4:-32768 #6 #6 #94 #13 ");
    EXPECT_EQ(As(Long, noon, Value(), false, seven, 2147483647.4, 3e10, notANumber, u"12a", u"", u"++1"),
              "5:2 5:0 5:0 5:7 5:2147483647 #6 #6 #13 #13 #13 ");
    EXPECT_EQ(As(Double, 1.5F, noon, u"inf", u"1e999") + As(Single, u"1e2", 3.4028234663852886e38, 1e300),
              "7:1.5 7:2.5 #13 #6 6:100 6:3.402823E+38 #6 ");
    EXPECT_EQ(As(Boolean, seven, u"tRUE", u"1", 0.1, Value(), u"false", u"0", u"no"),
              "3:True 3:True 3:True 3:True 3:False 3:False 3:False #13 ");
    EXPECT_EQ(As(ValueType::Date, -657434.0, 2958465.0, u"1/1/1900", -657435.0, 2958466.0),
              "8:01/01/0100 8:12/31/9999 8:01/01/1900 #6 #6 ");
    EXPECT_EQ(As(ValueType::Object, object, nothing, u"text"), "10: 10: #424 ");
    EXPECT_EQ(Joined(Value(Null{}).ToTextOrEmpty(), Value(7).ToTextOrEmpty()), "|7|");
    EXPECT_EQ(
        Faults([] { Value(Missing{}).ToText(); }, [] { Value(Missing{}).ToLong(); },
               [] { Value(Null{}).ToText(); }, [] { Value(1).ToObject(); }, [] { Value(40000).ToInteger(); }),
        "13 Type mismatch|13 Type mismatch|94 Invalid use of Null|424 Object required|6 Overflow|");
}

TEST(ValueTest, NumbersAreWrittenWithSevenOrFifteenDigits) {
    EXPECT_EQ(Joined(100000.0F, 1234567.0F, 9999999.6F, 12345678.0F, 0.1F, 1.0F / 3, 1.0F / 30, -1e-7F, 1e-8F,
                     3150.5F, -0.0F, HUGE_VALF),
              "100000|1234567|1E+07|1.234568E+07|0.1|0.3333333|3.333334E-02|-0.0000001|1E-08|3150.5|0|inf|");
    EXPECT_EQ(
        Joined(1e14, 1e15, 999999999999999.0, -1.5e300, 0.1 + 0.2, 0.00001, 1.0 / 30, 1e-15, 5e-324,
               -HUGE_VAL, notANumber, std::int16_t{-32768}, 2147483647),
        "100000000000000|1E+15|999999999999999|-1.5E+300|0.3|0.00001|3.33333333333333E-02|0.000000000000001|"
        "4.94065645841247E-324|-inf|nan|-32768|2147483647|");
}

TEST(DateTest, TextsOfEveryForm) {
    const auto read = [](auto... texts) { return Joined(DateOfText(texts)...); };
    EXPECT_EQ(
        read(u" 1/8/2026 1:02:03 PM ", u"11:59:59 pm", u"12:05:30 PM", u"12:05am", u"0:1  AM", u"23:59:59"),
        "01/08/2026 13:02:03|23:59:59|12:05:30|00:05:00|00:01:00|23:59:59|");
    EXPECT_EQ(read(u"11/18/2026", u"01/02/29", u"01/02/30", u"01/02/99", u"1/1/100", u"12/31/9999"),
              "11/18/2026|01/02/2029|01/02/1930|01/02/1999|01/01/0100|12/31/9999|");
    for (const char16_t* text :
         {u"/", u"11/18", u"18/11/2026", u"2/29/2026", u"11/18/2026/5", u"24:00:00", u"12:60:00", u"12:00:60",
          u"13:00 PM", u"13:00 AM", u"::", u"1:2:3:4", u"noon", u"11/18/2026 x", u"5", u"AM", u"1/1/20260",
          u"1/1/202:", u"1/1/202."})
        EXPECT_EQ(FaultOf([&] { DateOfText(text); }), "13 Type mismatch: " + ToUtf8(text));
    EXPECT_EQ(FaultOf([] { DateOfText(u""); }), "13 Type mismatch");
}

TEST(DateTest, PartsSurviveOnBothSidesOfTheEpochAndNoOtherDayExists) {
    const auto written = [](auto... parts) { return Joined(MakeDate(parts)...); };
    EXPECT_EQ(written(DateParts{1901, 1, 1, 23, 59, 59}, DateParts{1899, 12, 29, 6, 7, 1},
                      DateParts{2099, 12, 31, 12, 34, 56}, DateParts{987, 3, 4}, DateParts{1899, 12, 30},
                      DateParts{1899, 12, 31, 1}),
              "01/01/1901 23:59:59|12/29/1899 06:07:01|12/31/2099 12:34:56|03/04/0987|12/30/1899|12/31/1899 "
              "01:00:00|");
    EXPECT_EQ(written(DateParts{.second = 1}, DateParts{.minute = 1}, DateParts{.hour = 1}),
              "00:00:01|00:01:00|01:00:00|");
    EXPECT_EQ(Joined(MakeDate({1899, 12, 29, 6}).days, MakeDate({1900, 1, 1, 6}).days), "-1.25|2.25|");
    EXPECT_EQ(Joined(Weekday(MakeDate({2026, 11, 15})), Weekday(MakeDate({2026, 11, 21}))), "1|7|");
    EXPECT_EQ(Joined(platform::Date{46344.9999999}), "11/19/2026|") << "rounds into the next day";
    const DateParts impossible[] = {{2026, 2, 29},  {99, 12, 31},  {10000, 1, 1},  {2026, 0, 1},
                                    {2026, 13, 1},  {2026, 1, 0},  {2026, 1, 257}, {2026, 257, 1},
                                    {.hour = -1},   {.hour = 24},  {.minute = -1}, {.minute = 60},
                                    {.second = -1}, {.second = 60}};
    for (const DateParts& parts : impossible)
        EXPECT_EQ(FaultOf([&] { MakeDate(parts); }), "5 Invalid procedure call or argument");
}

TEST(DateTest, PatternsAndTheSystemsClock) {
    const platform::Date date = MakeDate({987, 3, 4, 5, 6, 7});
    EXPECT_EQ(Joined(FormatDate(date, u"yyyy-mm-dd ddd aaaa hh:nn:ss hhmm y", locale), TwoDigits(123),
                     FormatDate(date, u"Long Date", locale), FormatDate(date, u"Long Time", locale)),
              "0987-03-04 d1 day 1 05:06:07 0506 y|123|long 03/04/0987 05:06:07|long 03/04/0987 05:06:07|");
    const auto local = [] {
        char text[32];
        const std::time_t now = std::time(nullptr);
        std::strftime(text, sizeof text, "%Y/%m/%d %H:%M:%S", std::localtime(&now));
        return FromUtf8(text);
    };
    const Text before = local(), now = FormatDate(SystemClock().Now(), u"yyyy/mm/dd hh:nn:ss", locale);
    EXPECT_TRUE(before <= now && now <= local()) << ToUtf8(before + u" and " + now);
}

}  // namespace
