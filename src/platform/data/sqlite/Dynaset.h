// Record sets whose rows can be edited.
#pragma once

#include <optional>
#include <utility>

#include "platform/data/Database.h"
#include "platform/data/sqlite/Statement.h"

namespace platform {

// Reads all rows when it opens, and holds no lock afterwards: two add-ins that each kept a read lock and
// waited to write would deadlock.
class Dynaset : public Recordset {
  public:
    // `query` is in SQLite's dialect. Raises the errors of a wrong query, and 3260 if the file is locked.
    // Rows can be edited if all columns are fields of one table.
    Dynaset(std::shared_ptr<SqliteConnection> connection, TextView query);

    bool EndOfFile() const override;
    Value Field(TextView name) const override;
    void MoveNext() override;
    // The number of all rows.
    std::int32_t RecordCount() const override;
    void Edit() override;
    void SetField(TextView name, const Value& value) override;
    void Update() override;
    void Close() override;

  private:
    struct Row {
        std::int64_t number = 0;                   // in its table
        std::vector<std::optional<Value>> values;  // nullopt for binary data
    };
    using Change = std::pair<std::size_t, Value>;

    std::unique_ptr<Statement> NumberedStatement(TextView query);
    // Reads a row whose fields begin at column `first`; the row number, if there is one, is before them.
    Row ReadRow(const Statement& statement, std::size_t first) const;
    void ReadRows(Statement& statement, std::size_t first);
    void RequireOpen() const;
    void RequireRow() const;
    // Raises 3020 if Edit hasn't been called for the current row.
    std::vector<Change>& Changes();
    void WriteChanges(const std::vector<Change>& changes);
    Text UpdateQuery(const std::vector<Change>& changes) const;

    std::shared_ptr<SqliteConnection> connection_;
    bool open_ = true;
    ColumnNames names_;
    std::vector<Text> origins_;  // the columns' names in their table
    Text table_;                 // empty if rows can't be edited
    Text rowNumber_;             // the name of the row number in the table
    std::vector<Row> rows_;
    std::size_t current_ = 0;
    std::optional<std::vector<Change>> changes_;
};

}  // namespace platform
