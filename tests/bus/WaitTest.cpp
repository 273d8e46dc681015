// What goes on while an outgoing call waits for its answer.
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
        stranger.calls.clear();
        stranger.whenCalled = [this, refusals](const MessageRef& call) {
            stranger.calls.size() <= refusals ? stranger.Refuse(call) : stranger.Answer(call, "taken");
        };
    }
    void Pass(int milliseconds) {
        const auto end = loop.Now() + Milliseconds(milliseconds);
        loop.ServeUntil([&] { return loop.Now() > end; });
    }
    // Keeps what the call borrows, so that it can be called after the answer.
    void Retain() { stranger.Send(borrowed, objectInterface, "Retain"); }

    const ObjectRef poked = Scripted([this](Arguments&) { return events += "called ", Value(); });
    const std::function<void(const Value&)> note = [this](const Value& answer) {
        events += ToUtf8(answer.ToText()) + " ";
    };
    const Reference borrowed{":1.1", "/Object/1"};  // the first object that the client hands out
};

// Both messages lie ready when the client looks: what came first has to take effect first.
TEST_F(WaitTest, AnswerAndCallTakeEffectInTheirOrder) {
    for (const bool answerFirst : {false, true}) {
        stranger.whenCalled = [&](const MessageRef& call) {
            Retain();
            if (answerFirst) stranger.Answer(call, "");
            stranger.Poke(borrowed);
            if (!answerFirst) stranger.Answer(call, "");
            stranger.RoundTrip();
        };
        Call(host, "Take", poked);
        events += "returned ";
        ExpectEvents(answerFirst ? "returned called " : "called returned ");
    }
}

TEST_F(WaitTest, ALoopOnTopOfAnAnsweredWaitIsServed) {
    // A message box that a timer opens while a call is out.
    const auto box = loop.Every(Milliseconds(1), [&] {
        if (stranger.calls.empty()) return;
        Retain();
        stranger.Answer(std::exchange(stranger.calls, {})[0], "");
        stranger.Poke(borrowed);
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
    stranger.whenCalled = [&](const MessageRef& call) {
        EXPECT_GE(loop.Holds(), 1) << "clicks and keys wait";
        if (!outer) {
            outer = call;
            return stranger.Poke(borrowed);
        }
        stranger.Answer(outer, "outer");
        stranger.Answer(call, "inner");
    };
    note(Call(host, "Outer", mine));
    EXPECT_EQ(events, "inner outer ");
    EXPECT_EQ(loop.Holds(), 0);
}

TEST_F(WaitTest, ABusyCalleeIsTriedAgainUntilTheOperatorGivesUp) {
    for (const bool givesUp : {false, true}) {
        boxes.opened.clear();
        boxes.decide = [&] { return givesUp; };
        RefuseFirst(3);
        EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), givesUp ? 462 : 0);
        // At 0, 200 (a box), 400 and 600.
        EXPECT_EQ(boxes.opened.size(), 1U);
        EXPECT_EQ(stranger.calls.size(), givesUp ? 2U : 4U);
    }
    // A call that was given up is not made again, nor where the refusal comes later.
    settings.pendingTimeout = 20;
    stranger.whenCalled = nullptr;
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    stranger.Refuse(stranger.calls.back());
    Pass(300);
    EXPECT_EQ(stranger.calls.size(), 3U);
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
    const MessageRef call = std::exchange(stranger.calls, {}).at(0);
    sd_bus_reply_method_return(call.get(), "vav", "(so)", ":1.2", "/Result", 0);
    ExpectEvents("freed ");
    EXPECT_TRUE(std::exchange(lateResult, Value()).IsObject());
    ExpectHeard("/Result Release!; ");
    EXPECT_EQ(ErrorOf([&] { client->CreateObject(u"Test.cStranger"); }), 429);
    const MessageRef creation = std::exchange(stranger.calls, {}).at(0);
    sd_bus_reply_method_return(creation.get(), "(so)", ":1.2", "/Made");
    ExpectHeard("/Made Release!; ");
}

TEST_F(WaitTest, APostedCallIsNotWaitedForAndTriedAgainUntilTheBusyLimit) {
    const auto post = [&] { client->Post(host, "Take", InvokeKind::Method, {Value(u"this")}, note); };
    RefuseFirst(1);
    post();
    EXPECT_TRUE(stranger.calls.empty());
    ExpectEvents("taken ");
    EXPECT_EQ(stranger.calls.size(), 2U);
    RefuseFirst(2);
    post();
    Pass(700);
    EXPECT_EQ(stranger.calls.size(), 2U) << "at 0 and 200 milliseconds";
    EXPECT_EQ(events, "");
    EXPECT_TRUE(boxes.opened.empty() && loop.Holds() == 0);
}

}  // namespace
}  // namespace platform::test
