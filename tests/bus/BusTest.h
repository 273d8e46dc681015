// A bus of the test's own, and on the thread of the test a server and a client of this system, :1.0 and :1.1
// on that bus, and a stranger, :1.2. The contract's names are written out here once more.
#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>

#include <bit>
#include <cstdio>
#include <list>

#include "harness/Cases.h"
#include "harness/Files.h"
#include "platform/automation/dbus/BusAutomation.h"
#include "platform/automation/dbus/Handles.h"
#include "platform/headless/Desktop.h"
#include "platform/headless/Timers.h"

namespace platform::test {

inline constexpr char factoryInterface[] = "org.velmora.Automation1.Factory";
inline constexpr char objectInterface[] = "org.velmora.Automation1.Object";

// Starts a daemon and makes it the session bus of the environment.
struct PrivateBus {
    PrivateBus() {
        const std::string address = "unix:path=" + (directory.Path() / "socket").string();
        const std::string command = "dbus-daemon --session --fork --print-pid --address=" + address;
        std::FILE* const output = popen(command.c_str(), "r");
        // The number comes once the daemon listens.
        if (std::fscanf(output, "%d", &daemon) != 1) throw std::runtime_error("the bus daemon did not start");
        pclose(output);
        setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    }
    ~PrivateBus() { Stop(); }
    void Stop() {
        if (daemon != 0) kill(std::exchange(daemon, 0), SIGKILL);
    }

    TemporaryDirectory directory;
    pid_t daemon = 0;
};

// Each round takes a millisecond of its timers, and no less of the computer's: a routine whose wait is over
// goes on before a timer finds it too slow.
class PollLoop : public headless::Timers<EventLoop> {
  public:
    HandleRef WhenReadable(int descriptor, std::function<void()> call) override {
        return watches_.Add({{descriptor, POLLIN, 0}, std::move(call)});
    }
    HandleRef WhenWritable(int descriptor, std::function<void()> call) override {
        return watches_.Add({{descriptor, POLLOUT, 0}, std::move(call)});
    }
    HandleRef HoldInput() override { return holds_.Add(0); }
    std::ptrdiff_t Holds() const { return std::ranges::count(holds_, false, &std::weak_ptr<int>::expired); }
    void Run() override {}
    void Quit() override {}
    void ServeOnce() override {
        if (Now() > Milliseconds(20000)) throw std::logic_error("waits for what never happens");
        // What is added meanwhile counts from the next round on; what ends, at once.
        for (const auto& weak : std::vector(watches_)) {
            const auto watch = weak.lock();
            if (!watch || poll(&watch->descriptor, 1, 0) <= 0) continue;
            if (watch->descriptor.revents & POLLNVAL) throw std::logic_error("watches a closed descriptor");
            watch->call();
        }
        poll(nullptr, 0, 1);
        Pass(1);
    }
    bool ServeUntil(const std::function<bool()>& condition) {
        const auto limit = Now() + Milliseconds(10000);
        while (!condition() && Now() < limit) ServeOnce();
        return condition();
    }

  private:
    struct Watch {
        pollfd descriptor;
        std::function<void()> call;
    };
    headless::Sources<Watch> watches_;
    headless::Sources<int> holds_;
};

// A text or path as itself, anything else with the letter of its type.
inline std::string BasicText(sd_bus_message* message, char type) {
    std::uint64_t raw = 0;
    sd_bus_message_read_basic(message, type, &raw);
    if (type == 's') return "'" + std::string(std::bit_cast<const char*>(raw)) + "'";
    if (type == 'o') return std::bit_cast<const char*>(raw);
    if (type == 'd') return "d" + std::to_string(std::bit_cast<double>(raw));
    return type +
           std::to_string(type == 'n' ? static_cast<std::int16_t>(raw) : static_cast<std::int32_t>(raw));
}

// What is left of a message or container.
inline std::string ContentText(sd_bus_message* message) {
    std::string all;
    char type = 0;
    const char* contents = nullptr;
    while (sd_bus_message_peek_type(message, &type, &contents) > 0) {
        if (!all.empty()) all += ' ';
        if (contents) sd_bus_message_enter_container(message, type, contents);
        const std::string text = contents ? ContentText(message) : BasicText(message, type);
        if (contents) sd_bus_message_exit_container(message);
        const char* around = type == 'v' ? "<>" : type == 'a' ? "[]" : "()";
        all += contents ? around[0] + text + around[1] : text;
    }
    return all;
}

// A reply as its content, an error as its name and number, a call with path and member.
inline std::string MessageText(const MessageRef& shared) {
    sd_bus_message* message = shared.get();
    sd_bus_message_rewind(message, true);
    const std::string content = ContentText(message);
    if (const sd_bus_error* error = sd_bus_message_get_error(message)) {
        const std::string name = error->name;
        return name.substr(name.rfind('.') + 1) + content.substr(content.rfind(' '));
    }
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) return content;
    const std::string path = sd_bus_message_get_path(message), member = sd_bus_message_get_member(message);
    return path + ' ' + member + (content.empty() ? "" : " " + content);
}

// Where an object is.
struct Reference {
    std::string owner, path;
};
inline const Reference factory{"Test.cScripted", "/Factory"};

