// Databases for tests: real ones, in memory, made from SQL.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/data/Database.h"

struct sqlite3;
struct sqlite3_vfs;

namespace harness {

// While one of these lives, SQLite keeps what it opens in memory and opens no file.
class MemoryDatabases : public platform::DatabaseEngine {
  public:
    MemoryDatabases();
    ~MemoryDatabases() override;
    MemoryDatabases(const MemoryDatabases&) = delete;
    MemoryDatabases& operator=(const MemoryDatabases&) = delete;

    // Runs SQL in the database of that name, which it makes first where there is none.
    void Add(platform::TextView fileName, const std::string& sql);
    void Remove(platform::TextView fileName);
    // The first column of the first row that a query in SQLite's dialect gives.
    platform::Value Ask(platform::TextView fileName, platform::TextView query);
    // The n-th call from now of the engine, a database or a record set raises the failure, just once; none
    // with 0.
    void FailAt(int n, platform::DataError failure) { notes_->untilFailure = n, notes_->failure = failure; }
    // How many calls have failed so since this was asked last.
    int TakeFailures() { return std::exchange(notes_->failures, 0); }
    bool HasFailed() const { return notes_->hasFailed; }

    // Finds the database by the name at the end of the path. 3024 where nobody has added it.
    platform::DatabaseRef OpenDatabase(platform::TextView path, bool readOnly) override;

    struct Notes {
        // What was opened, written and closed, in order, such as "open C:\A\B.LNG read-only", "rows 8 select
        // ..." with the type of the record set, "edit", "set Version", "update", "close rows", "close".
        std::vector<std::string> calls;
        int untilFailure = 0, failures = 0;
        bool hasFailed = false;
        platform::DataError failure{};

        // Another call: raises the failure if it is this one's turn.
        void Call();
        void Call(std::string note);
    };
    std::vector<std::string>& Calls() { return notes_->calls; }

  private:
    std::string PlaceOf(platform::TextView fileName) const { return folder_ + platform::ToUtf8(fileName); }

    sqlite3_vfs* const formerVfs_;
    const std::string folder_;
    std::map<platform::Text, sqlite3*> kept_;  // a connection each, so that the content lives
    const std::shared_ptr<Notes> notes_ = std::make_shared<Notes>();
};

// Adds Horalink.lng, Common.LNG and Register.mdb with every table and field that the add-in reads. Each text
// is different from every other, so that a mix-up shows.
void AddSmallTexts(MemoryDatabases& databases);

}  // namespace harness
