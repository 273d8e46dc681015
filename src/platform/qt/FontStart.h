// Reads the configuration of the fonts beside the rest of the start.
#pragma once

#include <thread>

namespace platform {

// The first text that is drawn waits until the fonts of the machine are known, which takes as long as all of
// the toolkit's own start. It can be done meanwhile: what it finds is kept for the whole process.
class FontStart {
  public:
    FontStart();

  private:
    std::jthread reading_;
};

}  // namespace platform
