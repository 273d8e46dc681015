// Language databases of any length, with the tables of the shipped ones.
#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <string>

#include "../tests/unit/TemporaryDirectory.h"
#include "platform/runtime/RuntimeError.h"

namespace bench {

using Connection = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using Query = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

inline void Require(int code, sqlite3* database) {
    if (code != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(database));
}

inline Connection Open(const std::filesystem::path& file) {
    sqlite3* handle = nullptr;
    const int code = sqlite3_open_v2(file.c_str(), &handle, SQLITE_OPEN_READWRITE, nullptr);
    Connection database(handle, sqlite3_close);
    Require(code, handle);
    return database;
}

inline Query Prepare(sqlite3* database, const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(database, text.c_str(), -1, &statement, nullptr), database);
    return Query(statement, sqlite3_finalize);
}

// A copy of a shipped database with other rows in one table, removed with the object.
class LanguageFile {
  public:
    // `select` yields the rows, from `i` = 0 to `rows` − 1.
    LanguageFile(const std::string& name, const std::string& table, const std::string& select, long rows)
        : file_(directory_.Path() / name) {
        std::filesystem::copy_file(std::filesystem::path(HORALINK_LANGUAGE_FILES) / name, file_);
        const Connection database = Open(file_);
        const std::string insert = "DELETE FROM " + table +
                                   "; WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT "
                                   "i + 1 FROM n WHERE i + 1 < " +
                                   std::to_string(rows) + ") INSERT INTO " + table + " SELECT " + select +
                                   " FROM n";
        Require(sqlite3_exec(database.get(), insert.c_str(), nullptr, nullptr, nullptr), database.get());
    }
    const std::filesystem::path& Path() const { return file_; }

  private:
    platform::TemporaryDirectory directory_;
    std::filesystem::path file_;
};

}  // namespace bench
