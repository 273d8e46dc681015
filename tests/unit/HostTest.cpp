#include <gtest/gtest.h>
#include <QDateTime>

#include <fstream>
#include <iterator>
#include <regex>
#include <tuple>

#include "harness/Cases.h"
#include "harness/Files.h"
#include "host/Difference.h"
#include "host/ExchangeObject.h"
#include "host/HostObject.h"
#include "host/Options.h"
#include "host/ResponseObject.h"
#include "host/SimulatedExchange.h"
#include "host/Store.h"
#include "host/ZoneTime.h"
#include "platform/automation/Introspection.h"
#include "platform/headless/Timers.h"
#include "platform/runtime/RuntimeError.h"

namespace switchdesk {
namespace {

using namespace platform;

TEST(OptionsTest, RefusesWhatCannotBe) {
    for (const char* wrong : {"A",
                              "--open",
                              "--open=nowhere",
                              "--offset=x",
                              "--offset=nan",
                              "--login",
                              "--service=1",
                              "--exchange=",
                              "--exchange==local",
                              "--exchange=A=",
                              "--exchange=A=else",
                              "--exchange=A=local,get",
                              "--market=",
                              "--answer=late:",
                              "--answer=late:-1",
                              "--answer=soon",
                              "--item=1",
                              "--item=1:ED=x",
                              "--item=x:CMD=y",
                              "--item=1=CMD:x",
                              "--drop-item=-1",
                              "--lack=nomember",
                              "--logins=x",
                              "--other=x"})
        EXPECT_EQ(ErrorOf([&] { ParseOptions({"switchdesk", wrong}); }), 5) << wrong;
    EXPECT_EQ(ErrorOf([&] { ParseOptions({"switchdesk", "--exchange=A", "--exchange=A=local"}); }), 5);
}

TEST(OptionsTest, TakesAnAddressThatIsOneWordForSshAndNoOption) {
    for (const char* address :
         {"",      "-oProxyCommand=x", "-b@far",   "a@-far", "a b@far", "far x", " far", "a;b",   "a@b;c",
          "'far'", "\"far\"",          "a$(b)",    "a`b`",   "a|b",     "a&b",   "a\nb", "a@b@c", "@far",
          "a@",    "far:22",           "f\u00e4r", "a\\b",   "%h",      ".",     "_"})
        EXPECT_EQ(ErrorOf([&] { ParseExchange(QString("A=ssh:") + address); }), 5) << address;
    for (const char* address : {"far", "root@10.0.0.7", "_a-b.c@pbx-1.example.org", "A_1@a_b"}) {
        const ExchangeEntry entry = ParseExchange(QString("A=B =ssh:") + address + ",set");
        EXPECT_EQ(std::tuple(entry.name, entry.isSimulated, entry.address, entry.maySet),
                  std::tuple(u"A=B", false, QString(address), true));
    }
}

TEST(ExchangesFileTest, HasALineForEach) {
    const TemporaryDirectory directory;
    const auto file = directory.Path() / "exchanges.ini";
    const auto read = [&](const char* lines) {
        std::ofstream(file) << lines;
        std::string all;
        for (const ExchangeEntry& entry : ReadExchanges(file))
            all += ToUtf8(entry.name) + (entry.isSimulated ? "?" : "") + ">" + entry.address.toStdString() +
                   (entry.maySet ? "!" : "") + ";";
        return all;
    };
    EXPECT_TRUE(ReadExchanges(file).empty());
    EXPECT_EQ(
        read("; of ours\nMain Office = ssh:root@pbx1,set\nB\xc3\xbcro=local, set\nThis PC=local\nB=ssh:b\n"),
        "B>b;B\xc3\xbcro>!;Main Office>root@pbx1!;This PC>;");
    EXPECT_EQ(ErrorOf([&] { read("A=ssh:-x\n"); }), 5);
    EXPECT_EQ(ErrorOf([&] { read("A local\n"); }), 75);
}

// Each time as the seconds from the beginning of the day in UTC.
TEST(ZoneTimeTest, KnowsWhatClocksSkipAndWhatTheyShowTwice) {
    struct Case {
        const char* zone;
        DateParts shown;
        std::vector<std::int64_t> hours;
    };
    const Case cases[] = {{"UTC", {2026, 3, 8, 2, 30, 0}, {2}},
                          {"America/New_York", {2026, 3, 8, 1, 30, 0}, {6}},
                          {"America/New_York", {2026, 3, 8, 2, 30, 0}, {}},
                          {"America/New_York", {2026, 3, 8, 3, 30, 0}, {7}},
                          {"America/New_York", {2026, 11, 1, 1, 30, 0}, {5, 6}},
                          {"America/New_York", {2026, 11, 1, 2, 30, 0}, {7}},
                          {"Australia/Lord_Howe", {2026, 10, 4, 2, 29, 0}, {}},
                          {"Pacific/Apia", {2011, 12, 30, 12, 30, 0}, {}},
                          {"Asia/Tokyo", {2026, 3, 8, 9, 0, 0}, {0}}};
    for (const Case& each : cases) {
        const QTimeZone zone(each.zone);
        const auto midnight =
            QDateTime({each.shown.year, each.shown.month, each.shown.day}, {}, QTimeZone::utc());
        std::vector<std::int64_t> hours;
        for (const std::int64_t time : TimesShowing(each.shown, zone)) {
            hours.push_back((time - midnight.toSecsSinceEpoch()) / 3600);
            EXPECT_EQ(MakeDate(ShownAt(time, zone)), MakeDate(each.shown));
        }
        EXPECT_EQ(hours, each.hours) << each.zone << " " << each.shown.hour;
    }
}

struct SimulatedExchangeTest : testing::Test {
    // The items of an answer, "SecondData=ExtraData;".
    std::string Perform(const std::vector<Item>& items) {
        std::string answers;
        const HandleRef work =
            exchange.Perform(items, {{}, [&](const Exchange::Outcome& outcome) {
                                         for (const Item& item : outcome.items)
                                             answers += ToUtf8(item.second + u"=" + item.extra) + ";";
                                     }});
        timers.Pass(0);
        return answers;
    }
    std::string Perform(const Text& year, const Text& day, const Text& time) {
        return Perform({{u"02", u"0", year, u""}, {u"02", u"1", day, u""}, {u"02", u"2", time, u""}});
    }
    headless::Timers<Scheduler> timers;
    headless::Clock pc{timers};
    SimulatedExchange exchange{timers, pc, 7};
    const std::string before = "2026=OK;11/18 WED=OK;13:09:03=OK;";
};

TEST_F(SimulatedExchangeTest, ARefusedItemLeavesTheClockAlone) {
    const std::string no = "=DATA ERROR;", ok = "=OK;";
    for (const std::string year : {"1900", "2100"})
        EXPECT_EQ(Perform(FromUtf8(year), u"111800", u"000000"), year + no + "111800" + ok + "000000" + ok);
    for (const std::string day :
         {"022901", "111804"})  // no such day in that year, and another day of the week
        EXPECT_EQ(Perform(u"2026", FromUtf8(day), u"130203"), "2026" + no + day + no + "130203" + ok);
    EXPECT_EQ(Perform(u"2026", u"111813", u"130203"), "2026" + ok + "111813" + no + "130203" + ok);
    for (const std::string time : {"240000", "236000", "235960", "1302030"})
        EXPECT_EQ(Perform(u"2026", u"111803", FromUtf8(time)), "2026" + ok + "111803" + ok + time + no);
    EXPECT_EQ(Perform(u"2o26", u"1118o3", u"13:02:"), "2o26" + no + "1118o3" + no + "13:02:" + no);
    EXPECT_EQ(Perform(u"", u"", u""), before);
    EXPECT_EQ(Perform({{u"03", u"0", u"", u""}, {u"02", u"3", u"", u""}, {u"02", u"2", u"010203", u""}}),
              "CODE NOT USED=CODE NOT USED;DATA NOT FOUND=DATA NOT FOUND;010203=OK;");
    EXPECT_EQ(Perform(u"", u"", u""), before);
}

TEST(DifferenceTest, IsRightWithinHalfTheRoundTrip) {
    using std::chrono::microseconds;
    const auto text = [](double seconds, double within = 0) {
        const auto exact = [](double s) { return microseconds(static_cast<std::int64_t>(s * 1e6)); };
        return DifferenceText({exact(seconds), exact(within)}).toStdString();
    };
    EXPECT_EQ(text(0), "right");
    EXPECT_EQ(text(-0.049), "right");
    EXPECT_EQ(text(0.3, 0.31), "right");
    EXPECT_EQ(text(-0.31, 0.3), "0.3 s slow");
    EXPECT_EQ(text(3), "3.0 s fast");
    EXPECT_EQ(text(119), "119 s fast");
    EXPECT_EQ(text(-420), "7 min slow");
    EXPECT_EQ(text(-3 * 3600), "3 h slow");
    EXPECT_EQ(text(400 * 86400.), "400 days fast");
}

TEST(StoreTest, KeepsAnyTextUnderAnyNameUnlessItCannotBeWritten) {
    const TemporaryDirectory directory;
    const auto file = directory.Path() / "new/store.ini";
    const Text kept = u" 3150,2295\n[x]=\\@\u00fc%";
    Store store(file), other(file), nowhere("/proc/no/store.ini");
    const std::pair<Text, Text> names[] = {
        {u"A", u"k=[1]"}, {u"a", u"K=[1]"}, {u"A/k", u""}, {u"", u"A/k"}, {u"General", u"%"}};
    for (const auto& [application, key] : names) store.Set(application, key, application + kept + key);
    other.Set(u"B", u"k", u"of another host");
    for (const auto& [application, key] : names)
        EXPECT_EQ(Store(file).Get(application, key), application + kept + key) << ToUtf8(application);
    EXPECT_EQ(store.Get(u"B", u"k"), u"of another host");
    EXPECT_EQ(store.Get(u"A", u"MOVE"), std::nullopt);
    EXPECT_THROW(nowhere.Set(u"A", u"K", u"v"), RuntimeError);
    EXPECT_EQ(nowhere.Get(u"A", u"K"), std::nullopt);
}

struct NoLoop : headless::Timers<EventLoop> {
    HandleRef WhenReadable(int, std::function<void()>) override { return {}; }
    HandleRef WhenWritable(int, std::function<void()>) override { return {}; }
    void Run() override {}
    void Quit() override {}
    void ServeOnce() override {}
    HandleRef HoldInput() override { return {}; }
};

struct NoView : HostView {
    void ShowMessage(const Text&) override {}
    void ShowResults(const Text&, const std::vector<Item>&) override {}
    void ShowCode(const Text&) override {}
    void ShowHelp(const Text&) override {}
    void ShowState(const Text&, AddInState, const Text&) override {}
};

// The members of an object as the introspection files write them.
std::map<std::string, std::string> MembersOf(const Object& object) {
    std::map<std::string, std::string> members;
    for (const Member& member : object.Class().members) {
        std::string line, type(SignatureOf(member.result));
        for (const Parameter& parameter : member.parameters)
            line += std::string(line.empty() ? "" : ", ") + std::string(parameter.name) + ": " +
                    std::string(SignatureOf(parameter.type));
        const char* const kind = member.kind == InvokeKind::Method        ? "call("
                                 : member.kind == InvokeKind::PropertyGet ? "read("
                                                                          : "write(";
        std::string& all = members[std::string(member.name)];
        all += (all.empty() ? "" : "; ") + (kind + line) + ")" + (type.empty() ? "" : ": " + type);
    }
    return members;
}

std::map<std::string, std::string> MembersInFile(const std::string& name) {
    std::ifstream file(std::string(INTROSPECTION) + "/" + name);
    const std::string xml{std::istreambuf_iterator<char>(file), {}};
    const std::regex annotation("Member\\.(\\w+)\" value=\"([^\"]*)\""), byReference(" by reference");
    std::map<std::string, std::string> members;
    for (auto i = std::sregex_iterator(xml.begin(), xml.end(), annotation); i != std::sregex_iterator(); ++i)
        members[(*i)[1]] = std::regex_replace((*i)[2].str(), byReference, "");
    return members;
}

TEST(ExchangeDeskTest, AKeyAloneEndsALogin) {
    CallLog log;
    Misbehaviour misbehaviour;
    NoLoop loop;
    ExchangeDesk desk(loop, {log, misbehaviour});
    desk.Add(u"A", nullptr);
    Text reported;
    desk.ReportTo({[&](const Text& name, const Text& text) { reported += name + u": " + text; }, [] {}});
    const Text key = desk.Login(u"A", nullptr);
    EXPECT_EQ(reported, u"");
    EXPECT_EQ(desk.Login(u"A", nullptr), u"BUSY");
    EXPECT_EQ(reported, u"A: busy with another request");
    EXPECT_EQ(desk.BusyBesides(u"A"), nullptr);
    EXPECT_EQ(*desk.BusyBesides(u"B"), u"A");
    Call(std::make_shared<ExchangeObject>(Observation{log, misbehaviour}, desk), "LogOut", u"B", key);
    EXPECT_EQ(desk.BusyBesides(u"B"), nullptr);
    EXPECT_EQ(desk.Login(u"B", nullptr), u"ERROR");
}

TEST(IntrospectionFilesTest, NameWhatThisHostServes) {
    CallLog log;
    Misbehaviour misbehaviour;
    const Observation observation{log, misbehaviour};
    NoLoop loop;
    ExchangeDesk desk(loop, observation);
    NoView view;
    Store store("");
    EXPECT_EQ(MembersInFile("host.xml"), MembersOf(HostObject(observation, {view, store, nullptr, {}})));
    EXPECT_EQ(MembersInFile("exchange.xml"), MembersOf(ExchangeObject(observation, desk)));
    EXPECT_EQ(MembersInFile("response.xml"), MembersOf(ResponseObject(observation, {})));
}

}  // namespace
}  // namespace switchdesk
