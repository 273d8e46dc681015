// The host object: what an add-in shows its answers to and keeps its values at.
#pragma once

#include <functional>

#include "host/HostView.h"
#include "host/ObservedObject.h"
#include "host/Store.h"

namespace switchdesk {

using platform::Text;

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

  private:
    platform::ObjectRef oPBX() const { return parts_.exchange; }
    void ShowMessage(const platform::Value& text) { parts_.view.ShowMessage(text.ToTextOrEmpty()); }
    void ShowResults(const Text& caption, const platform::ObjectRef& response);
    void ShowCode(const platform::Value& code) { parts_.view.ShowCode(code.ToTextOrEmpty()); }
    void DisplayHelp(const Text& file) { parts_.view.ShowHelp(file); }
    void UnloadChild(std::int16_t id) { parts_.unloadChild(id); }
    void TurnOnFlow() { parts_.view.ShowFlow(true); }
    void TurnOffFlow() { parts_.view.ShowFlow(false); }
    void REGComData(const Text& application, const Text& key, const Text& value);
    void GetComData(const Text& application, const Text& key, Text& value) const;

    Parts parts_;
};

}  // namespace switchdesk
