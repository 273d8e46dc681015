#include "platform/data/sqlite/SqliteEngine.h"

#include "platform/data/Database.h"
#include "platform/data/Dialect.h"
#include "platform/data/sqlite/Dynaset.h"
#include "platform/data/sqlite/ForwardOnly.h"
#include "platform/desktop/Paths.h"

namespace platform {

namespace {

namespace fs = std::filesystem;

class SqliteDatabase : public Database {
  public:
    SqliteDatabase(const fs::path& file, bool readOnly)
        : connection_(std::make_shared<SqliteConnection>(file, readOnly)) {}

    std::unique_ptr<Recordset> OpenRecordset(TextView query, RecordsetType type) override {
        connection_->Handle();
        const Text translated = ToSqliteDialect(query);
        if (type == RecordsetType::Dynaset) return std::make_unique<Dynaset>(connection_, translated);
        return std::make_unique<ForwardOnly>(connection_, translated);
    }

    void Close() override {
        connection_->Handle();
        connection_->Close();
    }

  private:
    std::shared_ptr<SqliteConnection> connection_;
};

// Tells apart what SQLite reports as one: a file that isn't there, one that the user may not reach, and one
// that is empty, which SQLite would take for a new database.
void RequireDatabaseFile(const fs::path& file, TextView path) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::none)
        throw MakeDataError(DataError::NoPermission,
                            "You don't have permission to open '" + ToUtf8(path) + "'");
    if (!fs::is_regular_file(status))
        throw MakeDataError(DataError::FileNotFound, "The file '" + ToUtf8(path) + "' was not found");
    if (fs::file_size(file, error) == 0)
        throw MakeDataError(DataError::NotADatabase, "The file '" + ToUtf8(path) + "' is empty");
}

class SqliteEngine : public DatabaseEngine {
  public:
    DatabaseRef OpenDatabase(TextView path, bool readOnly) override {
        const fs::path file = RealPath(path);
        RequireDatabaseFile(file, path);
        return std::make_shared<SqliteDatabase>(file, readOnly);
    }
};

}  // namespace

std::unique_ptr<DatabaseEngine> MakeSqliteEngine() {
    return std::make_unique<SqliteEngine>();
}

}  // namespace platform
