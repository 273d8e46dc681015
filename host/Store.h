// Stores values for add-ins, in a file that several hosts may share.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/runtime/Text.h"

namespace switchdesk {

class Store {
  public:
    // A missing file has no values. Raises 75 if the file can't be read.
    explicit Store(std::filesystem::path file);

    std::optional<platform::Text> Get(const platform::Text& application, const platform::Text& key) const;
    // Writes the file before it returns. Raises 75 if that fails, and leaves the file as it was.
    void Set(const platform::Text& application, const platform::Text& key, const platform::Text& value);

  private:
    std::filesystem::path file_;
};

// The user's own store: switchdesk/store.ini in the user's data directory.
std::filesystem::path DefaultStoreFile();

}  // namespace switchdesk
