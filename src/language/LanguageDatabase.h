// The files that hold every text the operator reads.
#pragma once

#include "common/ModuleData.h"
#include "platform/data/Database.h"
#include "platform/desktop/Application.h"
#include "platform/desktop/Desktop.h"

namespace horalink {

// Opens a language database. On failure shows the notice, sets `database` to nothing and returns false.
bool OpenLanguageDatabase(platform::DatabaseEngine& engine, platform::MessageBoxes& boxes,
                          platform::TextView fileName, platform::DatabaseRef& database, bool readOnly);

// Gives the application its title and the texts of the two wait boxes, from the row `exeName` of tProject.
// On failure shows the notice and returns false; what was written before stays.
bool LoadProjectText(platform::MessageBoxes& boxes, platform::Application& app, platform::TextView exeName,
                     platform::Database& database);

// Replaces `messages` by the rows of a table of two columns, in the order of ID. On failure shows the
// notice and returns false; `messages` may hold a part by then.
bool LoadMessageTable(platform::MessageBoxes& boxes, MessageTexts& messages, platform::TextView tableName,
                      platform::Database& database);

// Takes the words on the buttons out of the messages. A table may lack them, and those keep what they have.
void TakeButtonTexts(const MessageTexts& messages, platform::ButtonTexts& buttons);

}  // namespace horalink
