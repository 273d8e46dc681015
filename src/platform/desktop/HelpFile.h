// Help files: a database whose table tTopics holds a title and a body of simple HTML for each topic number.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/data/Database.h"

namespace platform {

struct HelpTopic {
    Text title;
    Text body;  // simple HTML
};

// The topic with this number, if the file has it. Raises what opening and reading a database raise.
std::optional<HelpTopic> FindTopic(DatabaseEngine& engine, TextView file, std::int32_t id);

}  // namespace platform
