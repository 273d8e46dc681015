#include "platform/data/sqlite/Dynaset.h"

#include <algorithm>

#include "platform/data/Dialect.h"

namespace platform {

namespace {

Text Quoted(TextView name) {
    Text quoted(1, u'"');
    for (const char16_t c : name) quoted.append(c == u'"' ? 2 : 1, c);
    return quoted.append(1, u'"');
}

// The table that all columns come from, or an empty text.
Text OnlyTable(const Statement& statement) {
    const Text table = statement.TableOf(0);
    for (std::size_t i = 1; i < statement.ColumnCount(); ++i)
        if (statement.TableOf(i) != table) return {};
    return table;
}

// SQLite has three names for the row number. A table may use any of them for one of its columns.
std::optional<Text> NameOfRowNumber(const std::shared_ptr<SqliteConnection>& connection, const Text& table) {
    const ColumnNames columns(Statement(connection, u"SELECT * FROM " + Quoted(table)));
    for (const TextView name : {u"rowid", u"oid", u"_rowid_"})
        if (!columns.Holds(name)) return Text(name);
    return std::nullopt;
}

}  // namespace

Dynaset::Dynaset(std::shared_ptr<SqliteConnection> connection, TextView query)
    : connection_(std::move(connection)) {
    auto statement = NumberedStatement(query);
    const std::size_t first = statement ? 1 : 0;
    if (!statement) statement = ReadingStatement(connection_, query);
    names_ = ColumnNames(*statement, first);
    for (std::size_t i = first; i < statement->ColumnCount(); ++i) origins_.push_back(statement->OriginOf(i));
    ReadRows(*statement, first);
}

// The query with the row number added as column 0, or null if its rows aren't those of one table.
std::unique_ptr<Statement> Dynaset::NumberedStatement(TextView query) {
    try {
        const Text table = OnlyTable(Statement(connection_, query));
        const auto number = table.empty() ? std::nullopt : NameOfRowNumber(connection_, table);
        const auto numbered = number ? WithRowNumber(query, *number) : std::nullopt;
        if (!numbered) return nullptr;
        auto statement = std::make_unique<Statement>(connection_, *numbered);
        // A view may use this name for another field of the table.
        const Statement ofTable(connection_, u"SELECT " + *number + u" FROM " + Quoted(table));
        if (OnlyTable(*statement) != table || statement->OriginOf(0) != ofTable.OriginOf(0)) return nullptr;
        table_ = table;
        rowNumber_ = *number;
        return statement;
    } catch (const RuntimeError&) {
        // If the original query is wrong, preparing it afterwards reports the error.
        return nullptr;
    }
}

Dynaset::Row Dynaset::ReadRow(const Statement& statement, std::size_t first) const {
    Row row;
    if (first == 1) row.number = statement.WholeNumber(0);
    for (std::size_t i = first; i < first + origins_.size(); ++i)
        row.values.push_back(statement.IsBinary(i) ? std::nullopt : std::optional(statement.Column(i)));
    return row;
}

void Dynaset::ReadRows(Statement& statement, std::size_t first) {
    while (statement.Step()) rows_.push_back(ReadRow(statement, first));
}

void Dynaset::RequireOpen() const {
    if (!open_) throw MakeDataError(DataError::ObjectInvalid);
    connection_->Handle();
}

void Dynaset::RequireRow() const {
    RequireOpen();
    if (current_ == rows_.size()) throw MakeDataError(DataError::NoCurrentRow);
}

bool Dynaset::EndOfFile() const {
    RequireOpen();
    return current_ == rows_.size();
}

Value Dynaset::Field(TextView name) const {
    RequireRow();
    const auto& value = rows_[current_].values[names_.Find(name)];
    if (!value) throw BinaryData();
    return *value;
}

void Dynaset::MoveNext() {
    RequireRow();
    changes_.reset();
    ++current_;
}

std::int32_t Dynaset::RecordCount() const {
    RequireOpen();
    return static_cast<std::int32_t>(rows_.size());
}

void Dynaset::Edit() {
    RequireRow();
    if (table_.empty()) throw MakeDataError(DataError::ReadOnly);
    connection_->PrepareToWrite();
    changes_.emplace();
}

std::vector<Dynaset::Change>& Dynaset::Changes() {
    RequireRow();
    if (!changes_) throw MakeDataError(DataError::BadUpdate);
    return *changes_;
}

void Dynaset::SetField(TextView name, const Value& value) {
    auto& changes = Changes();
    const std::size_t column = names_.Find(name);
    std::erase_if(changes, [&](const Change& change) { return change.first == column; });
    changes.emplace_back(column, value);
}

void Dynaset::Update() {
    const auto& changes = Changes();
    if (!changes.empty()) WriteChanges(changes);
    changes_.reset();
}

void Dynaset::WriteChanges(const std::vector<Change>& changes) {
    Statement update(connection_, UpdateQuery(changes));
    for (std::size_t i = 0; i < changes.size(); ++i) update.Bind(i, changes[i].second);
    update.BindWholeNumber(changes.size(), rows_[current_].number);
    if (!update.Step()) throw MakeDataError(DataError::RecordDeleted);
    Row written = ReadRow(update, 1);
    // Only the last step writes the row to disk, and it can still fail.
    update.Step();
    rows_[current_] = std::move(written);
}

Text Dynaset::UpdateQuery(const std::vector<Change>& changes) const {
    Text query = u"UPDATE " + Quoted(table_) + u" SET ";
    for (const Change& change : changes) query += Quoted(origins_[change.first]) + u"=?,";
    query.back() = u' ';
    query += u"WHERE " + rowNumber_ + u"=? RETURNING " + rowNumber_;
    for (const Text& origin : origins_) query += u"," + Quoted(origin);
    return query;
}

void Dynaset::Close() {
    RequireOpen();
    open_ = false;
    rows_.clear();
}

}  // namespace platform
