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
    // The n-th call from now of the engine, a database or a record set raises the failure, just once; none
    // with 0.
    void FailAt(int n, platform::DataError failure) { failures_->until = n, failures_->kind = failure; }
    // How many calls have failed so since this was asked last.
    int TakeFailures() { return std::exchange(failures_->count, 0); }
    bool HasFailed() const { return failures_->hasFailed; }

    // Finds the database by the name at the end of the path. 3024 where nobody has added it.
    platform::DatabaseRef OpenDatabase(platform::TextView path, bool readOnly) override;

    // The paths that were opened, in order, with " read-only" behind them where they were.
    std::vector<std::string> opened;

    struct Failures {
        int until = 0, count = 0;
        bool hasFailed = false;
        platform::DataError kind{};
        // Another call: raises the failure if it is this one's turn.
        void Call();
    };

  private:
    std::string PlaceOf(platform::TextView fileName) const { return folder_ + platform::ToUtf8(fileName); }

    sqlite3_vfs* const formerVfs_;
    const std::string folder_;
    std::map<platform::Text, sqlite3*> kept_;  // a connection each, so that the content lives
    const std::shared_ptr<Failures> failures_ = std::make_shared<Failures>();
};

// Adds Horalink.lng, Common.LNG and Register.mdb with every table and field that the add-in reads. Each text
// is different from every other, so that a mix-up shows.
void AddSmallTexts(MemoryDatabases& databases);

}  // namespace harness
