// The connection itself: creation, flushing, loss.
#include "BusTest.h"

namespace platform::test {
namespace {

using ConnectionTest = BusTest;

const auto nothing = [] { return nullptr; };

TEST_F(ConnectionTest, CreationFailsWith429AndTheCause) {
    const auto expect = [&](TextView name, const std::string& cause) {
        EXPECT_EQ(Failure([&] { client->CreateObject(name); }), "429 " + ToUtf8(name) + ": " + cause);
    };
    create = []() -> ObjectRef { throw RuntimeError(53, u"file missing"); };
    expect(u"Test.cScripted", "file missing");
    create = nothing;
    expect(u"Test.cScripted", "The automation server can't create the object: Test.cScripted");
    expect(u"Test.cNobody", "The name Test.cNobody was not provided by any .service files");
    expect(u"plain", "not the name of a class");
    expect({u"Test.c\0x", 8}, "not the name of a class");
    stranger.whenCalled = [&](const MessageRef& call) { stranger.Return(call, "o", "/Host"); };
    expect(u"Test.cStranger", "Type mismatch: the reply to a call has another signature");
    stranger.whenCalled = [&](const MessageRef& call) { stranger.Return(call, "(so)", "", "/"); };
    expect(u"Test.cStranger", "the factory gave nothing");
    EXPECT_EQ(Failure([&] { server->ServeClass("plain", nothing); }), "429 plain: no valid name");
    EXPECT_EQ(Failure([&] { client->ServeClass("Test.cScripted", nothing); }),
              "429 Test.cScripted: File exists");
}

TEST_F(ConnectionTest, AClassIsFoundByItsNameAndByTheProcessWhereItIsTheOnlyOne) {
    const auto createAt = [&](const char* name) {
        return stranger.Call(Reference{name, factoryPath}, factoryInterface, "CreateInstance");
    };
    create = [] { return Scripted(); };
    // Without an answer nobody would hold the object, and none is made.
    stranger.Notify(factory, factoryInterface, "CreateInstance");
    EXPECT_EQ(createAt(":1.0"), "(':1.0' /Object/1)");
    server->ServeClass("Test.cOther", [] { return Scripted(); });
    EXPECT_EQ(createAt("Test.cOther"), "(':1.0' /Object/2)");
    EXPECT_EQ(createAt(":1.0"), "Error i429 :1.0");
}

TEST_F(ConnectionTest, WhatAnErrorMeansToTheCaller) {
    const std::string own = "org.freedesktop.DBus.Error.", foreign = "org.example.DBus.Error.NoReply";
    const Table<std::string, const char*, std::int32_t, std::string> cases = {
        {own + "NoReply", "", 0, "462 " + own + "NoReply"},
        {own + "Spawn.ChildExited", "why", 0, "462 why"},
        {own + "UnknownMethod", "why", 7, "438 why"},
        {own + "InvalidArgs", "why", 0, "13 why"},
        {own + "AccessDenied", "why", 0, "440 why"},
        {foreign, "", 0, "440 " + foreign},
        {errorName, "why", 7, "7 why"},
        {errorName, "why", 0, "440 why"}};
    for (const auto& [name, text, number, failure] : cases) {
        stranger.whenCalled = [&, &name = name, &text = text, &number = number](const MessageRef& call) {
            sd_bus_message* error = nullptr;
            sd_bus_message_new_method_errorf(call.get(), &error, name.c_str(), "%s", text);
            const MessageRef owned = Adopted(error);
            if (number != 0) sd_bus_message_append(error, "i", number);
            sd_bus_send(stranger.Bus(), error, nullptr);
        };
        EXPECT_EQ(Failure([&] { Call(host, "Anything"); }), failure);
    }
    stranger.whenCalled = [&](const MessageRef& call) { stranger.Return(call, "v", "s", ""); };
    EXPECT_EQ(Failure([&] { Call(host, "Anything"); }), "13 the reply to a call has another signature");
}

// In a call, and between two attempts.
struct LossTest : BusTest, testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(Twice, LossTest, testing::Bool());

TEST_P(LossTest, EndsWaitsAndGivesBackReferences) {
    server->WhenInUse([&](bool inUse) { Note(inUse ? "used" : "unused"); });
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
    EXPECT_EQ(ErrorOf([&] { client->ServeClass("Test.cLater", nothing); }), 429);
    client->Leave();
    loop.ServeOnce();
}

TEST_F(ConnectionTest, ACallThatArrivesWhileANameIsAskedForIsServed) {
    // The library takes it in along with the daemon's answer, and the descriptor doesn't show it.
    Poke(CreateForStranger(Scripted({Method("Poke", 0, [&](Arguments&) { Note("called"); })})));
    stranger.RoundTrip();
    server->ServeClass("Test.cLater", nothing);
    EXPECT_EQ(events, "");
    ExpectEvents("called ");
}

}  // namespace
}  // namespace platform::test
