// Objects whose members a test writes down where it needs them, and the surroundings of every test.
#pragma once

#include <gtest/gtest.h>

#include "PollLoop.h"
#include "PrivateBus.h"
#include "platform/automation/dbus/BusAutomation.h"
#include "platform/runtime/Object.h"

namespace platform::test {

class ScriptedObject : public Object {
  public:
    explicit ScriptedObject(std::vector<Member> members) : description_{"Scripted", std::move(members)} {}
    explicit ScriptedObject(ClassDescription description) : description_(std::move(description)) {}

    const ClassDescription& Class() const override { return description_; }
    void LastClientGone() override {
        if (whenLastClientGone) whenLastClientGone();
    }

    std::function<void()> whenLastClientGone;

  private:
    ClassDescription description_;
};

// A method with so many arguments of any kind.
Member Method(std::string_view name, std::size_t arguments, std::function<Value(Arguments&)> call);

// Boxes that stay open until the test answers.
class ScriptedBoxes : public WaitBoxes {
  public:
    std::unique_ptr<WaitBox> Open(TextView title, TextView text, std::function<void(bool)> answered) override;

    struct Opened {
        Text title, text;
        std::function<void(bool)> answer;
    };
    std::vector<Opened> opened;
    int nowOpen = 0;
    // Answers at once, where set.
    std::function<bool()> decide;
};

// A server of the class "Test.cScripted" and a client, both on the thread of the test.
class BusTest : public ::testing::Test {
  protected:
    BusTest();

    // An object for the client that the server makes.
    ObjectRef Created(std::vector<Member> members);
    ObjectRef Created(const std::shared_ptr<ScriptedObject>& object);
    std::unique_ptr<Automation> Connect() { return ConnectToSessionBus(loop, boxes, settings); }

    PrivateBus bus;
    PollLoop loop;
    ScriptedBoxes boxes;
    WaitSettings settings;
    std::function<ObjectRef()> create;
    std::unique_ptr<Automation> server, client;
};

// The number of the run-time error that a callable raises, or 0.
template <class Callable>
std::int32_t ErrorOf(Callable callable) {
    try {
        callable();
    } catch (const RuntimeError& error) {
        return error.Number();
    }
    return 0;
}

}  // namespace platform::test
