// SQLite as the tool needs it: any value, any file, and failures in SQLite's own words.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "source/Source.h"

struct sqlite3;
struct sqlite3_stmt;

namespace lng {

// What SQLite says of a failure.
class SqlFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// One database. Every member raises SqlFailure.
class Connection {
  public:
    // A database in memory, gone with the object.
    Connection();
    // Reads a file, or writes one that is there already and may be empty.
    Connection(const std::filesystem::path& file, bool readOnly);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    sqlite3* Handle() const { return handle_; }
    // Runs one statement that gives no rows. Raises where there is none, or more than one.
    void Run(std::string_view statement);
    std::int64_t LastRowId() const;
    // Closes and tells of what is left undone.
    void Close();

  private:
    void Open(const char* file, int flags);

    sqlite3* handle_ = nullptr;
};

// A statement, with parameters and columns counted from 0. Every member raises SqlFailure.
class Query {
  public:
    Query(const Connection& connection, std::string_view statement);
    ~Query();
    Query(Query&& other) noexcept;
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    void Bind(std::size_t parameter, const Cell& value);
    // Goes on to the next row; false behind the last one.
    bool Step();
    void Reset();
    Cell Column(std::size_t column) const;
    // The text of a column, empty for Null.
    std::string TextOf(std::size_t column) const;
    std::int64_t NumberOf(std::size_t column) const;

  private:
    sqlite3* connection_;
    sqlite3_stmt* statement_ = nullptr;
};

// A name as it stands in a statement.
std::string QuotedName(std::string_view name);

}  // namespace lng
