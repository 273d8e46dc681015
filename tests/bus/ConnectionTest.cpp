// The connection itself: names, creation, flushing, loss.
#include "StrangerTest.h"

namespace platform::test {
namespace {

using ConnectionTest = StrangerTest;

TEST_F(ConnectionTest, WithoutABusThereIsNoConnection) {
    const std::string address = getenv("DBUS_SESSION_BUS_ADDRESS");
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/socket", 1);
    EXPECT_EQ(ErrorOf([&] { Connect(); }), 462);
    setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
}

TEST_F(ConnectionTest, NameThatIsTaken) {
    EXPECT_EQ(ErrorOf([&] { client->ServeClass("Test.cScripted", [] { return nullptr; }); }), 429);
    EXPECT_EQ(ErrorOf([&] { server->ServeClass("Test.cScripted", [] { return nullptr; }); }), 429);
    EXPECT_EQ(ErrorOf([&] { server->ServeClass("no name", [] { return nullptr; }); }), 429);
}

TEST_F(ConnectionTest, CreationFailsWith429AndTheCause) {
    create = []() -> ObjectRef { throw RuntimeError(53, u"file missing"); };
    try {
        client->CreateObject(u"Test.cScripted");
        ADD_FAILURE();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), 429);
        EXPECT_NE(error.Description().find(u"file missing"), Text::npos);
    }
    create = [] { return nullptr; };
    const TextView names[] = {u"Test.cScripted",
                              u"Test.cNobody",
                              u"plain",
                              u"",
                              u"Bad name",
                              u"7.c",
                              TextView(u"Test.c\0x", 8),
                              u"SwitchDeskProj-\u00FC.cPBXOle"};
    for (const TextView name : names)
        EXPECT_EQ(ErrorOf([&] { client->CreateObject(name); }), 429) << ToUtf8(name);
}

TEST_F(ConnectionTest, SeveralClassesOfOneProcess) {
    const auto named = [](const char16_t* name) {
        return [name] {
            return std::make_shared<ScriptedObject>(
                std::vector<Member>{Method("Name", 0, [name](Arguments&) { return Value(name); })});
        };
    };
    create = named(u"scripted");
    // With one class alone, the connection's own name will do.
    const Reference reference = CreateForStranger(std::vector<Member>{});
    create = named(u"scripted");
    EXPECT_EQ(
        stranger.Call(reference.owner, bus::factoryPath, bus::factoryInterface, "CreateInstance", "").error,
        "");
    server->ServeClass("Test.cOther", named(u"other"));
    EXPECT_TRUE(Call(client->CreateObject(u"Test.cOther"), "Name") == Value(u"other"));
    EXPECT_TRUE(Call(client->CreateObject(u"Test.cScripted"), "Name") == Value(u"scripted"));
    EXPECT_EQ(
        stranger.Call(reference.owner, bus::factoryPath, bus::factoryInterface, "CreateInstance", "").number,
        429);
}

TEST_F(ConnectionTest, CreationWithoutAnswerMakesNothing) {
    bool made = false;
    create = [&]() -> ObjectRef {
        made = true;
        return nullptr;
    };
    stranger.Notify(
        stranger.NewCall("Test.cScripted", bus::factoryPath, bus::factoryInterface, "CreateInstance"));
    // Calls are served in their order: what follows is answered behind it.
    create = nullptr;
    stranger.Call("Test.cScripted", "/", "org.freedesktop.DBus.Introspectable", "Introspect", "");
    EXPECT_FALSE(made);
}

TEST_F(ConnectionTest, CreatorMayCallOut) {
    ObjectRef host = StrangersObject();
    stranger.whenCalled = [&](const MessageRef& call) { stranger.ReturnResult(call, "s", "asked"); };
    Text told;
    const auto second = Connect();
    second->ServeClass("Test.cAsking", [&]() -> ObjectRef {
        told = Call(host, "Ask").ToText();
        return std::make_shared<ScriptedObject>(std::vector<Member>{});
    });
    EXPECT_NE(server->CreateObject(u"Test.cAsking"), nullptr);
    EXPECT_EQ(told, u"asked");
}

