#include "platform/data/sqlite/SqliteEngine.h"

#include "platform/data/Database.h"
#include "platform/data/Dialect.h"
#include "platform/data/sqlite/Dynaset.h"
#include "platform/data/sqlite/ForwardOnly.h"

namespace platform {

namespace {

namespace fs = std::filesystem;

class SqliteDatabase : public Database {
  public:
    SqliteDatabase(const fs::path& file, const fs::path& ownPlace, bool readOnly)
        : connection_(std::make_shared<SqliteConnection>(file, ownPlace, readOnly)) {}

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

// Distinguishes cases that SQLite doesn't: a missing file, one that the user may not reach, and an empty one,
// which SQLite would take for a new database.
void RequireDatabaseFile(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::none)
        throw MakeDataError(DataError::NoPermission,
                            "You don't have permission to open '" + file.native() + "'");
    if (!fs::is_regular_file(status))
        throw MakeDataError(DataError::FileNotFound, "The file '" + file.native() + "' was not found");
    if (fs::file_size(file, error) == 0)
        throw MakeDataError(DataError::NotADatabase, "The file '" + file.native() + "' is empty");
}

class SqliteEngine : public DatabaseEngine {
  public:
    explicit SqliteEngine(Layers layers) : layers_(std::move(layers)) {}

    DatabaseRef OpenDatabase(TextView path, bool readOnly) override {
        const fs::path file = layers_.Find(path);
        RequireDatabaseFile(file);
        return std::make_shared<SqliteDatabase>(file, layers_.OwnPlace(file), readOnly);
    }

  private:
    const Layers layers_;
};

}  // namespace

DatabaseRef OpenSqliteDatabase(const fs::path& file, bool readOnly) {
    return std::make_shared<SqliteDatabase>(file, file, readOnly);
}

std::unique_ptr<DatabaseEngine> MakeSqliteEngine(Layers layers) {
    return std::make_unique<SqliteEngine>(std::move(layers));
}

}  // namespace platform
