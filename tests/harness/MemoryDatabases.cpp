#include "harness/MemoryDatabases.h"

#include <sqlite3.h>

#include <stdexcept>

#include "platform/data/sqlite/SqliteEngine.h"

namespace harness {

using namespace platform;

namespace {

using NotesRef = std::shared_ptr<MemoryDatabases::Notes>;

class NotedRecordset : public Recordset {
  public:
    NotedRecordset(NotesRef notes, std::unique_ptr<Recordset> real)
        : notes_(std::move(notes)), real_(std::move(real)) {}
    bool EndOfFile() const override { return notes_->Call(), real_->EndOfFile(); }
    Value Field(TextView name) const override { return notes_->Call(), real_->Field(name); }
    void MoveNext() override { return notes_->Call(), real_->MoveNext(); }
    std::int32_t RecordCount() const override { return notes_->Call(), real_->RecordCount(); }
    void Edit() override { return notes_->Call("edit"), real_->Edit(); }
    void SetField(TextView name, const Value& value) override {
        notes_->Call("set " + ToUtf8(name)), real_->SetField(name, value);
    }
    void Update() override { return notes_->Call("update"), real_->Update(); }
    void Close() override { return notes_->Call("close rows"), real_->Close(); }

  private:
    NotesRef notes_;
    std::unique_ptr<Recordset> real_;
};

class NotedDatabase : public Database {
  public:
    NotedDatabase(NotesRef notes, DatabaseRef real) : notes_(std::move(notes)), real_(std::move(real)) {}
    std::unique_ptr<Recordset> OpenRecordset(TextView query, RecordsetType type) override {
        notes_->Call("rows " + std::to_string(static_cast<int>(type)) + " " + ToUtf8(query));
        return std::make_unique<NotedRecordset>(notes_, real_->OpenRecordset(query, type));
    }
    void Close() override { return notes_->Call("close"), real_->Close(); }

  private:
    NotesRef notes_;
    DatabaseRef real_;
};

int count = 0;

}  // namespace

void MemoryDatabases::Notes::Call() {
    if (untilFailure == 0 || --untilFailure > 0) return;
    ++failures;
    hasFailed = true;
    throw MakeDataError(failure);
}

void MemoryDatabases::Notes::Call(std::string note) {
    calls.push_back(std::move(note));
    Call();
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

void MemoryDatabases::Remove(TextView fileName) {
    const auto found = kept_.find(Text(fileName));
    if (found == kept_.end()) throw std::logic_error("no database " + ToUtf8(fileName));
    sqlite3_close(found->second);
    kept_.erase(found);
}

Value MemoryDatabases::Ask(TextView fileName, TextView query) {
    const Text single = u"select (" + Text(query) + u") as Result";
    return OpenSqliteDatabase(PlaceOf(fileName), true)
        ->OpenRecordset(single, RecordsetType::ForwardOnly)
        ->Field(u"Result");
}

DatabaseRef MemoryDatabases::OpenDatabase(TextView path, bool readOnly) {
    notes_->Call("open " + ToUtf8(path) + (readOnly ? " read-only" : ""));
    const Text fileName(path.substr(path.rfind(u'\\') + 1));
    if (!kept_.contains(fileName)) throw MakeDataError(DataError::FileNotFound, ToUtf8(path));
    return std::make_shared<NotedDatabase>(notes_, OpenSqliteDatabase(PlaceOf(fileName), readOnly));
}

}  // namespace harness
