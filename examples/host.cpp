// A minimal host for the clock add-in in C++, with sd-bus (libsystemd-dev). See docs/host-authors.md.
//
// Opens the add-in for the exchange "Example", and answers when the operator reads the clock there. Prints
// every incoming call. Ends with the dialog, or with --once after the first answer.
//
// A host must serve calls during its own calls: RegisterPBX calls GetComData before it returns. But handlers
// of the bus library must not wait. So they answer at once and leave a note; Run acts on the notes, and
// serves incoming calls while it waits for an answer.
#include <systemd/sd-bus.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

namespace {

constexpr const char *addIn = "Horalink10013.cOLELayer", *factory = "org.velmora.Automation1.Factory",
                     *object = "org.velmora.Automation1.Object";
// By default the bus library gives up after 25 seconds. The contract has no limit: a call may wait for the
// operator.
constexpr std::uint64_t forever = UINT64_MAX;

enum class Kind : std::uint16_t { Call = 1, Read = 2, Write = 4 };

struct Reference {
    std::string owner, path;
    friend bool operator==(const Reference&, const Reference&) = default;
};
using Value = std::variant<std::monostate, bool, std::int16_t, std::int32_t, std::string, Reference>;
using Values = std::vector<Value>;

void Check(int result) {
    if (result < 0) throw std::system_error(-result, std::generic_category());
}

// --- values on the wire ---------------------------------------------------------------------------------

void Append(sd_bus_message* message, const Value& value) {
    if (const auto* truth = std::get_if<bool>(&value))
        Check(sd_bus_message_append(message, "v", "b", int{*truth}));
    else if (const auto* small = std::get_if<std::int16_t>(&value))
        Check(sd_bus_message_append(message, "v", "n", int{*small}));
    else if (const auto* number = std::get_if<std::int32_t>(&value))
        Check(sd_bus_message_append(message, "v", "i", *number));
    else if (const auto* text = std::get_if<std::string>(&value))
        Check(sd_bus_message_append(message, "v", "s", text->c_str()));
    else if (const auto* reference = std::get_if<Reference>(&value))
        Check(sd_bus_message_append(message, "v", "(so)", reference->owner.c_str(), reference->path.c_str()));
    else
        Check(sd_bus_message_append(message, "v", "(y)", 0));  // empty
}

void Append(sd_bus_message* message, const Values& values) {
    Check(sd_bus_message_open_container(message, 'a', "v"));
    for (const Value& value : values) Append(message, value);
    Check(sd_bus_message_close_container(message));
}

Reference TakeReference(sd_bus_message* message) {
    const char *owner = nullptr, *path = nullptr;
    Check(sd_bus_message_read(message, "(so)", &owner, &path));
    return {owner, path};
}

template <class Read>
Read TakeBasic(sd_bus_message* message, char type) {
    Read read{};
    Check(sd_bus_message_read_basic(message, type, &read));
    return read;
}

// Reads the types that the add-in sends; any other counts as empty.
Value TakeValue(sd_bus_message* message) {
    const char* signature = nullptr;
    Check(sd_bus_message_peek_type(message, nullptr, &signature));
    Check(sd_bus_message_enter_container(message, 'v', signature));
    const std::string_view kind = signature;
    Value value;
    if (kind == "s")
        value = std::string(TakeBasic<const char*>(message, 's'));
    else if (kind == "n")
        value = TakeBasic<std::int16_t>(message, 'n');
    else if (kind == "i")
        value = TakeBasic<std::int32_t>(message, 'i');
    else if (kind == "b")
        value = TakeBasic<int>(message, 'b') != 0;
    else if (kind == "(so)")
        value = TakeReference(message);
    else
        Check(sd_bus_message_skip(message, signature));
    Check(sd_bus_message_exit_container(message));
    return value;
}

Values TakeValues(sd_bus_message* message) {
    Values values;
    Check(sd_bus_message_enter_container(message, 'a', "v"));
    while (sd_bus_message_at_end(message, 0) == 0) values.push_back(TakeValue(message));
    Check(sd_bus_message_exit_container(message));
    return values;
}

std::string TextOf(const Value& value) {
    const auto* text = std::get_if<std::string>(&value);
    return text ? *text : std::string();
}

std::string Shown(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return "\"" + *text + "\"";
    if (const auto* truth = std::get_if<bool>(&value)) return *truth ? "True" : "False";
    if (const auto* small = std::get_if<std::int16_t>(&value)) return std::to_string(*small);
    if (const auto* number = std::get_if<std::int32_t>(&value)) return std::to_string(*number);
    return std::holds_alternative<Reference>(value) ? "<object>" : "<empty>";
}

// --- objects that others call ---------------------------------------------------------------------------

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

// `members` maps a name in lower case to a function of the argument list, which can return values by
// reference in that list. These objects live as long as the process, so they don't count references.
struct AutomationObject {
    std::map<std::string, std::function<Value(Values&)>> members;

