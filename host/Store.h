// Named values that the host keeps for its add-ins, in one file that several hosts may share.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/runtime/Text.h"

namespace switchdesk {

class Store {
  public:
    // A file that isn't there has no values. Raises 75 for one that can't be read.
    explicit Store(std::filesystem::path file);

    std::optional<platform::Text> Get(const platform::Text& application, const platform::Text& key) const;
    // Writes the file before it returns. Raises 75 where that fails; the file then stays as it was.
    void Set(const platform::Text& application, const platform::Text& key, const platform::Text& value);

  private:
    std::filesystem::path file_;
};

// The user's own store: switchdesk/store.ini in the user's data directory.
std::filesystem::path DefaultStoreFile();

}  // namespace switchdesk
