// A database that the add-in's routines read while somebody looks over their shoulder.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/data/Database.h"

namespace lng {

// The last query and what came of it.
struct Reading {
    platform::Text query;
    bool opened = false;
    std::optional<platform::RuntimeError> failure;  // of the database itself: a query, or a field
    platform::Text field;                           // the last that was read
    bool hadRow = false;
    std::map<platform::Text, platform::Value> row;  // by field; those that no value can hold are left out
};

class WatchedDatabase : public platform::Database {
  public:
    explicit WatchedDatabase(platform::DatabaseRef database) : database_(std::move(database)) {}

    std::unique_ptr<platform::Recordset> OpenRecordset(platform::TextView query,
                                                       platform::RecordsetType type) override;
    void Close() override { database_->Close(); }

    // From now on a query gives the row of this number alone, counted from 0; without one, all rows.
    void ShowOnly(std::optional<std::size_t> row) { only_ = row; }
    const Reading& Last() const { return reading_; }

  private:
    friend class WatchedRecordset;

    platform::DatabaseRef database_;
    std::optional<std::size_t> only_;
    Reading reading_;
};

// What a query reads: "select FIELDS from TABLE where FIELD = VALUE".
struct QueryParts {
    std::string table;
    std::vector<std::string> fields;  // also the one behind "where"; without "*"
    std::string conditionField, conditionValue;
};
QueryParts PartsOf(const std::string& query);

// An engine that opens one database, whatever the path.
class OneDatabaseEngine : public platform::DatabaseEngine {
  public:
    explicit OneDatabaseEngine(platform::DatabaseRef database) : database_(std::move(database)) {}
    platform::DatabaseRef OpenDatabase(platform::TextView, bool) override { return database_; }

  private:
    platform::DatabaseRef database_;
};

}  // namespace lng
