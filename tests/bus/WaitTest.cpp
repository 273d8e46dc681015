// What goes on while an outgoing call waits for its answer, and when the bus is lost.
#include <thread>

#include "BusTest.h"
#include "platform/automation/Patience.h"

namespace platform::test {
namespace {

struct WaitTest : BusTest {
    WaitTest() {
        settings.busyTimeout = 150;
        settings.pendingTimeout = 60000;
    }
    // The stranger takes calls after so many that it refuses as busy.
    void RefuseFirst(std::size_t refusals) {
        calls.clear();
        whenCalled = [this, refusals](const MessageRef& call) {
            calls.size() <= refusals ? Refuse(call) : Answer(call, "taken");
        };
    }
    void Pass(int milliseconds) {
        const auto end = loop.Now() + Milliseconds(milliseconds);
        loop.ServeUntil([&] { return loop.Now() > end; });
    }

    const ObjectRef poked = Scripted([this](Arguments&) { return events += "called ", Value(); });
    const std::function<void(const Value&)> note = [this](const Value& answer) {
        events += ToUtf8(answer.ToText()) + " ";
    };
    const Reference borrowed{":1.1", "/Object/1"};  // the first object that the client hands out
};

TEST_F(WaitTest, CallsFromInsideCallsAreRefusedAsBusyBeforeTheStackEnds) {
    // Each call makes the server call the stranger, who replies to none until one is refused.
    const Reference asking =
        CreateForStranger(Scripted([](Arguments& a) { return Call(a[0].ToObject(), "Anything"); }));
    std::vector<const MessageRef*> replies;
    for (int i = 0; i <= 32; ++i)
        replies.push_back(
            &Send(asking, objectInterface, "Invoke", "sqav", "Ask", 1, 1, "(so)", ":1.2", "/Host"));
    const auto answering = loop.Every(Milliseconds(1), [&] {
        if (!*replies.back() || calls.size() != 32) return;
        for (const MessageRef& question : std::exchange(calls, {})) Answer(question, "");
    });
    EXPECT_TRUE(loop.ServeUntil([&] { return *replies.front() != nullptr; }));
    EXPECT_EQ(MessageText(*replies.back()), "Busy i440");
}

TEST_F(WaitTest, QuickAnswersLeaveTimersTheirTurn) {
    // The stranger answers on its own thread, so that replies arrive before the loop's turn is due.
    taking.reset();
    whenCalled = [this](const MessageRef& call) { Answer(call, ""); };
    const std::jthread answering([this](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            TakeCalls();
            calls.clear();
            sd_bus_wait(stranger.get(), 1000);
        }
    });
    bool ticked = false;
    const HandleRef tick = loop.After(Milliseconds(3), [&] { ticked = true; });
    for (int made = 0; !ticked && made < 10000; ++made) Call(host, "Anything");
    EXPECT_TRUE(ticked);
}

// Both messages lie ready when the client looks: what came first has to take effect first.
TEST_F(WaitTest, AnswerAndCallTakeEffectInTheirOrder) {
    for (const bool answerFirst : {false, true}) {
        whenCalled = [&](const MessageRef& call) {
            Send(borrowed, objectInterface, "Retain");
            if (answerFirst) Answer(call, "");
            Poke(borrowed);
            if (!answerFirst) Answer(call, "");
            RoundTrip();
        };
        Call(host, "Take", poked);
        events += "returned ";
        ExpectEvents(answerFirst ? "returned called " : "called returned ");
    }
}

TEST_F(WaitTest, ALoopOnTopOfAnAnsweredWaitIsServed) {
    // A message box that a timer opens while a call is out.
    const auto box = loop.Every(Milliseconds(1), [&] {
        if (calls.empty()) return;
        Send(borrowed, objectInterface, "Retain");
        Answer(std::exchange(calls, {})[0], "");
        Poke(borrowed);
        ExpectEvents("called ");
        events += "closed ";
    });
    Call(host, "Take", poked);
    EXPECT_EQ(events, "closed ");
}

TEST_F(WaitTest, InnerAndOuterWaitEndEachWithItsOwnAnswer) {
    // The stranger holds the outer call, calls the client, and answers the inner call after the outer one.
    MessageRef outer;
    const ObjectRef mine = Scripted([&](Arguments&) { return note(Call(host, "Inner")), Value(); });
    whenCalled = [&](const MessageRef& call) {
        EXPECT_GE(loop.Holds(), 1) << "clicks and keys wait";
        if (!outer) {
            outer = call;
            return Poke(borrowed);
        }
        Answer(outer, "outer");
        Answer(call, "inner");
    };
    note(Call(host, "Outer", mine));
    EXPECT_EQ(events, "inner outer ");
    EXPECT_EQ(loop.Holds(), 0);
}

TEST_F(WaitTest, ABusyCalleeIsTriedAgainUntilTheOperatorGivesUp) {
    for (const bool givesUp : {false, true}) {
        boxes.opened.clear();
        boxes.decide = [givesUp] { return givesUp; };
        RefuseFirst(3);
        EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), givesUp ? 462 : 0);
        // At 0, 200 (a box), 400 and 600.
        EXPECT_EQ(boxes.opened.size(), 1U);
        EXPECT_EQ(calls.size(), givesUp ? 2U : 4U);
    }
    // A call that was given up is not made again, nor where the refusal comes later.
    settings.pendingTimeout = 20;
    whenCalled = nullptr;
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    Refuse(calls.back());
    Pass(300);
    EXPECT_EQ(calls.size(), 3U);
}

