// What the host tells its operator.
#pragma once

#include <cstdint>
#include <vector>

#include "host/Item.h"

namespace switchdesk {

class HostView {
  public:
    virtual ~HostView() = default;
    virtual void ShowMessage(const platform::Text& message) = 0;
    virtual void ShowResults(const platform::Text& caption, const std::vector<Item>& items) = 0;
    virtual void ShowCode(const platform::Text& code) = 0;
    virtual void ShowHelp(const platform::Text& file) = 0;
    virtual void ShowFlow(bool on) = 0;
    // The state of the add-in in plain words; whether one is open, and for which exchange.
    virtual void ShowState(const platform::Text& state, bool open, const platform::Text& exchange) = 0;
};

}  // namespace switchdesk
