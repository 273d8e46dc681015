// What goes on while an outgoing call waits for its answer.
#include "BusTest.h"

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
            if (stranger.calls.size() <= refusals) return stranger.Refuse(call);
            stranger.ReturnResult(call, "s", "taken");
        };
    }
    void Pass(int milliseconds) {
        const auto end = loop.Now() + Milliseconds(milliseconds);
        loop.ServeUntil([&] { return loop.Now() > end; });
    }
    // What a call borrows, kept by the stranger, so that it can be called after the answer.
    Reference Retained(const MessageRef& call) {
        const Reference taken = ReferenceIn(Told(call));
        stranger.Notify(taken, objectInterface, "Retain");
        return taken;
    }
    const ObjectRef poked = Scripted({Method("Poke", 0, [this](Arguments&) { Note("called"); })});
};

TEST_F(WaitTest, CallsFromInsideCallsAreRefusedAsBusyBeforeTheStackEnds) {
    // Each call of the stranger's makes the server ask the stranger, who says nothing until one is refused.
    const Reference object = CreateForStranger(
        Scripted({Method("Ask", 1, [](Arguments& a) { return Call(a[0].ToObject(), "Anything"); })}));
    std::vector<const MessageRef*> answers;
    for (int i = 0; i <= 32; ++i)
        answers.push_back(
            &stranger.Send(object, objectInterface, "Invoke", "sqav", "Ask", 1, 1, "(so)", ":1.2", "/Host"));
    const MessageRef &first = *answers.front(), &refused = *answers.back();
    const auto answering = loop.Every(Milliseconds(1), [&] {
        if (!refused || stranger.calls.empty()) return;
        const auto asked = std::exchange(stranger.calls, {});
        EXPECT_EQ(asked.size(), 32U);
        EXPECT_EQ(Plain(object, "Retain"), "") << "references are counted all the same";
        for (const MessageRef& question : asked) stranger.ReturnResult(question, "s", "");
    });
    EXPECT_TRUE(loop.ServeUntil([&] { return first != nullptr; }));
    EXPECT_EQ(Told(refused), "Busy i440 the call can't be taken now");
    EXPECT_EQ(stranger.Invoke(object, "Ask", 1, "s", ""), "Error i424 Object required")
        << "there is room again";
}

// Both messages lie ready when the client looks: what came first has to take effect first.
TEST_F(WaitTest, AnswerAndCallTakeEffectInTheirOrder) {
    for (const bool answerFirst : {false, true}) {
        stranger.whenCalled = [&](const MessageRef& call) {
            const Reference taken = Retained(call);
            if (answerFirst) stranger.ReturnResult(call, "s", "");
            Poke(taken);
            if (!answerFirst) stranger.ReturnResult(call, "s", "");
            stranger.RoundTrip();
        };
        Call(host, "Take", poked);
        Note("returned");
        ExpectEvents(answerFirst ? "returned called " : "called returned ");
    }
}

TEST_F(WaitTest, ALoopOnTopOfAnAnsweredWaitIsServed) {
    // A message box that a timer opens while a call is out.
    const auto box = loop.Every(Milliseconds(1), [&] {
        if (stranger.calls.empty()) return;
        const MessageRef call = std::exchange(stranger.calls, {})[0];
        const Reference taken = Retained(call);
        stranger.ReturnResult(call, "s", "");
        Poke(taken);
        ExpectEvents("called ");
        Note("closed");
    });
    Call(host, "Take", poked);
    EXPECT_EQ(events, "closed ");
}

TEST_F(WaitTest, InnerAndOuterWaitEndEachWithItsOwnAnswer) {
    // The stranger holds the outer call, calls the client, and answers the inner call after the outer one.
    MessageRef outer;
    const auto mine =
        Scripted({Method("Poke", 0, [&](Arguments&) { Note(ToUtf8(Call(host, "Inner").ToText())); })});
    stranger.whenCalled = [&](const MessageRef& call) {
        EXPECT_GE(loop.Holds(), 1) << "clicks and keys wait";
        if (!outer) return Poke(ReferenceIn(Told(outer = call)));
        stranger.ReturnResult(outer, "s", "outer");
        stranger.ReturnResult(call, "s", "inner");
    };
    Note(ToUtf8(Call(host, "Outer", mine).ToText()));
    EXPECT_EQ(events, "inner outer ");
    EXPECT_EQ(loop.Holds(), 0);
}

