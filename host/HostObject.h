// The host object: shows an add-in's answers and stores its values.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "host/Answer.h"
#include "host/ObservedObject.h"
#include "host/Store.h"

namespace switchdesk {

using platform::Text;

class HostView {
  public:
    virtual ~HostView() = default;
    virtual void ShowMessage(const platform::Text& message) = 0;
    virtual void ShowResults(const platform::Text& caption, const std::vector<Item>& items) = 0;
    virtual void ShowCode(const platform::Text& code) = 0;
    virtual void ShowHelp(const platform::Text& file) = 0;
    // The add-in's state, also in words, and the exchange that it is open for.
    enum class AddInState { Closed, Opening, Open };
    virtual void ShowState(const platform::Text& words, AddInState state, const platform::Text& exchange) = 0;
};

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
    static const platform::ClassDescription& Description();
    const platform::ClassDescription& Class() const override { return Description(); }

  private:
    platform::ObjectRef oPBX() const { return parts_.exchange; }
    void ShowMessage(const platform::Value& text) { parts_.view.ShowMessage(text.ToTextOrEmpty()); }
    void ShowResults(const Text& caption, const platform::ObjectRef& response);
    void ShowCode(const platform::Value& code) { parts_.view.ShowCode(code.ToTextOrEmpty()); }
    void DisplayHelp(const Text& file) { parts_.view.ShowHelp(file); }
    void UnloadChild(std::int16_t id) { parts_.unloadChild(id); }
    // Nothing here depends on the flow.
    void TurnOnFlow() {}
    void TurnOffFlow() {}
    void REGComData(const Text& application, const Text& key, const Text& value);
    void GetComData(const Text& application, const Text& key, Text& value) const;

    Parts parts_;
};

}  // namespace switchdesk
