// One prepared statement of a connection.
#pragma once

#include <memory>
#include <vector>

#include "platform/data/sqlite/SqliteConnection.h"
#include "platform/runtime/Value.h"

struct sqlite3_stmt;

namespace platform {

// Every member raises 3420 once the connection is closed. Columns and parameters count from 0.
class Statement {
  public:
    // `query` is in SQLite's dialect. Raises the errors of a wrong query.
    Statement(std::shared_ptr<SqliteConnection> connection, TextView query);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Moves to the next row; false after the last one.
    bool Step();

    bool OnlyReads() const;
    std::size_t ColumnCount() const;
    Text ColumnName(std::size_t column) const;
    // The table and field that a column comes from; empty for an expression.
    Text TableOf(std::size_t column) const;
    Text OriginOf(std::size_t column) const;
    // Raises 13 for binary data.
    Value Column(std::size_t column) const;
    bool IsBinary(std::size_t column) const;
    std::int64_t WholeNumber(std::size_t column) const;

    // Raises 13 for a value that no field can hold.
    void Bind(std::size_t parameter, const Value& value);
    void BindWholeNumber(std::size_t parameter, std::int64_t number);

    // Called when the connection closes.
    void Finalize();

  private:
    sqlite3_stmt* Live() const;

    std::shared_ptr<SqliteConnection> connection_;
    sqlite3_stmt* statement_ = nullptr;
};

// A statement for a query that returns rows and changes nothing. Raises 3075 for any other.
std::unique_ptr<Statement> ReadingStatement(const std::shared_ptr<SqliteConnection>& connection,
                                            TextView query);

// The error for a field that no Value can hold.
RuntimeError BinaryData();

// The names of the columns from `first` on, compared ignoring case.
class ColumnNames {
  public:
    ColumnNames() = default;
    explicit ColumnNames(const Statement& statement, std::size_t first = 0);
    bool Holds(TextView name) const { return IndexOf(name) != names_.size(); }
    // The column, counted from `first`. Raises 3265 for an unknown name.
    std::size_t Find(TextView name) const;

  private:
    // The number of names if `name` isn't one of them.
    std::size_t IndexOf(TextView name) const;

    std::vector<Text> names_;
};

}  // namespace platform
