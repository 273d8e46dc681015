#include "platform/data/sqlite/ForwardOnly.h"

namespace platform {

ForwardOnly::ForwardOnly(std::shared_ptr<SqliteConnection> connection, TextView query)
    : connection_(std::move(connection)), statement_(ReadingStatement(connection_, query)) {
    // Steps before reading the column names: the step recompiles the query if the table has changed
    // meanwhile.
    Advance();
    names_ = ColumnNames(*statement_);
}

void ForwardOnly::RequireOpen() const {
    if (!statement_) throw MakeDataError(DataError::ObjectInvalid);
    connection_->Handle();
}

void ForwardOnly::Advance() {
    // Set first: if the step fails, there is no row to read either.
    atEnd_ = true;
    if (!statement_->Step()) return;
    atEnd_ = false;
    ++visited_;
}

bool ForwardOnly::EndOfFile() const {
    RequireOpen();
    return atEnd_;
}

Value ForwardOnly::Field(TextView name) const {
    RequireOpen();
    const std::size_t column = names_.Find(name);
    if (atEnd_) throw MakeDataError(DataError::NoCurrentRow);
    return statement_->Column(column);
}

void ForwardOnly::MoveNext() {
    RequireOpen();
    if (atEnd_) throw MakeDataError(DataError::NoCurrentRow);
    Advance();
}

std::int32_t ForwardOnly::RecordCount() const {
    RequireOpen();
    return visited_;
}

void ForwardOnly::Edit() {
    RequireOpen();
    throw MakeDataError(DataError::ReadOnly);
}

void ForwardOnly::SetField(TextView, const Value&) {
    Edit();
}

void ForwardOnly::Update() {
    Edit();
}

void ForwardOnly::Close() {
    RequireOpen();
    statement_.reset();
}

}  // namespace platform
