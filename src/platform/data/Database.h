// Databases as the add-in uses them: an engine, open files, record sets with a current row.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/runtime/Value.h"

namespace platform {

// Numbers of failures, those of the engine whose files these once were.
enum class DataError : std::int32_t {
    NoCurrentRow = 3021,
    FileNotFound = 3024,
    ReadOnly = 3027,
    ObjectInvalid = 3420,  // a record set or a database that was closed
    BadUpdate = 3020,      // a field written or an update made without Edit
    NoSuchTable = 3078,
    NoSuchQueryField = 3061,
    NoSuchField = 3265,
    QuerySyntax = 3075,
    UnionColumns = 3307,
    Locked = 3260,
    NotADatabase = 3343,
    DiskError = 3043,
    NoPermission = 3051,   // a file that the user may not read
    RecordDeleted = 3167,  // the row went away while it was being edited
    ValueRefused = 3317,   // a rule of the table, such as a missing or a repeated value
};

// A failure in plain English: `description`, or the general wording for its number.
RuntimeError MakeDataError(DataError number, std::string_view description = {});

enum class RecordsetType : std::int16_t {
    Dynaset = 2,      // can be edited
    ForwardOnly = 8,  // one pass
};

// Rows of a query, the first of them current. Reading a field: 3021 without a current row, 3265 for a
// field that the query doesn't have. Every member raises 3420 after Close.
class Recordset {
  public:
    virtual ~Recordset() = default;
    virtual bool EndOfFile() const = 0;
    virtual Value Field(TextView name) const = 0;
    virtual void MoveNext() = 0;
    // A dynaset knows 0 or more here once it is open; above 0 means only that there are rows.
    virtual std::int32_t RecordCount() const = 0;
    // Change the current row: Edit, then SetField, then Update, which writes the fields that were set and
    // no others. Moving on drops what was set. Raise 3021 without a current row, 3027 where the set can't
    // be edited, 3020 out of order, 3265 for a field that isn't there, 3167 for a deleted row.
    virtual void Edit() = 0;
    virtual void SetField(TextView name, const Value& value) = 0;
    virtual void Update() = 0;
    virtual void Close() = 0;
};

class Database {
  public:
    virtual ~Database() = default;
    virtual std::unique_ptr<Recordset> OpenRecordset(TextView query, RecordsetType type) = 0;
    // Record sets that are still open are closed with it, and the file is let go of. Closed, every member
    // raises 3420.
    virtual void Close() = 0;
};
using DatabaseRef = std::shared_ptr<Database>;

class DatabaseEngine {
  public:
    virtual ~DatabaseEngine() = default;
    // Opens a file by a path with backslashes, never creating one. A file that the user may only read is
    // opened for reading even where `readOnly` is false; its record sets can't be edited. Raises 3024 for
    // what is no file, 3051, 3260 and 3343.
    virtual DatabaseRef OpenDatabase(TextView path, bool readOnly = false) = 0;
};

}  // namespace platform