TEST_F(ConnectionTest, LossEndsWaitsAndGivesBackReferences) {
    const ObjectRef host = StrangersObject();
    const auto object = std::make_shared<ScriptedObject>(std::vector<Member>{});
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
    EXPECT_EQ(ErrorOf([&] { client->ServeClass("Test.cLater", [] { return nullptr; }); }), 429);
    client->Flush();
    loop.ServeReady();
}

TEST_F(ConnectionTest, LossEndsABusyRetry) {
    const ObjectRef host = StrangersObject();
    stranger.whenCalled = [&](const MessageRef& call) {
        stranger.ReturnError(call, bus::busyErrorName, "later");
    };
    const auto stopping = loop.Every(Milliseconds(1), [&] {
        if (!stranger.calls.empty()) bus.Stop();
    });
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
}

TEST_F(ConnectionTest, FlushSendsWhatWaitsAndKeepsCallsForLater) {
    // While the daemon stands still, so much is sent that it can't all leave.
    bool called = false;
    const Reference reference =
        CreateForStranger({Method("Big", 0, [](Arguments&) { return Value(Text(512 << 10, u'x')); }),
                           Method("Poke", 0, [&](Arguments&) {
                               called = true;
                               return Value();
                           })});
    const MessageRef big = stranger.NewCall(reference.owner, reference.path, bus::objectInterface, "Invoke");
    sd_bus_message_append(big.get(), "sqav", "Big", 1, 0);
    const auto answer = stranger.Send(big);
    stranger.RoundTrip();
    bus.Narrow();
    bus.Freeze();
    loop.ServeReady();
    NotifyOf(reference, "Poke");
    bus.Thaw();
    server->Flush();
    EXPECT_FALSE(called);
    EXPECT_TRUE(loop.ServeUntil([&] { return called && answer->message; }));
}

TEST_F(ConnectionTest, FlushDoesNotHangOnADaemonThatStandsStill) {
    const ObjectRef host = StrangersObject();
    bus.Narrow();
    bus.Freeze();
    const auto timer = loop.After(Milliseconds(0), [&] {
        client->Flush();
        bus.Thaw();
    });
    stranger.whenCalled = [&](const MessageRef& call) { stranger.ReturnResult(call, "s", "arrived"); };
    EXPECT_TRUE(Call(host, "Take", Text(512 << 10, u'x')) == Value(u"arrived"));
}

TEST_F(ConnectionTest, CallThatArrivesWhileANameIsAskedFor) {
    // The library takes it in along with the daemon's answer, and the descriptor tells nothing of it.
    bool called = false;
    const Reference reference = CreateForStranger({Method("Poke", 0, [&](Arguments&) {
        called = true;
        return Value();
    })});
    NotifyOf(reference, "Poke");
    stranger.RoundTrip();
    server->ServeClass("Test.cLater", [] { return nullptr; });
    EXPECT_FALSE(called);
    EXPECT_TRUE(loop.ServeUntil([&] { return called; }));
}

TEST_F(ConnectionTest, PingIsServedOnEveryPath) {
    const Reference reference = CreateForStranger(std::vector<Member>{});
    for (const char* path : {"/", reference.path.c_str(), "/nowhere"})
        EXPECT_EQ(stranger.Call(reference.owner, path, "org.freedesktop.DBus.Peer", "Ping", "").error, "");
}

TEST_F(ConnectionTest, ManyCallsLeaveTimersTheirTurn) {
    const Reference reference = CreateForStranger({Method("Poke", 0, [](Arguments&) { return Value(); })});
    for (int i = 0; i < 1000; ++i) NotifyOf(reference, "Poke");
    bool timerRan = false;
    const auto timer = loop.After(Milliseconds(0), [&] { timerRan = true; });
    EXPECT_EQ(Invoke(reference, "Poke").error, "");
    EXPECT_TRUE(timerRan);
}

}  // namespace
}  // namespace platform::test
