// The databases that are judged, and the add-in's routines on them without a screen.
#pragma once

#include <functional>
#include <map>
#include <optional>

#include "common/ModuleData.h"
#include "platform/headless/Headless.h"

namespace lng {

// Where something is. Without a row it concerns the table, without a field the row.
struct Place {
    std::string database, table;
    std::optional<std::int32_t> row = {};  // SQLite's number of it
    std::string field = {};
};

// A finding, as a line on the standard output for the tool that started this program.
void Report(const Place& place, const std::string& message);

// A row with the fields that were asked for; Null is the empty text.
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

// Databases by a name, whatever their path.
class Shelf : public platform::DatabaseEngine {
  public:
    std::map<std::string, platform::DatabaseRef> databases;  // by file name, in capitals
    platform::DatabaseRef OpenDatabase(platform::TextView path, bool readOnly = false) override;
};

// A database in which a query finds no row but one.
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

// The services of the add-in: boxes are kept, every picture is there, and nothing else happens.
struct Desk {
    explicit Desk(platform::DatabaseEngine& engine);
    // The notice that the add-in showed since the last call, if any.
    std::optional<std::string> Notice();

    platform::headless::Headless headless;
    horalink::Services services;
};

}  // namespace lng
