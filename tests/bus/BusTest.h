// A server and a client of this system, and a peer that writes its messages by hand, all on the thread of
// the test.
#pragma once

#include <gtest/gtest.h>

#include "../unit/ErrorOf.h"
#include "../unit/FakeWaits.h"
#include "PrivateBus.h"
#include "RawPeer.h"
#include "ScriptedObject.h"
#include "platform/automation/Patience.h"
#include "platform/automation/dbus/BusAutomation.h"

namespace platform::test {

inline const Reference factory{"Test.cScripted", bus::factoryPath};

// The object in an answer, in the result of a late-bound call, or the one argument of such a call.
inline Reference ReferenceIn(const MessageRef& message) {
    const char *owner = "", *path = "";
    sd_bus_message_rewind(message.get(), true);
    if (sd_bus_message_has_signature(message.get(), "sqav")) {
        sd_bus_message_skip(message.get(), "sq");
        sd_bus_message_enter_container(message.get(), 'a', "v");
    }
    if (sd_bus_message_read(message.get(), "v", "(so)", &owner, &path) <= 0)
        sd_bus_message_read(message.get(), "(so)", &owner, &path);
    return {owner, path};
}

class BusTest : public testing::Test {
  protected:
    BusTest() {
        server->ServeClass("Test.cScripted", [this] { return create(); });
        sd_bus_request_name(stranger.Bus(), "Test.cStranger", 0);
        stranger.whenCalled = [this](const MessageRef& call) {
            stranger.Return(call, "(so)", stranger.Name(), "/Host");
        };
        host = client->CreateObject(u"Test.cStranger");
        stranger.whenCalled = nullptr;
        stranger.calls.clear();
    }
    std::unique_ptr<Automation> Connect() { return ConnectToSessionBus(loop, boxes, settings); }

    // An object that the server makes, for the client or for the stranger.
    ObjectRef Created(ObjectRef object) {
        create = [object = std::move(object)]() mutable { return std::move(object); };
        return client->CreateObject(u"Test.cScripted");
    }
    ObjectRef Created(std::vector<Member> members) { return Created(Scripted(std::move(members))); }
    Reference CreateForStranger(ObjectRef object) {
        create = [object = std::move(object)]() mutable { return std::move(object); };
        return ReferenceIn(stranger.Call(factory, bus::factoryInterface, "CreateInstance").message);
    }
    Reference CreateForStranger(std::vector<Member> members) {
        return CreateForStranger(ObjectRef(Scripted(std::move(members))));
    }

    // The stranger calls Retain or Release, or a member without wanting an answer.
    Answer Plain(const Reference& object, const char* method) {
        return stranger.Call(object, bus::objectInterface, method);
    }
    void Poke(const Reference& object, const char* member = "Poke") {
        stranger.Notify(stranger.NewInvoke(object, member));
    }

    // The stranger answers all late-bound calls with a text.
    void AnswerAll(const char* text) {
        stranger.whenCalled = [this, text](const MessageRef& call) {
            stranger.ReturnResult(call, "s", text);
        };
    }

    PrivateBus bus;
    PollLoop loop;
    fakes::FakeWaits boxes;
    WaitSettings settings;
    std::function<ObjectRef()> create;
    std::unique_ptr<Automation> server = Connect(), client = Connect();
    RawPeer stranger{loop};
    ObjectRef host;  // of the stranger's, held by the client
};

}  // namespace platform::test
