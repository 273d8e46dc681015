// Short texts that the dialog joins with values, by index.
#pragma once

#include "common/ModuleData.h"

namespace horalink {

// Replaces `messages` by the rows of a table of two columns, in the order of ID. On failure shows the
// notice and returns false; `messages` may hold a part by then.
bool LoadMessageTable(platform::MessageBoxes& boxes, MessageTexts& messages, platform::TextView tableName,
                      platform::Database& database);

// Takes the words on the buttons out of the messages. A table may lack them, and those keep what they have.
void TakeButtonTexts(const MessageTexts& messages, platform::ButtonTexts& buttons);

}  // namespace horalink
