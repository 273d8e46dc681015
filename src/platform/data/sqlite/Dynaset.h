// Rows that can be changed one by one.
#pragma once

#include <optional>
#include <utility>

#include "platform/data/Database.h"
#include "platform/data/sqlite/Statement.h"

namespace platform {

// Reads all its rows when it opens and holds no lock from then on: two add-ins that each kept a read lock
// and waited to write would block each other for good.
class Dynaset : public Recordset {
  public:
    // `query` is in SQLite's dialect. Raises what a query can be wrong with, and 3260. Rows can be edited
    // where all columns are fields of one table.
    Dynaset(std::shared_ptr<SqliteConnection> connection, TextView query);

    bool EndOfFile() const override;
    Value Field(TextView name) const override;
    void MoveNext() override;
    // The number of rows, known in full.
    std::int32_t RecordCount() const override;
    void Edit() override;
    void SetField(TextView name, const Value& value) override;
    void Update() override;
    void Close() override;

  private:
    struct Row {
        std::int64_t number = 0;                   // in its table
        std::vector<std::optional<Value>> values;  // nothing for binary data
    };
    using Change = std::pair<std::size_t, Value>;

    std::unique_ptr<Statement> NumberedStatement(TextView query);
    // Reads a row whose fields begin at `first`; its number, if any, is before them.
    Row ReadRow(const Statement& statement, std::size_t first) const;
    void ReadRows(Statement& statement, std::size_t first);
    void RequireOpen() const;
    void RequireRow() const;
    // Raises 3020 where Edit hasn't been called for the current row.
    std::vector<Change>& Changes();
    void WriteChanges(const std::vector<Change>& changes);
    Text UpdateQuery(const std::vector<Change>& changes) const;

    std::shared_ptr<SqliteConnection> connection_;
    bool open_ = true;
    ColumnNames names_;
    std::vector<Text> origins_;  // the columns' names in their table
    Text table_;                 // empty where rows can't be edited
    Text rowNumber_;             // the name of a row's number in the table
    std::vector<Row> rows_;
    std::size_t current_ = 0;
    std::optional<std::vector<Change>> changes_;
};

}  // namespace platform
