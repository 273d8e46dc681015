// What goes on while an outgoing call waits for its answer.
#include "BusTest.h"

namespace platform::test {
namespace {

struct WaitTest : BusTest {
    WaitTest() { settings.pendingTimeout = 60000; }
    // The stranger takes late-bound calls after so many that it refuses as busy.
    void RefuseFirst(long refusals) {
        stranger.whenCalled = [this, refusals](const MessageRef& call) {
            if (stranger.CallsOf("Invoke") <= refusals)
                stranger.Refuse(call);
            else
                stranger.ReturnResult(call, "s", "taken");
        };
    }
    // What a call borrows, kept by the stranger, so that it can be called after the answer.
    Reference Retained(const MessageRef& call) {
        const Reference taken = ReferenceIn(Told(call));
        stranger.Notify(stranger.NewCall(taken, objectInterface, "Retain"));
        return taken;
    }
};

TEST_F(WaitTest, CallsFromInsideCallsAreRefusedAsBusyBeforeTheStackEnds) {
    // Each call of the stranger's makes the server ask the stranger, who says nothing until one is refused.
    const Reference object =
        CreateForStranger({Method("Ask", 1, [](Arguments& a) { return Call(a[0].ToObject(), "Anything"); })});
    const auto ask = [&]() -> const MessageRef& {
        return stranger.Send(stranger.NewInvoke(object, "Ask", 1, "(so)", stranger.Name(), "/Host"));
    };
    const MessageRef& first = ask();
    for (int i = 1; i < 32; ++i) ask();
    const MessageRef& refused = ask();
    const auto answering = loop.Every(Milliseconds(1), [&] {
        if (!refused || stranger.calls.empty()) return;
        const auto asked = std::exchange(stranger.calls, {});
        EXPECT_EQ(asked.size(), 32U);
        EXPECT_EQ(Plain(object, "Retain"), "") << "references are counted all the same";
        for (const MessageRef& question : asked) stranger.ReturnResult(question, "s", "");
    });
    EXPECT_TRUE(loop.ServeUntil([&] { return first != nullptr; }));
    EXPECT_EQ(Told(refused), "Busy i440 the call can't be taken now");
    EXPECT_EQ(stranger.Invoke(object, "Ask"), "Error i424 Object required") << "there is room again";
}

// Both messages lie ready when the client looks: what came first has to take effect first.
TEST_F(WaitTest, AnswerAndCallTakeEffectInTheirOrder) {
    for (const bool answerFirst : {false, true}) {
        std::vector<std::string> events;
        const auto mine = Scripted({Method("Poke", 0, [&](Arguments&) { events.push_back("called"); })});
        stranger.whenCalled = [&](const MessageRef& call) {
            const Reference taken = Retained(call);
            if (answerFirst) stranger.ReturnResult(call, "s", "");
            Poke(taken);
            if (!answerFirst) stranger.ReturnResult(call, "s", "");
            stranger.RoundTrip();
        };
        Call(host, "Take", mine);
        events.push_back("returned");
        EXPECT_TRUE(loop.ServeUntil([&] { return events.size() == 2; }));
        EXPECT_EQ(events.front(), answerFirst ? "returned" : "called");
    }
}

TEST_F(WaitTest, ALoopOnTopOfAnAnsweredWaitIsServed) {
    // A message box that a timer opens while a call is out is a loop of its own. It gets its calls although
    // the routine beneath it has its answer and can't go on.
    bool called = false, opened = false;
    const auto mine = Scripted({Method("Poke", 0, [&](Arguments&) { called = true; })});
    const auto box = loop.Every(Milliseconds(1), [&] {
        if (opened || stranger.calls.empty()) return;
        opened = true;
        const Reference poked = Retained(stranger.calls[0]);
        stranger.ReturnResult(stranger.calls[0], "s", "");
        Poke(poked);
        loop.ServeUntil([&] { return called; });
    });
    Call(host, "Take", mine);
    EXPECT_TRUE(called);
}

// A busy limit of 100 and a pending limit of 50 milliseconds.
struct PatienceTest : testing::Test {
    PatienceTest() {
        settings.busyTimeout = 100;
        settings.pendingTimeout = 50;
        settings.busyTitle = u"b", settings.busyText = u"busy";
        settings.pendingTitle = u"p", settings.pendingText = u"pending";
    }
    void Do(char step) {
        if (step == 's') patience->CallSent();
        if (step == 'r') patience->CallRefused();
        if (step == 'e') patience->CallEnded();
        if (step == 'w') patience->SpanCalls([this] { ++givenUp; });
        if (step == 'g') patience->GiveUp();
        if (step == 'y' || step == 'n') boxes.Answer(step == 'y');
        if (step >= '0' && step <= '9') time.Pass((step - '0') * 10);
    }
    // The box that is open, a capital where it has just opened; else x where the wait was given up.
    char Seen() {
        const bool isNew = std::exchange(seen, boxes.opened.size()) != boxes.opened.size();
        if (!boxes.IsOpen()) return patience->IsGivenUp() ? 'x' : '-';
        const auto& box = boxes.opened.back();
        EXPECT_EQ(box.text, box.title == u"b" ? u"busy" : u"pending");
        return static_cast<char>(isNew ? std::toupper(box.title[0]) : box.title[0]);
    }
    headless::Timers<Scheduler> time;
    headless::WaitBoxes boxes;
    WaitSettings settings;
    std::shared_ptr<Patience> patience;
    std::size_t seen = 0;
    int givenUp = 0;
};

// Calls are sent, refused and ended; w lets one limit span them; g, y and n give up, by the program and in
// the box, and go on; a digit lets ten milliseconds pass for each.
TEST_F(PatienceTest, AsksOnceALimitIsReachedAndNotMoreThanNeeded) {
    const struct {
        std::string steps, seen;
        int givenUp;
    } cases[] = {{"s4es41e", "-----P-", 0},                // each call has a limit of its own
                 {"sr9sr1sre", "-------B-", 0},            // refused for a hundred milliseconds
                 {"sr9e1sr9r", "---------", 0},            // a call that is taken ends the refusals
                 {"sr91srn9r9r1r", "-----B------B", 0},    // asks again, counting from the next refusal
                 {"sr91srs9rse9", "-----Bbbbb--", 0},      // one box at a time
                 {"s5n41n9", "-P--P-P", 0},                // going on starts the pending limit anew
                 {"sr91srn9", "-----B--", 0},              // but without a call that is out
                 {"s5eny9", "-P----", 0},                  // an answer that comes after the call's
                 {"s5y9r9r1rs9e", "-Pxxxxxxxxxx", 0},      // given up for good
                 {"s5gs9", "-Pxxx", 0},                    // the box closes
                 {"ws3es2er9rn41y", "-----Ppppp--Px", 1},  // one pending limit over all calls, none busy
                 {"sr91srws9y9", "-----B--Pxx", 1},        // closes the box of a single call
                 {"w5w41gg", "-P--Pxx", 1}};               // begins again
    for (const auto& c : cases) {
        SCOPED_TRACE(c.steps);
        patience = std::make_shared<Patience>(time, boxes, settings);
        std::string all;
        givenUp = 0;
        for (const char step : c.steps) {
            Do(step);
            all += Seen();
        }
        EXPECT_EQ(all, c.seen);
        EXPECT_EQ(givenUp, c.givenUp);
        EXPECT_EQ(ErrorOf([&] { patience->RequireOngoing(); }), patience->IsGivenUp() ? 462 : 0);
    }
}

TEST_F(PatienceTest, ALimitBelowZeroIsReachedAtOnce) {
    settings.busyTimeout = settings.pendingTimeout = -1;
    patience = std::make_shared<Patience>(time, boxes, settings);
    std::string all;
    for (const char step : std::string("s0esr0sr")) {
        Do(step);
        all += Seen();
    }
    EXPECT_EQ(all, "-P-----B");
}

TEST_F(WaitTest, ABusyCalleeIsTriedAgainUntilTheOperatorGivesUp) {
    const struct {
        int limit;
        long refusals;
        std::optional<bool> giveUp;
        std::int32_t error;
        std::size_t boxes;
        long calls;
    } cases[] = {{150, 1000, true, 462, 1, 2},  // given up in the box
                 {150, 5, false, 0, 2, 6},      // refused at 0, 200 (box), 400, 600 (box), 800
                 {150, 2, {}, 0, 1, 3}};        // the box closes when the callee takes the call
    for (const auto& c : cases) {
        SCOPED_TRACE(c.refusals);
        stranger.calls.clear();
        boxes = {};
        settings.busyTimeout = c.limit;
        RefuseFirst(c.refusals);
        if (c.giveUp) boxes.decide = [&] { return *c.giveUp; };
        EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), c.error);
        EXPECT_EQ(boxes.opened.size(), c.boxes);
        EXPECT_FALSE(boxes.IsOpen());
        EXPECT_EQ(stranger.CallsOf("Invoke"), c.calls);
    }
}

