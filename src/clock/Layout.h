// The controls of the dialog, their places and stored values.
#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "platform/forms/Form.h"

namespace horalink {

// Every control of the dialog under its own name; the form owns them.
struct DialogControls {
    std::array<platform::forms::CommandButton*, 3> cmdButton{};
    std::array<platform::forms::TextBox*, 4> txtTime{};
    platform::forms::UpDown* updTime = nullptr;
    std::array<platform::forms::Label*, 2> lblColon{};
    platform::forms::Label* lblTime = nullptr;
    std::array<platform::forms::Label*, 3> lblBevel{};
    platform::forms::CheckBox* chkTrack = nullptr;
    platform::forms::Label* lblTrack = nullptr;
    platform::forms::CheckBox* chkTrackDate = nullptr;
    platform::forms::Label* lblTrackDate = nullptr;
    platform::forms::Calendar* Calendar = nullptr;
    platform::forms::Timer* tmrClock = nullptr;
    platform::forms::Timer* tmrEvent = nullptr;
    platform::forms::Image* imgBack = nullptr;
    platform::forms::Menu* mnuWhatsThis = nullptr;
    platform::forms::Menu* itmWhatsThis = nullptr;
};

// Places of the buttons in cmdButton, and what they do.
namespace button {
inline constexpr std::int16_t hide = 0, update = 1, lookup = 2;
}

// Values of the calendar's showdateselectors.
namespace selectors {
inline constexpr std::int16_t shown = 1, hidden = 2;
}

// Lays the dialog out on an empty form.
DialogControls LayOut(platform::forms::Form& form);

// What the dialog offers its parts.
struct DialogLinks {
    // See dlgAddin::EnableButtons.
    static constexpr std::int16_t updateButtonAlone = 1;
    std::function<void(std::int16_t which, bool enabled)> EnableButtons;
    std::function<bool()> HasPBXName;
    // Shows which years can be set, and waits until the operator closes the box.
    std::function<void()> ShowYearNotice;
};

// The dialog's own pictures, as SVG. The build generates the definitions from data/icons.
namespace icons {
extern const std::string_view hide, update, updateDisabled, lookup, lookupDisabled, horalink;
}

}  // namespace horalink
