// A host that does the least there is to do: it opens the add-in for one exchange, and takes or refuses
// requests.
#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "Bus.h"

namespace bench {

class Host {
  public:
    // What becomes of a request: it is refused, or taken and then answered by `AnswerRequest`.
    enum class Manner { Refuses, Takes };

    explicit Host(Manner manner);

    sd_bus* Connection() const { return bus_.get(); }
    const Reference& AddIn() const { return addIn_; }

    // Creates the add-in, with the dialog still hidden.
    void Open();
    // Returns before the add-in has done it.
    void SetVisible(bool visible);

    // Handles one message; false where none is there.
    bool Serve();
    // Serves until the condition holds, which is looked at after each message and when something has come on
    // the other descriptor. Raises std::runtime_error after 20 seconds.
    void ServeUntil(const std::function<bool()>& condition, int other = -1);

    // The record of the last request, which the host has retained; nothing before one has come.
    const std::optional<Reference>& Record() const { return record_; }

    bool HasLoggedOut() const { return lastMember_ == "LogOut"; }
    // A request was taken and the add-in has told so: from here on it waits.
    bool OwesAnswer() const { return record_ && lastMember_ == "ShowMessage"; }
    // Delivers an answer to the record, and returns when the add-in has taken it.
    void AnswerRequest();

    // The calls of members that came in, in their order, from the last `ForgetCalls` on.
    const std::vector<Message>& Calls() const { return calls_; }
    void ForgetCalls() { calls_.clear(); }

    // While this is so, the host answers calls as ever and does nothing about them.
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
