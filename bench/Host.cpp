#include "Host.h"

#include <poll.h>

#include <chrono>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto limit = std::chrono::seconds(20);
constexpr int turn = 100;  // milliseconds

constexpr const char *hostPath = "/Host", *exchangePath = "/Exchange", *responsePath = "/Response";
constexpr std::int16_t items = 3;
constexpr const char* values[items] = {"2026", "11/18 WED", "13:02:03"};

void RewindToArguments(sd_bus_message* call) {
    Check(sd_bus_message_rewind(call, 1), "no arguments");
    Check(sd_bus_message_skip(call, "sq"), "no arguments");
}

// The index of an item of the answer.
std::size_t IndexOf(sd_bus_message* call) {
    std::int16_t index = 0;
    RewindToArguments(call);
    Check(sd_bus_message_read(call, "av", 1, "n", &index), "no index");
    if (index < 0 || index >= items) throw std::runtime_error("no such item");
    return static_cast<std::size_t>(index);
}

}  // namespace

Host::Host(Manner manner) : bus_(OpenBus()), manner_(manner) {
    const char* name = nullptr;
    Check(sd_bus_get_unique_name(bus_.get(), &name), "no name on the bus");
    name_ = name;
    Check(sd_bus_add_filter(bus_.get(), nullptr, OnMessage, this), "no filter");
}

void Host::Open() {
    addIn_ = Create(bus_.get(), addInClass);
    RegisterExchange();
}

void Host::RegisterExchange() {
    sd_bus_message* call = nullptr;
    Check(sd_bus_message_new_method_call(bus_.get(), &call, addIn_.owner.c_str(), addIn_.path.c_str(),
                                         objectInterface, "Invoke"),
          "RegisterPBX");
    const Message owned(call, sd_bus_message_unref);
    Check(sd_bus_message_append(call, "sqav", "RegisterPBX", Method, 3, "s", exchangeName, "(so)",
                                name_.c_str(), hostPath, "n", 1),
          "RegisterPBX");
    AnswerTo(owned);
}

void Host::SetVisible(bool visible) {
    bench::SetVisible(bus_.get(), addIn_, visible);
}

bool Host::Serve() {
    return Check(sd_bus_process(bus_.get(), nullptr), "the bus has closed") > 0;
}

void Host::ServeUntil(const std::function<bool()>& condition, int other) {
    const auto end = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() > end) throw std::runtime_error("the add-in did not respond as expected");
        if (Serve()) continue;
        pollfd descriptors[] = {{sd_bus_get_fd(bus_.get()), POLLIN, 0}, {other, POLLIN, 0}};
        poll(descriptors, 2, turn);
    }
}

Message Host::AnswerTo(const Message& call) {
    sd_bus_message* answer = nullptr;
    const auto keep = [](sd_bus_message* message, void* place, sd_bus_error*) {
        *static_cast<sd_bus_message**>(place) = sd_bus_message_ref(message);
        return 1;
    };
    Check(sd_bus_call_async(bus_.get(), nullptr, call.get(), keep, &answer, UINT64_MAX), "a call failed");
    ServeUntil([&] { return answer != nullptr; });
    Message result(answer, sd_bus_message_unref);
    if (sd_bus_message_is_method_error(answer, nullptr) > 0)
        throw std::runtime_error(sd_bus_message_get_error(answer)->message);
    return result;
}

std::string Host::ReadRecord(const char* member) {
    const Message answer = Invoke(bus_.get(), *record_, member, Read, "av", 0);
    const char* text = nullptr;
    Check(sd_bus_message_read(answer.get(), "v", "s", &text), member);
    return text;
}

void Host::AnswerRequest() {
    tag_ = ReadRecord("Tag");
    loginId_ = ReadRecord("LoginID");
    sd_bus_message* call = nullptr;
    Check(sd_bus_message_new_method_call(bus_.get(), &call, dialog_.owner.c_str(), dialog_.path.c_str(),
                                         objectInterface, "Invoke"),
          "CallBack");
    const Message owned(call, sd_bus_message_unref);
    Check(sd_bus_message_append(call, "sqav", "CallBack", Method, 1, "(so)", name_.c_str(), responsePath),
          "CallBack");
    AnswerTo(owned);
    Notify(dialog_, "Release");
    Notify(*record_, "Release");
    record_.reset();
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
    if (!isIdle_) {
        lastMember_ = member;
        calls_.emplace_back(sd_bus_message_ref(call), sd_bus_message_unref);
        Keep(call, member);
    }
    sd_bus_message* made = nullptr;
    Check(sd_bus_message_new_method_return(call, &made), "no answer");
    const Message answer(made, sd_bus_message_unref);
    AppendResult(made, call, member);
    RewindToArguments(call);
    Check(sd_bus_message_copy(made, call, 0), member);
    Check(sd_bus_send(bus_.get(), made, nullptr), member);
}

void Host::AppendResult(sd_bus_message* answer, sd_bus_message* call, std::string_view member) const {
    int result = 0;
    if (member == "oPBX")
        result = sd_bus_message_append(answer, "v", "(so)", name_.c_str(), exchangePath);
    else if (member == "Count")
        result = sd_bus_message_append(answer, "v", "n", items);
    else if (member == "ErrCode")
        result = sd_bus_message_append(answer, "v", "i", 0);
    else
        result = sd_bus_message_append(answer, "v", "s", TextResult(call, member).c_str());
    Check(result, "no result");
}

// Empty for members without a result.
std::string Host::TextResult(sd_bus_message* call, std::string_view member) const {
    if (member == "Login") return "KEY";
    if (member == "SendRequest") return manner_ == Manner::Refuses ? "BUSY" : "ACCEPTED";
    if (member == "Tag") return tag_;
    if (member == "LoginID") return loginId_;
    if (member == "CMD") return "02";
    if (member == "FirstData") return std::to_string(IndexOf(call));
    if (member == "SecondData") return values[IndexOf(call)];
    if (member == "ExtraData" || member == "Message") return "OK";
    return "";
}

// Retains the object that is needed after the call.
void Host::Keep(sd_bus_message* call, std::string_view member) {
    if (member != "Login" && member != "SendRequest") return;
    RewindToArguments(call);
    Check(sd_bus_message_enter_container(call, 'a', "v"), "no arguments");
    if (member == "Login") Check(sd_bus_message_skip(call, "v"), "no exchange");
    Check(sd_bus_message_enter_container(call, 'v', "(so)"), "no object");
    const Reference object = ReadReference(call);
    if (member == "Login")
        dialog_ = object;
    else
        record_ = object;
    Notify(object, "Retain");
}

void Host::Notify(const Reference& to, const char* method) {
    Check(sd_bus_call_method_async(bus_.get(), nullptr, to.owner.c_str(), to.path.c_str(), objectInterface,
                                   method, nullptr, nullptr, ""),
          method);
}

}  // namespace bench
