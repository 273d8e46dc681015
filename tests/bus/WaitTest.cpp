// What goes on while an outgoing call waits for its answer.
#include "StrangerTest.h"

namespace platform::test {
namespace {

class WaitTest : public StrangerTest {
  protected:
    WaitTest() {
        settings.pendingTimeout = 60000;
        settings.pendingTitle = u"pending";
        settings.pendingText = u"no answer";
        settings.busyTitle = u"busy";
        settings.busyText = u"refused";
        host = StrangersObject();
    }

    // Has the stranger refuse so many calls, and answer those behind them.
    void RefuseFirst(std::size_t count) {
        stranger.whenCalled = [this, count](const MessageRef& call) {
            if (stranger.CallsOf("Invoke") <= count)
                stranger.ReturnError(call, bus::busyErrorName, "later");
            else
                stranger.ReturnResult(call, "s", "taken");
        };
    }

    ObjectRef host;
};

TEST_F(WaitTest, ServesCallsOfTheCalleeMeanwhile) {
    // The server calls the client's object back, and that calls the server again.
    ObjectRef object;
    const auto mine = std::make_shared<ScriptedObject>(
        std::vector<Member>{Method("Back", 0, [&](Arguments&) { return Call(object, "Deep"); })});
    object =
        Created({Method("Run", 1, [](Arguments& arguments) { return Call(arguments[0].ToObject(), "Back"); }),
                 Method("Deep", 0, [](Arguments&) { return Value(u"deep"); })});
    EXPECT_TRUE(Call(object, "Run", mine) == Value(u"deep"));
}

TEST_F(WaitTest, HoldsInputBackForTheCallOnly) {
    std::vector<int> holds;
    const auto timer = loop.After(Milliseconds(0), [&] { holds.push_back(loop.Holds()); });
    stranger.whenCalled = [&](const MessageRef& call) {
        if (holds.empty()) loop.ServeUntil([&] { return !holds.empty(); });
        stranger.ReturnResult(call, "s", "");
    };
    Call(host, "Anything");
    EXPECT_EQ(holds, std::vector<int>{1});
    EXPECT_EQ(loop.Holds(), 0);
}

class OrderTest : public WaitTest, public ::testing::WithParamInterface<bool> {};

// Both messages lie ready when the client looks: what came first has to take effect first.
TEST_P(OrderTest, AnswerAndCallTakeEffectInTheirOrder) {
    const bool answerFirst = GetParam();
    std::vector<std::string> events;
    const auto mine = std::make_shared<ScriptedObject>(std::vector<Member>{Method("Back", 0, [&](Arguments&) {
        events.push_back("called");
        return Value();
    })});
    stranger.whenCalled = [&](const MessageRef& call) {
        const Reference taken = ArgumentIn(call);
        // Kept by the stranger, so that it can be called after the answer.
        stranger.Notify(stranger.NewCall(taken.owner, taken.path, bus::objectInterface, "Retain"));
        if (answerFirst) stranger.ReturnResult(call, "s", "");
        NotifyOf(taken, "Back");
        if (!answerFirst) stranger.ReturnResult(call, "s", "");
        stranger.RoundTrip();
    };
    Call(host, "Take", mine);
    events.push_back("returned");
    EXPECT_TRUE(loop.ServeUntil([&] { return events.size() == 2; }));
    EXPECT_EQ(events.front(), answerFirst ? "returned" : "called");
}

INSTANTIATE_TEST_SUITE_P(BothWays, OrderTest, ::testing::Bool());

TEST_F(WaitTest, LoopOnTopOfAnAnsweredWaitIsServed) {
    // A message box that a timer opens while a call is out is a loop of its own. It gets its calls although
    // the routine beneath it has its answer and can't go on.
    bool called = false, opened = false;
    const auto mine = std::make_shared<ScriptedObject>(std::vector<Member>{Method("Poke", 0, [&](Arguments&) {
        called = true;
        return Value();
    })});
    const auto box = loop.Every(Milliseconds(1), [&] {
        if (opened || stranger.calls.empty()) return;
        opened = true;
        const Reference poked = ArgumentIn(stranger.calls[0]);
        stranger.Notify(stranger.NewCall(poked.owner, poked.path, bus::objectInterface, "Retain"));
        stranger.ReturnResult(stranger.calls[0], "s", "");
        NotifyOf(poked, "Poke");
        loop.ServeUntil([&] { return called; });
    });
    Call(host, "Take", mine);
    EXPECT_TRUE(called);
}

TEST_F(WaitTest, BusyCalleeIsTriedAgain) {
    RefuseFirst(2);
    EXPECT_TRUE(Call(host, "Anything") == Value(u"taken"));
    EXPECT_EQ(stranger.CallsOf("Invoke"), 3u);
    EXPECT_TRUE(boxes.opened.empty());
}

TEST_F(WaitTest, BusyBoxGivesUp) {
    settings.busyTimeout = 150;
    RefuseFirst(1000);
    boxes.decide = [] { return true; };
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    ASSERT_EQ(boxes.opened.size(), 1u);
    EXPECT_EQ(boxes.opened[0].title, u"busy");
    EXPECT_EQ(boxes.opened[0].text, u"refused");
    EXPECT_EQ(boxes.nowOpen, 0);
    EXPECT_EQ(stranger.CallsOf("Invoke"), 2u);
}

TEST_F(WaitTest, BusyBoxGoesOnAndTheLimitStartsAnew) {
    settings.busyTimeout = 150;
    RefuseFirst(5);
    boxes.decide = [] { return false; };
    EXPECT_TRUE(Call(host, "Anything") == Value(u"taken"));
    // Refused at 0, 200 (box), 400, 600 (box), 800.
    EXPECT_EQ(boxes.opened.size(), 2u);
}

TEST_F(WaitTest, BusyBoxClosesWhenTheCalleeTakesTheCall) {
    settings.busyTimeout = 0;
    RefuseFirst(2);
    EXPECT_TRUE(Call(host, "Anything") == Value(u"taken"));
    EXPECT_EQ(boxes.opened.size(), 1u);
    EXPECT_EQ(boxes.nowOpen, 0);
}

TEST_F(WaitTest, PendingBoxClosesWhenTheAnswerComes) {
    settings.pendingTimeout = 20;
    const auto answering = loop.Every(Milliseconds(5), [&] {
        if (boxes.nowOpen > 0 && !stranger.calls.empty()) {
            stranger.ReturnResult(stranger.calls.back(), "s", "late");
            stranger.calls.clear();
        }
    });
    EXPECT_TRUE(Call(host, "Anything") == Value(u"late"));
    ASSERT_EQ(boxes.opened.size(), 1u);
    EXPECT_EQ(boxes.opened[0].title, u"pending");
    EXPECT_EQ(boxes.opened[0].text, u"no answer");
    EXPECT_EQ(boxes.nowOpen, 0);
    // An answer of the operator that crossed the callee's changes nothing any more.
    boxes.opened[0].answer(true);
}

TEST_F(WaitTest, PendingBoxComesAgainAfterGoingOn) {
    settings.pendingTimeout = 20;
    boxes.decide = [&] { return boxes.opened.size() == 3; };
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    EXPECT_EQ(boxes.opened.size(), 3u);
    EXPECT_EQ(boxes.nowOpen, 0);
}

TEST_F(WaitTest, LateAnswerIsDroppedAndItsReferencesGoBack) {
    settings.pendingTimeout = 20;
    boxes.decide = [] { return true; };
    std::weak_ptr<Object> argument;
    {
        const ObjectRef given = std::make_shared<ScriptedObject>(
            std::vector<Member>{Method("Name", 0, [](Arguments&) { return Value(u"here"); })});
        argument = given;
        EXPECT_EQ(ErrorOf([&] { Call(host, "Take", given); }), 462);
    }
    // The callee may still use what it borrowed.
    EXPECT_FALSE(argument.expired());
    ASSERT_EQ(stranger.calls.size(), 1u);
    const MessageRef call = stranger.calls[0];
    EXPECT_EQ(Invoke(ArgumentIn(call), "Name").error, "");

    stranger.ReturnResult(call, "(so)", stranger.Name().c_str(), "/Result");
    EXPECT_TRUE(loop.ServeUntil([&] { return stranger.CallsOf("Release") == 1; }));
    EXPECT_STREQ(sd_bus_message_get_path(stranger.calls.back().get()), "/Result");
    EXPECT_TRUE(argument.expired());
}

TEST_F(WaitTest, CreatingGivesUpWith429) {
    settings.pendingTimeout = 20;
    boxes.decide = [] { return true; };
    EXPECT_EQ(ErrorOf([&] { client->CreateObject(u"Test.cStranger"); }), 429);
    // The object that was made all the same goes back.
    const MessageRef answer = stranger.NewReturn(stranger.calls.back());
    sd_bus_message_append(answer.get(), "(so)", stranger.Name().c_str(), "/Made");
    sd_bus_send(stranger.Bus(), answer.get(), nullptr);
    EXPECT_TRUE(loop.ServeUntil([&] { return stranger.CallsOf("Release") == 1; }));
}

TEST_F(WaitTest, InnerAndOuterWaitEndEachWithItsOwnAnswer) {
    // The stranger holds the outer call, calls the client, and answers the inner call behind the outer one.
    std::vector<std::string> events;
    MessageRef outer;
    const auto mine = std::make_shared<ScriptedObject>(std::vector<Member>{Method("Back", 0, [&](Arguments&) {
        const Value inner = Call(host, "Inner");
        events.push_back("inner " + ToUtf8(inner.ToText()));
        return Value();
    })});
    stranger.whenCalled = [&](const MessageRef& call) {
        if (!outer) {
            outer = call;
            NotifyOf(ArgumentIn(call), "Back");
            return;
        }
        stranger.ReturnResult(outer, "s", "one");
        stranger.ReturnResult(call, "s", "two");
    };
    const Value result = Call(host, "Outer", mine);
    events.push_back("outer " + ToUtf8(result.ToText()));
    EXPECT_EQ(events, (std::vector<std::string>{"inner two", "outer one"}));
}

TEST_F(WaitTest, EndPassesThroughAWait) {
    struct End {};
    settings.pendingTimeout = 20;
    const auto timer = loop.After(Milliseconds(0), [] { throw End(); });
    EXPECT_THROW(Call(host, "Anything"), End);
    EXPECT_EQ(loop.Holds(), 0);
    // The wait that was left leaves nothing behind: no box, and nothing that holds others up.
    stranger.whenCalled = [&](const MessageRef& call) { stranger.ReturnResult(call, "s", "next"); };
    settings.pendingTimeout = 60000;
    EXPECT_TRUE(Call(host, "Anything") == Value(u"next"));
    bool limitPassed = false;
    const auto limit = loop.After(Milliseconds(30), [&] { limitPassed = true; });
    EXPECT_TRUE(loop.ServeUntil([&] { return limitPassed; }));
    EXPECT_TRUE(boxes.opened.empty());
}

struct ErrorCase {
    const char* name;
    std::int32_t number;
};

TEST_F(WaitTest, ErrorsOfTheBusBecomeNumbers) {
    const ErrorCase cases[] = {
        {SD_BUS_ERROR_SERVICE_UNKNOWN, 462},
        {SD_BUS_ERROR_NAME_HAS_NO_OWNER, 462},
        {SD_BUS_ERROR_NO_REPLY, 462},
        {SD_BUS_ERROR_DISCONNECTED, 462},
        {SD_BUS_ERROR_TIMEOUT, 462},
        {"org.freedesktop.DBus.Error.Spawn.ExecFailed", 462},
        {SD_BUS_ERROR_UNKNOWN_OBJECT, 462},
        {SD_BUS_ERROR_UNKNOWN_METHOD, 438},
        {SD_BUS_ERROR_UNKNOWN_INTERFACE, 438},
        {SD_BUS_ERROR_INVALID_ARGS, 13},
        {SD_BUS_ERROR_ACCESS_DENIED, 440},
        {"org.example.Failed", 440},
        {"org.velmora.Automation1.Error", 440},
        {"org.velmora.Automation1.Error.Other", 440},
    };
    for (const ErrorCase& one : cases) {
        stranger.whenCalled = [&](const MessageRef& call) { stranger.ReturnError(call, one.name, "why"); };
        try {
            Call(host, "Anything");
            ADD_FAILURE() << one.name;
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), one.number) << one.name;
            EXPECT_EQ(error.Description(), u"why") << one.name;
        }
    }
}

