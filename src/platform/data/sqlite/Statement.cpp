#include "platform/data/sqlite/Statement.h"

#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>

#include "platform/data/Database.h"

namespace platform {

namespace {

int Index(std::size_t number) {
    return static_cast<int>(number);
}

// True if nothing but blanks and semicolons follows the statement that SQLite has compiled.
bool IsWhole(std::string_view rest) {
    return rest.find_first_not_of(" \t\r\n;") == std::string_view::npos;
}

Text TextOf(const void* characters, int bytes) {
    return Text(static_cast<const char16_t*>(characters), static_cast<std::size_t>(bytes) / sizeof(char16_t));
}

Text TextOrEmpty(const char* utf8) {
    return utf8 ? FromUtf8(utf8) : Text();
}

Value NumberValue(sqlite3_int64 number) {
    using Long = std::numeric_limits<std::int32_t>;
    if (number < Long::min() || number > Long::max()) return Value(static_cast<double>(number));
    return Value(static_cast<std::int32_t>(number));
}

// Binds a value by its type.
class Binder {
  public:
    Binder(sqlite3_stmt* statement, int parameter) : statement_(statement), parameter_(parameter) {}

    int operator()(const Text& text) const {
        return sqlite3_bind_text16(statement_, parameter_, text.data(), Index(text.size() * sizeof(char16_t)),
                                   SQLITE_TRANSIENT);
    }
    int operator()(Empty) const { return sqlite3_bind_null(statement_, parameter_); }
    int operator()(Null) const { return sqlite3_bind_null(statement_, parameter_); }
    int operator()(Date date) const { return sqlite3_bind_double(statement_, parameter_, date.days); }
    int operator()(bool truth) const { return sqlite3_bind_int(statement_, parameter_, truth ? -1 : 0); }
    int operator()(Missing) const { throw RuntimeError(ErrorNumber::TypeMismatch); }
    int operator()(const ObjectRef&) const { throw RuntimeError(ErrorNumber::TypeMismatch); }
    template <class Number>
    int operator()(Number number) const {
        if constexpr (std::is_floating_point_v<Number>)
            return sqlite3_bind_double(statement_, parameter_, static_cast<double>(number));
        else
            return sqlite3_bind_int(statement_, parameter_, number);
    }

  private:
    sqlite3_stmt* statement_;
    int parameter_;
};

}  // namespace

Statement::Statement(std::shared_ptr<SqliteConnection> connection, TextView query)
    : connection_(std::move(connection)) {
    const std::string utf8 = ToUtf8(query);
    const char* rest = nullptr;
    const int code =
        sqlite3_prepare_v2(connection_->Handle(), utf8.c_str(), Index(utf8.size() + 1), &statement_, &rest);
    if (code != SQLITE_OK) connection_->Fail(code);
    const auto used = static_cast<std::size_t>(rest - utf8.c_str());
    if (!statement_) connection_->FailQuery("it is empty");
    if (!IsWhole(std::string_view(utf8).substr(used))) {
        Finalize();
        connection_->FailQuery("there is more after its end");
    }
    connection_->Add(*this);
}

Statement::~Statement() {
    Finalize();
    connection_->Remove(*this);
}

void Statement::Finalize() {
    sqlite3_finalize(std::exchange(statement_, nullptr));
}

sqlite3_stmt* Statement::Live() const {
    if (!statement_) throw MakeDataError(DataError::ObjectInvalid);
    return statement_;
}

bool Statement::Step() {
    const int code = sqlite3_step(Live());
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) return false;
    connection_->Fail(code);
}

bool Statement::OnlyReads() const {
    return sqlite3_stmt_readonly(Live()) != 0;
}

std::size_t Statement::ColumnCount() const {
    return static_cast<std::size_t>(sqlite3_column_count(Live()));
}

Text Statement::ColumnName(std::size_t column) const {
    return TextOrEmpty(sqlite3_column_name(Live(), Index(column)));
}

Text Statement::TableOf(std::size_t column) const {
    return TextOrEmpty(sqlite3_column_table_name(Live(), Index(column)));
}

Text Statement::OriginOf(std::size_t column) const {
    return TextOrEmpty(sqlite3_column_origin_name(Live(), Index(column)));
}

Value Statement::Column(std::size_t column) const {
    sqlite3_stmt* statement = Live();
    const int index = Index(column);
    switch (sqlite3_column_type(statement, index)) {
        case SQLITE_INTEGER:
            return NumberValue(sqlite3_column_int64(statement, index));
        case SQLITE_FLOAT:
            return Value(sqlite3_column_double(statement, index));
        case SQLITE_NULL:
            return Value(Null());
        case SQLITE_TEXT:
            break;
        default:
            throw BinaryData();
    }
    // Null if there wasn't enough memory to convert the text.
    const void* characters = sqlite3_column_text16(statement, index);
    if (!characters) connection_->Fail(sqlite3_errcode(connection_->Handle()));
    return Value(TextOf(characters, sqlite3_column_bytes16(statement, index)));
}

bool Statement::IsBinary(std::size_t column) const {
    return sqlite3_column_type(Live(), Index(column)) == SQLITE_BLOB;
}

std::int64_t Statement::WholeNumber(std::size_t column) const {
    return sqlite3_column_int64(Live(), Index(column));
}

void Statement::Bind(std::size_t parameter, const Value& value) {
    const int code = std::visit(Binder(Live(), Index(parameter) + 1), value.Stored());
    if (code != SQLITE_OK) connection_->Fail(code);
}

void Statement::BindWholeNumber(std::size_t parameter, std::int64_t number) {
    const int code = sqlite3_bind_int64(Live(), Index(parameter) + 1, number);
    if (code != SQLITE_OK) connection_->Fail(code);
}

std::unique_ptr<Statement> ReadingStatement(const std::shared_ptr<SqliteConnection>& connection,
                                            TextView query) {
    auto statement = std::make_unique<Statement>(connection, query);
    if (statement->ColumnCount() == 0 || !statement->OnlyReads()) connection->FailQuery("it selects no rows");
    return statement;
}

RuntimeError BinaryData() {
    return RuntimeError(ErrorNumber::TypeMismatch, "the field holds binary data");
}

ColumnNames::ColumnNames(const Statement& statement, std::size_t first) {
    for (std::size_t i = first; i < statement.ColumnCount(); ++i) names_.push_back(statement.ColumnName(i));
}

std::size_t ColumnNames::IndexOf(TextView name) const {
    // Tries exact names first: most are spelled as in the table, and comparing them is far cheaper.
    auto found = std::find(names_.begin(), names_.end(), name);
    if (found == names_.end())
        found = std::find_if(names_.begin(), names_.end(),
                             [&](const Text& candidate) { return EqualsIgnoringCase(candidate, name); });
    return static_cast<std::size_t>(found - names_.begin());
}

std::size_t ColumnNames::Find(TextView name) const {
    const std::size_t index = IndexOf(name);
    if (index == names_.size())
        throw MakeDataError(DataError::NoSuchField,
                            "The field '" + ToUtf8(name) + "' was not found in the record set");
    return index;
}

}  // namespace platform
