// Files that change at one stroke, and directories that go when nothing is left in them.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace setup {

// The whole of a file, or nothing where there is none. Raises Fault where it can't be read.
std::optional<std::string> ReadFile(const std::filesystem::path& file);

// Writes a file beside its place and renames it, with the rights of the one that was there. Raises Fault.
void ReplaceFile(const std::filesystem::path& file, const std::string& content);

// As ReplaceFile, from another file; what is there is replaced.
void CopyFile(const std::filesystem::path& from, const std::filesystem::path& to);

// Puts a symbolic link to `target` into its place, at one stroke also where another link or file is there.
// Raises Fault.
void ReplaceLink(const std::filesystem::path& place, const std::filesystem::path& target);

// Makes a directory with those above it. Raises Fault.
void MakeDirectories(const std::filesystem::path& directory);

// Takes a directory away if nothing is in it.
void RemoveIfEmpty(const std::filesystem::path& directory);

// One process at a time holds a directory; others wait for it. Goes with its process, whatever ends that.
class DirectoryLock {
  public:
    // Makes the directory where it is missing, and takes it away at the end if nothing has come into it.
    // Raises Fault.
    explicit DirectoryLock(const std::filesystem::path& directory);
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

  private:
    std::filesystem::path directory_;
    int descriptor_;
};

}  // namespace setup
