#include "host/ExchangeDesk.h"

#include <gtest/gtest.h>

#include "host/ExchangeObject.h"
#include "host/HostObject.h"
#include "host/Options.h"
#include "host/ResponseObject.h"

namespace switchdesk {
namespace {

using platform::Call;
using platform::Get;
using platform::InvokeKind;
using platform::ObjectRef;
using platform::Put;
using platform::Text;
using platform::Value;
using platform::ValueType;
using Lines = std::vector<std::string>;

// Time passes when the test says so.
class SetLoop : public platform::EventLoop {
  public:
    platform::HandleRef After(platform::Milliseconds delay, std::function<void()> call) override {
        auto timer = std::make_shared<Timer>(Timer{delay, std::move(call)});
        timers_.push_back(timer);
        return std::make_unique<Kept>(timer);
    }
    platform::HandleRef Every(platform::Milliseconds, std::function<void()>) override { return nullptr; }
    platform::HandleRef WhenReadable(int, std::function<void()>) override { return nullptr; }
    platform::HandleRef WhenWritable(int, std::function<void()>) override { return nullptr; }
    void Run() override {}
    void Quit() override {}
    void ServeOnce() override { served(); }
    platform::HandleRef HoldInput() override { return nullptr; }

    void Pass(platform::Milliseconds time) {
        const auto timers = timers_;
        for (const auto& weak : timers) {
            const auto timer = weak.lock();
            if (timer && timer->left >= platform::Milliseconds(0) &&
                (timer->left -= time) <= platform::Milliseconds(0)) {
                timer->left = platform::Milliseconds(-1);
                timer->call();
            }
        }
    }
    std::function<void()> served;

  private:
    struct Timer {
        platform::Milliseconds left;
        std::function<void()> call;
    };
    struct Kept : platform::Handle {
        explicit Kept(std::shared_ptr<Timer> kept) : timer(std::move(kept)) {}
        std::shared_ptr<Timer> timer;
    };
    std::vector<std::weak_ptr<Timer>> timers_;
};

// A client that does with an answer what the test wants.
class Client : public platform::Object {
  public:
    std::function<void(Value& response)> callBack = [](Value&) {};
    std::function<void()> gone;

    const platform::ClassDescription& Class() const override {
        static const platform::ClassDescription description{
            "Client",
            {{"CallBack",
              InvokeKind::Method,
              {{"oResponse", ValueType::Object}},
              ValueType::None,
              platform::Bind<Client>([](Client& self, platform::Arguments& a) { self.callBack(a[0]); })}}};
        return description;
    }
    std::shared_ptr<void> WhenOwnerGone(std::function<void()> call) override {
        gone = std::move(call);
        return std::make_shared<int>();
    }
};

class Host : public testing::Test {
  protected:
    Misbehaviour misbehaviour;
    CallLog log;
    Lines lines;
    Observation observation{log, misbehaviour};
    SetLoop loop;
    platform::SystemClock clock;
    ExchangeDesk desk{loop, observation};
    std::shared_ptr<Client> client = std::make_shared<Client>();
    ObjectRef exchange = std::make_shared<ExchangeObject>(observation, desk);

