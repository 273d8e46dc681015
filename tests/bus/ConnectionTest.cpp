// The connection itself: creation, flushing, loss.
#include "BusTest.h"

namespace platform::test {
namespace {

using ConnectionTest = BusTest;

const auto nothing = [] { return nullptr; };

TEST_F(ConnectionTest, CreationFailsWith429AndTheCause) {
    create = []() -> ObjectRef { throw RuntimeError(53, u"file missing"); };
    const RuntimeError error = Raised([&] { client->CreateObject(u"Test.cScripted"); });
    EXPECT_EQ(error.Number(), 429);
    EXPECT_NE(error.Description().find(u"file missing"), Text::npos);
    create = nothing;
    for (const TextView name : {TextView(u"Test.cScripted"), TextView(u"Test.cNobody"), TextView(u"plain"),
                                TextView(u""), TextView(u"Test.c\0x", 8)})
        EXPECT_EQ(ErrorOf([&] { client->CreateObject(name); }), 429) << ToUtf8(name);
}

TEST_F(ConnectionTest, CreationWithoutAnswerMakesNothing) {
    bool made = false;
    create = [&] { return made = true, nullptr; };
    stranger.Notify(stranger.NewCall(factory, bus::factoryInterface, "CreateInstance"));
    // Calls are served in their order: what follows is answered behind it.
    stranger.Call(factory, "org.freedesktop.DBus.Introspectable", "Introspect");
    EXPECT_FALSE(made);
}

TEST_F(ConnectionTest, LossEndsWaitsAndGivesBackReferences) {
    const auto object = Scripted();
    int gone = 0, ownerGone = 0;
    object->whenLastClientGone = [&] { ++gone; };
    std::vector<bool> told;
    server->WhenInUse([&](bool inUse) { told.push_back(inUse); });
    const ObjectRef held = Created(object);
    const auto watch = host->WhenOwnerGone([&] { ++ownerGone; });
    stranger.whenCalled = [&](const MessageRef&) { bus.Stop(); };
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    EXPECT_TRUE(loop.ServeUntil([&] { return gone == 1 && ownerGone == 1 && told.size() == 2; }));
    EXPECT_EQ(object.use_count(), 1);
    // Everything that comes later fails at once.
    EXPECT_EQ(ErrorOf([&] { Call(held, "Anything"); }), 462);
    EXPECT_EQ(ErrorOf([&] { client->CreateObject(u"Test.cScripted"); }), 429);
    EXPECT_EQ(ErrorOf([&] { client->ServeClass("Test.cLater", nothing); }), 429);
    client->Leave();
    loop.ServeOnce();
}

TEST_F(ConnectionTest, LossEndsABusyRetry) {
    stranger.whenCalled = [&](const MessageRef& call) {
        sd_bus_reply_method_errorf(call.get(), bus::busyErrorName, "later");
    };
    const auto stopping = loop.Every(Milliseconds(1), [&] {
        if (!stranger.calls.empty()) bus.Stop();
    });
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
}

TEST_F(ConnectionTest, LeavingSendsWhatWaitsAndRefusesWhatCame) {
    // While the daemon stands still, so much is sent that it can't all leave.
    bool asked = false;
    const Reference object = CreateForStranger(
        {Method("Big", 0, [&](Arguments&) { return asked = true, Text(512 << 10, u'x'); })});
    const MessageRef& answer = stranger.Send(stranger.NewInvoke(object, "Big"));
    stranger.RoundTrip();
    bus.Freeze();
    loop.ServeUntil([&] { return asked; });
    create = [&] { return asked = false, nullptr; };
    const MessageRef& refusal =
        stranger.Send(stranger.NewCall(factory, bus::factoryInterface, "CreateInstance"));
    bus.Thaw();
    stranger.RoundTrip();
    server->Leave();
    EXPECT_TRUE(loop.ServeUntil([&] { return answer && refusal; }));
    EXPECT_TRUE(asked);
    EXPECT_STREQ(sd_bus_message_get_error(refusal.get())->name, bus::busyErrorName);
    // From now on it is the bus's to find somebody who serves the class.
    EXPECT_EQ(stranger.Call(factory, bus::factoryInterface, "CreateInstance").error,
              "org.freedesktop.DBus.Error.ServiceUnknown");
}

TEST_F(ConnectionTest, LeavingDoesNotHangOnADaemonThatStandsStill) {
    bus.Freeze();
    const auto timer = loop.After(Milliseconds(0), [&] {
        client->Leave();
        server->Leave();
        bus.Thaw();
    });
    AnswerAll("arrived");
    EXPECT_EQ(Call(host, "Take", Text(512 << 10, u'x')), Value(u"arrived"));
}

TEST_F(ConnectionTest, ACallThatArrivesWhileANameIsAskedForIsServed) {
    // The library takes it in along with the daemon's answer, and the descriptor tells nothing of it.
    bool called = false;
    Poke(CreateForStranger({Method("Poke", 0, [&](Arguments&) { called = true; })}));
    stranger.RoundTrip();
    server->ServeClass("Test.cLater", nothing);
    EXPECT_FALSE(called);
    EXPECT_TRUE(loop.ServeUntil([&] { return called; }));
}

}  // namespace
}  // namespace platform::test
