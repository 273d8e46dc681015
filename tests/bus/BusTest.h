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
inline constexpr char errorName[] = "org.velmora.Automation1.Error";
inline constexpr char busyErrorName[] = "org.velmora.Automation1.Error.Busy";

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
inline std::string ToldBasic(sd_bus_message* message, char type) {
    std::uint64_t raw = 0;
    sd_bus_message_read_basic(message, type, &raw);
    if (type == 's') return "'" + std::string(std::bit_cast<const char*>(raw)) + "'";
    if (type == 'o') return std::bit_cast<const char*>(raw);
    if (type == 'd') return "d" + std::to_string(std::bit_cast<double>(raw));
    return type +
           std::to_string(type == 'n' ? static_cast<std::int16_t>(raw) : static_cast<std::int32_t>(raw));
}

// What is left of a message or container.
inline std::string ToldContent(sd_bus_message* message) {
    std::string all;
    char type = 0;
    const char* contents = nullptr;
    while (sd_bus_message_peek_type(message, &type, &contents) > 0) {
        if (!all.empty()) all += ' ';
        if (!contents) {
            all += ToldBasic(message, type);
            continue;
        }
        sd_bus_message_enter_container(message, type, contents);
        const std::string inside = ToldContent(message);
        sd_bus_message_exit_container(message);
        all += type == 'v' ? "<" + inside + ">" : type == 'a' ? "[" + inside + "]" : "(" + inside + ")";
    }
    return all;
}

// An answer as its content, an error as its name and number, a call with path and member, and "!" where it
// wants no answer.
inline std::string Told(const MessageRef& shared) {
    sd_bus_message* message = shared.get();
    sd_bus_message_rewind(message, true);
    const std::string content = ToldContent(message);
    if (const sd_bus_error* error = sd_bus_message_get_error(message)) {
        const std::string name = error->name;
        return name.substr(name.rfind('.') + 1) + content.substr(content.rfind(' '));
    }
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) return content;
    return std::string(sd_bus_message_get_path(message)) + ' ' + sd_bus_message_get_member(message) +
           (sd_bus_message_get_expect_reply(message) > 0 ? "" : "!") + (content.empty() ? "" : " " + content);
}

// Where an object is.
struct Reference {
    std::string owner, path;
};
inline const Reference factory{"Test.cScripted", "/Factory"};

class Stranger {
  public:
    explicit Stranger(PollLoop& loop) : loop_(loop) {
        sd_bus* bus = nullptr;
        if (sd_bus_open_user(&bus) < 0) throw std::runtime_error("no bus");
        bus_.reset(bus);
        serving_ = loop.Every(Milliseconds(1), [this] { Process(); });
    }
    sd_bus* Bus() const { return bus_.get(); }
    void Leave() { sd_bus_close(Bus()); }

    // Sends a call, with `types` and what follows as for the bus library. The result is the answer, once the
    // loop has been served for so long.
    template <class... Parts>
    const MessageRef& Send(const Reference& to, const char* interface, const char* member,
                           const char* types = "", Parts... parts) {
        const auto keep = [](sd_bus_message* message, void* place, sd_bus_error*) {
            return *static_cast<MessageRef*>(place) = Shared(message), 1;
        };
        MessageRef& answer = answers_.emplace_back();
        sd_bus_call_method_async(Bus(), nullptr, to.owner.c_str(), to.path.c_str(), interface, member, keep,
                                 &answer, types, parts...);
        return answer;
    }
    template <class... Parts>
    std::string Call(Parts... parts) {
        const MessageRef& answer = Send(parts...);
        return loop_.ServeUntil([&] { return answer != nullptr; }) ? Told(answer) : "no answer";
    }
    template <class... Parts>
    std::string Invoke(const Reference& to, int count = 0, Parts... parts) {
        return Call(to, objectInterface, "Invoke", "sqav", "Member", 1, count, parts...);
    }
    void Poke(const Reference& object) { Send(object, objectInterface, "Invoke", "sqav", "Poke", 1, 0); }
    // Takes in all that was sent before. The daemon answers ahead of what its queues of the same round hold,
    // but the second answer follows that.
    void RoundTrip() {
        for (int i = 0; i < 2; ++i)
            sd_bus_call_method(Bus(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId", nullptr,
                               nullptr, "");
        Process();
    }

    // By default calls are kept unanswered.
    std::function<void(const MessageRef&)> whenCalled;
    std::vector<MessageRef> calls;
    std::string Heard() {
        std::string all;
        for (const MessageRef& call : std::exchange(calls, {})) all += Told(call) + "; ";
        return all;
    }
    // To a call of Invoke.
    void Answer(const MessageRef& call, const char* text) {
        sd_bus_reply_method_return(call.get(), "vav", "s", text, 0);
    }
    void Refuse(const MessageRef& call) { sd_bus_reply_method_errorf(call.get(), busyErrorName, "later"); }

  private:
    void Process() {
        for (sd_bus_message* message = nullptr; sd_bus_process(Bus(), &message) > 0;) {
            if (!message) continue;
            const MessageRef call = Adopted(message);
            if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) continue;
            calls.push_back(call);
            if (whenCalled) whenCalled(call);
        }
    }

    PollLoop& loop_;
    std::list<MessageRef> answers_;
    BusRef bus_;
    HandleRef serving_;
};

// An object with one act, whichever member is called, that tells what becomes of it.
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
inline Value Echo(Arguments& arguments) {
    return arguments.at(0);
}

class BusTest : public testing::Test {
  protected:
    BusTest() {
        server->ServeClass("Test.cScripted", [this] { return create(); });
        sd_bus_request_name(stranger.Bus(), "Test.cStranger", 0);
        stranger.whenCalled = [](const MessageRef& call) {
            sd_bus_reply_method_return(call.get(), "(so)", ":1.2", "/Host");
        };
        host = client->CreateObject(u"Test.cStranger");
        stranger.whenCalled = nullptr;
        EXPECT_EQ(stranger.Heard(), "/Factory CreateInstance; ");
    }
    std::unique_ptr<Automation> Connect() { return ConnectToSessionBus(loop, boxes, settings); }

    ObjectRef Created(ObjectRef object) {
        created = std::move(object);
        return client->CreateObject(u"Test.cScripted");
    }
    Reference CreateForStranger(ObjectRef object) {
        created = std::move(object);
        const std::string told = CreateInstance(), before = "(':1.0' ";
        EXPECT_TRUE(told.starts_with(before)) << told;
        return {":1.0", told.substr(before.size(), told.size() - before.size() - 1)};
    }
    std::string CreateInstance() { return stranger.Call(factory, factoryInterface, "CreateInstance"); }
    std::string Plain(const Reference& object, const char* method) {
        return stranger.Call(object, objectInterface, method);
    }

    // An object whose end is of no interest, and one whose events are noted.
    ObjectRef Scripted(ScriptedObject::Act act) {
        return std::make_shared<ScriptedObject>(std::move(act), unwatched);
    }
    ObjectRef Watched(ScriptedObject::Act act = Echo) {
        return std::make_shared<ScriptedObject>(std::move(act), events);
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

    std::string events, unwatched;
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
