// One database of the set that is checked: as the add-in reads it, and as it lies there.
#pragma once

#include <filesystem>
#include <map>
#include <memory>

#include "check/Desk.h"
#include "check/Findings.h"
#include "check/Watched.h"
#include "store/Sql.h"

namespace lng {

// A row with every field that its table has.
struct StoredRow {
    RowKey key;
    std::map<std::string, Cell> fields;

    // Null for a field that isn't there.
    const Cell& operator[](const std::string& field) const;
    // The text of a field; empty where it holds none.
    std::string Text(const std::string& field) const;
    // True for a field that is there and holds none. That a field is missing is told once, not for each row.
    bool LacksText(const std::string& field) const;
};

class CheckedDatabase {
  public:
    // Opens the file as the add-in does. Raises platform::RuntimeError.
    CheckedDatabase(std::string name, const std::filesystem::path& file, Findings& findings);

    const std::string& Name() const { return name_; }
    WatchedDatabase& Watched() { return *watched_; }
    std::shared_ptr<WatchedDatabase> Shared() const { return watched_; }

    bool HasTable(const std::string& table) const;
    bool HasField(const std::string& table, const std::string& field) const;
    std::vector<StoredRow> RowsOf(const std::string& table) const;

    void Report(const std::string& table, const RowKey& row, const std::string& field,
                const std::string& message) const;
    // What a routine of the add-in failed on, by what it read last.
    void ReportFailure(const Notice& notice) const;
    // Runs a routine of the add-in, and reports the notice that it shows.
    template <class Routine>
    void Run(platform::headless::Boxes& boxes, Routine routine) {
        routine();
        if (const auto notice = NoticeIn(boxes.Take())) ReportFailure(*notice);
    }
    // Runs a routine once for each row of its query, with this row alone, so that one fault hides no other.
    // `after` gets the key of each row and what was read of it. Returns the number of rows.
    template <class Routine, class After>
    std::size_t RunForEachRow(platform::headless::Boxes& boxes, Routine routine, After after) {
        std::size_t row = 0;
        for (;; ++row) {
            watched_->ShowOnly(row);
            Run(boxes, routine);
            if (!watched_->Last().hadRow) break;
            after(CurrentKey(), watched_->Last().row);
        }
        watched_->ShowOnly(std::nullopt);
        return row;
    }

    // The key of the row that was read last.
    RowKey CurrentKey() const;

  private:
    void ReportMissingFields(const QueryParts& query) const;

    std::string name_;
    std::unique_ptr<Connection> stored_;
    std::shared_ptr<WatchedDatabase> watched_;
    Findings& findings_;
};

}  // namespace lng
