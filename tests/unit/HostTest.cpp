#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "FakeTime.h"
#include "TemporaryDirectory.h"
#include "host/ExchangeDesk.h"
#include "host/ExchangeObject.h"
#include "host/Options.h"
#include "host/ResponseObject.h"
#include "host/SimulatedExchange.h"
#include "host/Store.h"

namespace switchdesk {
namespace {

using namespace platform;
using Lines = std::vector<std::string>;
using Texts = std::vector<Text>;

struct SetLoop : fakes::FakeTime<EventLoop> {
    HandleRef WhenReadable(int, std::function<void()>) override { return nullptr; }
    HandleRef WhenWritable(int, std::function<void()>) override { return nullptr; }
    void Run() override {}
    void Quit() override {}
    void ServeOnce() override {}
    HandleRef HoldInput() override { return nullptr; }
};

// A client that does on CallBack what the test wants.
struct Client : Object {
    std::function<void()> callBack, gone;

    const ClassDescription& Class() const override {
        static const ClassDescription description{"Client", {}};
        return description;
    }
    Value Invoke(std::string_view, InvokeKind, Arguments&) override { return callBack(), Value(); }
    std::shared_ptr<void> WhenOwnerGone(std::function<void()> call) override {
        gone = std::move(call);
        return std::make_shared<int>();
    }
};

// An answer has all the members that the desk reads of a request, but for the name.
struct Record : ResponseObject {
    using ResponseObject::ResponseObject;
    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override {
        return member == "PBXName" ? Value(u"North") : Object::Invoke(member, kind, arguments);
    }
};

struct HostTest : testing::Test {
    HostTest() {
        log.AddSink([this](const std::string& line) { lines.push_back(line); });
        for (const char16_t* name : {u"North", u"South"}) desk.Add(name, SimulatedExchange(clock, 0));
    }
    Text Login(const Text& name = u"North") { return Call(exchange, "Login", name, client).ToText(); }
    void LogOut(const Text& name, const Text& key) { Call(exchange, "LogOut", name, key); }
    Text Send(const Text& key) {
        const Answer content{{}, 0, u"ASKED", key, {}};
        return Call(exchange, "SendRequest", std::make_shared<Record>(observation, content)).ToText();
    }

    Misbehaviour misbehaviour;
    CallLog log;
    Lines lines;
    Observation observation{log, misbehaviour};
    SetLoop loop;
    SystemClock clock;
    ExchangeDesk desk{loop, observation};
    std::shared_ptr<Client> client = std::make_shared<Client>();
    ObjectRef exchange = std::make_shared<ExchangeObject>(observation, desk);
};

TEST_F(HostTest, TakesOneLoginAtATimeBesideConnections) {
    EXPECT_EQ(Call(exchange, "ConnectToPbx", u"North", client).ToText(), u"C1");
    EXPECT_EQ(Call(exchange, "ConnectToPbx", u"West", client).ToText(), u"");
    EXPECT_EQ(Send(u"L1"), u"ERROR") << "without a login";
    EXPECT_EQ(Login(), u"L1");
    EXPECT_EQ(Login(), u"BUSY");
    EXPECT_EQ(Login(u"South"), u"L2");
    EXPECT_EQ(Login(u"north"), u"ERROR");
    LogOut(u"South", u"L1");
    EXPECT_EQ(Login(), u"BUSY");
    LogOut(u"North", u"L1");
    EXPECT_EQ(Login(), u"L3");
}

TEST_F(HostTest, AClientThatDiesOrFailsGivesItsLoginBack) {
    int answers = 0;
    client->callBack = [&] { ++answers; };
    EXPECT_EQ(Send(Login()), u"R1");
    EXPECT_EQ(Send(u"L1"), u"ERROR") << "one request at a time";
    client->gone();
    loop.Pass(1000);
    EXPECT_EQ(answers, 0);
    client->callBack = [] { throw RuntimeError(462, u"gone"); };
    Send(Login());
    loop.Pass(100);
    EXPECT_EQ(lines.back(), "# CallBack raised error 462");
    EXPECT_EQ(Login(), u"L3");
}

TEST_F(HostTest, RefusesOptionsThatCannotBe) {
    const std::pair<const char*, const char*> wrong[] = {
        {"answer", "late:"}, {"answer", "late:-1"}, {"answer", "soon"},  {"errcode", "7 "},
        {"item", "1"},       {"item", "1:ED=x"},    {"item", "x:CMD=y"}, {"item", "1=CMD:x"},
        {"drop-item", "-1"}, {"raise", ""},         {"leave", ""},       {"callback-during", "logout"},
        {"login", "raise:"}, {"other", "x"}};
    for (const auto& [name, value] : wrong)
        EXPECT_FALSE(TakeMisbehaviour(name, value, misbehaviour)) << name << '=' << value;
    for (const Lines& arguments : {Lines{"A"}, {"--open"}, {"--offset", "x"}, {"--login"}, {"--service=1"}})
        EXPECT_THROW(ParseOptions(arguments), RuntimeError) << arguments[0];
}

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
    const Text no = u"DATA ERROR", ok = u"OK";
    const std::pair<Texts, Texts> cases[] = {
        {{u"1900", u"111800", u"000000"}, {no, ok, ok}}, {{u"2100", u"111800", u"000000"}, {no, ok, ok}},
        {{u"2o26", u"1118o3", u"13:02:"}, {no, no, no}}, {{u"2026", u"022901", u"130203"}, {no, no, ok}},
        {{u"2026", u"111804", u"130203"}, {no, no, ok}}, {{u"2026", u"111813", u"130203"}, {ok, no, ok}},
        {{u"2026", u"111803", u"240000"}, {ok, ok, no}}, {{u"2026", u"111803", u"236000"}, {ok, ok, no}},
        {{u"2026", u"111803", u"235960"}, {ok, ok, no}}, {{u"2026", u"111803", u"1302030"}, {ok, ok, no}}};
    for (const auto& [values, answers] : cases) {
        SCOPED_TRACE(ToUtf8(values[0] + u" " + values[1] + u" " + values[2]));
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

TEST(StoreTest, KeepsAnyTextUnderAnyNameUnlessItCannotBeWritten) {
    const TemporaryDirectory directory;
    const auto file = directory.Path() / "new/store.ini";
    const Text kept = u"3150,2295\n[x]=\\";
    Store store(file), nowhere("/proc/no/store.ini");
    store.Set(u"A", u"k=[1]", kept);
    store.Set(u"B", u"k=[1]", u"other");
    EXPECT_EQ(Store(file).Get(u"A", u"k=[1]"), kept);
    EXPECT_EQ(store.Get(u"A", u"MOVE"), std::nullopt);
    EXPECT_THROW(nowhere.Set(u"A", u"K", u"v"), RuntimeError);
    EXPECT_EQ(nowhere.Get(u"A", u"K"), std::nullopt);
}

}  // namespace
}  // namespace switchdesk
