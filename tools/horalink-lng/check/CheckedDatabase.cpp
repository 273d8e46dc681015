#include "check/CheckedDatabase.h"

#include <algorithm>

#include "platform/data/sqlite/SqliteEngine.h"
#include "platform/runtime/Paths.h"
#include "source/Literals.h"
#include "store/Schema.h"

namespace lng {

namespace {

using platform::DataError;

bool Is(const Notice& notice, DataError error) {
    return notice.number == static_cast<std::int32_t>(error);
}

bool Is(const Notice& notice, platform::ErrorNumber error) {
    return notice.number == static_cast<std::int32_t>(error);
}

// The fields that tell the rows of a table apart.
const std::vector<std::string>& KeyFields(const std::string& table) {
    static const std::map<std::string, std::vector<std::string>> fields{
        {"tProject", {"EXEName"}},
        {"tMsgBox", {"MsgNo"}},
        {"tMessages", {"ID"}},
        {"tForms", {"ObjectName"}},
        {"tControls", {"FormName", "ObjectName", "Index"}},
        {"tPicture", {"FormName", "ObjectName", "Index"}},
        {"PictureFileName", {"ID", "DefaultName"}},
        {"tTopics", {"ID"}},
        {"Registry", {"AppName"}},
    };
    static const std::vector<std::string> none;
    const auto found = fields.find(table);
    return found == fields.end() ? none : found->second;
}

std::string TextOf(const Cell& cell) {
    const auto* text = std::get_if<std::string>(&cell);
    return text ? *text : LiteralOf(cell);
}

std::string TextOf(const platform::Value& value) {
    return value.IsNull() ? LiteralOf(Null()) : platform::ToUtf8(value.ToText());
}

std::string Wording(const Notice& notice) {
    if (Is(notice, platform::ErrorNumber::InvalidUseOfNull)) return "it is Null, which the add-in fails on";
    return "the add-in fails on it: " + notice.description;
}

}  // namespace

const Cell& StoredRow::operator[](const std::string& field) const {
    static const Cell none = Null();
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const auto& entry) { return SameName(entry.first, field); });
    return found == fields.end() ? none : found->second;
}

bool StoredRow::LacksText(const std::string& field) const {
    const bool there = std::any_of(fields.begin(), fields.end(),
                                   [&](const auto& entry) { return SameName(entry.first, field); });
    return there && Text(field).empty();
}

std::string StoredRow::Text(const std::string& field) const {
    const Cell& cell = (*this)[field];
    return cell == Cell(Null()) ? "" : TextOf(cell);
}

CheckedDatabase::CheckedDatabase(std::string name, const std::filesystem::path& file, Findings& findings)
    : name_(std::move(name)), findings_(findings) {
    const auto engine = platform::MakeSqliteEngine();
    watched_ = std::make_shared<WatchedDatabase>(engine->OpenDatabase(platform::PathText(file), true));
    stored_ = std::make_unique<Connection>(file, true);
}

bool CheckedDatabase::HasTable(const std::string& table) const {
    return !ColumnsOf(*stored_, table).empty();
}

bool CheckedDatabase::HasField(const std::string& table, const std::string& field) const {
    const std::vector<Column> columns = ColumnsOf(*stored_, table);
    return std::any_of(columns.begin(), columns.end(),
                       [&](const Column& column) { return SameName(column.name, field); });
}

std::vector<StoredRow> CheckedDatabase::RowsOf(const std::string& table) const {
    std::vector<StoredRow> rows;
    const std::vector<Column> columns = ColumnsOf(*stored_, table);
    if (columns.empty()) return rows;
    Query query(*stored_, "SELECT * FROM " + QuotedName(table));
    while (query.Step()) {
        StoredRow row;
        for (std::size_t i = 0; i < columns.size(); ++i) row.fields[columns[i].name] = query.Column(i);
        for (const std::string& field : KeyFields(table)) row.key.emplace_back(field, TextOf(row[field]));
        rows.push_back(std::move(row));
    }
    return rows;
}

void CheckedDatabase::Report(const std::string& table, const RowKey& row, const std::string& field,
                             const std::string& message) const {
    findings_.Add({name_, table, row, field}, message);
}

// Of a row that isn't there, only the field that it was looked for by is known.
RowKey CheckedDatabase::CurrentKey() const {
    const Reading& reading = watched_->Last();
    const QueryParts query = PartsOf(platform::ToUtf8(reading.query));
    RowKey key;
    for (const std::string& field : KeyFields(query.table)) {
        const auto found = std::find_if(reading.row.begin(), reading.row.end(), [&](const auto& entry) {
            return SameName(platform::ToUtf8(entry.first), field);
        });
        if (found != reading.row.end())
            key.emplace_back(field, TextOf(found->second));
        else if (SameName(field, query.conditionField))
            key.emplace_back(field, query.conditionValue);
    }
    return key;
}

void CheckedDatabase::ReportMissingFields(const QueryParts& query) const {
    for (const std::string& field : query.fields)
        if (!HasField(query.table, field)) Report(query.table, {}, field, "the field is missing");
}

void CheckedDatabase::ReportFailure(const Notice& notice) const {
    const Reading& reading = watched_->Last();
    const QueryParts query = PartsOf(platform::ToUtf8(reading.query));
    const std::string field = platform::ToUtf8(reading.field);
    if (Is(notice, DataError::NoSuchTable))
        Report(query.table, {}, "", "the table is missing");
    else if (Is(notice, DataError::NoSuchQueryField) && !query.fields.empty())
        ReportMissingFields(query);
    else if (Is(notice, DataError::NoSuchField))
        Report(query.table, {}, field, "the field is missing");
    else if (Is(notice, DataError::NoCurrentRow) && !query.conditionField.empty())
        Report(query.table, CurrentKey(), "", "the row is missing");
    else if (!reading.opened)
        Report(query.table, {}, "", "the add-in can't read it: " + notice.description);
    else
        Report(query.table, CurrentKey(), field, Wording(notice));
}

}  // namespace lng
