#include "check/Watched.h"

#include <algorithm>

#include "source/Literals.h"

namespace lng {

using namespace platform;

// Hands on one row, or all of them, and writes down what is read.
class WatchedRecordset : public Recordset {
  public:
    WatchedRecordset(std::unique_ptr<Recordset> rows, WatchedDatabase& owner, const std::vector<Text>& fields)
        : rows_(std::move(rows)), owner_(owner), fields_(fields) {
        for (std::size_t i = 0; i < owner_.only_.value_or(0) && !rows_->EndOfFile(); ++i) rows_->MoveNext();
        NoteRow();
    }

    bool EndOfFile() const override { return passed_ || rows_->EndOfFile(); }

    Value Field(TextView name) const override {
        owner_.reading_.field = Text(name);
        try {
            return rows_->Field(name);
        } catch (const RuntimeError& error) {
            owner_.reading_.failure = error;
            throw;
        }
    }

    void MoveNext() override {
        if (owner_.only_) {
            passed_ = true;
            return;
        }
        rows_->MoveNext();
        NoteRow();
    }

    std::int32_t RecordCount() const override { return rows_->RecordCount(); }
    void Edit() override { rows_->Edit(); }
    void SetField(TextView name, const Value& value) override { rows_->SetField(name, value); }
    void Update() override { rows_->Update(); }
    void Close() override { rows_->Close(); }

  private:
    void NoteRow() {
        owner_.reading_.hadRow = !rows_->EndOfFile();
        owner_.reading_.row.clear();
        if (!owner_.reading_.hadRow) return;
        for (const Text& field : fields_) {
            ErrorState unreadable;
            Skip(unreadable, "reading a field", [&] { owner_.reading_.row[field] = rows_->Field(field); });
        }
    }

    std::unique_ptr<Recordset> rows_;
    WatchedDatabase& owner_;
    std::vector<Text> fields_;
    bool passed_ = false;
};

std::unique_ptr<Recordset> WatchedDatabase::OpenRecordset(TextView query, RecordsetType type) {
    reading_ = {};
    reading_.query = Text(query);
    std::vector<Text> fields;
    for (const std::string& field : PartsOf(ToUtf8(query)).fields) fields.push_back(FromUtf8(field));
    try {
        auto rows = database_->OpenRecordset(query, type);
        reading_.opened = true;
        return std::make_unique<WatchedRecordset>(std::move(rows), *this, fields);
    } catch (const RuntimeError& error) {
        reading_.failure = error;
        throw;
    }
}

namespace {

// The next word of a query of the add-in, or one comma.
std::string TakeWord(std::string_view& rest) {
    rest = TrimBlanks(rest);
    const auto end = rest.front() == ',' ? 1 : rest.find_first_of(" ,=");
    const std::string word(rest.substr(0, end));
    rest.remove_prefix(word.empty() ? rest.size() : word.size());
    return word;
}

std::string TrimOf(std::string_view text, std::string_view characters) {
    const auto start = std::min(text.find_first_not_of(characters), text.size());
    return std::string(text.substr(start, text.find_last_not_of(characters) + 1 - start));
}

}  // namespace

QueryParts PartsOf(const std::string& query) {
    QueryParts parts;
    std::string clause;
    for (std::string_view rest = query; !TrimBlanks(rest).empty();) {
        const std::string word = TakeWord(rest);
        if (SameName(word, "select") || SameName(word, "from") || SameName(word, "where")) {
            clause = word;
        } else if (SameName(clause, "select") && word != "," && word != "*") {
            parts.fields.push_back(word);
        } else if (SameName(clause, "from")) {
            parts.table = word;
            clause.clear();
        } else if (SameName(clause, "where")) {
            parts.fields.push_back(word);
            parts.conditionField = word;
            parts.conditionValue = TrimOf(rest, " ='");
            break;
        } else if (SameName(word, "union")) {
            break;
        }
    }
    return parts;
}

}  // namespace lng
