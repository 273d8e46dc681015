// Databases as the add-in uses them: an engine, open files, record sets with a current row.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/runtime/Value.h"

namespace platform {

// Error numbers, the same as those of the engine that the database files were first made for.
enum class DataError : std::int32_t {
    NoCurrentRow = 3021,
    FileNotFound = 3024,
    ReadOnly = 3027,
    ObjectInvalid = 3420,  // a record set or a database that was closed
    BadUpdate = 3020,      // SetField or Update without Edit
    NoSuchTable = 3078,
    NoSuchQueryField = 3061,
    NoSuchField = 3265,
    QuerySyntax = 3075,
    UnionColumns = 3307,
    Locked = 3260,
    NotADatabase = 3343,
    DiskError = 3043,
    NoPermission = 3051,   // a file that the user may not read
    RecordDeleted = 3167,  // the row was deleted while it was being edited
    ValueRefused = 3317,   // violates a constraint of the table, e.g. a missing or duplicate value
};

// An error with `description`, or with the general wording for its number.
RuntimeError MakeDataError(DataError number, std::string_view description = {});

enum class RecordsetType : std::int16_t {
    Dynaset = 2,      // can be edited
    ForwardOnly = 8,  // one pass
};

// The rows of a query, starting at the first. Field raises 3021 without a current row and 3265 for a field
// that the query doesn't have. Every member raises 3420 after Close.
class Recordset {
  public:
    virtual ~Recordset() = default;
    virtual bool EndOfFile() const = 0;
    virtual Value Field(TextView name) const = 0;
    virtual void MoveNext() = 0;
    // 0 if there are no rows. A forward-only set counts only the rows visited so far.
    virtual std::int32_t RecordCount() const = 0;
    // Change the current row: Edit, then SetField, then Update, which writes the fields that were set and no
    // others. MoveNext discards what was set. Raise 3021 without a current row, 3027 if the set is read-only,
    // 3020 if called out of order, 3265 for an unknown field, 3167 for a deleted row.
    virtual void Edit() = 0;
    virtual void SetField(TextView name, const Value& value) = 0;
    virtual void Update() = 0;
    virtual void Close() = 0;
};

class Database {
  public:
    virtual ~Database() = default;
    virtual std::unique_ptr<Recordset> OpenRecordset(TextView query, RecordsetType type) = 0;
    // Closes the file and all record sets that are still open. Afterwards every member raises 3420.
    virtual void Close() = 0;
};
using DatabaseRef = std::shared_ptr<Database>;

class DatabaseEngine {
  public:
    virtual ~DatabaseEngine() = default;
    // Opens an existing file by a path with backslashes. A file that the user may only read is opened
    // read-only even if `readOnly` is false; its record sets can't be edited. Raises 3024 if there is no such
    // file, 3051 without permission, 3260 if it is locked and 3343 if it is no database.
    virtual DatabaseRef OpenDatabase(TextView path, bool readOnly = false) = 0;
};

}  // namespace platform
