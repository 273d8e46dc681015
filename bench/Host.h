// A minimal host: opens the add-in for one exchange, and takes or refuses requests.
#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "Bus.h"

namespace bench {

class Host {
  public:
    // Refuses requests, or takes them for `AnswerRequest`.
    enum class Manner { Refuses, Takes };

    explicit Host(Manner manner);

    sd_bus* Connection() const { return bus_.get(); }
    const Reference& AddIn() const { return addIn_; }

    // Creates the add-in, with the dialog still hidden.
    void Open();
    // Doesn't wait for the add-in.
    void SetVisible(bool visible);

    // Handles one message; false if there is none.
    bool Serve();
    // Serves until the condition holds. Checks it after each message and when the other descriptor is
    // readable. Raises std::runtime_error after 20 seconds.
    void ServeUntil(const std::function<bool()>& condition, int other = -1);

    // The record of the last request, retained by the host; empty before the first.
    const std::optional<Reference>& Record() const { return record_; }

    bool HasLoggedOut() const { return lastMember_ == "LogOut"; }
    // The host has taken a request, and the add-in, having shown that, waits for the answer.
    bool OwesAnswer() const { return record_ && lastMember_ == "ShowMessage"; }
    // Answers the record's request, and returns once the add-in has taken the answer.
    void AnswerRequest();

    // The incoming calls of members, in order, since the last `ForgetCalls`.
    const std::vector<Message>& Calls() const { return calls_; }
    void ForgetCalls() { calls_.clear(); }

    // An idle host answers calls as ever, but doesn't act on them.
    void SetIdle(bool idle) { isIdle_ = idle; }

  private:
    static int OnMessage(sd_bus_message* message, void* self, sd_bus_error*) noexcept;
    void Answer(sd_bus_message* call);
    void AppendResult(sd_bus_message* answer, sd_bus_message* call, std::string_view member) const;
    std::string TextResult(sd_bus_message* call, std::string_view member) const;
    void Keep(sd_bus_message* call, std::string_view member);
    void Notify(const Reference& to, const char* method);
    void RegisterExchange();
    Message AnswerTo(const Message& call);
    std::string ReadRecord(const char* member);

    Bus bus_;
    Manner manner_;
    std::string name_, tag_, loginId_, lastMember_;
    Reference addIn_, dialog_;
    std::optional<Reference> record_;
    std::vector<Message> calls_;
    bool isIdle_ = false;
};

}  // namespace bench
