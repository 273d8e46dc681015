// A minimal host: opens the add-in for one exchange, takes requests and answers them.
#pragma once

#include <functional>
#include <string_view>

#include "Bus.h"

namespace bench {

class Host {
  public:
    // Creates the add-in and shows its dialog.
    Host();

    // Its name on the bus.
    const std::string& Name() const { return name_; }

    // Serves until the condition holds. Checks it after each message and when the other descriptor is
    // readable. Raises std::runtime_error after 20 seconds.
    void ServeUntil(const std::function<bool()>& condition, int other = -1);

    // The add-in waits for the answer, having shown that the host took the request.
    bool OwesAnswer() const { return hasRequest_ && lastMember_ == "ShowMessage"; }
    // Answers the request, and returns once the add-in has taken the answer.
    void AnswerRequest();

    // The calls of members in both directions since the last `ForgetCalls`.
    int Calls() const { return calls_; }
    void ForgetCalls() { calls_ = 0; }

  private:
    static int OnMessage(sd_bus_message* message, void* self, sd_bus_error*) noexcept;
    void Answer(sd_bus_message* call);
    void AppendResult(sd_bus_message* answer, sd_bus_message* call, std::string_view member) const;
    void Note(sd_bus_message* call, std::string_view member);
    template <typename... Arguments>
    void Ask(const Reference& to, const char* member, const char* types, Arguments... arguments);

    Bus bus_ = OpenBus();
    std::string name_, lastMember_;
    Reference addIn_, dialog_;
    int calls_ = 0;
    bool hasRequest_ = false;
};

}  // namespace bench
