// Finds the files of an installation: first in the user's own directory tree, then in the trees that all
// users share. In each tree, a file in a folder named after the language takes precedence over the file
// beside that folder.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/runtime/Text.h"

namespace platform {

class Layers {
  public:
    // Without trees, every path is used as it is.
    Layers() = default;
    // The first tree is the user's own. `languages` are names of folders, in order of preference.
    Layers(std::vector<std::filesystem::path> trees, std::vector<Text> languages)
        : trees_(std::move(trees)), languages_(std::move(languages)) {}

    const std::vector<std::filesystem::path>& Trees() const { return trees_; }

    // The file for a path. If the path is below one of the trees, that is the first existing file of that
    // name in any of them, or its place in the last tree if there is none. Other paths are used as they are.
    std::filesystem::path Find(TextView path) const;
    // All existing files for a path, that of Find first.
    std::vector<std::filesystem::path> FindAll(TextView path) const;

    // The path at which to write a file: its place in the user's own tree, or `file` itself if it is below
    // none of the trees.
    std::filesystem::path OwnPlace(const std::filesystem::path& file) const;

  private:
    Text InLanguage(TextView path) const;

    std::vector<std::filesystem::path> trees_;
    std::vector<Text> languages_;
};

}  // namespace platform