    Host() {
        log.AddSink([this](const std::string& line) { lines.push_back(line); });
        desk.Add(u"North", SimulatedExchange(clock, 0));
        desk.Add(u"South", SimulatedExchange(clock, 0));
    }
    void Misbehave(const std::string& option) {
        const std::size_t equals = option.find('=');
        ASSERT_TRUE(TakeMisbehaviour(option.substr(0, equals), option.substr(equals + 1), misbehaviour));
    }
    Text Login(const Text& name = u"North") { return Call(exchange, "Login", name, client).ToText(); }
    Text Send(const Text& key) {
        // An answer has all the members that the desk reads of a request, but for the name.
        class Record : public ResponseObject {
            using ResponseObject::ResponseObject;
            Value Invoke(std::string_view member, InvokeKind kind, platform::Arguments& arguments) override {
                return member == "PBXName" ? Value(u"North") : Object::Invoke(member, kind, arguments);
            }
        };
        const Answer content{{{u"02", u"0", u"", u""}, {u"02", u"2", u"", u""}}, 0, u"ASKED", key, {}};
        return Call(exchange, "SendRequest", std::make_shared<Record>(observation, content)).ToText();
    }
};

TEST_F(Host, TakesOneLoginAtATime) {
    EXPECT_EQ(Login(), u"L1");
    EXPECT_EQ(Login(), u"BUSY");
    EXPECT_EQ(Login(u"South"), u"L2");
    EXPECT_EQ(Login(u"north"), u"ERROR");
    Call(exchange, "LogOut", u"South", u"L1");
    EXPECT_EQ(Login(), u"BUSY");
    Call(exchange, "LogOut", u"North", u"L1");
    EXPECT_EQ(Login(), u"L3");
}

TEST_F(Host, ConnectionDoesNotBlockALogin) {
    EXPECT_EQ(Call(exchange, "ConnectToPbx", u"North", client).ToText(), u"C1");
    EXPECT_EQ(Call(exchange, "ConnectToPbx", u"West", client).ToText(), u"");
    EXPECT_EQ(Login(), u"L1");
}

TEST_F(Host, AnswersAfterSendRequestHasReturned) {
    int answers = 0;
    client->callBack = [&](Value& response) {
        ++answers;
        const ObjectRef answer = response.ToObject();
        EXPECT_EQ(Get(answer, "Count").ToInteger(), 2);
        EXPECT_EQ(Get(answer, "Tag").ToText(), u"ASKED");
        EXPECT_EQ(Get(answer, "FirstData", std::int16_t{1}).ToText(), u"2");
        EXPECT_EQ(Get(answer, "CMD", std::int16_t{2}).ToText(), u"");
        EXPECT_EQ(Get(answer, "CMD", std::int16_t{-1}).ToText(), u"");
        Call(exchange, "LogOut", u"North", Get(answer, "LoginID").ToText());
        response = Value(ObjectRef());
    };
    EXPECT_EQ(Send(Login()), u"R1");
    EXPECT_EQ(Send(u"L1"), u"ERROR");  // one request at a time
    loop.Pass(platform::Milliseconds(99));
    EXPECT_EQ(answers, 0);
    loop.Pass(platform::Milliseconds(1));
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(Login(), u"L2");
    EXPECT_EQ(lines.back(), "Login(\"North\", <object>) -> \"L2\"");
    EXPECT_EQ(lines[lines.size() - 2], "# CallBack returned");
}

TEST_F(Host, RequestWithoutLoginIsRefused) {
    EXPECT_EQ(Send(u"L1"), u"ERROR");
}

TEST_F(Host, ClientThatDiesGivesItsLoginBack) {
    int answers = 0;
    client->callBack = [&](Value&) { ++answers; };
    Send(Login());
    client->gone();
    loop.Pass(platform::Milliseconds(1000));
    EXPECT_EQ(answers, 0);
    EXPECT_EQ(Login(), u"L2");
}

TEST_F(Host, FailedCallBackEndsTheLogin) {
    client->callBack = [](Value&) { throw platform::RuntimeError(462, u"gone"); };
    Send(Login());
    loop.Pass(platform::Milliseconds(100));
    EXPECT_EQ(lines.back(), "# CallBack raised error 462");
    EXPECT_EQ(Login(), u"L2");
}

struct Refusal {
    const char* option;
    Text result;
};

TEST_F(Host, GivesTheRepliesThatItWasTold) {
    for (const Refusal& refusal :
         {Refusal{"login=BUSY", u"BUSY"}, {"login=empty", u""}, {"login=busy", u"busy"}}) {
        Misbehave(refusal.option);
        EXPECT_EQ(Login(), refusal.result);
    }
    Misbehave("send=ERROR");
    EXPECT_EQ(Send(u"busy"), u"ERROR");
    Misbehave("send= ");
    EXPECT_EQ(Send(u"busy"), u" ");
    Misbehave("send=raise:70000");
    EXPECT_THROW(Send(u"busy"), platform::RuntimeError);
    EXPECT_EQ(lines.back(), "SendRequest(<object>) -> error 70000");
}

TEST_F(Host, HangsUntilItLeaves) {
    Misbehave("login=hang");
    int rounds = 0;
    loop.served = [&] {
        if (++rounds == 3) desk.Leave();
    };
    EXPECT_THROW(Login(), platform::RuntimeError);
    EXPECT_EQ(lines, (Lines{"# Login(\"North\", <object>) is under way", "# hangs",
                            "Login(\"North\", <object>) -> error 462"}));
}

struct Spoiled {
    Lines options;
    int answers;
    int errCode;
    Text message, tag, lastItem;
};

TEST_F(Host, SpoilsAnswers) {
    const Spoiled table[] = {
        {{"errcode=7", "message=Full", "tag=OTHER"}, 1, 7, u"Full", u"OTHER", u"2"},
        {{"drop-item=1", "drop-item=9"}, 1, 0, u"", u"ASKED", u"0"},
        {{"item=1:FirstData=a=b:c", "item=5:CMD=x"}, 1, 0, u"", u"ASKED", u"a=b:c"},
        {{"answer=twice"}, 2, 0, u"", u"ASKED", u"2"},
        {{"answer=never"}, 0, 0, u"", u"", u""},
        {{"answer=late:1001"}, 0, 0, u"", u"", u""},
        {{"callback-during=send", "answer=never"}, 1, 0, u"", u"ASKED", u"2"},
    };
    for (const Spoiled& row : table) {
        SCOPED_TRACE(row.options[0]);
        misbehaviour = {};
        for (const std::string& option : row.options) Misbehave(option);
        int answers = 0;
        Answer answer;
        client->callBack = [&](Value& response) {
            ++answers;
            answer = dynamic_cast<ResponseObject&>(*response.ToObject()).Content();
        };
        const Text key = Login();
        Send(key);
        loop.Pass(platform::Milliseconds(1000));
        EXPECT_EQ(answers, row.answers);
        EXPECT_EQ(answer.errCode, row.errCode);
        EXPECT_EQ(answer.message, row.message);
        EXPECT_EQ(answer.tag, row.tag);
        EXPECT_EQ(answer.items.empty() ? Text() : answer.items.back().first, row.lastItem);
        Call(exchange, "LogOut", u"North", key);
    }
}

TEST_F(Host, MembersCanFail) {
    const ObjectRef response = std::make_shared<ResponseObject>(observation, Answer{});
    Misbehave("raise=errcode");
    Misbehave("lack=Tag");
    Misbehave("wrong-type=Count");
    EXPECT_THROW(Get(response, "ErrCode"), platform::RuntimeError);
    EXPECT_THROW(Get(response, "Tag"), platform::RuntimeError);
    EXPECT_TRUE(Get(response, "Count").IsObject());
    Put(response, "message", u"a \"b\"\r\n");
    EXPECT_THROW(Put(response, "ErrCode", 1), platform::RuntimeError);
    EXPECT_EQ(lines, (Lines{"ErrCode -> error 1004", "Tag -> error 438", "Count -> <object>",
                            R"(Message("a \"b\"\r\n") -> Nothing)", "ErrCode(1) -> error 1004"}));
}

TEST(Misbehaviours, RefuseWhatTheyCannotBe) {
    Misbehaviour misbehaviour;
    for (const auto& [name, value] :
         std::vector<std::pair<std::string, std::string>>{{"answer", "late:"},
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
                                                          {"other", "x"}})
        EXPECT_FALSE(TakeMisbehaviour(name, value, misbehaviour)) << name << '=' << value;
}

TEST(HostOptions, AreRead) {
    const Options options = ParseOptions({"--exchange", "A", "--exchange=B=C", "--open", "A", "--offset=-1.5",
                                          "--market", "20001", "--verbose", "--leave=show-results"});
    EXPECT_EQ(options.exchanges, (std::vector<Text>{u"A", u"B=C"}));
    EXPECT_EQ(options.open, u"A");
    EXPECT_EQ(options.minutesAhead, -1.5);
    EXPECT_EQ(options.ExchangeClass(), "SwitchDeskProj20001.cPBXOle");
    EXPECT_EQ(options.misbehaviour.leaveAt, "showresults");
    EXPECT_EQ(ParseOptions({}).exchanges.size(), 3u);
    for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{
             {"A"}, {"--open"}, {"--offset", "x"}, {"--login"}, {"--service=1"}})
        EXPECT_THROW(ParseOptions(wrong), platform::RuntimeError) << wrong[0];
}

struct NoView : HostView {
    std::vector<Text> told;
    void ShowMessage(const Text& message) override { told.push_back(message); }
    void ShowResults(const Text& caption, const std::vector<Item>& items) override {
        told.push_back(caption + platform::DecimalText(static_cast<int>(items.size())));
    }
    void ShowCode(const Text& code) override { told.push_back(code); }
    void ShowHelp(const Text& file) override { told.push_back(file); }
    void ShowFlow(bool on) override { told.push_back(on ? u"on" : u"off"); }
    void ShowState(const Text&, bool, const Text&) override {}
};

TEST_F(Host, MisbehavesForTheFirstLoginsOnly) {
    Misbehave("raise=Login");
    Misbehave("errcode=7");
    Misbehave("logins=2");
    EXPECT_THROW(Login(), platform::RuntimeError);
    EXPECT_THROW(Login(), platform::RuntimeError);
    EXPECT_EQ(misbehaviour.errCode, 7);
    EXPECT_EQ(Login(), u"L1");
    EXPECT_EQ(misbehaviour.errCode, std::nullopt);
    EXPECT_FALSE(TakeMisbehaviour("logins", "-1", misbehaviour));
}

TEST_F(Host, ShowsAndStores) {
    const auto directory = std::filesystem::path(testing::TempDir()) / "switchdesk-store";
    std::filesystem::remove_all(directory);
    NoView view;
    Store store(directory / "store.ini");
    int unloaded = 0;
    const ObjectRef host = std::make_shared<HostObject>(
        observation, HostObject::Parts{view, store, exchange, [&](std::int16_t id) { unloaded = id; }});
    Text value;
    Call(host, "GetComData", u"A", u"MOVE", platform::ByRef(value));
    EXPECT_EQ(value, u"");
    const Text kept = u"3150,2295\n[x]=\\";
    Call(host, "REGComData", u"A", u"k=[1]", kept);
    Call(host, "REGComData", u"B", u"k=[1]", u"other");
    Call(host, "GetComData", u"A", u"k=[1]", platform::ByRef(value));
    EXPECT_EQ(value, kept);
    EXPECT_EQ(Store(directory / "store.ini").Get(u"A", u"k=[1]"), kept);
    EXPECT_EQ(lines.back(), R"(GetComData("A", "k=[1]", "" => "3150,2295\n[x]=\\") -> Nothing)");
    Call(host, "ShowResults", u"Clock",
         std::make_shared<ResponseObject>(observation, Answer{{{}, {}}, 0, {}, {}, {}}));
    EXPECT_THROW(Call(host, "ShowResults", u"Clock", client), platform::RuntimeError);
    Call(host, "ShowCode", 7);
    Call(host, "TurnOnFlow");
    Call(host, "UnloadChild", std::int16_t{3});
    EXPECT_EQ(view.told, (std::vector<Text>{u"Clock2", u"7", u"on"}));
    EXPECT_EQ(unloaded, 3);
    EXPECT_EQ(Get(host, "opbx").ToObject(), exchange);
    EXPECT_EQ(lines.back(), "oPBX -> <object>");
}

TEST(StoreFile, ThatCannotBeWrittenKeepsItsValues) {
    Store store("/proc/no/store.ini");
    EXPECT_THROW(store.Set(u"A", u"K", u"v"), platform::RuntimeError);
    EXPECT_EQ(store.Get(u"A", u"K"), std::nullopt);
}

}  // namespace
}  // namespace switchdesk