TEST_F(WaitTest, AfterGivingUpALateAnswerIsDroppedAndItsReferencesGoBack) {
    settings.pendingTimeout = 20;
    boxes.decide = [this] { return boxes.opened.size() == 3; };
    auto given = Scripted({Named(u"here")});
    const std::weak_ptr<Object> argument = given;
    const auto patience = client->NewPatience();
    Value lateResult;
    patience->Late = [&](const Value& result) { lateResult = result; };
    EXPECT_EQ(ErrorOf([&] { Call(client->Within(host, patience), "Take", given); }), 462);
    EXPECT_EQ(boxes.opened.size(), 3U) << "it comes again after going on";
    EXPECT_FALSE(boxes.IsOpen());
    given = nullptr;
    // The callee may still use what it borrowed.
    EXPECT_FALSE(argument.expired());
    const MessageRef call = stranger.calls.at(0);
    EXPECT_EQ(stranger.Heard(), "/Host Invoke 'Take' q1 [<(':1.1' /Object/1)>]");
    EXPECT_EQ(stranger.Invoke(ReferenceIn(Told(call)), "Name"), "<'here'> []");
    stranger.ReturnResult(call, "(so)", stranger.Name(), "/Result");
    EXPECT_TRUE(loop.ServeUntil([&] { return lateResult.IsObject(); }));
    lateResult = Value();
    ExpectHeard("/Result Release!");
    EXPECT_TRUE(argument.expired());
}

