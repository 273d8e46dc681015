// Boxes of a wait that stay open until the test answers.
#pragma once

#include "platform/automation/Automation.h"

namespace fakes {

class FakeWaits : public platform::WaitBoxes {
  public:
    std::unique_ptr<platform::WaitBox> Open(platform::TextView title, platform::TextView text,
                                            std::function<void(bool)> answered) override {
        opened.push_back({platform::Text(title), platform::Text(text), answered});
        auto box = std::make_unique<Box>(open);
        if (decide) answered(decide());
        return box;
    }
    struct Opened {
        platform::Text title, text;
        std::function<void(bool)> answer;
    };
    std::vector<Opened> opened;
    int open = 0;
    std::function<bool()> decide;  // answers at once, where set

  private:
    struct Box : platform::WaitBox {
        explicit Box(int& count) : open(count) { ++open; }
        ~Box() override { --open; }
        int& open;
    };
};

}  // namespace fakes
