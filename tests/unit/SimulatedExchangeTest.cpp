#include "host/SimulatedExchange.h"

#include <gtest/gtest.h>

namespace switchdesk {
namespace {

using platform::Date;
using platform::MakeDate;
using platform::Text;

class SetClock : public platform::Clock {
  public:
    Date now = MakeDate({2026, 11, 18, 13, 0, 0});  // a Wednesday
    Date Now() const override { return now; }
    void Pass(double seconds) { now.days += seconds / 86400; }
};

std::vector<Item> Lookup() {
    return {{u"02", u"0", u"", u""}, {u"02", u"1", u"", u""}, {u"02", u"2", u"", u""}};
}

std::vector<Item> Update(Text year, Text day, Text time) {
    return {{u"02", u"0", year, u""}, {u"02", u"1", day, u""}, {u"02", u"2", time, u""}};
}

std::vector<Text> Values(const std::vector<Item>& items, Text Item::*field) {
    std::vector<Text> values;
    for (const Item& item : items) values.push_back(item.*field);
    return values;
}

class SimulatedExchangeTest : public testing::Test {
  protected:
    SetClock pc;
    SimulatedExchange exchange{pc, 7};

    std::vector<Text> Read() { return Values(exchange.Perform(Lookup()), &Item::second); }
};

TEST_F(SimulatedExchangeTest, StartsOffAndRunsOn) {
    EXPECT_EQ(Read(), (std::vector<Text>{u"2026", u"11/18 WED", u"13:07:00"}));
    pc.Pass(61);
    EXPECT_EQ(Read()[2], u"13:08:01");
}

struct Refused {
    const char* name;
    Text year, day, time;
    std::vector<Text> answers;
};

class RefusedUpdate : public testing::TestWithParam<Refused> {};

TEST_P(RefusedUpdate, LeavesTheClockAlone) {
    SetClock pc;
    SimulatedExchange exchange(pc, 0);
    const Refused& refused = GetParam();
    const auto answer = exchange.Perform(Update(refused.year, refused.day, refused.time));
    EXPECT_EQ(Values(answer, &Item::extra), refused.answers);
    EXPECT_EQ(Values(answer, &Item::second), (std::vector<Text>{refused.year, refused.day, refused.time}));
    EXPECT_EQ(exchange.Now(), pc.Now());
}

const Text bad = u"DATA ERROR", good = u"OK";

INSTANTIATE_TEST_SUITE_P(
    Values, RefusedUpdate,
    testing::Values(Refused{"YearTooEarly", u"1900", u"111800", u"000000", {bad, good, good}},
                    Refused{"YearTooLate", u"2100", u"111800", u"000000", {bad, good, good}},
                    Refused{"YearTooShort", u"26", u"111803", u"130203", {bad, good, good}},
                    Refused{"NoDigits", u"2o26", u"1118o3", u"13:02:", {bad, bad, bad}},
                    Refused{"NoSuchDay", u"2026", u"022901", u"130203", {bad, bad, good}},
                    Refused{"DayZero", u"2026", u"110003", u"130203", {bad, bad, good}},
                    Refused{"WrongDayOfTheWeek", u"2026", u"111804", u"130203", {bad, bad, good}},
                    Refused{"FifthDigit", u"2026", u"111813", u"130203", {good, bad, good}},
                    Refused{"Hour24", u"2026", u"111803", u"240000", {good, good, bad}},
                    Refused{"Minute60", u"2026", u"111803", u"236000", {good, good, bad}},
                    Refused{"Second60", u"2026", u"111803", u"235960", {good, good, bad}},
                    Refused{"TimeTooLong", u"2026", u"111803", u"1302030", {good, good, bad}}),
    [](const auto& test) { return test.param.name; });

TEST_F(SimulatedExchangeTest, IsSetAndRunsOnFromThere) {
    const auto answer = exchange.Perform(Update(u"2028", u"022902", u"000530"));
    EXPECT_EQ(Values(answer, &Item::extra), (std::vector<Text>{u"OK", u"OK", u"OK"}));
    pc.Pass(30);
    EXPECT_EQ(Read(), (std::vector<Text>{u"2028", u"02/29 TUE", u"00:06:00"}));
}

TEST_F(SimulatedExchangeTest, SetsTheTimeAlone) {
    exchange.Perform({{u"02", u"2", u"010203", u""}});
    EXPECT_EQ(Read(), (std::vector<Text>{u"2026", u"11/18 WED", u"01:02:03"}));
}

TEST_F(SimulatedExchangeTest, AnswersWhatItDoesNotHave) {
    const auto answer = exchange.Perform({{u"03", u"0", u"", u""},
                                          {u"02", u"3", u"", u""},
                                          {u"02", u"3", u"1", u""},
                                          {u"02", u"2", u"010203", u""}});
    EXPECT_EQ(Values(answer, &Item::extra),
              (std::vector<Text>{u"CODE NOT USED", u"DATA NOT FOUND", u"DATA NOT FOUND", u"OK"}));
    EXPECT_EQ(answer[0].second, u"CODE NOT USED");
    EXPECT_EQ(answer[1].second, u"DATA NOT FOUND");
    EXPECT_EQ(Read()[2], u"13:07:00");  // one refused item keeps the clock from being set
}

}  // namespace
}  // namespace switchdesk
