// The class that the host creates by name.
#pragma once

#include "platform/runtime/Object.h"
#include "shell/AddInMain.h"

namespace horalink {

// Has no state: every member forwards to the process's one dialog, which counts the objects. The last release
// ends the process.
class cOLELayer : public platform::Object {
  public:
    // The name under which a host creates the class.
    static constexpr std::string_view className = "Horalink10013.cOLELayer";

    // Creates an object, with the dialog if needed. Raises what loading raises.
    static std::shared_ptr<cOLELayer> Create(AddInMain& main);
    explicit cOLELayer(AddInMain& main) : main_(main) {}

    const platform::ClassDescription& Class() const override;
    void LastClientLeaves() override;
    void LastClientGone() override;

    // True if the dialog failed to load.
    bool RegisterPBX(const platform::Text& pbx, const platform::ObjectRef& parent, std::int16_t id);
    void PutVisible(bool visible);
    bool Visible();
    void SetBackGround(std::int16_t index);

  private:
    void Class_Terminate();

    AddInMain& main_;
    bool isLast_ = false;
};

}  // namespace horalink
