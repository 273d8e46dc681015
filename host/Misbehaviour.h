// The ways in which the host can be told not to keep the contract, for those who test a client of it.
#pragma once

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/Answer.h"
#include "host/CallLog.h"

namespace switchdesk {

// What a call does instead of its work.
struct ForcedReply {
    enum class Kind { None, Text, Raise, Hang };
    Kind kind = Kind::None;
    platform::Text text;
    std::int32_t number = 0;
};

struct Misbehaviour {
    ForcedReply login, send;
    bool answers = true, answersTwice = false;
    std::chrono::milliseconds answerDelay{100};
    std::optional<std::int32_t> errCode;
    std::optional<platform::Text> message, tag;

    struct Override {
        std::size_t item = 0;
        platform::Text Item::* field = nullptr;
        platform::Text text;
    };
    std::vector<Override> overrides;
    std::set<std::size_t> droppedItems;

    // Names of members in lower case.
    std::set<std::string> raising, lacking, wrongType;
    std::string leaveAt;         // a member's name, "waiting" or "answered"
    std::string callbackDuring;  // "login" or "send"
    std::optional<int> logins;   // how many are still to go wrong; all of them without a value
    int busyLogins = 0;          // how often Login is still to be refused as busy

    // Whether a call of a member is refused as busy. Such calls come again and don't count otherwise.
    bool RefusesAsBusy(std::string_view member);

    // Tells that a member is called. The first login behind those that are to go wrong mends everything.
    void BeginCall(std::string_view member);

    // Makes of a good answer what was asked for.
    void Spoil(Answer& answer) const;
    // Ends the process, with a note in the log and no word to anybody else, if this is the step to do so.
    void LeaveAt(std::string_view step, CallLog& log) const;
};

// Takes one option, without its dashes. False for a name that isn't known or a value that it can't have.
bool TakeMisbehaviour(std::string_view name, std::string_view value, Misbehaviour& misbehaviour);

// The options, for the help.
std::string_view MisbehaviourHelp();

std::string LowerCase(std::string_view name);

}  // namespace switchdesk
