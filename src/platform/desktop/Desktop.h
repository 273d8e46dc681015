// What the add-in needs from the desktop.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/forms/Picture.h"
#include "platform/runtime/Text.h"

namespace platform {

// Constants to add up for MessageBox::buttons.
namespace buttons {
inline constexpr std::int32_t okOnly = 0, okCancel = 1, abortRetryIgnore = 2, yesNoCancel = 3, yesNo = 4,
                              retryCancel = 5;
inline constexpr std::int32_t critical = 16, question = 32, exclamation = 48, information = 64;
inline constexpr std::int32_t defaultButton1 = 0, defaultButton2 = 256, defaultButton3 = 512,
                              defaultButton4 = 768;
inline constexpr std::int32_t applicationModal = 0, systemModal = 4096, helpButton = 16384,
                              setForeground = 65536, right = 524288, rightToLeft = 1048576;

}  // namespace buttons

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
    // Shows a box and waits until it is closed. Returns 1 for OK, 2 Cancel, 3 Abort, 4 Retry, 5 Ignore, 6
    // Yes, 7 No.
    virtual std::int16_t Show(const MessageBox& box) = 0;
};

// Mouse pointer shapes, which apply to the whole application.
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

// The user's settings, each with three names, which ignore case.
class Settings {
  public:
    virtual ~Settings() = default;
    virtual Text Get(TextView application, TextView section, TextView key, TextView fallback) const = 0;
};

// Finds and loads picture files.
class PictureFiles {
  public:
    virtual ~PictureFiles() = default;
    // The name of the regular file at `path`, or an empty text if there is none.
    virtual Text Dir(TextView path) const = 0;
    // Raises 53 if the file can't be opened, 481 if it isn't a picture.
    virtual forms::PictureRef LoadPicture(TextView path) const = 0;
};

}  // namespace platform
