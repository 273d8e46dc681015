// Checks of the texts outside forms: the application's, the message boxes' and the messages.
#pragma once

#include "check/CheckedDatabase.h"

namespace lng {

void CheckProject(CheckedDatabase& database);

void CheckMessages(CheckedDatabase& database);

// Tells whether a help file has a topic. Of a file that isn't part of the set, nobody knows: true.
using HasTopic = std::function<bool(const std::string& file, std::int32_t topic)>;

// The boxes of the add-in's own database, among which are those that the dialog shows.
void CheckOwnBoxes(CheckedDatabase& database, const HasTopic& hasTopic);

// The boxes that all add-ins share.
void CheckCommonBoxes(CheckedDatabase& database, const HasTopic& hasTopic);

// The whole number that a field holds, if it holds one.
std::optional<std::int64_t> NumberIn(const Cell& cell);

}  // namespace lng