TEST_F(WaitTest, AfterGivingUpALateAnswerGoesToTheWorkAndItsReferencesGoBack) {
    settings.pendingTimeout = 20;
    boxes.decide = [] { return true; };
    const auto patience = client->NewPatience();
    Value lateResult;
    patience->Late = [&](const Value& result) { lateResult = result; };
    const ObjectRef work = client->Within(host, patience);
    EXPECT_EQ(ErrorOf([&] { Call(work, "Take", Watched()); }), 462);
    EXPECT_EQ(ErrorOf([&] { Call(work, "Anything"); }), 462) << "the rest of the work is not done";
    EXPECT_EQ(events, "") << "the callee may still use what it borrowed";
    const MessageRef call = std::exchange(calls, {}).at(0);
    sd_bus_reply_method_return(call.get(), "vav", "(so)", ":1.2", "/Result", 0);
    ExpectEvents("freed ");
    EXPECT_TRUE(std::exchange(lateResult, Value()).IsObject());
    ExpectEvents("/Result Release ");
    EXPECT_EQ(ErrorOf([&] { client->CreateObject(u"Test.cStranger"); }), 429);
    const MessageRef creation = std::exchange(calls, {}).at(0);
    sd_bus_reply_method_return(creation.get(), "(so)", ":1.2", "/Made");
    ExpectEvents("/Made Release ");
}

TEST_F(WaitTest, APostedCallIsNotWaitedForAndTriedAgainUntilTheBusyLimit) {
    const auto post = [&] { client->Post(host, "Take", InvokeKind::Method, {Value(u"this")}, note); };
    RefuseFirst(1);
    post();
    EXPECT_TRUE(calls.empty());
    ExpectEvents("taken ");
    EXPECT_EQ(calls.size(), 2U);
    RefuseFirst(2);
    post();
    Pass(700);
    EXPECT_EQ(calls.size(), 2U) << "at 0 and 200 milliseconds";
    EXPECT_EQ(events, "");
    EXPECT_TRUE(boxes.opened.empty() && loop.Holds() == 0);
}

TEST_F(WaitTest, LeavingRefusesAsBusyWhatArrivesAndServesTheClassNoMore) {
    const MessageRef& early = Send(factory, factoryInterface, "CreateInstance");
    RoundTrip();
    server->Leave();
    // The server's loop isn't served again, as at the end of the process.
    RoundTrip();
    TakeCalls();
    EXPECT_TRUE(early && MessageText(early).starts_with("Busy "));
    EXPECT_EQ(ErrorOf([&] { client->CreateObject(u"Test.cScripted"); }), 429);
}

// In a call, and between two attempts.
struct LossTest : BusTest, testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(Twice, LossTest, testing::Bool());

TEST_P(LossTest, EndsWaitsAndGivesBackReferences) {
    server->WhenInUse([&](bool inUse) { events += inUse ? "used " : "unused "; });
    const ObjectRef held = Created(Watched());
    ExpectEvents("used ");
    bool isLost = false;
    const auto watch = held->WhenOwnerGone([&] { isLost = true; });
    HandleRef stopping;
    whenCalled = [&](const MessageRef& call) {
        if (!GetParam()) return bus.Stop();
        Refuse(call);
        stopping = loop.After(Milliseconds(100), [&] { bus.Stop(); });
    };
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    ExpectEvents("leaves gone freed unused ");
    EXPECT_TRUE(loop.ServeUntil([&] { return isLost; }));
    // Everything that comes later fails at once.
    EXPECT_EQ(ErrorOf([&] { Call(held, "Anything"); }), 462);
    EXPECT_EQ(ErrorOf([&] { client->CreateObject(u"Test.cScripted"); }), 429);
    EXPECT_EQ(ErrorOf([&] { client->ServeClass("Test.cLater", create); }), 429);
    client->Leave();
    loop.ServeOnce();
}

TEST_F(WaitTest, ACallThatArrivesWhileANameIsAskedForIsServed) {
    // The library takes it in along with the daemon's answer, and the descriptor doesn't show it.
    Poke(CreateForStranger(poked));
    RoundTrip();
    server->ServeClass("Test.cLater", create);
    EXPECT_EQ(events, "");
    ExpectEvents("called ");
}

}  // namespace
}  // namespace platform::test
