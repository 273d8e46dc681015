// The add-in's routines without a screen: boxes are kept, every picture is there, and nothing else happens.
#pragma once

#include <optional>
#include <vector>

#include "common/ModuleData.h"
#include "platform/headless/Headless.h"

namespace lng {

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

    const horalink::Services& Services() const { return services_; }
    platform::Application& App() { return headless_.app; }
    platform::headless::Boxes& Boxes() { return headless_.boxes; }

  private:
    platform::headless::Headless headless_;
    horalink::Services services_;
};

}  // namespace lng