TEST_F(WaitTest, OnePatienceEndsWithTheFirstCallThatIsGivenUp) {
    for (const bool spansCalls : {false, true}) {
        stranger.calls.clear();
        boxes = {};
        boxes.decide = [] { return true; };
        settings.pendingTimeout = 20;
        const auto patience = client->NewPatience();
        const ObjectRef object = client->Within(host, patience);
        bool told = false;
        if (spansCalls) patience->SpanCalls([&] { told = true; });
        for (int i = 0; i < 3; ++i) EXPECT_EQ(ErrorOf([&] { Call(object, "Anything"); }), 462);
        EXPECT_EQ(stranger.CallsOf("Invoke"), 1) << "the others are not made";
        EXPECT_EQ(boxes.opened.size(), 1U);
        EXPECT_EQ(told, spansCalls);
        settings.pendingTimeout = 60000;
        AnswerAll("later");
        EXPECT_EQ(Call(host, "Anything"), Value(u"later")) << "the object itself is as patient as ever";
        stranger.whenCalled = nullptr;
    }
}

TEST_F(WaitTest, APostedCallIsNotWaitedForAndTriedAgainWhileBusy) {
    std::vector<Text> answers;
    RefuseFirst(1);
    client->Post(host, "Take", InvokeKind::Method, {Value(u"this")},
                 [&](const Value& answer) { answers.push_back(answer.ToText()); });
    EXPECT_TRUE(stranger.calls.empty());
    EXPECT_TRUE(loop.ServeUntil([&] { return answers == std::vector<Text>{u"taken"}; }));
    EXPECT_EQ(loop.Holds(), 0);
    EXPECT_TRUE(boxes.opened.empty());
}

TEST_F(WaitTest, APostedCallIsTriedUntilTheBusyLimit) {
    settings.busyTimeout = 150;
    RefuseFirst(1000);
    client->Post(host, "Take", InvokeKind::Method, {}, [](const Value&) { FAIL(); });
    EXPECT_TRUE(loop.ServeUntil([&] { return stranger.CallsOf("Invoke") == 2; }));
    loop.ServeUntil([&, limit = 0]() mutable { return ++limit > 400; });
    EXPECT_EQ(stranger.CallsOf("Invoke"), 2) << "at 0 and 200 milliseconds";
    EXPECT_TRUE(boxes.opened.empty());
}

TEST_F(WaitTest, CreatingGivesUpWith429) {
    settings.pendingTimeout = 20;
    boxes.decide = [] { return true; };
    EXPECT_EQ(ErrorOf([&] { client->CreateObject(u"Test.cStranger"); }), 429);
    // The object that was made all the same goes back.
    stranger.Return(stranger.calls.back(), "(so)", stranger.Name(), "/Made");
    stranger.calls.clear();
    ExpectHeard("/Made Release!");
}

TEST_F(WaitTest, InnerAndOuterWaitEndEachWithItsOwnAnswer) {
    // The stranger holds the outer call, calls the client, and answers the inner call behind the outer one.
    std::vector<Text> events;
    MessageRef outer;
    const auto mine =
        Scripted({Method("Poke", 0, [&](Arguments&) { events.push_back(Call(host, "Inner").ToText()); })});
    stranger.whenCalled = [&](const MessageRef& call) {
        EXPECT_GE(loop.Holds(), 1) << "clicks and keys wait";
        if (!outer) return Poke(ReferenceIn(Told(outer = call)));
        stranger.ReturnResult(outer, "s", "outer");
        stranger.ReturnResult(call, "s", "inner");
    };
    events.push_back(Call(host, "Outer", mine).ToText());
    EXPECT_EQ(events, (std::vector<Text>{u"inner", u"outer"}));
    EXPECT_EQ(loop.Holds(), 0);
}

TEST_F(WaitTest, ARuntimeErrorComesWithNumberAndDescription) {
    const ObjectRef object =
        Created({Method("Fail", 0, [](Arguments&) { throw RuntimeError(-2147221504, u"b\u00F6se\uFFFF"); }),
                 Method("Break", 0, [](Arguments&) { throw std::runtime_error("broken"); })});
    const RuntimeError error = Raised([&] { Call(object, "Fail"); });
    EXPECT_EQ(error.Number(), -2147221504);
    EXPECT_EQ(error.Description(), u"b\u00F6se\uFFFD");
    EXPECT_EQ(ErrorOf([&] { Call(object, "Break"); }), 440);
}

}  // namespace
}  // namespace platform::test