// A busy limit of 100 and a pending limit of 50 milliseconds. Calls are sent, refused and ended; w lets one
// limit span them; g, y and n give up, by the program and in the box, and go on; a digit lets ten
// milliseconds pass for each. After each step comes the box that is open, a capital where it has just opened;
// else x where the wait was given up, a capital where the work that made the calls has just heard of it.
TEST(PatienceTest, AsksOnceALimitIsReachedAndNotMoreThanNeeded) {
    const std::pair<std::string, Text> cases[] = {
        {"s4es41e", u"-----P-"},                // each call has a limit of its own
        {"sr9sr1sre", u"-------B-"},            // refused for a hundred milliseconds
        {"sr9e1sr9r", u"---------"},            // a call that is taken ends the refusals
        {"sr91srn9r9r1r", u"-----B------B"},    // asks again, counting from the next refusal
        {"sr91srs9rse9", u"-----Bbbbb--"},      // one box at a time
        {"s5n41n9", u"-P--P-P"},                // going on starts the pending limit anew
        {"sr91srn9", u"-----B--"},              // but without a call that is out
        {"s5eny9", u"-P----"},                  // an answer that comes after the call's
        {"s5y9r9r1rs9e", u"-Pxxxxxxxxxx"},      // given up for good
        {"s5gs9", u"-Pxxx"},                    // the box closes
        {"ws3es2er9rn41y", u"-----Ppppp--PX"},  // one pending limit over all calls, none busy
        {"sr91srws9y9", u"-----B--PXx"},        // closes the box of a single call
        {"wsr5", u"---P"},                      // goes on over refusals
        {"w5w41gg", u"-P--PXx"}};               // begins again
    for (const auto& [steps, expected] : cases) {
        headless::Timers<Scheduler> time;
        headless::WaitBoxes boxes;
        const WaitSettings settings{100, 50, u"b", u"B", u"p", u"P"};
        const auto patience = std::make_shared<Patience>(time, boxes, settings);
        bool isTold = false;
        Text all;
        for (const char step : steps) {
            const std::size_t before = boxes.opened.size();
            if (step == 's') patience->CallSent();
            if (step == 'r') patience->CallRefused();
            if (step == 'e') patience->CallEnded();
            if (step == 'w') patience->SpanCalls([&] { isTold = true; });
            if (step == 'g') patience->GiveUp();
            if (step == 'y' || step == 'n') boxes.Answer(step == 'y');
            if (step >= '0' && step <= '9') time.Pass((step - '0') * 10);
            if (boxes.IsOpen())
                all += boxes.opened.size() > before ? boxes.opened.back().text : boxes.opened.back().title;
            else
                all += std::exchange(isTold, false) ? u'X' : patience->IsGivenUp() ? u'x' : u'-';
        }
        EXPECT_EQ(all, expected) << steps;
        EXPECT_EQ(ErrorOf([&] { patience->RequireOngoing(); }), patience->IsGivenUp() ? 462 : 0);
    }
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
    stranger.ReturnResult(call, "(so)", ":1.2", "/Result");
    ExpectEvents("freed ");
    EXPECT_TRUE(std::exchange(lateResult, Value()).IsObject());
    ExpectHeard("/Result Release!");
    EXPECT_EQ(ErrorOf([&] { client->CreateObject(u"Test.cStranger"); }), 429);
    stranger.Return(std::exchange(stranger.calls, {}).back(), "(so)", ":1.2", "/Made");
    ExpectHeard("/Made Release!");
}

TEST_F(WaitTest, APostedCallIsNotWaitedForAndTriedAgainUntilTheBusyLimit) {
    const auto post = [&] {
        client->Post(host, "Take", InvokeKind::Method, {Value(u"this")},
                     [&](const Value& answer) { Note(ToUtf8(answer.ToText())); });
    };
    RefuseFirst(1);
    post();
    EXPECT_TRUE(stranger.calls.empty());
    ExpectEvents("taken ");
    EXPECT_EQ(stranger.calls.size(), 2U);
    EXPECT_EQ(loop.Holds(), 0);
    RefuseFirst(2);
    post();
    Pass(700);
    EXPECT_EQ(stranger.calls.size(), 2U) << "at 0 and 200 milliseconds";
    EXPECT_EQ(events, "");
    EXPECT_TRUE(boxes.opened.empty());
}

}  // namespace
}  // namespace platform::test
