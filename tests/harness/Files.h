// What tests of files need.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace platform {

// A directory of a test's own that goes with it.
class TemporaryDirectory {
  public:
    TemporaryDirectory() {
        std::string name = std::filesystem::temp_directory_path() / "horalink-XXXXXX";
        if (!mkdtemp(name.data())) throw std::runtime_error("no temporary directory");
        path_ = std::filesystem::canonical(name);
    }
    ~TemporaryDirectory() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& Path() const { return path_; }

    // Writes a file, with the directories on its way.
    std::filesystem::path Write(std::string_view name, std::string_view content = "") const {
        const std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

  private:
    std::filesystem::path path_;
};

}  // namespace platform
