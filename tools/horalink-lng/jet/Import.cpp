#include "jet/Import.h"

#include <charconv>
#include <optional>

#include "common/Fault.h"
#include "jet/JetFile.h"
#include "store/Sql.h"

namespace lng {

namespace {

enum class Kind { Text, Whole, Single, Double, Exact, Truth, Date, Binary };

struct TypeRule {
    std::string_view jetType;
    Kind kind;
    std::string_view declaration;
};

// Jet compares texts without regard to case, and the add-in's queries count on it. Exact numbers become whole
// or floating ones where nothing is lost by it, and stay texts where something would be.
constexpr TypeRule rules[] = {
    {"Text", Kind::Text, "TEXT COLLATE NOCASE"},
    {"Memo/Hyperlink", Kind::Text, "TEXT COLLATE NOCASE"},
    {"Replication ID", Kind::Text, "TEXT COLLATE NOCASE"},
    {"Byte", Kind::Whole, "INTEGER"},
    {"Integer", Kind::Whole, "INTEGER"},
    {"Long Integer", Kind::Whole, "INTEGER"},
    {"Boolean", Kind::Truth, "INTEGER"},
    {"Single", Kind::Single, "REAL"},
    {"Double", Kind::Double, "REAL"},
    {"Currency", Kind::Exact, "NUMERIC"},
    {"Numeric", Kind::Exact, "NUMERIC"},
    {"DateTime", Kind::Date, "TEXT"},
    {"OLE", Kind::Binary, "BLOB"},
    {"Binary", Kind::Binary, "BLOB"},
};

const TypeRule* RuleOf(const std::string& type) {
    for (const TypeRule& rule : rules)
        if (rule.jetType == type) return &rule;
    return nullptr;
}

template <class Number>
Cell NumberCell(const std::string& text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) throw tools::Fault("'" + text + "' is no number");
    if constexpr (std::is_same_v<Number, std::int64_t>) return number;
    return static_cast<double>(number);
}

Cell BlobCell(const std::string& digits) {
    Blob blob;
    if (digits.size() % 2 != 0) throw tools::Fault("a digit of the binary data is missing");
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        unsigned byte = 0;
        const auto result = std::from_chars(&digits[i], &digits[i] + 2, byte, 16);
        if (result.ec != std::errc() || result.ptr != &digits[i] + 2)
            throw tools::Fault("the binary data is damaged");
        blob.bytes += static_cast<char>(byte);
    }
    return blob;
}

Cell CellOf(Kind kind, const std::string& text) {
    switch (kind) {
        case Kind::Whole:
            return NumberCell<std::int64_t>(text);
        case Kind::Truth:
            return std::int64_t{text == "0" ? 0 : -1};
        case Kind::Single:
            return NumberCell<float>(text);
        case Kind::Double:
            return NumberCell<double>(text);
        case Kind::Binary:
            return BlobCell(text);
        default:
            return text;
    }
}

// mdb-export writes a date that it can't work out as the day 0 of a month.
bool IsLostDate(Kind kind, const std::string& text) {
    return kind == Kind::Date && text.substr(0, 10).ends_with("-00");
}

class Importer {
  public:
    explicit Importer(const std::filesystem::path& file) : path_(file.string()), jet_(file) {
        result_.source.fileName = file.filename().string();
    }

    ImportedDatabase Import() {
        for (const std::string& table : jet_.Tables()) ImportTable(table);
        if (!jet_.Tables().empty())
            result_.notKept.push_back("keys, indexes, default values and rules of the tables");
        for (const std::string& other : jet_.OtherObjects()) result_.notKept.push_back(other);
        return std::move(result_);
    }

  private:
    void ImportTable(const std::string& name) {
        const std::vector<JetColumn> columns = jet_.Columns(name);
        Table table{name, Definition(name, columns), {}};
        for (const auto& fields : jet_.Rows(name)) {
            where_ = "table " + name + ", row " + std::to_string(table.rows.size() + 1);
            table.rows.push_back(RowOf(columns, fields));
        }
        const std::size_t count = jet_.Count(name);
        if (count != table.rows.size())
            throw tools::Fault(path_ + ", table " + name + ": the file counts " + std::to_string(count) +
                               " rows and gives " + std::to_string(table.rows.size()) + "; it is damaged");
        result_.source.tables.push_back(std::move(table));
    }

    std::string Definition(const std::string& table, const std::vector<JetColumn>& columns) {
        std::string lines;
        for (const JetColumn& column : columns) {
            const TypeRule* rule = RuleOf(column.type);
            if (!rule)
                result_.notKept.push_back("table " + table + ", field " + column.name + ": its type " +
                                          column.type +
                                          " is not known here, so its values are kept as texts");
            lines += (lines.empty() ? "" : ",\n") + ("    " + QuotedName(column.name) + " ") +
                     std::string(rule ? rule->declaration : "TEXT");
        }
        return "CREATE TABLE " + QuotedName(table) + " (\n" + lines + "\n)";
    }

    Row RowOf(const std::vector<JetColumn>& columns, const std::vector<CsvField>& fields) {
        if (fields.size() != columns.size())
            throw tools::Fault(path_ + ", " + where_ + ": there are " + std::to_string(fields.size()) +
                               " values for " + std::to_string(columns.size()) + " fields");
        Row row;
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (fields[i]) AddField(row, columns[i], *fields[i]);
        return row;
    }

    void AddField(Row& row, const JetColumn& column, const std::string& text) {
        const TypeRule* rule = RuleOf(column.type);
        const Kind kind = rule ? rule->kind : Kind::Text;
        if (IsLostDate(kind, text)) {
            result_.lostValues = true;
            result_.notKept.push_back(where_ + ", field " + column.name +
                                      ": a date that mdbtools can't read; it is Null now");
            return;
        }
        try {
            row.fields.push_back({column.name, CellOf(kind, text)});
        } catch (const tools::Fault& fault) {
            throw tools::Fault(path_ + ", " + where_ + ", field " + column.name + ": " + fault.what());
        }
    }

    std::string path_, where_;
    JetFile jet_;
    ImportedDatabase result_;
};

}  // namespace

ImportedDatabase ImportJet(const std::filesystem::path& file) {
    return Importer(file).Import();
}

void RequireAllRows(const DatabaseSource& source, const std::filesystem::path& file) {
    const Connection connection(file, true);
    for (const Table& table : source.tables) {
        Query query(connection, "SELECT count(*) FROM " + QuotedName(table.name));
        query.Step();
        const auto count = static_cast<std::size_t>(query.NumberOf(0));
        if (count != table.rows.size())
            throw tools::Fault(source.fileName + ", table " + table.name + ": only " + std::to_string(count) +
                               " of " + std::to_string(table.rows.size()) + " rows arrived");
    }
}

}  // namespace lng