// An object that answers every member with the same act, and logs the end of its use.
struct ScriptedObject : Object {
    using Act = std::function<Value(Arguments&)>;
    ScriptedObject(Act itsAct, std::string& itsLog) : act(std::move(itsAct)), log(itsLog) {}
    ~ScriptedObject() override { log += "freed "; }
    const ClassDescription& Class() const override {
        static const ClassDescription description{"Scripted", {}};
        return description;
    }
    Value Invoke(std::string_view, InvokeKind, Arguments& arguments) override { return act(arguments); }
    void LastClientLeaves() override { log += "leaves "; }
    void LastClientGone() override { log += "gone "; }

    Act act;
    std::string& log;
};
inline const auto Echo = [](Arguments& arguments) { return arguments.at(0); };

class BusTest : public testing::Test {
  protected:
    BusTest() {
        server->ServeClass("Test.cScripted", [this] { return create(); });
        sd_bus* opened = nullptr;
        sd_bus_open_user(&opened);
        stranger.reset(opened);
        sd_bus_request_name(opened, "Test.cStranger", 0);
        whenCalled = [](const MessageRef& call) {
            sd_bus_reply_method_return(call.get(), "(so)", ":1.2", "/Host");
        };
        host = client->CreateObject(u"Test.cStranger");
        whenCalled = nullptr;
        EXPECT_EQ(MessageText(std::exchange(calls, {}).at(0)), "/Factory CreateInstance");
    }

    // The stranger sends a call, with `types` and what follows as for the bus library. The result is null
    // until the loop has received the reply.
    template <class... Parts>
    const MessageRef& Send(const Reference& to, const char* interface, const char* member,
                           const char* types = "", Parts... parts) {
        const auto keep = [](sd_bus_message* message, void* place, sd_bus_error*) {
            return *static_cast<MessageRef*>(place) = Shared(message), 1;
        };
        MessageRef& answer = answers.emplace_back();
        sd_bus_call_method_async(stranger.get(), nullptr, to.owner.c_str(), to.path.c_str(), interface,
                                 member, keep, &answer, types, parts...);
        return answer;
    }
    template <class... Parts>
    std::string Ask(Parts... parts) {
        const MessageRef& answer = Send(parts...);
        return loop.ServeUntil([&] { return answer != nullptr; }) ? MessageText(answer) : "no answer";
    }
    template <class... Parts>
    std::string Invoke(const Reference& to, int count = 0, Parts... parts) {
        return Ask(to, objectInterface, "Invoke", "sqav", "Member", 1, count, parts...);
    }
    void Poke(const Reference& to) { Send(to, objectInterface, "Invoke", "sqav", "Poke", 1, 0); }
    std::string CreateInstance() { return Ask(factory, factoryInterface, "CreateInstance"); }
    Reference CreateForStranger(ObjectRef object) {
        created = std::move(object);
        const std::string text = CreateInstance();  // such as "(':1.0' /Object/1)"
        return {":1.0", text.substr(8, text.size() - 9)};
    }
    // Takes in all that was sent before. The daemon answers ahead of what its queues of the same round hold,
    // but the second answer follows that.
    void RoundTrip() {
        for (int i = 0; i < 2; ++i)
            sd_bus_call_method(stranger.get(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId",
                               nullptr, nullptr, "");
    }

    // The stranger logs calls that want no reply, and keeps the others. Answer replies to Invoke.
    void Answer(const MessageRef& call, const char* text) {
        sd_bus_reply_method_return(call.get(), "vav", "s", text, 0);
    }
    void Refuse(const MessageRef& call) {
        sd_bus_reply_method_errorf(call.get(), "org.velmora.Automation1.Error.Busy", "later");
    }
    void TakeCalls() {
        for (sd_bus_message* message = nullptr; sd_bus_process(stranger.get(), &message) > 0;) {
            const MessageRef call = Adopted(message);
            if (!message || sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) continue;
            if (sd_bus_message_get_expect_reply(message) <= 0) {
                events += MessageText(call) + " ";
                continue;
            }
            calls.push_back(call);
            if (whenCalled) whenCalled(call);
        }
    }

    ObjectRef Created(ObjectRef object) {
        created = std::move(object);
        return client->CreateObject(u"Test.cScripted");
    }
    // An object whose end is of no interest, and one whose events are noted.
    ObjectRef Scripted(ScriptedObject::Act act) {
        return std::make_shared<ScriptedObject>(std::move(act), unwatched);
    }
    ObjectRef Watched(ScriptedObject::Act act = Echo) {
        return std::make_shared<ScriptedObject>(std::move(act), events);
    }
    // Serves until exactly this has been noted since the last time.
    void ExpectEvents(const std::string& expected) {
        loop.ServeUntil([&] { return events == expected; });
        EXPECT_EQ(std::exchange(events, ""), expected);
    }

    std::string events, unwatched;
    PrivateBus bus;
    PollLoop loop;
    headless::WaitBoxes boxes;
    WaitSettings settings;
    ObjectRef created;
    std::function<ObjectRef()> create = [this] { return std::move(created); };
    std::unique_ptr<Automation> server = ConnectToSessionBus(loop, boxes, settings);
    std::unique_ptr<Automation> client = ConnectToSessionBus(loop, boxes, settings);
    std::list<MessageRef> answers;
    std::vector<MessageRef> calls;
    std::function<void(const MessageRef&)> whenCalled;
    BusRef stranger;
    HandleRef taking = loop.Every(Milliseconds(1), [this] { TakeCalls(); });
    ObjectRef host;  // of the stranger's, held by the client
};

}  // namespace platform::test
