// A server and a client of this system, and a stranger, all on the thread of the test. Their names on the bus
// are :1.0, :1.1 and :1.2.
#pragma once

#include <gtest/gtest.h>

#include "Stranger.h"
#include "harness/Cases.h"
#include "platform/automation/Patience.h"
#include "platform/automation/dbus/BusAutomation.h"
#include "platform/headless/Desktop.h"

namespace platform::test {

inline const Reference factory{"Test.cScripted", factoryPath};

// An object whose members a test writes down where it needs them.
struct ScriptedObject : Object {
    explicit ScriptedObject(ClassDescription its) : description(std::move(its)) {}
    ~ScriptedObject() override { told("freed"); }
    const ClassDescription& Class() const override { return description; }
    void LastClientLeaves() override { told("leaves"); }
    void LastClientGone() override { told("gone"); }

    ClassDescription description;
    std::function<void(std::string_view)> told = [](std::string_view) {};
};

inline std::shared_ptr<ScriptedObject> Scripted(std::vector<Member> members = {}) {
    return std::make_shared<ScriptedObject>(ClassDescription{"Scripted", std::move(members)});
}

// A method with at most so many arguments of any kind; `call` takes those that came and gives a result or
// nothing.
template <class Function>
Member Method(std::string_view name, std::size_t arguments, Function call) {
    return {name, InvokeKind::Method,
            std::vector<Parameter>(arguments, {"Argument", ValueType::Variant, true}), ValueType::Variant,
            [call](Object&, const Member&, Arguments& given) {
                if constexpr (std::is_void_v<std::invoke_result_t<Function, Arguments&>>)
                    return call(given), Value();
                else
                    return Value(call(given));
            }};
}

inline Member Echo() {
    return Method("Echo", 1, [](Arguments& a) { return a[0]; });
}

// Number and detail of what a call raises, or nothing.
template <class Act>
std::string Failure(Act act) {
    const RuntimeError error = Raised(act);
    return error.Number() == 0 ? ""
                               : std::to_string(error.Number()) + ' ' + Detail(ToUtf8(error.Description()));
}

class BusTest : public testing::Test {
  protected:
    BusTest() {
        server->ServeClass("Test.cScripted", [this] { return create(); });
        sd_bus_request_name(stranger.Bus(), "Test.cStranger", 0);
        stranger.whenCalled = [this](const MessageRef& call) {
            stranger.Return(call, "(so)", ":1.2", "/Host");
        };
        host = client->CreateObject(u"Test.cStranger");
        stranger.whenCalled = nullptr;
        EXPECT_EQ(stranger.Heard(), "/Factory CreateInstance");
    }
    std::unique_ptr<Automation> Connect() { return ConnectToSessionBus(loop, boxes, settings); }

    // An object that the server makes, for the client or for the stranger.
    ObjectRef Created(ObjectRef object) {
        created = std::move(object);
        return client->CreateObject(u"Test.cScripted");
    }
    Reference CreateForStranger(ObjectRef object) {
        created = std::move(object);
        return ReferenceIn(CreateInstance());
    }
    std::string CreateInstance() { return stranger.Call(factory, factoryInterface, "CreateInstance"); }

    // The stranger calls Retain or Release, or a member without wanting an answer.
    std::string Plain(const Reference& object, const char* method) {
        return stranger.Call(object, objectInterface, method);
    }
    void Poke(const Reference& object) {
        stranger.Notify(object, objectInterface, "Invoke", "sqav", "Poke", 1, 0);
    }
    // The stranger answers all late-bound calls with a text.
    void AnswerAll(const char* text) {
        stranger.whenCalled = [this, text](const MessageRef& call) {
            stranger.ReturnResult(call, "s", text);
        };
    }

    // What a test lets be noted, in its order, with a space after each.
    void Note(std::string_view event) { (events += event) += ' '; }
    std::shared_ptr<ScriptedObject> Watched(std::vector<Member> members = {}) {
        const auto object = Scripted(std::move(members));
        object->told = [this](std::string_view event) { Note(event); };
        return object;
    }
    // Serves until exactly this has been noted, or the stranger has heard exactly this, since the last time.
    void ExpectEvents(const std::string& expected) {
        loop.ServeUntil([&] { return events == expected; });
        EXPECT_EQ(std::exchange(events, ""), expected);
    }
    void ExpectHeard(const std::string& expected) {
        loop.ServeUntil([&] { return !stranger.calls.empty(); });
        EXPECT_EQ(stranger.Heard(), expected);
    }

    std::string events;
    PrivateBus bus;
    PollLoop loop;
    headless::WaitBoxes boxes;
    WaitSettings settings;
    ObjectRef created;
    std::function<ObjectRef()> create = [this] { return std::move(created); };
    std::unique_ptr<Automation> server = Connect(), client = Connect();
    Stranger stranger{loop};
    ObjectRef host;  // of the stranger's, held by the client
};

}  // namespace platform::test
