// The databases to judge, and what the add-in's routines need to run on them without a screen.
#pragma once

#include <functional>
#include <map>
#include <optional>

#include "common/ModuleData.h"
#include "platform/headless/Headless.h"

namespace lng {

// The place of a finding. Without a row it concerns the whole table, without a field the whole row.
struct Place {
    std::string database, table;
    std::optional<std::int32_t> row = {};  // SQLite's row number
    std::string field = {};
};

// Writes a finding as a line to standard output, for the tool that started this program.
void Report(const Place& place, const std::string& message);

// A row with the requested fields; Null becomes an empty text.
struct Row {
    std::int32_t number;  // SQLite's
    std::map<std::string, platform::Text> fields;
};

struct Judged {
    std::string name;
    platform::DatabaseRef database;

    std::vector<Row> Rows(const std::string& table, const std::vector<std::string>& fields) const;
    void Report(const std::string& table, const Row& row, const std::string& field,
                const std::vector<std::string>& faults) const;
};

// Finds databases by their file name, whatever their directory.
class Shelf : public platform::DatabaseEngine {
  public:
    std::map<std::string, platform::DatabaseRef> databases;  // by file name, in capitals
    platform::DatabaseRef OpenDatabase(platform::TextView path, bool readOnly = false) override;
};

// A database whose queries find only the row with this number.
class OneRow : public platform::Database {
  public:
    OneRow(platform::Database& database, std::int32_t row) : database_(database), row_(row) {}
    std::unique_ptr<platform::Recordset> OpenRecordset(platform::TextView query,
                                                       platform::RecordsetType type) override;
    void Close() override {}

  private:
    platform::Database& database_;
    std::int32_t row_;
};

// The services that the add-in's routines get. Records boxes, has every picture, and does nothing else.
struct Desk {
    explicit Desk(platform::DatabaseEngine& engine);
    // The notice that the add-in showed since the last call, if any.
    std::optional<std::string> Notice();

    platform::headless::Headless headless;
    horalink::Services services;
};

}  // namespace lng
