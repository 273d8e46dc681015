// A server of this system and a peer that writes its messages by hand.
#pragma once

#include "RawPeer.h"
#include "ScriptedObject.h"
#include "platform/automation/Names.h"

namespace platform::test {

// Where an object is, as a stranger learns it.
struct Reference {
    std::string owner, path;
};

inline Reference ReferenceIn(const Answer& answer) {
    const char *owner = "", *path = "";
    sd_bus_message_read(answer.message.get(), "(so)", &owner, &path);
    return {owner, path};
}

// The one argument, an object, of a late-bound call.
inline Reference ArgumentIn(const MessageRef& call) {
    const char *owner = "", *path = "";
    sd_bus_message_rewind(call.get(), true);
    sd_bus_message_skip(call.get(), "sq");
    sd_bus_message_enter_container(call.get(), 'a', "v");
    sd_bus_message_read(call.get(), "v", "(so)", &owner, &path);
    return {owner, path};
}

class StrangerTest : public BusTest {
  protected:
    Reference CreateForStranger(const std::shared_ptr<ScriptedObject>& object) {
        create = [object] { return object; };
        const Answer answer =
            stranger.Call("Test.cScripted", bus::factoryPath, bus::factoryInterface, "CreateInstance", "");
        create = nullptr;
        EXPECT_EQ(answer.error, "");
        return ReferenceIn(answer);
    }
    Reference CreateForStranger(std::vector<Member> members) {
        return CreateForStranger(std::make_shared<ScriptedObject>(std::move(members)));
    }

    // A late-bound call without arguments, or of another method of the same interface.
    Answer Invoke(const Reference& object, const char* member) {
        return stranger.Call(object.owner, object.path, bus::objectInterface, "Invoke", "sqav", member, 1, 0);
    }
    Answer Plain(const Reference& object, const char* method) {
        return stranger.Call(object.owner, object.path, bus::objectInterface, method, "");
    }

    void NotifyOf(const Reference& object, const char* member) {
        const MessageRef call = stranger.NewCall(object.owner, object.path, bus::objectInterface, "Invoke");
        sd_bus_message_append(call.get(), "sqav", member, 1, 0);
        stranger.Notify(call);
    }

    // The client calls the stranger: hands it an object of the stranger's at "/Host".
    ObjectRef StrangersObject() {
        const std::string name = stranger.Name();
        ObjectRef host;
        const auto answering = stranger.whenCalled;
        sd_bus_request_name(stranger.Bus(), "Test.cStranger", 0);
        stranger.whenCalled = [this, name](const MessageRef& call) {
            const MessageRef answer = stranger.NewReturn(call);
            sd_bus_message_append(answer.get(), "(so)", name.c_str(), "/Host");
            sd_bus_send(stranger.Bus(), answer.get(), nullptr);
        };
        host = client->CreateObject(u"Test.cStranger");
        stranger.whenCalled = answering;
        stranger.calls.clear();
        return host;
    }

    RawPeer stranger{loop};
};

}  // namespace platform::test
