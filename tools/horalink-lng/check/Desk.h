// A desktop that the add-in's routines can run on without a screen: boxes are written down, every picture is
// there, and nothing else happens.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "shell/ModuleData.h"

namespace lng {

// Notes each box in place of showing it.
class NotedBoxes : public platform::MessageBoxes {
  public:
    std::int16_t Show(const platform::MessageBox& box) override;
    // The boxes since the last call.
    std::vector<platform::MessageBox> Take();

  private:
    std::vector<platform::MessageBox> shown_;
};

// The number and the description that the add-in's notice of a failure shows.
struct Notice {
    std::int32_t number = 0;
    std::string description;
};
// The notice among the boxes, where there is one.
std::optional<Notice> NoticeIn(const std::vector<platform::MessageBox>& boxes);

class Desk {
  public:
    // `engine` opens what the add-in asks for.
    explicit Desk(platform::DatabaseEngine& engine);
    ~Desk();

    const horalink::Services& Services() const;
    platform::Application& App();
    NotedBoxes& Boxes();

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace lng
