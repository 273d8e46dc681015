// The tree of one user and one market: links into the package's, and a register of its own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "horalink-setup/Package.h"
#include "platform/data/Database.h"

namespace setup {

class UserTree {
  public:
    explicit UserTree(std::filesystem::path root) : root_(std::move(root)) {}

    const std::filesystem::path& Root() const { return root_; }
    bool Exists() const;
    // False for a tree in which only others are left.
    bool HoldsAddIn() const;

    // Makes what is missing and brings links up to date. A file in the place of a link is the user's own, and
    // a register that is there stays: they are replaced with `force` only. Returns what was kept. Raises
    // Fault.
    std::vector<std::filesystem::path> LayOut(platform::DatabaseEngine& engine, const Package& package,
                                              const std::string& language, bool force) const;

    // Takes away what LayOut makes, and the directories that become empty, up to that of the family. Stays:
    // what others have put there, and a register with entries of others or that can't be read. Returns what
    // was left.
    std::vector<std::filesystem::path> TakeAway(platform::DatabaseEngine& engine) const;

    // The folder of the package that the texts come from; empty where that can't be told.
    std::string Language() const;
    // The package's tree that the add-in's program is linked from; empty where it is no link.
    std::filesystem::path Source() const;

  private:
    std::filesystem::path root_;
};

}  // namespace setup
