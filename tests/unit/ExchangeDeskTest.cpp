#include "host/ExchangeDesk.h"

#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "FakeTime.h"
#include "TemporaryDirectory.h"
#include "host/ExchangeObject.h"
#include "host/HostObject.h"
#include "host/Options.h"
#include "host/ResponseObject.h"

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

// A client that does with an answer what the test wants.
struct Client : Object {
    std::function<void(Value& response)> callBack = [](Value&) {};
    std::function<void()> gone;

    const ClassDescription& Class() const override {
        static const ClassDescription description{
            "Client",
            {{"CallBack",
              InvokeKind::Method,
              {{"oResponse", ValueType::Object}},
              ValueType::None,
              Bind<Client>([](Client& self, Arguments& a) { self.callBack(a[0]); })}}};
        return description;
    }
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
        const Answer content{{{u"02", u"0", u"", u""}, {u"02", u"2", u"", u""}}, 0, u"ASKED", key, {}};
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

TEST_F(HostTest, AnswersAfterSendRequestHasReturned) {
    int answers = 0;
    client->callBack = [&](Value& response) {
        ++answers;
        const ObjectRef answer = response.ToObject();
        EXPECT_EQ(Get(answer, "Count").ToInteger(), 2);
        EXPECT_EQ(Get(answer, "Tag").ToText(), u"ASKED");
        EXPECT_EQ(Get(answer, "FirstData", std::int16_t{1}).ToText(), u"2");
        EXPECT_EQ(Get(answer, "CMD", std::int16_t{2}).ToText(), u"");
        EXPECT_EQ(Get(answer, "CMD", std::int16_t{-1}).ToText(), u"");
        LogOut(u"North", Get(answer, "LoginID").ToText());
        response = ObjectRef();
    };
    EXPECT_EQ(Send(Login()), u"R1");
    EXPECT_EQ(Send(u"L1"), u"ERROR") << "one request at a time";
    loop.Pass(99);
    EXPECT_EQ(answers, 0);
    loop.Pass(1);
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(Login(), u"L2");
    EXPECT_EQ(lines.back(), "Login(\"North\", <object>) -> \"L2\"");
    EXPECT_EQ(lines[lines.size() - 2], "# CallBack returned");
}

TEST_F(HostTest, AClientThatDiesOrFailsGivesItsLoginBack) {
    int answers = 0;
    client->callBack = [&](Value&) { ++answers; };
    Send(Login());
    client->gone();
    loop.Pass(1000);
    EXPECT_EQ(answers, 0);
    client->callBack = [](Value&) { throw RuntimeError(462, u"gone"); };
    Send(Login());
    loop.Pass(100);
    EXPECT_EQ(lines.back(), "# CallBack raised error 462");
    EXPECT_EQ(Login(), u"L3");
}

TEST_F(HostTest, RefusesOptionsThatCannotBe) {
    for (const auto& [name, value] :
         std::vector<std::pair<const char*, const char*>>{{"answer", "late:"},
                                                          {"answer", "late:-1"},
                                                          {"answer", "soon"},
                                                          {"errcode", "x"},
                                                          {"errcode", "7 "},
                                                          {"item", "1"},
                                                          {"item", "1:ED=x"},
                                                          {"item", "x:CMD=y"},
                                                          {"item", "1=CMD:x"},
                                                          {"drop-item", "-1"},
                                                          {"raise", ""},
                                                          {"leave", ""},
                                                          {"callback-during", "logout"},
                                                          {"login", "raise:"},
                                                          {"logins", "-1"},
                                                          {"other", "x"}})
        EXPECT_FALSE(TakeMisbehaviour(name, value, misbehaviour)) << name << '=' << value;
    for (const Lines& wrong : {Lines{"A"}, {"--open"}, {"--offset", "x"}, {"--login"}, {"--service=1"}})
        EXPECT_THROW(ParseOptions(wrong), RuntimeError) << wrong[0];
}

TEST(OptionsTest, AreRead) {
    const Options options = ParseOptions({"--exchange", "A", "--exchange=B=C", "--open", "A", "--offset=-1.5",
                                          "--market", "20001", "--verbose", "--leave=show-results"});
    EXPECT_EQ(options.exchanges, (Texts{u"A", u"B=C"}));
    EXPECT_EQ(options.open, u"A");
    EXPECT_EQ(options.minutesAhead, -1.5);
    EXPECT_EQ(options.ExchangeClass(), "SwitchDeskProj20001.cPBXOle");
    EXPECT_EQ(options.misbehaviour.leaveAt, "showresults");
    EXPECT_EQ(ParseOptions({}).exchanges.size(), 3u);
}

struct NotedView : HostView {
    Texts told;
    void ShowMessage(const Text& message) override { told.push_back(message); }
    void ShowResults(const Text& caption, const std::vector<Item>& items) override {
        told.push_back(caption + DecimalText(static_cast<int>(items.size())));
    }
    void ShowCode(const Text& code) override { told.push_back(code); }
    void ShowHelp(const Text& file) override { told.push_back(file); }
    void ShowFlow(bool on) override { told.push_back(on ? u"on" : u"off"); }
    void ShowState(const Text&, bool, const Text&) override {}
};

TEST_F(HostTest, ShowsAndStores) {
    const TemporaryDirectory directory;
    NotedView view;
    Store store(directory.Path() / "new/store.ini");
    int unloaded = 0;
    const ObjectRef host = std::make_shared<HostObject>(
        observation, HostObject::Parts{view, store, exchange, [&](std::int16_t id) { unloaded = id; }});
    const auto stored = [&](const char16_t* key) {
        Text value;
        return Call(host, "GetComData", u"A", key, ByRef(value)), value;
    };
    EXPECT_EQ(stored(u"MOVE"), u"");
    const Text kept = u"3150,2295\n[x]=\\";
    Call(host, "REGComData", u"A", u"k=[1]", kept);
    Call(host, "REGComData", u"B", u"k=[1]", u"other");
    EXPECT_EQ(stored(u"k=[1]"), kept);
    EXPECT_EQ(Store(directory.Path() / "new/store.ini").Get(u"A", u"k=[1]"), kept);
    EXPECT_EQ(lines.back(), R"(GetComData("A", "k=[1]", "" => "3150,2295\n[x]=\\") -> Nothing)");
    Call(host, "ShowResults", u"Clock",
         std::make_shared<ResponseObject>(observation, Answer{{{}, {}}, 0, {}, {}, {}}));
    EXPECT_THROW(Call(host, "ShowResults", u"Clock", client), RuntimeError);
    Call(host, "ShowCode", 7);
    Call(host, "TurnOnFlow");
    Call(host, "UnloadChild", std::int16_t{3});
    EXPECT_EQ(view.told, (Texts{u"Clock2", u"7", u"on"}));
    EXPECT_EQ(unloaded, 3);
    EXPECT_EQ(Get(host, "opbx").ToObject(), exchange);
    EXPECT_EQ(lines.back(), "oPBX -> <object>");
}

TEST(StoreTest, AFileThatCannotBeWrittenKeepsItsValues) {
    Store store("/proc/no/store.ini");
    EXPECT_THROW(store.Set(u"A", u"K", u"v"), RuntimeError);
    EXPECT_EQ(store.Get(u"A", u"K"), std::nullopt);
}

}  // namespace
}  // namespace switchdesk
