// The host object: what an add-in shows its answers to and keeps its values at.
#pragma once

#include <functional>

#include "host/HostView.h"
#include "host/ObservedObject.h"
#include "host/Store.h"

namespace switchdesk {

// Members: oPBX, ShowMessage, ShowResults, ShowCode, DisplayHelp, UnloadChild, TurnOnFlow, TurnOffFlow,
// REGComData, GetComData.
class HostObject : public ObservedObject {
  public:
    struct Parts {
        HostView& view;
        Store& store;
        platform::ObjectRef exchange;
        std::function<void(std::int16_t id)> unloadChild;
    };
    HostObject(const Observation& observation, Parts parts)
        : ObservedObject(observation), parts_(std::move(parts)) {}
    const platform::ClassDescription& Class() const override;

    Parts& Content() { return parts_; }

  private:
    Parts parts_;
};

}  // namespace switchdesk
