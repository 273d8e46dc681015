// The databases with every text the operator reads.
#pragma once

#include "common/ModuleData.h"
#include "platform/data/Database.h"
#include "platform/desktop/Application.h"
#include "platform/desktop/Desktop.h"

namespace horalink {

// Opens a language database. On failure shows the notice, sets `database` to null and returns false.
bool OpenLanguageDatabase(platform::DatabaseEngine& engine, platform::MessageBoxes& boxes,
                          platform::TextView fileName, platform::DatabaseRef& database, bool readOnly);

// Sets the application's title and the texts of the two wait boxes from row `exeName` of tProject. On failure
// shows the notice and returns false; what was set before stays.
bool LoadProjectText(platform::MessageBoxes& boxes, platform::Application& app, platform::TextView exeName,
                     platform::Database& database);

// Replaces `messages` by the rows of a message table, ordered by ID. On failure shows the notice and returns
// false; `messages` may then hold some of them.
bool LoadMessageTable(platform::MessageBoxes& boxes, MessageTexts& messages, platform::TextView tableName,
                      platform::Database& database);

// Sets the button texts from the messages. Texts that the table lacks stay as they are.
void TakeButtonTexts(const MessageTexts& messages, platform::ButtonTexts& buttons);

}  // namespace horalink
