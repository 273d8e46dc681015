// Record sets that read their rows from a statement, in one pass.
#pragma once

#include "platform/data/Database.h"
#include "platform/data/sqlite/Statement.h"

namespace platform {

class ForwardOnly : public Recordset {
  public:
    // `query` is in SQLite's dialect. Raises the errors of a wrong query, and 3260 if the file is locked.
    ForwardOnly(std::shared_ptr<SqliteConnection> connection, TextView query);

    bool EndOfFile() const override;
    Value Field(TextView name) const override;
    void MoveNext() override;
    // The number of rows visited so far.
    std::int32_t RecordCount() const override;
    void Edit() override;
    void SetField(TextView name, const Value& value) override;
    void Update() override;
    void Close() override;

  private:
    // Raises 3420 if the set or its database is closed.
    void RequireOpen() const;
    void Advance();

    std::shared_ptr<SqliteConnection> connection_;
    std::unique_ptr<Statement> statement_;
    ColumnNames names_;
    bool atEnd_ = false;
    std::int32_t visited_ = 0;
};

}  // namespace platform