    int Invoke(sd_bus_message* message) {
        const char* name = nullptr;
        std::uint16_t kind = 0;
        Check(sd_bus_message_read(message, "sq", &name, &kind));
        Values arguments = TakeValues(message);
        std::string list;
        for (const Value& argument : arguments) list += (list.empty() ? "" : ", ") + Shown(argument);
        std::printf("%s(%s)\n", name, list.c_str());
        std::fflush(stdout);
        const auto member = members.find(LowerCase(name));  // case doesn't matter
        if (member == members.end())                        // becomes run-time error 438
            return sd_bus_reply_method_errorf(message, SD_BUS_ERROR_UNKNOWN_METHOD, "no member %s", name);
        sd_bus_message* answer = nullptr;
        Check(sd_bus_message_new_method_return(message, &answer));
        Append(answer, member->second(arguments));
        Append(answer, arguments);
        const int sent = sd_bus_send(nullptr, answer, nullptr);
        sd_bus_message_unref(answer);
        return sent;
    }
};

int OnInvoke(sd_bus_message* message, void* self, sd_bus_error*) {
    try {
        return static_cast<AutomationObject*>(self)->Invoke(message);
    } catch (const std::exception& problem) {  // arguments of the wrong type
        return sd_bus_reply_method_errorf(message, "org.velmora.Automation1.Error", "%s", problem.what());
    }
}

int OnCount(sd_bus_message* message, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(message, "");
}

const sd_bus_vtable interface[] = {
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("Invoke", "sqav", "vav", OnInvoke, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Retain", "", "", OnCount, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Release", "", "", OnCount, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};

// --- the host -------------------------------------------------------------------------------------------

using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

// An item of a request or an answer.
struct Item {
    std::string command, first, second, extra;
};

class Host {
  public:
    explicit Host(bool once) : once_(once) {
        Check(sd_bus_open_user(&bus_));
        host_.members = {
            {"opbx", [this](Values&) { return Own("/Exchange"); }},
            {"unloadchild", [this](Values&) { return isDone_ = true, Value(); }},
            {"regcomdata", [this](Values& a) { return store_[TextOf(a.at(1))] = a.at(2), Value(); }},
            {"getcomdata", [this](Values& a) { return GetComData(a); }}};
        for (const char* name :
             {"showmessage", "showresults", "showcode", "displayhelp", "turnonflow", "turnoffflow"})
            host_.members[name] = [](Values&) { return Value(); };
        // ConnectToPbx is for stand-alone runs, which create the exchange object by name; not served here.
        exchange_.members = {{"login", [this](Values& a) { return Login(a); }},
                             {"sendrequest", [this](Values& a) { return SendRequest(a); }},
                             {"logout", [this](Values&) { return LogOut(); }}};
        for (const auto& [path, served] :
             {std::pair("/Host", &host_), {"/Exchange", &exchange_}, {"/Response", &response_}})
            Check(sd_bus_add_object_vtable(bus_, nullptr, path, object, interface, served));
    }
    ~Host() { sd_bus_flush_close_unref(bus_); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    // Runs until the add-in has left. Raises std::exception if it can't be opened.
    void Run() {
        const Reference layer = Create();  // we own this reference
        WatchFor(layer.owner);
        if (Invoke(layer, "RegisterPBX", Kind::Call, {"Example", Own("/Host"), std::int16_t{1}}) ==
            Value(true))
            std::puts("RegisterPBX reports a failure");  // the dialog didn't load completely
        Invoke(layer, "Visible", Kind::Write, {true});
        while (!hasLeft_) {
            if (request_)
                Answer(*std::exchange(request_, std::nullopt));
            else if (std::exchange(isDone_, false))
                Notify(layer, "Release");  // the add-in still calls REGComData, then it leaves the bus
            else
                Serve();
        }
    }

  private:
    // --- members of the host object and of the exchange object ---

    Value GetComData(Values& arguments) {
        arguments.at(2) =
            store_.contains(TextOf(arguments.at(1))) ? store_[TextOf(arguments.at(1))] : Value("");
        return {};  // the value is returned by reference
    }

    Value Login(Values& arguments) {
        if (isLoggedIn_) return "BUSY";
        client_ = std::get<Reference>(arguments.at(1));
        isLoggedIn_ = true;
        Notify(client_, "Retain");  // borrowed for this call only, but CallBack needs it later
        return "KEY";
    }

    // Must not call CallBack: the add-in relies on SendRequest returning first.
    Value SendRequest(Values& arguments) {
        request_ = std::get<Reference>(arguments.at(0));
        Notify(*request_, "Retain");
        return "ACCEPTED";
    }

    Value LogOut() {
        isLoggedIn_ = false;
        return {};
    }

    // --- the answer to a request ---

    void Answer(const Reference& record) {
        const std::string tag = TextOf(Invoke(record, "Tag", Kind::Read));
        const Value login = Invoke(record, "LoginID", Kind::Read);
        const auto count = std::get<std::int16_t>(Invoke(record, "Count", Kind::Read));
        std::vector<Item> items;
        for (std::int16_t i = 0; i < count; ++i)
            items.push_back(AnswerTo(tag, TextOf(Invoke(record, "CMD", Kind::Read, {i})),
                                     TextOf(Invoke(record, "FirstData", Kind::Read, {i}))));
        Notify(record, "Release");
        FillResponse(items, tag, login);
        Invoke(client_, "CallBack", Kind::Call,
               {Own("/Response")});  // shows the answer, logs out, then returns
        Notify(client_, "Release");
        isDone_ = isDone_ || once_;
    }

    static Item AnswerTo(const std::string& tag, const std::string& command, const std::string& first) {
        if (tag != "LOOKUP_CLOCK")
            return {command, first, "", "CODE NOT ALLOWED"};  // this clock can't be set
        static const std::map<std::string, const char*> formats = {
            {"0", "%Y"}, {"1", "%m/%d"}, {"2", "%H:%M:%S"}};
        const auto format = formats.find(first);
        if (format == formats.end()) return {command, first, "DATA NOT FOUND", "OK"};
        const std::time_t clock = std::time(nullptr) + 600;  // ten minutes ahead
        char text[16] = "";
        std::strftime(text, sizeof text, format->second, std::localtime(&clock));
        return {command, first, text, "OK"};
    }

    void FillResponse(const std::vector<Item>& items, const std::string& tag, const Value& login) {
        const auto field = [items](std::string Item::* part) {
            return [items, part](Values& a) {
                return Value(items.at(static_cast<std::size_t>(std::get<std::int16_t>(a.at(0)))).*part);
            };
        };
        const auto constant = [](Value value) { return [value](Values&) { return value; }; };
        message_ = "";
        response_.members = {{"count", constant(static_cast<std::int16_t>(items.size()))},
                             {"cmd", field(&Item::command)},
                             {"firstdata", field(&Item::first)},
                             {"seconddata", field(&Item::second)},
                             {"extradata", field(&Item::extra)},
                             {"errcode", constant(std::int32_t{0})},
                             {"tag", constant(tag)},
                             {"loginid", constant(login)},
                             {"message", [this](Values& a) { return MessageProperty(a); }}};
    }

    // On a write, the last argument is the new value.
    Value MessageProperty(const Values& arguments) {
        if (arguments.empty()) return message_;
        message_ = arguments.back();
        return {};
    }

    // --- outgoing calls ---

    Value Own(const char* path) const {
        const char* name = nullptr;
        Check(sd_bus_get_unique_name(bus_, &name));
        return Reference{name, path};
    }

    Reference Create() {
        sd_bus_message* call = nullptr;
        Check(sd_bus_message_new_method_call(bus_, &call, addIn, "/Factory", factory, "CreateInstance"));
        try {
            return TakeReference(AnswerTo(call).get());
        } catch (const std::exception& problem) {
            throw std::runtime_error(std::string("the add-in can't be created (error 429): ") +
                                     problem.what());
        }
    }

    Value Invoke(const Reference& to, const char* member, Kind kind, const Values& arguments = {}) {
        sd_bus_message* call = nullptr;
        Check(
            sd_bus_message_new_method_call(bus_, &call, to.owner.c_str(), to.path.c_str(), object, "Invoke"));
        Check(sd_bus_message_append(call, "sq", member, static_cast<int>(kind)));
        Append(call, arguments);
        const Message answer = AnswerTo(call);
        return TakeValue(answer.get());
    }

    // Sends a call, and serves messages until the answer arrives. Repeats a call that is refused as busy.
    // Raises any other error.
    Message AnswerTo(sd_bus_message* call) {
        const Message owned(call, sd_bus_message_unref);
        Message answer = FirstAnswerTo(call);
        while (sd_bus_message_is_method_error(answer.get(), "org.velmora.Automation1.Error.Busy") > 0) {
            Pause();
            answer = FirstAnswerTo(call);
        }
        if (const sd_bus_error* error = sd_bus_message_get_error(answer.get()))
            throw std::runtime_error(error->message ? error->message : error->name);
        return answer;
    }

    Message FirstAnswerTo(sd_bus_message* call) {
        sd_bus_message* answer = nullptr;
        Check(sd_bus_call_async(bus_, nullptr, call, OnAnswer, &answer, forever));
        while (!answer) Serve();
        return Message(answer, sd_bus_message_unref);
    }

    // Serves messages for a fifth of a second.
    void Pause() {
        using namespace std::chrono;
        const auto end = steady_clock::now() + 200ms;
        for (auto now = steady_clock::now(); now < end; now = steady_clock::now())
            Serve(static_cast<std::uint64_t>(ceil<microseconds>(end - now).count()));
    }

    static int OnAnswer(sd_bus_message* message, void* answer, sd_bus_error*) {
        *static_cast<sd_bus_message**>(answer) = sd_bus_message_ref(message);
        return 1;
    }

    // Retain or Release, without waiting for the answer. Messages arrive in the order sent.
    void Notify(const Reference& to, const char* method) {
        Check(sd_bus_call_method_async(bus_, nullptr, to.owner.c_str(), to.path.c_str(), object, method,
                                       nullptr, nullptr, ""));
    }

    // --- the bus ---

    // Handles one message, or waits for the next.
    void Serve(std::uint64_t limit = forever) {
        const int served = sd_bus_process(bus_, nullptr);
        Check(served);
        if (served == 0) Check(sd_bus_wait(bus_, limit));
    }

    void WatchFor(const std::string& peer) {
        const std::string rule =
            "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" + peer + "'";
        Check(sd_bus_add_match(bus_, nullptr, rule.c_str(), OnLeft, this));
    }

    static int OnLeft(sd_bus_message*, void* self, sd_bus_error*) {
        static_cast<Host*>(self)->hasLeft_ = true;
        return 0;
    }

    const bool once_;
    sd_bus* bus_ = nullptr;
    AutomationObject host_, exchange_, response_;
    std::map<std::string, Value> store_;  // a real host keeps these in a file
    Reference client_;
    Value message_;
    bool isLoggedIn_ = false;
    // The handlers' notes for Run.
    std::optional<Reference> request_;
    bool isDone_ = false, hasLeft_ = false;
};

}  // namespace

int main(int count, char** words) {
    try {
        Host(count > 1 && std::string_view(words[1]) == "--once").Run();
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "host: %s\n", problem.what());
        return 1;
    }
}
