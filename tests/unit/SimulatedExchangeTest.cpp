#include "host/SimulatedExchange.h"

#include <gtest/gtest.h>

#include "FakeTime.h"

namespace switchdesk {
namespace {

using platform::Text;
using Texts = std::vector<Text>;

struct SimulatedExchangeTest : testing::Test {
    Texts Values(const std::vector<Item>& items, Text Item::*field) {
        Texts values;
        for (const Item& item : items) values.push_back(item.*field);
        return values;
    }
    std::vector<Item> Perform(const Texts& values) {
        return exchange.Perform(
            {{u"02", u"0", values[0], u""}, {u"02", u"1", values[1], u""}, {u"02", u"2", values[2], u""}});
    }
    Texts Read() { return Values(Perform({u"", u"", u""}), &Item::second); }
    void Pass(double seconds) { pc.now.days += seconds / 86400; }
    fakes::FakeClock pc;
    SimulatedExchange exchange{pc, 7};
};

TEST_F(SimulatedExchangeTest, RunsOnFromWhereItIsSet) {
    EXPECT_EQ(Read(), (Texts{u"2026", u"11/18 WED", u"13:09:03"}));
    Pass(61);
    EXPECT_EQ(Read()[2], u"13:10:04");
    EXPECT_EQ(Values(Perform({u"2028", u"022902", u"000530"}), &Item::extra), (Texts{u"OK", u"OK", u"OK"}));
    Pass(30);
    EXPECT_EQ(Read(), (Texts{u"2028", u"02/29 TUE", u"00:06:00"}));
    exchange.Perform({{u"02", u"2", u"010203", u""}});
    EXPECT_EQ(Read(), (Texts{u"2028", u"02/29 TUE", u"01:02:03"})) << "the time alone";
}

TEST_F(SimulatedExchangeTest, ARefusedItemLeavesTheClockAlone) {
    const Text bad = u"DATA ERROR", good = u"OK";
    const std::pair<Texts, Texts> cases[] = {{{u"1900", u"111800", u"000000"}, {bad, good, good}},
                                             {{u"2100", u"111800", u"000000"}, {bad, good, good}},
                                             {{u"2o26", u"1118o3", u"13:02:"}, {bad, bad, bad}},
                                             {{u"2026", u"022901", u"130203"}, {bad, bad, good}},
                                             {{u"2026", u"111804", u"130203"}, {bad, bad, good}},
                                             {{u"2026", u"111813", u"130203"}, {good, bad, good}},
                                             {{u"2026", u"111803", u"240000"}, {good, good, bad}},
                                             {{u"2026", u"111803", u"236000"}, {good, good, bad}},
                                             {{u"2026", u"111803", u"235960"}, {good, good, bad}},
                                             {{u"2026", u"111803", u"1302030"}, {good, good, bad}}};
    for (const auto& [values, answers] : cases) {
        SCOPED_TRACE(platform::ToUtf8(values[0] + u" " + values[1] + u" " + values[2]));
        const auto answer = Perform(values);
        EXPECT_EQ(Values(answer, &Item::extra), answers);
        EXPECT_EQ(Values(answer, &Item::second), values);
        EXPECT_EQ(Read()[2], u"13:09:03");
    }
}

TEST_F(SimulatedExchangeTest, AnswersWhatItDoesNotHave) {
    const auto answer =
        exchange.Perform({{u"03", u"0", u"", u""}, {u"02", u"3", u"", u""}, {u"02", u"2", u"010203", u""}});
    EXPECT_EQ(Values(answer, &Item::extra), (Texts{u"CODE NOT USED", u"DATA NOT FOUND", u"OK"}));
    EXPECT_EQ(Read()[2], u"13:09:03");
}

}  // namespace
}  // namespace switchdesk
