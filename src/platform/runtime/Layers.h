// Where the files of an installation are looked for: the user's own directory tree first, then the trees that
// all users share. In each tree a folder named after the language, beside the file, comes ahead of the file.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/runtime/Text.h"

namespace platform {

class Layers {
  public:
    // Without trees, each path means what it says.
    Layers() = default;
    // The first tree is the user's own. `languages` are names of folders, the most wanted first.
    Layers(std::vector<std::filesystem::path> trees, std::vector<Text> languages)
        : trees_(std::move(trees)), languages_(std::move(languages)) {}

    const std::vector<std::filesystem::path>& Trees() const { return trees_; }

    // The file that a path means: below one of the trees, the first that any of them has by that name. A path
    // that leads elsewhere means what it says, and so does one whose file is nowhere.
    std::filesystem::path Find(TextView path) const;
    // That file, and those of the same name that it hides.
    std::vector<std::filesystem::path> FindAll(TextView path) const;

    // Where a file has to lie to be written: its place in the user's own tree, or where it is if that is
    // below none of the trees.
    std::filesystem::path OwnPlace(const std::filesystem::path& file) const;

  private:
    Text InLanguage(TextView path) const;

    std::vector<std::filesystem::path> trees_;
    std::vector<Text> languages_;
};

}  // namespace platform
