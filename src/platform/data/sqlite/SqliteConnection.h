// One open database file.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/runtime/Text.h"

struct sqlite3;

namespace platform {

class Statement;

// Shared by the database object and its record sets. Closing finalizes its statements; any later use of them
// or of the connection raises 3420.
class SqliteConnection {
  public:
    // Opens a regular file and reads from it, so that a file that is no database is detected here. Changes
    // are only written at `ownPlace`, see PrepareToWrite. Raises 3343, 3260, 3051.
    SqliteConnection(const std::filesystem::path& file, const std::filesystem::path& ownPlace, bool readOnly);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    // Raises 3420 after Close.
    sqlite3* Handle() const;
    // Must be called before a change. Switches to the file at `ownPlace`, after copying it there if it is
    // missing. Raises 3027 or 3043 if that can't be written, and what the constructor raises.
    void PrepareToWrite();
    void Close();

    // Raise the error of the last SQLite call, or that of a wrong query.
    [[noreturn]] void Fail(int code) const;
    [[noreturn]] void FailQuery(std::string_view message) const;

    // Keep track of the statements, which Close has to finalize.
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
