// One open database file.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/runtime/Text.h"

struct sqlite3;

namespace platform {

class Statement;

// Shared by the database object and its record sets. Once it is closed, its statements are finalized, and
// whoever uses them or it gets 3420.
class SqliteConnection {
  public:
    // Opens the normal file `file` and reads it, so that what is no database is found out here. `ownPlace` is
    // where it has to lie to be written. Raises 3343, 3260, 3051.
    SqliteConnection(const std::filesystem::path& file, const std::filesystem::path& ownPlace, bool readOnly);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    // Raises 3420 once it is closed.
    sqlite3* Handle() const;
    // To be called before a change. Goes on with the file in its own place, where it is copied to if there is
    // none. Raises 3027 and 3043 where it can't be written, and what the constructor raises.
    void PrepareToWrite();
    void Close();

    // Raises the failure of the last call.
    [[noreturn]] void Fail(int code) const;
    [[noreturn]] void FailQuery(std::string_view message) const;

    // Statements that are to go before the file is closed.
    void Add(Statement& statement) { statements_.push_back(&statement); }
    void Remove(Statement& statement);

  private:
    void Open();
    void ReadSchema() const;
    void CopyToOwnPlace() const;

    std::filesystem::path file_;  // absolute
    const std::filesystem::path ownPlace_;
    const bool readOnly_;
    sqlite3* handle_ = nullptr;
    std::vector<Statement*> statements_;
};

}  // namespace platform