TEST_F(WaitTest, RuntimeErrorComesWithNumberAndDescription) {
    const ObjectRef object = Created(
        {Method("Fail", 0, [](Arguments&) -> Value { throw RuntimeError(-2147221504, u"b\u00F6se\uFFFF"); }),
         Method("Break", 0, [](Arguments&) -> Value { throw std::runtime_error("broken"); })});
    try {
        Call(object, "Fail");
        ADD_FAILURE();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), -2147221504);
        EXPECT_EQ(error.Description(), u"b\u00F6se\uFFFD");
    }
    EXPECT_EQ(ErrorOf([&] { Call(object, "Break"); }), 440);
}

TEST_F(WaitTest, AnswersOfAnotherShape) {
    stranger.whenCalled = [&](const MessageRef& call) { stranger.ReturnNothing(call); };
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 13);
    stranger.whenCalled = [&](const MessageRef& call) { stranger.ReturnResult(call, "as", 0); };
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 13);
    // A list that is shorter leaves the rest as it was.
    stranger.whenCalled = [&](const MessageRef& call) { stranger.ReturnResult(call, "s", "short"); };
    Text text = u"as it was";
    EXPECT_TRUE(Call(host, "Anything", ByRef(text)) == Value(u"short"));
    EXPECT_EQ(text, u"as it was");
}

TEST_F(WaitTest, CalleeThatLeavesEndsTheWait) {
    stranger.whenCalled = [&](const MessageRef&) {};
    const auto leaving = loop.Every(Milliseconds(1), [&] {
        if (!stranger.calls.empty()) stranger.Leave();
    });
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
}

}  // namespace
}  // namespace platform::test
