// A file that appears whole or not at all.
#pragma once

#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

namespace tools {

// Lies beside its place under a name of its own until Commit, and goes with the object if that never comes.
class NewFile {
  public:
    // Raises Fault where the folder can't be written, or `target` is there and not to be replaced.
    NewFile(std::filesystem::path target, bool replace);
    ~NewFile();
    NewFile(NewFile&& other) noexcept;
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    // Where to write until then.
    const std::filesystem::path& Path() const { return path_; }
    const std::filesystem::path& Target() const { return target_; }
    void Write(std::string_view content) const;
    // Puts what was written on the disk and into its place. Raises Fault, also where a file has come there
    // meanwhile that is not to be replaced.
    void Commit();

  private:
    std::filesystem::path target_, path_;
    bool replace_;
};

// Makes files that belong together. `fill` writes each, by its place in the list, under the name that it has
// until all are whole. Folders that are missing are made, and go again where nothing comes of the files.
// Raises Fault, and what `fill` raises.
void MakeFiles(const std::vector<std::filesystem::path>& targets, bool replace,
               const std::function<void(std::size_t, const std::filesystem::path&)>& fill);

}  // namespace tools
