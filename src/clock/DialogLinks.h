// What the pieces of the dialog ask of it.
#pragma once

#include <cstdint>
#include <functional>

namespace horalink {

struct DialogLinks {
    // Switches the buttons as dlgAddin::EnableButtons tells.
    std::function<void(std::int16_t which, bool enabled)> EnableButtons;
    std::function<bool()> HasPBXName;
    // Tells the operator of the years that can be set, and waits until that is read.
    std::function<void()> ShowYearNotice;
};

}  // namespace horalink
