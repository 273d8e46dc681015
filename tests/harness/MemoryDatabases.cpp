#include "harness/MemoryDatabases.h"

#include <sqlite3.h>

#include <stdexcept>

#include "platform/data/sqlite/SqliteEngine.h"

namespace harness {

using namespace platform;

namespace {

using FailuresRef = std::shared_ptr<MemoryDatabases::Failures>;

class FailingRecordset : public Recordset {
  public:
    FailingRecordset(FailuresRef failures, std::unique_ptr<Recordset> real)
        : failures_(std::move(failures)), real_(std::move(real)) {}
    bool EndOfFile() const override { return failures_->Call(), real_->EndOfFile(); }
    Value Field(TextView name) const override { return failures_->Call(), real_->Field(name); }
    void MoveNext() override { failures_->Call(), real_->MoveNext(); }
    std::int32_t RecordCount() const override { return failures_->Call(), real_->RecordCount(); }
    void Edit() override { failures_->Call(), real_->Edit(); }
    void SetField(TextView name, const Value& value) override {
        failures_->Call(), real_->SetField(name, value);
    }
    void Update() override { failures_->Call(), real_->Update(); }
    void Close() override { failures_->Call(), real_->Close(); }

  private:
    FailuresRef failures_;
    std::unique_ptr<Recordset> real_;
};

class FailingDatabase : public Database {
  public:
    FailingDatabase(FailuresRef failures, DatabaseRef real)
        : failures_(std::move(failures)), real_(std::move(real)) {}
    std::unique_ptr<Recordset> OpenRecordset(TextView query, RecordsetType type) override {
        failures_->Call();
        return std::make_unique<FailingRecordset>(failures_, real_->OpenRecordset(query, type));
    }
    void Close() override { failures_->Call(), real_->Close(); }

  private:
    FailuresRef failures_;
    DatabaseRef real_;
};

int count = 0;

}  // namespace

void MemoryDatabases::Failures::Call() {
    if (until == 0 || --until > 0) return;
    ++count;
    hasFailed = true;
    throw MakeDataError(kind);
}

// Names that begin with a slash are shared by the connections of a process; each engine has its own folder.
MemoryDatabases::MemoryDatabases()
    : formerVfs_(sqlite3_vfs_find(nullptr)), folder_("/" + std::to_string(++count) + "/") {
    sqlite3_vfs_register(sqlite3_vfs_find("memdb"), 1);
}

MemoryDatabases::~MemoryDatabases() {
    for (const auto& [name, handle] : kept_) sqlite3_close(handle);
    sqlite3_vfs_register(formerVfs_, 1);
}

void MemoryDatabases::Add(TextView fileName, const std::string& sql) {
    sqlite3*& handle = kept_[Text(fileName)];
    if (!handle) sqlite3_open(PlaceOf(fileName).c_str(), &handle);
    if (sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::logic_error(sql + ": " + sqlite3_errmsg(handle));
}

DatabaseRef MemoryDatabases::OpenDatabase(TextView path, bool readOnly) {
    opened.push_back(ToUtf8(path) + (readOnly ? " read-only" : ""));
    failures_->Call();
    const Text fileName(path.substr(path.rfind(u'\\') + 1));
    if (!kept_.contains(fileName)) throw MakeDataError(DataError::FileNotFound, ToUtf8(path));
    return std::make_shared<FailingDatabase>(failures_, OpenSqliteDatabase(PlaceOf(fileName), readOnly));
}

}  // namespace harness
