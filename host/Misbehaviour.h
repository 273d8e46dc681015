// Ways in which the host breaks the contract on request, to test how an add-in copes.
#pragma once

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/Answer.h"

namespace switchdesk {

struct Misbehaviour {
    std::optional<platform::Text> login;  // what Login returns
    bool answers = true;
    std::chrono::milliseconds answerDelay{100};

    struct Override {
        std::size_t item = 0;
        platform::Text Item::* field = nullptr;
        platform::Text text;
    };
    std::vector<Override> overrides;
    std::set<std::size_t> droppedItems;

    std::set<std::string> lacking;  // names of members in lower case
    std::optional<int> logins;      // how many logins are still to misbehave; all if unset

    // Counts logins. After the last login that is to misbehave, the next one ends all misbehaviour.
    void BeginCall(std::string_view member);
    // Makes a good answer bad, as requested.
    void Spoil(Answer& answer) const;
};

// Reads "never" or "late:MS". Raises 5 for anything else, as the next two do.
void TakeAnswer(std::string_view value, Misbehaviour& misbehaviour);
// Reads "I:FIELD=TEXT".
Misbehaviour::Override ParseOverride(std::string_view value);
// Reads a whole number that isn't below 0.
int ParseCount(std::string_view value);

std::string LowerCase(std::string_view name);

}  // namespace switchdesk
