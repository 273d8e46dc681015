// The connection itself: creation, errors, loss.
#include "BusTest.h"

namespace platform::test {
namespace {

using ConnectionTest = BusTest;

TEST_F(ConnectionTest, CreationFailsWith429AndTheCause) {
    const auto expect = [&](TextView name, const std::string& cause) {
        const std::string fault = FaultOf([&] { client->CreateObject(name); });
        EXPECT_TRUE(fault.starts_with("429 ") && fault.ends_with(cause)) << fault;
    };
    create = []() -> ObjectRef { throw RuntimeError(53, u"file missing"); };
    expect(u"Test.cScripted", "file missing");
    create = [] { return nullptr; };
    expect(u"Test.cScripted", ": Test.cScripted");
    expect(u"Test.cNobody", "was not provided by any .service files");
    expect(u"plain", "not the name of a class");
    stranger.whenCalled = [](const MessageRef& call) {
        sd_bus_reply_method_return(call.get(), "o", "/Host");
    };
    expect(u"Test.cStranger", "the answer to a call has another signature");
    stranger.whenCalled = [](const MessageRef& call) {
        sd_bus_reply_method_return(call.get(), "(so)", "", "/");
    };
    expect(u"Test.cStranger", "the factory gave nothing");
    EXPECT_EQ(ErrorOf([&] { client->ServeClass("Test.cScripted", create); }), 429) << "the name is taken";
}

TEST_F(ConnectionTest, WhatAnErrorMeansToTheCaller) {
    const std::string own = "org.freedesktop.DBus.Error.";
    const Table<std::string, std::int32_t, std::int32_t> cases = {{own + "NoReply", 0, 462},
                                                                  {own + "Spawn.ChildExited", 0, 462},
                                                                  {own + "UnknownMethod", 7, 438},
                                                                  {own + "AccessDenied", 0, 440},
                                                                  {errorName, 7, 7},
                                                                  {errorName, 0, 440},
                                                                  {"org.example.NoReply", 0, 440}};
    for (const auto& [name, number, meant] : cases) {
        stranger.whenCalled = [&name = name, &number = number](const MessageRef& call) {
            sd_bus_message* error = nullptr;
            sd_bus_message_new_method_errorf(call.get(), &error, name.c_str(), "why");
            const MessageRef owned = Adopted(error);
            if (number != 0) sd_bus_message_append(error, "i", number);
            sd_bus_message_send(error);
        };
        EXPECT_EQ(FaultOf([&] { Call(host, "Anything"); }), std::to_string(meant) + " why") << name;
    }
    // A letter that can't travel is replaced.
    const ObjectRef raising =
        Created(Scripted([](Arguments&) -> Value { throw RuntimeError(9, u"out of r\u00E4nge\uFFFF"); }));
    EXPECT_EQ(FaultOf([&] { Call(raising, "Anything"); }), "9 out of r\u00E4nge\uFFFD");
    stranger.whenCalled = [](const MessageRef& call) {
        sd_bus_reply_method_return(call.get(), "v", "s", "");
    };
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 13) << "an answer of another signature";
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
    stranger.whenCalled = [&](const MessageRef& call) {
        if (!GetParam()) return bus.Stop();
        stranger.Refuse(call);
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

TEST_F(ConnectionTest, ACallThatArrivesWhileANameIsAskedForIsServed) {
    // The library takes it in along with the daemon's answer, and the descriptor doesn't show it.
    const Reference object =
        CreateForStranger(Watched([&](Arguments&) { return events += "called ", Value(); }));
    stranger.Poke(object);
    stranger.RoundTrip();
    server->ServeClass("Test.cLater", create);
    EXPECT_EQ(events, "");
    ExpectEvents("called ");
}

}  // namespace
}  // namespace platform::test
