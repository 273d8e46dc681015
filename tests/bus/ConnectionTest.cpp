// The connection itself: creation, flushing, loss.
#include "BusTest.h"

namespace platform::test {
namespace {

using ConnectionTest = BusTest;

const auto nothing = [] { return nullptr; };

TEST_F(ConnectionTest, CreationFailsWith429AndTheCause) {
    create = []() -> ObjectRef { throw RuntimeError(53, u"file missing"); };
    const auto failure = [&](TextView name) { return Failure([&] { client->CreateObject(name); }); };
    EXPECT_EQ(failure(u"Test.cScripted"), "429 Test.cScripted: file missing");
    create = nothing;
    const std::pair<TextView, std::string> cases[] = {
        {u"Test.cScripted",
         "429 Test.cScripted: The automation server can't create the object: Test.cScripted"},
        {u"Test.cNobody", "429 Test.cNobody: The name Test.cNobody was not provided by any .service files"},
        {u"plain", "429 plain: not the name of a class"},
        {u"", "429 : not the name of a class"},
        {{u"Test.c\0x", 8}, std::string("429 Test.c\0x: not the name of a class", 37)}};
    for (const auto& [name, cause] : cases) EXPECT_EQ(failure(name), cause);
    stranger.whenCalled = [&](const MessageRef& call) { stranger.Return(call, "o", "/Host"); };
    EXPECT_EQ(failure(u"Test.cStranger"),
              "429 Test.cStranger: Type mismatch: the answer to a call has another signature");
    stranger.whenCalled = [&](const MessageRef& call) { stranger.Return(call, "(so)", "", "/"); };
    EXPECT_EQ(failure(u"Test.cStranger"), "429 Test.cStranger: the factory gave nothing");
    EXPECT_EQ(Failure([&] { server->ServeClass("plain", nothing); }), "429 plain: no valid name");
    EXPECT_EQ(Failure([&] { client->ServeClass("Test.cScripted", nothing); }),
              "429 Test.cScripted: File exists");
}

TEST_F(ConnectionTest, CreationWithoutAnswerMakesNothing) {
    bool made = false;
    create = [&] { return made = true, nullptr; };
    stranger.Notify(stranger.NewCall(factory, factoryInterface, "CreateInstance"));
    // Calls are served in their order: what follows is answered behind it.
    stranger.Call(factory, "org.freedesktop.DBus.Introspectable", "Introspect");
    EXPECT_FALSE(made);
}

TEST_F(ConnectionTest, AClassIsFoundByItsNameAndByTheProcessWhereItIsTheOnlyOne) {
    const Reference byProcess{":1.0", factoryPath}, other{"Test.cOther", factoryPath};
    create = [] { return Scripted(); };
    EXPECT_EQ(stranger.Call(byProcess, factoryInterface, "CreateInstance"), "(':1.0' /Object/1)");
    server->ServeClass("Test.cOther", [] { return Scripted(); });
    EXPECT_EQ(CreateInstance(), "(':1.0' /Object/2)");
    EXPECT_EQ(stranger.Call(other, factoryInterface, "CreateInstance"), "(':1.0' /Object/3)");
    EXPECT_EQ(stranger.Call(byProcess, factoryInterface, "CreateInstance"), "Error i429 :1.0");
}

TEST_F(ConnectionTest, WhatAnErrorMeansToTheCaller) {
    const std::string own = "org.freedesktop.DBus.Error.";
    const std::pair<std::string, std::string> withoutText[] = {{own + "ServiceUnknown", "462"},
                                                               {own + "NameHasNoOwner", "462"},
                                                               {own + "NoServer", "462"},
                                                               {own + "NoReply", "462"},
                                                               {own + "Timeout", "462"},
                                                               {own + "TimedOut", "462"},
                                                               {own + "Disconnected", "462"},
                                                               {own + "UnknownObject", "462"},
                                                               {own + "Spawn.ChildExited", "462"},
                                                               {own + "UnknownMethod", "438"},
                                                               {own + "UnknownInterface", "438"},
                                                               {own + "UnknownProperty", "438"},
                                                               {own + "InvalidArgs", "13"},
                                                               {own + "InvalidSignature", "13"},
                                                               {own + "AccessDenied", "440"},
                                                               {"org.example.DBus.Error.NoReply", "440"},
                                                               {errorName, "440"}};
    const auto failure = [&](const std::string& name, const char* text, std::int32_t number) {
        stranger.whenCalled = [=, this](const MessageRef& call) {
            sd_bus_message* error = nullptr;
            sd_bus_message_new_method_errorf(call.get(), &error, name.c_str(), "%s", text);
            const MessageRef owned = Adopted(error);
            if (number != 0) sd_bus_message_append(error, "i", number);
            sd_bus_send(stranger.Bus(), error, nullptr);
        };
        return Failure([&] { Call(host, "Anything"); });
    };
    for (const auto& [name, number] : withoutText) EXPECT_EQ(failure(name, "", 0), number + ' ' + name);
    EXPECT_EQ(failure(errorName, "why", 7), "7 why");
    EXPECT_EQ(failure(errorName, "why", 0), "440 why");
    EXPECT_EQ(failure(own + "NoReply", "why", 7), "462 why");
    stranger.whenCalled = [&](const MessageRef& call) { stranger.Return(call, "v", "s", ""); };
    EXPECT_EQ(Failure([&] { Call(host, "Anything"); }), "13 the answer to a call has another signature");
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
    stranger.whenCalled = [&](const MessageRef& call) { stranger.Refuse(call); };
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
    const MessageRef& refusal = stranger.Send(stranger.NewCall(factory, factoryInterface, "CreateInstance"));
    bus.Thaw();
    stranger.RoundTrip();
    server->Leave();
    EXPECT_TRUE(loop.ServeUntil([&] { return answer && refusal; }));
    EXPECT_TRUE(asked);
    EXPECT_TRUE(Told(refusal).starts_with("Busy "));
    // From now on it is the bus's to find somebody who serves the class.
    EXPECT_TRUE(CreateInstance().starts_with("ServiceUnknown"));
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
