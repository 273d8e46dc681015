#include "platform/data/Database.h"

namespace platform {

namespace {

std::string_view Wording(DataError number) {
    switch (number) {
        case DataError::NoCurrentRow:
            return "There is no current record";
        case DataError::FileNotFound:
            return "The database file was not found";
        case DataError::ReadOnly:
            return "The record can't be changed: the database or the query is read-only";
        case DataError::ObjectInvalid:
            return "The database or record set is closed";
        case DataError::BadUpdate:
            return "The record must be opened by Edit before it is changed";
        case DataError::NoSuchTable:
            return "The table was not found in the database";
        case DataError::NoSuchQueryField:
            return "The query names a field that the table doesn't have";
        case DataError::NoSuchField:
            return "The field was not found in the record set";
        case DataError::QuerySyntax:
            return "The query is not well formed";
        case DataError::UnionColumns:
            return "The two parts of a union query have different numbers of fields";
        case DataError::Locked:
            return "The database is locked by another program; try again in a moment";
        case DataError::NotADatabase:
            return "The file is not a database, or it is damaged";
        case DataError::DiskError:
            return "The database file can't be read or written";
        case DataError::NoPermission:
            return "You don't have permission to open the database file";
        case DataError::RecordDeleted:
            return "The record was deleted in the meantime";
        case DataError::ValueRefused:
            return "The table doesn't accept the value";
    }
    return "The database reports a failure";
}

}  // namespace

RuntimeError MakeDataError(DataError number, std::string_view description) {
    return RuntimeError(static_cast<std::int32_t>(number),
                        FromUtf8(description.empty() ? Wording(number) : description));
}

}  // namespace platform
