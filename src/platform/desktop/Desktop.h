// What the add-in needs of its desktop.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/runtime/Text.h"

namespace platform {

// A message box. `buttons` is the sum of the constants of MessageBoxButtons.h.
struct MessageBox {
    Text prompt;
    std::int32_t buttons = 0;
    std::optional<Text> title;  // the application's title by default
    std::optional<Text> helpFile;
    std::int32_t helpContext = 0;
};

class MessageBoxes {
  public:
    virtual ~MessageBoxes() = default;
    // Shows a box and waits until it is closed. 1 OK, 2 Cancel, 3 Abort, 4 Retry, 5 Ignore, 6 Yes, 7 No.
    virtual std::int16_t Show(const MessageBox& box) = 0;
};

// Shapes of the mouse pointer over the whole application.
enum class MousePointer : std::int16_t { Default = 0, Hourglass = 11 };

class Screen {
  public:
    virtual ~Screen() = default;
    virtual MousePointer Pointer() const = 0;
    virtual void SetPointer(MousePointer pointer) = 0;
    // Size in twips.
    virtual float Width() const = 0;
    virtual float Height() const = 0;
};

// The user's stored values, each under three names in any case.
class Settings {
  public:
    virtual ~Settings() = default;
    virtual Text Get(TextView application, TextView section, TextView key, TextView fallback) const = 0;
};

}  // namespace platform
