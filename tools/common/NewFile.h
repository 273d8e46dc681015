// A file that appears whole or not at all.
#pragma once

#include <filesystem>
#include <string_view>

namespace tools {

// Lies beside its place under a name of its own until Commit, and goes with the object if that never comes.
class NewFile {
  public:
    // Raises Fault where the folder can't be written, or `target` is there and not to be replaced.
    NewFile(std::filesystem::path target, bool replace);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    // Where to write until then.
    const std::filesystem::path& Path() const { return path_; }
    void Write(std::string_view content) const;
    // Puts what was written on the disk and into its place. Raises Fault, also where a file has come there
    // meanwhile that is not to be replaced.
    void Commit();

  private:
    std::filesystem::path target_, path_;
    bool replace_;
};

}  // namespace tools
