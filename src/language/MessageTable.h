// Short texts that the dialog joins with values, by index.
#pragma once

#include <vector>

#include "platform/data/Database.h"
#include "platform/desktop/Application.h"
#include "platform/desktop/Desktop.h"

namespace horalink {

// The texts by their rank, from 0. Reading one that isn't there raises 9.
class MessageTexts {
  public:
    const platform::Text& operator[](std::size_t index) const;
    std::vector<platform::Text> texts;
};

// Places of the texts that the add-in reads.
namespace message {
inline constexpr std::size_t loginFailed = 0, loginFailedTitle = 1, accessFailure = 2, progress = 3,
                             caption = 4, answerError = 6, firstButton = 7, lastButton = 16;
}

// Replaces `messages` by the rows of a table of two columns, in the order of ID. On failure shows the
// notice and returns false; `messages` may hold a part by then.
bool LoadMessageTable(platform::MessageBoxes& boxes, MessageTexts& messages, platform::TextView tableName,
                      platform::Database& database);

// Takes the words on the buttons out of the messages. A table may lack them, and those keep what they have.
void TakeButtonTexts(const MessageTexts& messages, platform::ButtonTexts& buttons);

}  // namespace horalink
