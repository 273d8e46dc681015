#include "Host.h"

#include <poll.h>

#include <chrono>
#include <map>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto limit = std::chrono::seconds(20);
constexpr int turn = 100;  // milliseconds

constexpr const char *hostPath = "/Host", *exchangePath = "/Exchange";
constexpr std::int16_t items = 3;
constexpr const char *values[items] = {"2026", "11/18 WED", "13:02:03"}, *numbers[items] = {"0", "1", "2"};

// What members result in, where it is a text and the same at each call; otherwise nothing.
const std::map<std::string_view, const char*> texts{
    {"Login", "KEY"}, {"LoginID", "KEY"},  {"SendRequest", "ACCEPTED"}, {"Tag", "LOOKUP_CLOCK"},
    {"CMD", "02"},    {"ExtraData", "OK"}, {"Message", "OK"},
};

void RewindToArguments(sd_bus_message* call) {
    Check(sd_bus_message_rewind(call, 1), "no arguments");
    Check(sd_bus_message_skip(call, "sq"), "no arguments");
}

// What a list of the answer has at the index that the call names.
const char* At(const char* const (&list)[items], sd_bus_message* call) {
    std::int16_t index = 0;
    RewindToArguments(call);
    Check(sd_bus_message_read(call, "av", 1, "n", &index), "no index");
    if (index < 0 || index >= items) throw std::runtime_error("no such item");
    return list[index];
}

}  // namespace

Host::Host() : addIn_(Create(bus_.get(), addInClass)) {
    const char* name = nullptr;
    Check(sd_bus_get_unique_name(bus_.get(), &name), "no name on the bus");
    name_ = name;
    Check(sd_bus_add_filter(bus_.get(), nullptr, OnMessage, this), "no filter");
    Ask(addIn_, "RegisterPBX", "av", 3, "s", exchangeName, "(so)", name, hostPath, "n", 1);
    Show(bus_.get(), addIn_);
}

void Host::ServeUntil(const std::function<bool()>& condition, int other) {
    const auto end = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() > end) throw std::runtime_error("the add-in did not respond as expected");
        if (Check(sd_bus_process(bus_.get(), nullptr), "the bus has closed") > 0) continue;
        pollfd descriptors[] = {{sd_bus_get_fd(bus_.get()), POLLIN, 0}, {other, POLLIN, 0}};
        poll(descriptors, 2, turn);
    }
}

// Calls a method of the add-in, which may call back meanwhile.
template <typename... Arguments>
void Host::Ask(const Reference& to, const char* member, const char* types, Arguments... arguments) {
    int result = 0;
    const auto note = [](sd_bus_message* answer, void* place, sd_bus_error*) {
        return *static_cast<int*>(place) = sd_bus_message_is_method_error(answer, nullptr) > 0 ? -1 : 1;
    };
    Check(sd_bus_call_method_async(bus_.get(), nullptr, to.owner.c_str(), to.path.c_str(), objectInterface,
                                   "Invoke", note, &result, (std::string("sq") + types).c_str(), member,
                                   static_cast<int>(Method), arguments...),
          member);
    ServeUntil([&] { return result != 0; });
    Check(result, member);
}

void Host::AnswerRequest() {
    hasRequest_ = false;
    ++calls_;
    Ask(dialog_, "CallBack", "av", 1, "(so)", name_.c_str(), responsePath);
}

int Host::OnMessage(sd_bus_message* message, void* self, sd_bus_error*) noexcept {
    if (sd_bus_message_is_method_call(message, objectInterface, nullptr) <= 0) return 0;
    if (sd_bus_message_is_method_call(message, nullptr, "Invoke") <= 0)
        return sd_bus_reply_method_return(message, "");
    try {
        static_cast<Host*>(self)->Answer(message);
        return 1;
    } catch (const std::exception& error) {
        return sd_bus_reply_method_errorf(message, "org.velmora.Automation1.Error", "%s", error.what());
    }
}

void Host::Answer(sd_bus_message* call) {
    const char* member = nullptr;
    Check(sd_bus_message_read(call, "sq", &member, nullptr), "no member");
    Note(call, member);
    sd_bus_message* made = nullptr;
    Check(sd_bus_message_new_method_return(call, &made), "no answer");
    const Message answer(made, sd_bus_message_unref);
    AppendResult(made, call, member);
    RewindToArguments(call);
    Check(sd_bus_message_copy(made, call, 0), member);
    Check(sd_bus_send(bus_.get(), made, nullptr), member);
}

void Host::AppendResult(sd_bus_message* answer, sd_bus_message* call, std::string_view member) const {
    const auto text = texts.find(member);
    int result = 0;
    if (member == "oPBX")
        result = sd_bus_message_append(answer, "v", "(so)", name_.c_str(), exchangePath);
    else if (member == "Count")
        result = sd_bus_message_append(answer, "v", "n", items);
    else if (member == "ErrCode")
        result = sd_bus_message_append(answer, "v", "i", 0);
    else if (member == "FirstData" || member == "SecondData")
        result = sd_bus_message_append(answer, "v", "s", At(member == "FirstData" ? numbers : values, call));
    else
        result = sd_bus_message_append(answer, "v", "s", text == texts.end() ? "" : text->second);
    Check(result, "no result");
}

// The dialog comes with a login, and lives as long as the add-in.
void Host::Note(sd_bus_message* call, std::string_view member) {
    lastMember_ = member;
    ++calls_;
    hasRequest_ = hasRequest_ || member == "SendRequest";
    if (member != "Login") return;
    ++calls_;  // Retain
    RewindToArguments(call);
    Check(sd_bus_message_enter_container(call, 'a', "v"), "no arguments");
    Check(sd_bus_message_skip(call, "v"), "no exchange");
    Check(sd_bus_message_enter_container(call, 'v', "(so)"), "no object");
    dialog_ = ReadReference(call);
    Check(sd_bus_call_method_async(bus_.get(), nullptr, dialog_.owner.c_str(), dialog_.path.c_str(),
                                   objectInterface, "Retain", nullptr, nullptr, ""),
          "Retain");
}

}  // namespace bench
